#pragma once

#include <trellis/Export.hpp>

#include <chrono>
#include <functional>

namespace Orla {

/// Runs tasks in threads of the host, for `VScheduler::run`. A host derives from it what
/// passes tasks to its thread pool.
class TRELLIS_API VExecutor {
public:
    virtual ~VExecutor();

    /// How many tasks can run at once, not counting the thread that calls `run`.
    virtual unsigned concurrency() const noexcept = 0;

    /// About how long it takes to pass an update to another thread; 1 us by default. An
    /// object whose updates take less time runs in the thread that calls `run`, from its
    /// second update in a pool on.
    virtual std::chrono::nanoseconds handOverTime() const noexcept;

    /// Runs \p task in another thread, now or later. A task may run even after the
    /// evaluation that passed it has ended; it then returns at once. The task does not
    /// throw.
    virtual void execute(std::function<void()> task) = 0;
};

} // namespace Orla
