#include <tarn/run/Workers.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

using Tarn::Workers;

TEST(Workers, performTheWorkOncePerThread)
{
    std::atomic<int> calls{0};
    Workers workers{3, [&] { ++calls; }, [] { FAIL(); }};
    workers.join();
    EXPECT_EQ(calls, 3);
}

TEST(Workers, endBeforeTheyAreDestroyed)
{
    std::atomic<int> calls{0};
    {
        const Workers workers{2, [&] { ++calls; }, [] {}};
    }
    EXPECT_EQ(calls, 2);
}

TEST(Workers, rethrowTheFirstExceptionAfterAllHaveEnded)
{
    std::atomic<bool> isEnded{false};
    std::atomic<int> ended{0};
    std::atomic<bool> hasThrown{false};
    Workers workers{3,
                    [&] {
                        if (!hasThrown.exchange(true))
                            throw std::runtime_error{"no paint"};
                        while (!isEnded)
                            std::this_thread::yield();
                        ++ended;
                    },
                    [&] { isEnded = true; }};
    try {
        workers.join();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "no paint");
    }
    EXPECT_EQ(ended, 2);
}
