#include <gable/BoundingBall.hpp> // first: checks that the header is self-contained

#include <gtest/gtest.h>

namespace BoundingBallTest {

using namespace Gyre;

static_assert(BoundingBall({1, 2, 3}, 4).squaredRadius() == 16);
static_assert(BoundingBall() == BoundingBall({0, 0, 0}, 0));
static_assert(BoundingBall({0, 0, 0}, 1).contains({1, 0, 0}), "the surface is inside");
static_assert(!BoundingBall({0, 0, 0}, 1).contains({1, 0.001, 0}));

TEST(BoundingBall, keepsTheSquareOfItsRadius)
{
    BoundingBall ball;
    ball.setRadius(-3);
    EXPECT_EQ(ball.radius(), -3.0);
    EXPECT_EQ(ball.squaredRadius(), 9.0);
    ball.setCenter({1, 1, 1});
    EXPECT_EQ(ball.center(), PhysicalSpace::point(1, 1, 1));
    EXPECT_EQ(ball.squaredRadius(), 9.0);
}

} // namespace BoundingBallTest
