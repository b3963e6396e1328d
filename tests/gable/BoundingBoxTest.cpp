#include <gable/BoundingBox.hpp> // first: checks that the header is self-contained

#include <gtest/gtest.h>

namespace BoundingBoxTest {

using namespace Gyre;

TEST(BoundingBox, enclosesItselfInABall)
{
    // Half the diagonal of 2 x 3 x 6 is 3.5.
    BoundingBox box({1, 1, 1}, {3, 4, 7});
    EXPECT_EQ(box.ball(), BoundingBall({2, 2.5, 4}, 3.5));
    EXPECT_FALSE(box.isGrown());

    box.setCorners({0, 0, 0}, {4, 6, 12});
    EXPECT_EQ(box.ball().radius(), 3.5) << "the ball is not updated yet";
    box.updateBall();
    EXPECT_EQ(box.ball(), BoundingBall({2, 3, 6}, 7));
}

TEST(BoundingBox, growsToContainPoints)
{
    BoundingBox box({0, 0, 0}, {0, 0, 0});
    box.grow({-1, 2, 0});
    EXPECT_EQ(box.minimum(), PhysicalSpace::point(-1, 0, 0));
    EXPECT_EQ(box.maximum(), PhysicalSpace::point(0, 2, 0));
    EXPECT_TRUE(box.isGrown());
    EXPECT_EQ(box.ball().center(), PhysicalSpace::point(-0.5, 1, 0));
    box.setCorners({0, 0, 0}, {1, 1, 1});
    EXPECT_FALSE(box.isGrown());
}

TEST(BoundingBox, comparesOnlyItsCornersAndKeepsInvertedOnes)
{
    const BoundingBox a({1, 1, 1}, {0, 0, 0});
    BoundingBox b({0, 0, 0}, {1, 1, 1});
    EXPECT_FALSE(a == b);
    b.setCorners(a.minimum(), a.maximum());
    EXPECT_TRUE(a == b) << "the ball is not compared";
    EXPECT_EQ(a.minimum(), PhysicalSpace::point(1, 1, 1));
}

TEST(BoundingBox, printsItsCorners)
{
    testing::internal::CaptureStdout();
    BoundingBox({0, 1, 2}, {3, 4, 5.5}).speak("name");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "name: BBox from (0, 1, 2) to (3, 4, 5.5)\n");
}

} // namespace BoundingBoxTest
