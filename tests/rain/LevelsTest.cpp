#include <rain/Levels.hpp>

#include "earth/Evaluation.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace LevelsTest {

using Gyre::MultiRange;
using Rain::levelsOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string fault(const MultiRange& range)
{
    try {
        levelsOf(range);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no fault";
}

} // namespace

TEST(Levels, areTheBoundsOfAListOfRanges)
{
    EXPECT_THAT(levelsOf({-1, 0, 2.5}), ElementsAre(-1, 0, 2.5));
    EXPECT_THAT(levelsOf({7}), ElementsAre(7));
}

TEST(Levels, mustBeFiniteAndInIncreasingOrder)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(fault({}), "found 0 levels, expected from 1 to 100, such as [500;1000;2000]");
    EXPECT_EQ(fault({1, 2, 2}), "found the level 2 after 2, expected finite numbers in increasing order");
    EXPECT_EQ(fault({3, 1}), "found the level 1 after 3, expected finite numbers in increasing order");
    EXPECT_EQ(fault({-infinity, 1}), "found the level -inf, expected finite numbers in increasing order");
    EXPECT_EQ(fault({0, std::numeric_limits<double>::quiet_NaN()}),
              "found the level nan after 0, expected finite numbers in increasing order");
    std::vector<double> many(101);
    for (std::size_t i = 0; i < many.size(); ++i)
        many[i] = static_cast<double>(i);
    EXPECT_THAT(fault(MultiRange{many}), HasSubstr("found 101 levels"));
    many.pop_back();
    EXPECT_EQ(levelsOf(MultiRange{many}).size(), 100u);
}

TEST(Levels, areGivenToOtherObjectsIfTheyAreValid)
{
    Evaluation levels{"Levels"};
    levels.setText("levels", "[250;500.5;1000]");
    EXPECT_EQ(levels.run().failures, 0u);
    EXPECT_EQ(levels.value<MultiRange>("levels"), (MultiRange{250, 500.5, 1000}));
    const Warnings warnings;
    levels.setText("levels", "[250;100]");
    EXPECT_EQ(levels.run().failures, 1u);
    EXPECT_THAT(warnings.all(), ElementsAre(HasSubstr("found the level 100 after 250")));
    EXPECT_EQ(levels.value<MultiRange>("levels"), (MultiRange{250, 500.5, 1000}));
}

} // namespace LevelsTest
