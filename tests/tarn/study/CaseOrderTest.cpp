#include <tarn/study/CaseOrder.hpp>

#include <gmock/gmock.h>

#include <vector>

using testing::ElementsAre;

TEST(CaseOrder, passesResultsOnAsSoonAsAllBeforeHaveArrived)
{
    std::vector<std::uint64_t> numbers;
    Tarn::CaseOrder order{[&](const Tarn::CaseResult& result) { numbers.push_back(result.number); }};
    order.add({.number = 2});
    order.add({.number = 1});
    EXPECT_THAT(numbers, ElementsAre());
    order.add({.number = 0});
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2));
    order.add({.number = 3});
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2, 3));
}
