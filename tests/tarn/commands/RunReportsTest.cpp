#include <tarn/commands/RunReports.hpp>

#include <tarn/network/Session.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

namespace RunReportsTest {

using namespace Tarn;

namespace {

class RunReportsTest : public testing::Test {
protected:
    RunReportsTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }
    ~RunReportsTest() override { ::unsetenv("TARN_LIBRARIES"); }
};

} // namespace

TEST_F(RunReportsTest, beginWithTheWorkAndEndWithTheStatuses)
{
    const Session session = Session::read(networkHead + clockInQuarters + object("f", "Failing"), "net.toml", ".");
    Context context{session};
    testing::internal::CaptureStderr();
    while (context.evaluateStep()) {}
    EXPECT_EQ(workOf(session, context.summary()), "2 objects, 5 steps");
    testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();
    EXPECT_EQ(reportEvaluation(session, context, context.summary(), "all done"), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "net.toml: all done, 4 failures, the first in step 1\n"
                                                      "  f: error: out of paint\n");
}

TEST_F(RunReportsTest, countTheObjectsAndStepsOfSuccessfulRuns)
{
    const Session session = Session::read(networkHead + object("a", "Adder"), "net.toml", ".");
    Context context{session};
    EXPECT_TRUE(context.evaluateStep());
    const std::string work = workOf(session, context.summary());
    testing::internal::CaptureStderr();
    EXPECT_EQ(reportEvaluation(session, context, context.summary(), work), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "net.toml: 1 object, 1 step\n");
}

} // namespace RunReportsTest
