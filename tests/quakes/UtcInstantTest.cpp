#include "earth/Evaluation.hpp"

#include <gtest/gtest.h>

namespace UtcInstantTest {

TEST(UtcInstant, interpretsTheTimeAsAFractionOfItsRange)
{
    Evaluation instant{"UtcInstant"};
    instant.setText("range", "1517356800:1518048000");
    const struct {
        const char* time;
        const char* utc;
    } cases[] = {
        {"0", "2018-01-31T00:00:00Z"},
        {"0.015625[0,1]@0.015625", "2018-01-31T03:00:00Z"},
        {"0.5", "2018-02-04T00:00:00Z"},
        {"1", "2018-02-08T00:00:00Z"},
        {"-1", "2018-01-23T00:00:00Z"},
        {"2", "2018-02-16T00:00:00Z"},
        {"nan", "no calendar date (nan s since 1970)"},
        {"-inf", "no calendar date (-inf s since 1970)"},
        {"0", "2018-01-31T00:00:00Z"},
    };
    for (const auto& [time, utc] : cases) {
        SCOPED_TRACE(time);
        instant.setText("time", time);
        EXPECT_EQ(instant.run().failures, 0u);
        EXPECT_EQ(instant.text("utc"), utc);
    }
}

TEST(UtcInstant, startsWithTheFirstSecondsOf1970)
{
    Evaluation instant{"UtcInstant"};
    instant.setText("time", "1");
    instant.run();
    EXPECT_EQ(instant.text("utc"), "1970-01-01T00:00:01Z");
}

TEST(UtcInstant, runsOnlyWhenTheTimeOrTheRangeChanges)
{
    Evaluation instant{"UtcInstant"};
    EXPECT_EQ(instant.run().updates, 1u);
    EXPECT_EQ(instant.run().updates, 0u);
    instant.setText("range", "10:20");
    instant.setText("time", "0.5");
    EXPECT_EQ(instant.run().updates, 1u);
    EXPECT_EQ(instant.text("utc"), "1970-01-01T00:00:15Z");
    EXPECT_EQ(instant.run().updates, 0u);
}

} // namespace UtcInstantTest
