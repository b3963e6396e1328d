#include <tarn/run/TaskExecutor.hpp>

#include "support/Threads.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <latch>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace TaskExecutorTest {

using Tarn::TaskExecutor;

// What a task uses after it has woken the test is shared, or the test could destroy it too
// early.

TEST(TaskExecutor, leavesACoreToTheThreadThatEvaluates)
{
    EXPECT_LT(TaskExecutor{}.concurrency(), std::max(std::thread::hardware_concurrency(), 1u));
}

TEST(TaskExecutor, runsATaskInAnotherThread)
{
    const auto thread = std::make_shared<std::promise<std::thread::id>>();
    TaskExecutor{}.execute([thread] { thread->set_value(std::this_thread::get_id()); });
    EXPECT_NE(thread->get_future().get(), std::this_thread::get_id());
}

TEST(TaskExecutor, runsEachTaskOnceIfSeveralThreadsPassTasks)
{
    constexpr unsigned Threads = 4;
    constexpr unsigned TasksPerThread = 1000;
    std::vector<std::atomic<int>> runs(Threads * TasksPerThread);
    const auto left = std::make_shared<std::latch>(Threads * TasksPerThread);
    TaskExecutor executor;
    Orla::inThreads(Threads, [&](unsigned thread) {
        for (unsigned i = 0; i < TasksPerThread; ++i)
            executor.execute([&run = runs[thread * TasksPerThread + i], left] {
                ++run;
                left->count_down();
            });
    });
    left->wait();
    EXPECT_TRUE(std::ranges::all_of(runs, [](const std::atomic<int>& count) { return count == 1; }));
}

namespace {

thread_local bool isPrepared = false;

} // namespace

TEST(TaskExecutor, preparesTheThreadOfATaskAsTheProgramAsks)
{
    const auto preparation = [](void (*prepare)() noexcept) {
        TaskExecutor::prepareThreadsWith(prepare);
        const auto was = std::make_shared<std::promise<bool>>();
        TaskExecutor{}.execute([was] { was->set_value(std::exchange(isPrepared, false)); });
        return was->get_future().get();
    };
    EXPECT_TRUE(preparation([]() noexcept { isPrepared = true; }));
    EXPECT_FALSE(preparation(nullptr));
}

TEST(TaskExecutor, runsTasksAfterItsOwnEnd)
{
    const auto begin = std::make_shared<std::latch>(1);
    const auto ran = std::make_shared<std::promise<void>>();
    {
        TaskExecutor executor;
        executor.execute([begin] { begin->wait(); });
        executor.execute([ran] { ran->set_value(); });
    }
    begin->count_down();
    EXPECT_EQ(ran->get_future().wait_for(std::chrono::minutes(1)), std::future_status::ready);
}

} // namespace TaskExecutorTest
