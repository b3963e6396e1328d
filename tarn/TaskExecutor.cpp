#include <tarn/TaskExecutor.hpp>

#include <tbb/info.h>
#include <tbb/task_arena.h>

#include <deque>
#include <mutex>
#include <utility>

namespace Tarn {

namespace {

// The tasks wait here for oneTBB's threads, and not in oneTBB, because ThreadSanitizer
// sees how this lock orders two threads and cannot look into oneTBB's library.
class Tasks {
public:
    void push(std::function<void()> task)
    {
        const std::lock_guard lock{m_mutex};
        m_tasks.push_back(std::move(task));
    }

    std::function<void()> pop()
    {
        const std::lock_guard lock{m_mutex};
        std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        return task;
    }

private:
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_tasks;
};

Tasks& tasks()
{
    static Tasks& theTasks = *new Tasks; // a thread may take its task while the program ends
    return theTasks;
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
    tasks().push(std::move(task));
    arena.enqueue([] { tasks().pop()(); });
}

} // namespace Tarn
