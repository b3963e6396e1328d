#include <tarn/run/TaskExecutor.hpp>

#include <tbb/info.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <atomic>
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

std::atomic<void (*)() noexcept> thePreparation{nullptr};

void runNext()
{
    std::function<void()> task;
    {
        const std::lock_guard lock{waiting().mutex};
        task = std::move(waiting().tasks.front());
        waiting().tasks.pop_front();
    }
    TaskExecutor::prepareThread();
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

void TaskExecutor::prepareThreadsWith(void (*prepare)() noexcept) noexcept
{
    thePreparation = prepare;
}

void TaskExecutor::prepareThread() noexcept
{
    if (void (*const prepare)() noexcept = thePreparation)
        prepare();
}

} // namespace Tarn
