#include <tarn/study/CaseQueue.hpp>

#include <gmock/gmock.h>

#include <vector>

using Tarn::CaseQueue;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CaseQueue, handsOutEachCaseOnce)
{
    CaseQueue queue{6, [](const Tarn::CaseResult&) {}};
    EXPECT_THAT(queue.next(1), ElementsAre(0));
    EXPECT_THAT(queue.next(3), ElementsAre(1, 2, 3));
    EXPECT_THAT(queue.next(3), ElementsAre(4, 5));
    EXPECT_THAT(queue.next(3), IsEmpty());
}

TEST(CaseQueue, leavesOutCasesThatAreDone)
{
    CaseQueue queue{5, [](const Tarn::CaseResult&) {}, [](std::uint64_t number) { return number % 2 == 0; }};
    EXPECT_THAT(queue.next(9), ElementsAre(1, 3));
    EXPECT_THAT(queue.next(9), IsEmpty());
}

TEST(CaseQueue, passesResultsOn)
{
    std::vector<std::uint64_t> numbers;
    CaseQueue queue{5, [&](const Tarn::CaseResult& result) { numbers.push_back(result.number); }};
    queue.deliver({{.number = 3}, {.number = 1}});
    EXPECT_THAT(numbers, ElementsAre(3, 1));
}

TEST(CaseQueue, handsOutNothingAfterItsEnd)
{
    CaseQueue queue{5, [](const Tarn::CaseResult&) {}};
    queue.next(1);
    queue.end();
    EXPECT_THAT(queue.next(1), IsEmpty());
}
