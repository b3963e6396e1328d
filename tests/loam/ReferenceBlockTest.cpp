#include <loam/ReferenceBlock.hpp>

#include <loam/StrongPtr.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>
#include <vector>

namespace ReferenceBlockTest {

using namespace Loam;

// Threads that use the counts of one object concurrently. The sanitizers detect what
// the expectations miss.

namespace {

struct Shared : ReferenceBase<Shared> {
    ~Shared() override
    {
        content = -1;
        ++destroyed;
    }
    void extremeUnction() override { ++unctions; }

    int content = 1;
    static inline std::atomic<int> destroyed = 0;
    static inline std::atomic<int> unctions = 0;
};

class ReferenceBlockTest : public testing::Test {
protected:
    void SetUp() override
    {
        Shared::destroyed = 0;
        Shared::unctions = 0;
    }
};

// Yields only if the other thread does not seem to be running.
void waitUntil(const std::atomic<unsigned>& number, unsigned reached)
{
    for (int spins = 0; number.load(std::memory_order_acquire) < reached; ++spins) {
        if (spins > 1000)
            std::this_thread::yield();
    }
}

// Runs each function in its own thread; all of them start together.
template<class... Functions>
void runTogether(Functions... functions)
{
    std::atomic<std::size_t> waiting = sizeof...(functions);
    const auto start = [&waiting](auto function) {
        return std::thread([&waiting, function] {
            --waiting;
            while (waiting != 0)
                std::this_thread::yield();
            function();
        });
    };
    std::thread threads[] = {start(functions)...};
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace

TEST_F(ReferenceBlockTest, countsStrongAndWeakPointersSeparately)
{
    const auto object = makeStrong<Shared>();
    const ReferenceBlock& block = *object.referenceBlock();
    EXPECT_EQ(block.strongCount(), 1u);
    EXPECT_EQ(block.weakCount(), 1u) << "the object itself";
    {
        const StrongPtr<Shared> strong = object;
        const WeakPtr<Shared> weak = object;
        EXPECT_EQ(block.strongCount(), 2u);
        EXPECT_EQ(block.weakCount(), 2u);
    }
    EXPECT_EQ(block.strongCount(), 1u);
    EXPECT_EQ(block.weakCount(), 1u);
    EXPECT_TRUE(block.isAlive());
}

TEST_F(ReferenceBlockTest, outlivesTheObjectWhileAWeakPointerExists)
{
    auto object = makeStrong<Shared>();
    const WeakPtr<Shared> weak = object;
    const ReferenceBlock& block = *object.referenceBlock();
    object.reset();
    EXPECT_EQ(Shared::destroyed, 1);
    EXPECT_FALSE(block.isAlive());
    EXPECT_EQ(block.strongCount(), 0u);
    EXPECT_EQ(block.weakCount(), 1u);
}

TEST_F(ReferenceBlockTest, refusesPromotionAfterTheObjectIsDestroyed)
{
    auto object = makeStrong<Shared>();
    const WeakPtr<Shared> weak = object;
    ReferenceBlock& block = *object.referenceBlock();
    EXPECT_TRUE(block.tryAddStrong());
    block.releaseStrong();
    object.reset();
    EXPECT_FALSE(block.tryAddStrong());
    EXPECT_EQ(block.strongCount(), 0u);
    EXPECT_EQ(Shared::unctions, 1);
}

TEST_F(ReferenceBlockTest, resolvesARaceBetweenPromotionAndTheLastRelease)
{
    constexpr int Rounds = 1500;
    std::atomic<int> promoted = 0;
    for (int round = 0; round < Rounds; ++round) {
        auto object = makeStrong<Shared>();
        const auto promote = [weak = WeakPtr<Shared>(object), &promoted] {
            for (int i = 0; i < 20; ++i) {
                if (const StrongPtr<Shared> mine = weak.lock()) {
                    EXPECT_EQ(mine->content, 1);
                    ++promoted;
                }
            }
        };
        StrongPtr<Shared>* last = &object;
        runTogether([last] { last->reset(); }, promote, promote);
        ASSERT_EQ(Shared::destroyed, round + 1);
        ASSERT_EQ(Shared::unctions, round + 1);
    }
}

TEST_F(ReferenceBlockTest, countsExactlyWhenThreadsCopyConcurrently)
{
    auto object = makeStrong<Shared>();
    const auto work = [&object] {
        std::vector<StrongPtr<Shared>> strong;
        std::vector<WeakPtr<Shared>> weak;
        for (int i = 0; i < 3000; ++i) {
            strong.push_back(object);
            weak.push_back(strong.back());
            EXPECT_EQ(weak[weak.size() / 2].lock(), object);
            if (i % 7 == 0)
                strong.erase(strong.begin() + static_cast<std::ptrdiff_t>(strong.size() / 2), strong.end());
        }
    };
    runTogether(work, work, work, work);
    EXPECT_EQ(object.referenceBlock()->strongCount(), 1u);
    EXPECT_EQ(object.referenceBlock()->weakCount(), 1u);
    EXPECT_EQ(Shared::destroyed, 0);
    object.reset();
    EXPECT_EQ(Shared::destroyed, 1);
}

TEST_F(ReferenceBlockTest, makesWritesOfOtherOwnersVisibleToTheDestructor)
{
    struct Slate : ReferenceBase<Slate> {
        explicit Slate(int& theSum) : sum{theSum} {}
        ~Slate() override { sum = written[0] + written[1]; }
        int written[2] = {};
        int& sum;
    };
    for (int round = 0; round < 500; ++round) {
        int sum = 0;
        auto first = makeStrong<Slate>(sum);
        auto second = first;
        runTogether(
            [&first] {
                first->written[0] = 1;
                first.reset();
            },
            [&second] {
                second->written[1] = 2;
                second.reset();
            });
        ASSERT_EQ(sum, 3);
    }
}

TEST_F(ReferenceBlockTest, outlivesAnUnownedObjectDestroyedDuringTheLastRelease)
{
    // The varying pause covers the moment when both threads use the block.
    constexpr unsigned Rounds = 20'000;
    std::atomic<unsigned> round = 0;
    std::atomic<unsigned> released = 0;
    StrongPtr<Shared> strong;
    std::thread other([&] {
        for (unsigned i = 1; i <= Rounds; ++i) {
            waitUntil(round, i);
            for (unsigned pause = i % 29; pause > 0; --pause)
                round.load();
            strong.reset();
            released = i;
        }
    });
    for (unsigned i = 1; i <= Rounds; ++i) {
        std::optional<Shared> object(std::in_place);
        strong = StrongPtr<Shared>(&*object);
        round = i;
        object.reset();
        waitUntil(released, i);
    }
    other.join();
    EXPECT_EQ(Shared::destroyed, int{Rounds});
    EXPECT_EQ(Shared::unctions, 0) << "it had no owner";
}

TEST_F(ReferenceBlockTest, tracksNewObjectsPerThread)
{
    // Each thread keeps its own notes about objects under construction.
    struct Made : ReferenceBase<Made> {
        explicit Made(const StrongPtr<Shared>& theContent) : content{theContent} {}
        StrongPtr<Shared> content;
    };
    const auto work = [] {
        for (int i = 0; i < 2000; ++i) {
            const StrongPtr<Made> made(new Made(StrongPtr<Shared>(new Shared)));
            ASSERT_EQ(made.referenceBlock()->strongCount(), 1u);
            ASSERT_EQ(made->content.referenceBlock()->strongCount(), 1u);
        }
    };
    runTogether(work, work);
    EXPECT_EQ(Shared::destroyed, 4000);
}

} // namespace ReferenceBlockTest
