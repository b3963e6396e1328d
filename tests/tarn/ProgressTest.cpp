#include <tarn/Progress.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

using Tarn::Progress;
using testing::HasSubstr;
using testing::Not;

TEST(Progress, showsABarTheStepsTheRateAndTheTimeLeft)
{
    EXPECT_EQ(Progress::line(25, 100, 5, 79),
              "[##########..............................] 25/100, 5.0/s, 15s left");
    EXPECT_EQ(Progress::line(100, 100, 5, 79),
              "[########################################] 100/100, 20/s, 0s left");
}

TEST(Progress, leavesOutWhatIsNotKnownYet)
{
    EXPECT_EQ(Progress::line(0, 8, 0, 79), "[........................................] 0/8");
    EXPECT_EQ(Progress::line(0, 0, 0, 30), "[########################] 0/0");
}

TEST(Progress, writesLongTimesInMinutesAndHours)
{
    EXPECT_THAT(Progress::line(1, 201, 1, 79), HasSubstr("3m 20s left"));
    EXPECT_THAT(Progress::line(1, 7501, 1, 79), HasSubstr("2h 5m left"));
    EXPECT_THAT(Progress::line(1, 1'000'000'000'000, 1, 79), HasSubstr("long left"));
}

TEST(Progress, fitsIntoNarrowTerminals)
{
    EXPECT_EQ(Progress::line(123, 4567, 61.5, 24), "[......] 123/4567, 2.0/s");
    EXPECT_EQ(Progress::line(123, 4567, 61.5, 19), "123/4567, 2.0/s");
    EXPECT_EQ(Progress::line(123, 4567, 61.5, 10), "123/4567");
    for (std::size_t width = 0; width <= 80; ++width) {
        const std::string line = Progress::line(123, 4567, 61.5, width);
        EXPECT_LE(line.size(), width);
        EXPECT_THAT(line, HasSubstr(std::string("123/4567").substr(0, width)));
    }
}

TEST(Progress, isNotShownWhereNobodyWatches)
{
    const ProcessResult result = evaluate(clockInQuarters + object("a", "TimeReader"));
    EXPECT_THAT(result.err, Not(HasSubstr("\x1b")));
    EXPECT_THAT(result.err, Not(HasSubstr("5/5")));
}
