#include <tarn/standard/TimeStep.hpp>

#include <fathom/VTime.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include "tarn/LoadedLibraries.hpp"

namespace TimeStepTest {

using Orla::StrongPtr;

namespace {

class TimeStepTest : public LoadedLibraries {
protected:
    bool reads(const std::string& text) { return clock->findSlot("step")->setInitialText(text); }

    double secondsOf(const std::string& text)
    {
        EXPECT_TRUE(reads(text)) << text;
        EXPECT_TRUE(clock->findSlot("from")->setInitialText("0"));
        EXPECT_TRUE(clock->findSlot("to")->setInitialText("1000 d"));
        const auto pool = Loam::makeStrong<Orla::ValuePool>();
        Orla::VScheduler::scheduleAll(pool);
        EXPECT_EQ(Orla::VScheduler::run(pool).failures, 0u) << text;
        return clock->findOutput("GlobalTime")->get<Orla::VTime>(pool)->dt;
    }

    std::string written() const { return clock->findSlot("step")->ownParameter()->DefaultValue()->Text(); }

    const StrongPtr<Orla::VObject> clock = Orla::VObject::createObject("GlobalTime", "clock");
};

} // namespace

TEST_F(TimeStepTest, readsNumbersWithUnitsAndDurations)
{
    const struct {
        const char* text;
        double seconds;
        const char* written;
    } cases[] = {
        {"3600", 3600, "3600"},
        {"90 s", 90, "90 s"},
        {" 0.25s ", 0.25, "0.25 s"},
        {"30 min", 1800, "30 min"},
        {"1.5 d", 129600, "1.5 d"},
        {"P1D", 86400, "1 d"},
        {"P2W", 1209600, "14 d"},
        {"PT1H", 3600, "1 h"},
        {"PT90M", 5400, "90 min"},
        {"P1DT12H", 129600, "36 h"},
        {"P1DT2H3M4.5S", 93784.5, "93784.5 s"},
        {" PT0.1S ", 0.1, "0.1 s"},
        {"PT1.5H", 5400, "90 min"},
    };
    for (const auto& [text, seconds, form] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(secondsOf(text), seconds);
        EXPECT_EQ(written(), form);
        EXPECT_EQ(secondsOf(form), seconds);
    }
}

TEST_F(TimeStepTest, refusesLengthsThatVaryOrAreNotPositive)
{
    for (const char* text :
         {"0",       "-1",   "-1 d",   "0 s",    "P0D",      "PT0S",  "nan",  "inf",   "1e400", "1e305 d",
          "1 month", "1 a",  "P1M",    "P1Y",    "P1Y2D",    "P1W2D", "P",    "PT",    "P1DT",  "P1",
          "P1H",     "PT1D", "PT1M1H", "PT1H1H", "P1.5DT1H", "P.5D",  "P1.D", "P1,5D", "P-1D",  "-P1D",
          "P1D2",    "p1d",  "P 1D",   "1D",     "P1.2.3D",  "0x1d",  "d"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(reads("7 d"));
        EXPECT_FALSE(reads(text));
        EXPECT_EQ(written(), "7 d");
    }
}

TEST_F(TimeStepTest, isNothingIfTheTextIsBlank)
{
    EXPECT_TRUE(reads("7 d"));
    EXPECT_TRUE(reads(""));
    EXPECT_EQ(written(), "");
}

} // namespace TimeStepTest
