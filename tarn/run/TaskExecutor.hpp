#pragma once

#include <trellis/VExecutor.hpp>

#include <functional>
#include <optional>

namespace Tarn {

/// Runs tasks in oneTBB's worker threads: one per core, except one for the thread that
/// evaluates.
class TaskExecutor final : public Orla::VExecutor {
public:
    /// Uses at most \p most of these threads at a time; by default all.
    explicit TaskExecutor(std::optional<unsigned> most = {}) noexcept;

    /// Returns the number of cores that the process may use.
    static unsigned cores() noexcept;

    unsigned concurrency() const noexcept override;
    void execute(std::function<void()> task) override;

    /// Calls \p prepare before each task that starts from now on, in the task's thread. Null, the
    /// initial value, calls nothing.
    static void prepareThreadsWith(void (*prepare)() noexcept) noexcept;

    /// Calls what was passed to `prepareThreadsWith`, for a thread that is started otherwise.
    static void prepareThread() noexcept;

private:
    unsigned m_most;
};

} // namespace Tarn
