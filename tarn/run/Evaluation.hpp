#pragma once

#include <tarn/run/EventScript.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/VRequest.hpp>

#include <cstdint>
#include <vector>

namespace Tarn {

class Session;
class TableWriter;
class Tracer;

/// The outcome of an evaluation.
struct EvaluationSummary {
    std::uint64_t steps = 0;        ///< steps that were evaluated completely
    std::uint64_t failures = 0;     ///< failed updates, and outputs without a text
    std::uint64_t stopped = 0;      ///< loops that did not settle
    std::uint64_t firstTrouble = 0; ///< the first step with a failure or a stopped loop
    bool cancelled = false;         ///< the step in progress is not in the table
    bool timeIsLost = false;        ///< the time provider was removed before the last step
    bool chartIsMissing = false;    ///< no object offers the wanted chart
    Faults unknownChoices{{}};      ///< texts that choose what an object does not offer

    bool isFine() const noexcept
    {
        return failures == 0 && stopped == 0 && !cancelled && !timeIsLost && !chartIsMissing && unknownChoices.empty();
    }
};

/// What an evaluation does besides running due objects.
struct EvaluationTask {
    TableWriter* table = nullptr;      ///< receives one row with the session's columns per step
    std::vector<ScriptedEvent> events; ///< sorted by step
    Tracer* tracer = nullptr;          ///< is notified of each step
    bool showsProgress = false;        ///< only if standard error is a terminal
};

/// Steps the time of \p session from beginning to end. Each step runs due objects, plays its
/// events one by one, emits the actions that report the step, and writes a row of the table.
/// If no object offers the wanted chart in the first step, the evaluation ends there. It also
/// ends in the step in which an object does not offer what a text chooses.
/// \pre The session has no faults.
/// \throw Loam::FileError if the table cannot be written.
EvaluationSummary evaluate(const Session& session, const EvaluationTask& task, const Orla::VCancellation& cancellation);

} // namespace Tarn
