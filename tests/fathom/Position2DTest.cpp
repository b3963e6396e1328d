#include <fathom/Position2D.hpp> // first: the header must be self-contained

#include <gtest/gtest.h>

namespace Position2DTest {

using namespace Orla;

using Pair = Gyre::FixedArray<double, 2>;

TEST(Position2D, isWrittenLikeASize)
{
    EXPECT_EQ(VValueTrait<Pair>::Text({{640, 480}}), "640x480");
    EXPECT_EQ(VValueTrait<Pair>::Text({{-0.5, 1e100}}), "-0.5x1e+100");
}

TEST(Position2D, isNeverReadFromText)
{
    Pair pair{{1, 2}};
    for (const char* text : {"640x480", "", "1", "{1,2}"}) {
        EXPECT_FALSE(VValueTrait<Pair>::setValueFromText(pair, text));
        EXPECT_FALSE(VInputValueTrait<Pair>::setValueFromText(pair, text));
    }
    EXPECT_EQ(pair, (Pair{{1, 2}}));
}

TEST(Position2D, startsAtZeroAsAnInput)
{
    Pair pair{{1, 2}};
    VInputValueTrait<Pair>::init(pair);
    EXPECT_EQ(pair, (Pair{{0, 0}}));
}

} // namespace Position2DTest
