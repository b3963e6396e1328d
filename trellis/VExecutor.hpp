#pragma once

#include <trellis/Export.hpp>

#include <chrono>
#include <functional>

namespace Orla {

/// Runs tasks in threads of the host for `VScheduler::run`. A host derives an adapter for its
/// thread pool from it.
class TRELLIS_API VExecutor {
public:
    virtual ~VExecutor();

    /// Returns how many tasks can run at once, not counting the thread that calls `run`.
    virtual unsigned concurrency() const noexcept = 0;

    /// Returns the approximate time to hand an update to another thread; 1 us by default. From
    /// its second update in a pool on, an object whose updates take less time runs in the
    /// thread that calls `run`.
    virtual std::chrono::nanoseconds handOverTime() const noexcept;

    /// Runs \p task in another thread, now or later. A task may still run after its evaluation
    /// has ended; it then returns immediately. Tasks do not throw.
    virtual void execute(std::function<void()> task) = 0;
};

} // namespace Orla
