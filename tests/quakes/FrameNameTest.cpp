#include <quakes/FrameName.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

using Quakes::frameName;

TEST(FrameName, putsTheNumberInPlaceOfTheLastRow)
{
    EXPECT_EQ(frameName("quakes-####.png", 7), "quakes-0007.png");
    EXPECT_EQ(frameName("#", 0), "0");
    EXPECT_EQ(frameName("a#1/b-##.svg", 12), "a#1/b-12.svg");
    EXPECT_EQ(frameName("##", 123), "123") << "a longer number has its room";
}

TEST(FrameName, refusesANameThatWouldBeTheSameForAllSteps)
{
    try {
        frameName("quakes.png", 1);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "the name \"quakes.png\" has no \"#\" for the number of the step");
    }
}

TEST(FrameName, refusesWhatIsNoNumberOfAStep)
{
    for (const double step : {-1.0, 0.5, 1e16, std::nan("")})
        EXPECT_THROW(frameName("#", step), std::runtime_error) << step;
}
