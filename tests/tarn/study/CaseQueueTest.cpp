#include <tarn/study/CaseQueue.hpp>

#include <gmock/gmock.h>

#include <optional>
#include <vector>

using Tarn::CaseQueue;
using testing::ElementsAre;

TEST(CaseQueue, handsOutEachCaseOnce)
{
    CaseQueue queue{2, [](Tarn::CaseResult) {}};
    EXPECT_EQ(queue.next(), 0u);
    EXPECT_EQ(queue.next(), 1u);
    EXPECT_EQ(queue.next(), std::nullopt);
}

TEST(CaseQueue, leavesOutCasesThatAreDone)
{
    CaseQueue queue{5, [](Tarn::CaseResult) {}, [](std::uint64_t number) { return number % 2 == 0; }};
    EXPECT_EQ(queue.next(), 1u);
    EXPECT_EQ(queue.next(), 3u);
    EXPECT_EQ(queue.next(), std::nullopt);
}

TEST(CaseQueue, passesResultsOn)
{
    std::vector<std::uint64_t> numbers;
    CaseQueue queue{5, [&](Tarn::CaseResult result) { numbers.push_back(result.number); }};
    queue.deliver({.number = 3});
    queue.deliver({.number = 1});
    EXPECT_THAT(numbers, ElementsAre(3, 1));
}

TEST(CaseQueue, handsOutNothingAfterItsEnd)
{
    CaseQueue queue{5, [](Tarn::CaseResult) {}};
    queue.next();
    queue.end();
    EXPECT_EQ(queue.next(), std::nullopt);
}
