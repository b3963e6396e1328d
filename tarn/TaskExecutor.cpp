#include <tarn/TaskExecutor.hpp>

#include <tbb/info.h>
#include <tbb/task_arena.h>

#include <utility>

namespace Tarn {

unsigned TaskExecutor::concurrency() const noexcept
{
    return static_cast<unsigned>(tbb::info::default_concurrency() - 1);
}

void TaskExecutor::execute(std::function<void()> task)
{
    // An arena of its own, without a place for the thread that evaluates.
    static tbb::task_arena arena{tbb::info::default_concurrency() - 1, 0};
    arena.enqueue(std::move(task));
}

} // namespace Tarn
