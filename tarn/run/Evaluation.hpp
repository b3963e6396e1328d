#pragma once

#include <tarn/run/EventScript.hpp>

#include <trellis/VRequest.hpp>

#include <cstdint>
#include <vector>

namespace Tarn {

class Session;
class TableWriter;
class Tracer;

/// How an evaluation went.
struct EvaluationSummary {
    std::uint64_t steps = 0;        ///< those that were evaluated to the end
    std::uint64_t failures = 0;     ///< updates that failed, and columns without a text
    std::uint64_t stopped = 0;      ///< loops that did not settle
    std::uint64_t firstTrouble = 0; ///< the first step with either of them
    bool cancelled = false;         ///< what was done last is not in the table
    bool timeIsLost = false;        ///< the time provider went before the last step
    bool chartIsMissing = false;    ///< nobody offers the chart that is wanted

    bool isFine() const noexcept
    {
        return failures == 0 && stopped == 0 && !cancelled && !timeIsLost && !chartIsMissing;
    }
};

/// What an evaluation is to do beside running what is due.
struct EvaluationTask {
    TableWriter* table = nullptr;      ///< gets a row with the session's columns for each step
    std::vector<ScriptedEvent> events; ///< by step
    Tracer* tracer = nullptr;          ///< learns which step it is
    bool showsProgress = false;        ///< where standard error is a terminal
};

/// Steps the time of \p session from begin to end. Each step runs what is due, plays
/// its events one by one, and emits the actions that tell of it; the table gets what
/// came out. If the chart that the session wants is not there after the first step,
/// that is all.
/// \pre The session has no faults.
/// \throw Loam::FileError if the table cannot be written.
EvaluationSummary evaluate(const Session& session, const EvaluationTask& task, const Orla::VCancellation& cancellation);

} // namespace Tarn
