#include <gable/MultiRange.hpp> // first: checks that the header is self-contained

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace MultiRangeTest {

using Gyre::MultiRange;

TEST(MultiRange, readsNumbersUntilParsingFails)
{
    const struct {
        std::string text;
        std::vector<double> bounds;
    } cases[] = {
        {"[0.000000;1.000000]", {0, 1}},
        {"[1;2;3;4]", {1, 2, 3, 4}},
        {"1,2;3", {1, 2, 3}},
        {"  [ 1 ; 2 ]", {1, 2}},
        {"5", {5}},
        {"1;", {1}},
        {"1;x;3", {1}},
        {"1 2", {1}},
        {"", {}},
        {"[", {}},
        {"[]", {}},
        {"x", {}},
        {";1", {}},
        {"[[1]", {}},
        {std::string("1;\0;2", 5), {1}},
        {"1e400", {std::numeric_limits<double>::infinity()}},
    };
    for (const auto& [text, bounds] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(MultiRange(text), MultiRange(bounds));
    }
}

TEST(MultiRange, isASequenceOfDoubles)
{
    const MultiRange range(std::vector<double>{1, 2, 3});
    EXPECT_EQ(range.size(), 3u);
    EXPECT_EQ(std::vector<double>(range.begin(), range.end()), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(range[1], 2.0);
    EXPECT_TRUE(MultiRange().empty());
    EXPECT_EQ(MultiRange().begin(), MultiRange().end());
}

TEST(MultiRange, takesTheBoundsInBraces)
{
    const MultiRange range = {0, 1, -2.5, 3};
    EXPECT_EQ(range, MultiRange(std::vector<double>{0, 1, -2.5, 3}));
    EXPECT_EQ(MultiRange{7}.size(), 1u) << "a bound, not a number of bounds";
    EXPECT_TRUE(MultiRange{}.empty());
}

} // namespace MultiRangeTest
