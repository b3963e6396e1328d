#pragma once

#include <trellis/Export.hpp>

#include <functional>

namespace Orla {

/// Runs tasks in threads of the host, for `VScheduler::run`. A host derives from it what
/// passes tasks to its thread pool.
class TRELLIS_API VExecutor {
public:
    virtual ~VExecutor();

    /// How many tasks can run at once, not counting the thread that calls `run`.
    virtual unsigned concurrency() const noexcept = 0;

    /// Runs \p task in another thread, now or later. A task may run even after the
    /// evaluation that passed it has ended; it then returns at once. The task does not
    /// throw.
    virtual void execute(std::function<void()> task) = 0;
};

} // namespace Orla
