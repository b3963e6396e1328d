#pragma once

#include <tarn/commands/Command.hpp>
#include <tarn/run/Context.hpp>

#include <string>

namespace Loam {
class OutputFile;
}

// Reports of the command `run`, on standard error.

namespace Tarn {

class PrintedOutputs;
class Session;

/// Prints the outputs to standard output, and an error per output without a text, which makes
/// \p summary a failure.
/// \throw Loam::FileError
void printOutputs(const PrintedOutputs& printed, const Context& context, const StandardStreams& streams,
                  EvaluationSummary& summary);

/// Returns, for example, "12 objects, 33 steps".
std::string workOf(const Session& session, const EvaluationSummary& summary);

/// Prints a line that begins with \p work, which says what was done, then the statuses of the
/// objects. Returns the exit status.
int reportEvaluation(const Session& session, const Context& context, const EvaluationSummary& summary,
                     const std::string& work);

/// Prints that no object offers the wanted chart. Returns the exit status.
int reportMissingChart(const Session& session, const Context& context, const std::string& refusal);

/// Prints that the evaluation ended early; \p table is null if none was wanted. Returns the exit
/// status.
int reportInterruption(const Context& context, const EvaluationSummary& summary, const Loam::OutputFile* table);

/// Completes the table. If it cannot be written, prints the statuses of the objects first.
/// \throw Loam::FileError
void commitTable(Loam::OutputFile& table, const Context& context);

} // namespace Tarn
