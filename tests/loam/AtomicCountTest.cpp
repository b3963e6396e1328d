#include <loam/AtomicCount.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

namespace AtomicCountTest {

using namespace Loam;

namespace {

// Runs `check` as is, and again while the process has a second thread.
template<class Check>
void checkWithOneThreadAndWithTwo(Check check)
{
    check();
    std::atomic<bool> done = false;
    std::thread other([&done] {
        while (!done)
            std::this_thread::yield();
    });
    check();
    done = true;
    other.join();
}

} // namespace

TEST(AtomicCount, detectsASecondThread)
{
    bool single = true;
    std::thread([&single] { single = isSingleThreaded(); }).join();
    EXPECT_FALSE(single);
}

TEST(AtomicCount, returnsThePreviousNumber)
{
    checkWithOneThreadAndWithTwo([] {
        std::atomic<std::uint32_t> count = 7;
        EXPECT_EQ(countUp(count), 7u);
        EXPECT_EQ(count, 8u);
        EXPECT_EQ(countUp(count, 10u), 8u);
        EXPECT_EQ(count, 18u);
        EXPECT_EQ(countDown(count), 18u);
        EXPECT_EQ(count, 17u);
        EXPECT_EQ(countDown(count, 17u), 17u);
        EXPECT_EQ(count, 0u);
    });
}

TEST(AtomicCount, wrapsLikeUnsignedNumbers)
{
    checkWithOneThreadAndWithTwo([] {
        std::atomic<std::uint32_t> count = 0;
        EXPECT_EQ(countDown(count), 0u);
        EXPECT_EQ(count, ~std::uint32_t{0});
        EXPECT_EQ(countUp(count), ~std::uint32_t{0});
        EXPECT_EQ(count, 0u);
    });
}

TEST(AtomicCount, losesNothingWhenThreadsCountConcurrently)
{
    std::atomic<std::uint64_t> count = 0;
    constexpr int Rounds = 50'000;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&count] {
            for (int round = 0; round < Rounds; ++round) {
                countUp(count, std::uint64_t{3});
                countDown(count);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, 4u * Rounds * 2);
}

TEST(AtomicCount, makesEarlierWritesVisibleToTheThreadThatReachesZero)
{
    for (int round = 0; round < 500; ++round) {
        std::atomic<unsigned> owners = 2;
        int written[2] = {};
        int sum = 0;
        const auto leave = [&](int place) {
            written[place] = place + 1;
            if (countDown(owners) == 1)
                sum = written[0] + written[1];
        };
        std::thread other(leave, 0);
        leave(1);
        other.join();
        ASSERT_EQ(sum, 3);
    }
}

} // namespace AtomicCountTest
