#include <tarn/run/TaskExecutor.hpp>

#include <tbb/info.h>
#include <tbb/task_arena.h>

#include <deque>
#include <mutex>
#include <utility>

namespace Tarn {

namespace {

// The tasks wait here for oneTBB's threads, and not in oneTBB, because ThreadSanitizer
// sees how this lock orders two threads and cannot look into oneTBB's library.
struct Waiting {
    std::mutex mutex;
    std::deque<std::function<void()>> tasks;
};

Waiting& waiting()
{
    static Waiting& theWaiting = *new Waiting; // a thread may take its task while the program ends
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
    task();
}

} // namespace

unsigned TaskExecutor::concurrency() const noexcept
{
    return static_cast<unsigned>(tbb::info::default_concurrency() - 1);
}

void TaskExecutor::execute(std::function<void()> task)
{
    // An arena of its own, without a place for the thread that evaluates.
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
