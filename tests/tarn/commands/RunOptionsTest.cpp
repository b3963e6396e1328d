#include <tarn/commands/RunOptions.hpp>

#include <tarn/run/TaskExecutor.hpp>

#include <gmock/gmock.h>

#include <optional>
#include <string>

namespace RunOptionsTest {

using Tarn::Arguments;
using Tarn::UsageError;

namespace {

Arguments withOption(const std::string& option, const std::string& text)
{
    return {.names = {}, .options = {{option, {text}}}};
}

} // namespace

TEST(RunOptions, readWholeNumbers)
{
    EXPECT_EQ(Tarn::readNumber({}, "steps", 1), std::nullopt);
    EXPECT_EQ(Tarn::readNumber(withOption("steps", "12"), "steps", 1), 12u);
    for (const char* text : {"", "0", "-1", "1.5", "1x", " 1", "18446744073709551616"})
        EXPECT_THROW(Tarn::readNumber(withOption("steps", text), "steps", 1), UsageError) << text;
}

TEST(RunOptions, readTheNumberOfThreads)
{
    EXPECT_EQ(Tarn::readJobs({}), std::nullopt);
    EXPECT_EQ(Tarn::readJobs(withOption("jobs", "3")), 3u);
    EXPECT_EQ(Tarn::readJobs(withOption("jobs", "0")), Tarn::TaskExecutor::cores());
    EXPECT_THROW(Tarn::readJobs(withOption("jobs", "10001")), UsageError);
}

TEST(RunOptions, placeResultsInTheWorkingDirectory)
{
    EXPECT_EQ(Tarn::placeOf({}, "table", "net.toml"), "");
    EXPECT_EQ(Tarn::placeOf(withOption("table", "-"), "table", "net.toml"), "-");
    EXPECT_EQ(Tarn::placeOf(withOption("table", "/tmp/t.csv"), "table", "net.toml"), "/tmp/t.csv");
    EXPECT_TRUE(Tarn::placeOf(withOption("table", "t.csv"), "table", "net.toml").ends_with("/t.csv"));
}

} // namespace RunOptionsTest
