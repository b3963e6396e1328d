#pragma once

#include <trellis/VRequest.hpp>

#include <cstdint>

namespace Tarn {

class Session;
class TableWriter;

/// How an evaluation went.
struct EvaluationSummary {
    std::uint64_t steps = 0;    ///< those that were evaluated to the end
    std::uint64_t failures = 0; ///< updates that failed, and columns without a text
    std::uint64_t stopped = 0;  ///< loops that did not settle
    std::uint64_t firstTrouble = 0; ///< the first step with either of them
    bool cancelled = false;     ///< what was done last is not in the table
    bool timeIsLost = false;    ///< the time provider went before the last step

    bool isFine() const noexcept { return failures == 0 && stopped == 0 && !cancelled && !timeIsLost; }
};

/// Steps the time of \p session from begin to end, runs in each step what is due,
/// and writes a row with the session's columns to \p table, which may be null.
/// \pre The session has no faults.
/// \throw FileError if the table cannot be written.
EvaluationSummary evaluate(const Session& session, TableWriter* table, const Orla::VCancellation& cancellation);

} // namespace Tarn
