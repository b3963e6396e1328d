#include <fathom/BoundingBall.hpp> // first: the header must be self-contained

#include <gtest/gtest.h>

namespace BoundingBallTest {

using namespace Orla;

using Gyre::BoundingBall;
using Trait = VValueTrait<BoundingBall>;

TEST(BoundingBall, isWrittenAsCenterAndRadius)
{
    EXPECT_EQ(Trait::Text(BoundingBall({1, 2, 3}, 4.5)), "{1,2,3}@4.5");
}

TEST(BoundingBall, readsItsCenterBeforeAndItsRadiusAfterTheAtSign)
{
    const struct {
        const char* text;
        BoundingBall ball;
    } cases[] = {
        {"{1,2,3}@4", BoundingBall({1, 2, 3}, 4)},
        {"{1,2,3}@x@4", BoundingBall({1, 2, 3}, 4)}, // center before the first, radius after the last
        {"{1,2,3}@{4,5,6}@7", BoundingBall({1, 2, 3}, 7)},
        {"5", BoundingBall({5, 5, 5}, 5)},
        {"{5}@-1", BoundingBall({5, 5, 5}, -1)},
    };
    for (const auto& [text, ball] : cases) {
        SCOPED_TRACE(text);
        BoundingBall read({9, 9, 9}, 9);
        EXPECT_TRUE(Trait::setValueFromText(read, text));
        EXPECT_EQ(read, ball);
        EXPECT_EQ(read.squaredRadius(), ball.radius() * ball.radius());
    }
}

TEST(BoundingBall, keepsItsValueIfTheTextHasNoRadius)
{
    for (const char* text : {"", "{1,2,3}@", "{1,2,3}@x", "{1,2,3}", "@"}) {
        SCOPED_TRACE(text);
        BoundingBall ball({9, 8, 7}, 3);
        EXPECT_FALSE(Trait::setValueFromText(ball, text));
        EXPECT_EQ(ball, BoundingBall({9, 8, 7}, 3));
    }
}

TEST(BoundingBall, takesTheNewRadiusEvenIfTheCenterIsRefused)
{
    BoundingBall ball({9, 8, 7}, 3);
    EXPECT_FALSE(Trait::setValueFromText(ball, "x@4"));
    EXPECT_EQ(ball, BoundingBall({9, 8, 7}, 4));
}

} // namespace BoundingBallTest
