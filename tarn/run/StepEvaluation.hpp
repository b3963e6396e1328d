#pragma once

#include <tarn/run/Context.hpp>

#include <trellis/VRequest.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// The texts of a row of the table; nothing for a cell whose object failed or waits.
using Row = std::vector<std::optional<std::string>>;

/// How `evaluateSteps` evaluates the steps of a context.
struct StepOptions {
    /// Receives the row of each step, in the order of the steps, in the calling thread.
    std::function<void(std::uint64_t step, const Row& row)> receive = {};

    /// Evaluates the next step of a context, by default with `Context::evaluateStep`.
    std::function<bool(Context& context, const Orla::VCancellation& cancellation)> evaluateStep = {};

    /// The number of threads. With several, steps are evaluated in any order, each thread with its
    /// own context, if their results do not depend on that.
    unsigned threads = 1;

    /// Creates another context for the same evaluation. Threads call it at the same time. Required
    /// for several threads.
    std::function<Context()> makeContext = {};

    /// Receives the reason, a clause, if the steps are evaluated in order despite several threads.
    std::function<void(const std::string& reason)> reportOrder = {};
};

/// Evaluates all steps of \p context, whose evaluation has not begun. Returns false if it ended
/// before the last step; its summary has the reason.
///
/// With several threads, the rows, the summary and the values in \p context are those of an
/// evaluation in order. The first two steps are evaluated in order. The others are evaluated
/// concurrently unless an object depends on its earlier updates (see `Orla::VScheduler::history`).
/// If a concurrent step fails, turns out to depend on earlier steps, or has another row after
/// different earlier steps, \p context is replaced and the evaluation starts again in order; rows
/// that were received are not passed again.
bool evaluateSteps(Context& context, const StepOptions& options, const Orla::VCancellation& cancellation);

} // namespace Tarn
