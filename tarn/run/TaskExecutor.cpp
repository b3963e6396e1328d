#include <tarn/run/TaskExecutor.hpp>

#include <tarn/run/CrashReport.hpp>

#include <tbb/info.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>

namespace Tarn {

namespace {

// Tasks wait for oneTBB's threads here rather than in oneTBB: ThreadSanitizer sees how this
// lock orders two threads, but cannot look into oneTBB's library.
struct Waiting {
    std::mutex mutex;
    std::deque<std::function<void()>> tasks;
};

Waiting& waiting()
{
    static Waiting& theWaiting = *new Waiting; // a thread may take its task while the program exits
    return theWaiting;
}

void runNext()
{
    std::function<void()> task;
    {
        const std::lock_guard lock{waiting().mutex};
        task = std::move(waiting().tasks.front());
        waiting().tasks.pop_front();
    }
    CrashReport::useSignalStack();
    task();
}

} // namespace

TaskExecutor::TaskExecutor(std::optional<unsigned> most) noexcept
    : m_most{std::min(most.value_or(cores() - 1), cores() - 1)}
{
}

unsigned TaskExecutor::cores() noexcept
{
    return static_cast<unsigned>(tbb::info::default_concurrency());
}

unsigned TaskExecutor::concurrency() const noexcept
{
    return m_most;
}

void TaskExecutor::execute(std::function<void()> task)
{
    // A separate arena, without a slot for the thread that evaluates.
    static tbb::task_arena arena{tbb::info::default_concurrency() - 1, 0};
    const std::lock_guard lock{waiting().mutex};
    waiting().tasks.push_back(std::move(task));
    try {
        arena.enqueue([] { runNext(); });
    } catch (...) {
        waiting().tasks.pop_back();
        throw;
    }
}

} // namespace Tarn
