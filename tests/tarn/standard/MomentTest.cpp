#include <tarn/standard/Moment.hpp>

#include <trellis/VObject.hpp>

#include "tarn/LoadedLibraries.hpp"

#include <fathom/VTime.hpp>

#include <trellis/VScheduler.hpp>

namespace MomentTest {

using Orla::StrongPtr;

namespace {

class MomentTest : public LoadedLibraries {
protected:
    bool reads(const std::string& text) { return clock->findSlot("from")->setInitialText(text); }

    // Returns the begin of an interval of length 0.
    double secondsOf(const std::string& text)
    {
        EXPECT_TRUE(reads(text)) << text;
        EXPECT_TRUE(clock->findSlot("to")->setInitialText(text));
        const auto pool = Loam::makeStrong<Orla::ValuePool>();
        Orla::VScheduler::scheduleAll(pool);
        EXPECT_EQ(Orla::VScheduler::run(pool).failures, 0u) << text;
        return clock->findOutput("GlobalTime")->get<Orla::VTime>(pool)->range.begin;
    }

    std::string written() const { return clock->findSlot("from")->ownParameter()->DefaultValue()->Text(); }

    const StrongPtr<Orla::VObject> clock = Orla::VObject::createObject("GlobalTime", "clock");
};

} // namespace

// The seconds were computed with Python's datetime.
TEST_F(MomentTest, readsInstantsAsSecondsSince1970AndWritesThemInUtc)
{
    const struct {
        const char* text;
        double seconds;
        const char* written;
    } cases[] = {
        {"1970-01-01", 0, "1970-01-01T00:00:00Z"},
        {"2018-01-31", 1517356800, "2018-01-31T00:00:00Z"},
        {"2024-02-29", 1709164800, "2024-02-29T00:00:00Z"},
        {"2000-02-29T12:00Z", 951825600, "2000-02-29T12:00:00Z"},
        {"1969-12-31T23:59:59Z", -1, "1969-12-31T23:59:59Z"},
        {"1900-03-01", -2203891200, "1900-03-01T00:00:00Z"},
        {"0001-01-01", -62135596800, "0001-01-01T00:00:00Z"},
        {"9999-12-31T23:59:59Z", 253402300799, "9999-12-31T23:59:59Z"},
        {"2026-03-29T02:30:00+01:00", 1774747800, "2026-03-29T01:30:00Z"},
        {"2026-01-01T00:00:00-05:30", 1767245400, "2026-01-01T05:30:00Z"},
        {" 2026-01-01T05:30 ", 1767245400, "2026-01-01T05:30:00Z"},
        {"1969-12-31T23:59:59.75Z", -0.25, "1969-12-31T23:59:59.75Z"},
        {"2026-11-23T02:41:44.123456Z", 1795401704.123456, "2026-11-23T02:41:44.123456Z"},
        {"1600-12-31T00:00:00.1Z", -11644559999.9, "1600-12-31T00:00:00.1Z"},
    };
    for (const auto& [text, seconds, form] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(secondsOf(text), seconds);
        EXPECT_EQ(written(), form);
        EXPECT_EQ(secondsOf(form), seconds);
    }
}

TEST_F(MomentTest, readsNumbersInFourUnitsAndKeepsTheUnit)
{
    const struct {
        const char* text;
        double seconds;
        const char* written;
    } cases[] = {
        {"90", 90, "90"},       {" -2.5 s", -2.5, "-2.5 s"}, {"2 min", 120, "2 min"}, {"1.5h", 5400, "1.5 h"},
        {"1 d ", 86400, "1 d"}, {"1e3", 1000, "1000"},       {"0", 0, "0"},
    };
    for (const auto& [text, seconds, form] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(secondsOf(text), seconds);
        EXPECT_EQ(written(), form);
        EXPECT_EQ(secondsOf(form), seconds);
    }
}

TEST_F(MomentTest, refusesWhatHasNoOneMeaning)
{
    for (const char* text : {"1 month",
                             "1 m",
                             "1 D",
                             "s",
                             "inf",
                             "nan",
                             "1e400",
                             "1e305 d",
                             "0x1d",
                             "2026-1-1",
                             "2026-01",
                             "2026-02-29",
                             "1900-02-29",
                             "2026-13-01",
                             "2026-00-01",
                             "2026-01-32",
                             "2026-01-00",
                             "26-01-01",
                             "02026-01-01",
                             "2026-01-01Z",
                             "2026-01-01 00:00",
                             "2026-01-01t00:00",
                             "2026-01-01T",
                             "2026-01-01T06",
                             "2026-01-01T24:00",
                             "2026-01-01T23:60",
                             "2026-12-31T23:59:60Z",
                             "2026-01-01T00:00.5Z",
                             "2026-01-01T00:00:00.Z",
                             "2026-01-01T00:00:00.1234567891Z",
                             "2026-01-01T00:00:00,5Z",
                             "2026-01-01T00:00z",
                             "2026-01-01T00:00+1:00",
                             "2026-01-01T00:00+0100",
                             "2026-01-01T00:00+01",
                             "2026-01-01T00:00+24:00",
                             "2026-01-01T00:00ZZ",
                             "0000-01-01T00:00+00:01",
                             "9999-12-31T23:59-00:01",
                             "31.01.2026",
                             "01/31/2026",
                             "P1D",
                             "now"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(reads("7 d"));
        EXPECT_FALSE(reads(text));
        EXPECT_EQ(written(), "7 d");
    }
}

TEST_F(MomentTest, isNothingIfTheTextIsBlank)
{
    EXPECT_TRUE(reads("7 d"));
    EXPECT_TRUE(reads(" "));
    EXPECT_EQ(written(), "");
}

} // namespace MomentTest
