#pragma once

#include <tarn/run/Context.hpp>

#include <trellis/VRequest.hpp>

#include <functional>

namespace Tarn {

class TableWriter;
class Tracer;

/// What an evaluation does besides running due objects.
struct EvaluationTask {
    TableWriter* table = nullptr;              ///< receives one row with the session's columns per step
    unsigned threads = 1;                      ///< for steps that do not depend on earlier ones
    std::function<Context()> makeContext = {}; ///< for the other threads; see `StepOptions`
    Tracer* tracer = nullptr;                  ///< is notified of each step
    bool showsProgress = false;                ///< only if standard error is a terminal
};

/// Evaluates all steps of \p context and then the end of the run. Writes a row of the table after
/// each step. Ends early if the summary has a reason to.
/// \pre \p session has no faults.
/// \throw Loam::FileError if the table cannot be written.
EvaluationSummary evaluate(const Session& session, Context& context, const EvaluationTask& task,
                           const Orla::VCancellation& cancellation);

} // namespace Tarn
