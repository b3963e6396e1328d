#include <tarn/network/SessionCore.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace SessionCoreTest {

using Tarn::Detail::SessionCore;

namespace {

class SessionCoreTest : public testing::Test {
protected:
    SessionCoreTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }
    ~SessionCoreTest() override { ::unsetenv("TARN_LIBRARIES"); }
};

} // namespace

TEST_F(SessionCoreTest, countsTheStepsInEachPool)
{
    SessionCore core{"net.toml", ".", networkHead + clockInQuarters, {}};
    const Orla::VNetwork::Scope scope{core.objects()};
    const auto one = Loam::makeStrong<Orla::ValuePool>("one");
    const auto two = Loam::makeStrong<Orla::ValuePool>("two");
    EXPECT_TRUE((*core.findInput("clock.time"))->set(two, std::string("0[0,1]@0.1")));
    EXPECT_EQ(*core.stepCount(core.timeProvider(), one), 5u);
    EXPECT_EQ(*core.stepCount(core.timeProvider(), two), 11u);
    EXPECT_TRUE((*core.findInput("clock.time"))->set(two, std::string("0[0,inf]@1")));
    EXPECT_EQ(core.stepCount(core.timeProvider(), two).reason(),
              "object \"clock\", input \"time\": the time 0[0,inf]@1 has inf steps, "
              "expected 1 or more, 1000000000000000 at most");
}

TEST_F(SessionCoreTest, limitsTheSteps)
{
    SessionCore core{"net.toml", ".", networkHead + clockInQuarters, {.stepLimit = 3}};
    const Orla::VNetwork::Scope scope{core.objects()};
    EXPECT_EQ(*core.stepCount(core.timeProvider(), Loam::makeStrong<Orla::ValuePool>()), 3u);
}

TEST_F(SessionCoreTest, findsObjectsThatTheFileDoesNotName)
{
    SessionCore core{"net.toml", ".", networkHead + object("reader", "TimeReader"), {}};
    const std::string clock = core.timeProvider().name();
    EXPECT_NE(clock, "reader");
    EXPECT_TRUE(core.findInput(clock + ".time"));
    EXPECT_TRUE(core.findOutput(clock + ".GlobalTime.time"));
    EXPECT_FALSE(core.findOutput("clok.GlobalTime"));
}

} // namespace SessionCoreTest
