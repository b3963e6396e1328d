#include <earth/FrameName.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace FrameNameTest {

using Earth::frameName;

TEST(FrameName, replacesTheLastSequenceOfHashesWithTheNumber)
{
    EXPECT_EQ(frameName("quakes-####.png", 7), "quakes-0007.png");
    EXPECT_EQ(frameName("#", 0), "0");
    EXPECT_EQ(frameName("a#1/b-##.svg", 12), "a#1/b-12.svg");
    EXPECT_EQ(frameName("##", 123), "123") << "a longer number is not truncated";
}

TEST(FrameName, refusesANameWithoutAHash)
{
    try {
        frameName("quakes.png", 1);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the name \"quakes.png\" has no \"#\" for the number of the step");
    }
}

TEST(FrameName, refusesInvalidStepNumbers)
{
    for (const double step : {-1.0, 0.5, 1e16, std::nan("")})
        EXPECT_THROW(frameName("#", step), std::runtime_error) << step;
}

} // namespace FrameNameTest
