// The whole program: its help and its exit status.

#include <tarn/commands/ExitStatus.hpp>

#include "support/Sanitizers.hpp"
#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <string>

namespace MainTest {

using testing::HasSubstr;

static_assert(Tarn::Fine == 0 && Tarn::ObjectFailed == 1 && Tarn::NotUnderstood == 2 && Tarn::WrongUsage == 3
              && Tarn::FileFailed == 4);

TEST(Main, printsHelpAndVersionToStandardOutput)
{
    const ProcessResult help = runTarn({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr("tarn run NETWORK.toml"));
    EXPECT_EQ(help.err, "");
    EXPECT_THAT(runTarn({"run", "--help"}).out, testing::StartsWith("Usage: tarn run NETWORK.toml [OPTION]...\n"));
    const ProcessResult version = runTarn({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.out, testing::MatchesRegex("tarn [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Main, exitsWithStatus3OnWrongUsage)
{
    const ProcessResult result = runTarn({"run"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(
        result.err,
        testing::MatchesRegex("tarn: no NETWORK.toml, expected tarn run NETWORK.toml (.|\n)*tarn: see tarn --help\n"));
}

TEST(Main, exitsWithStatus4WhenTheNetworkCannotBeRead)
{
    const TestFolder folder;
    for (const std::string command : {"run", "check"}) {
        SCOPED_TRACE(command);
        const ProcessResult missing = runTarn({command, folder.file("none.toml")});
        EXPECT_EQ(missing.status, 4);
        EXPECT_EQ(missing.err, "tarn: cannot read " + folder.file("none.toml") + ": No such file or directory\n");
        const ProcessResult directory = runTarn({command, folder.path()});
        EXPECT_EQ(directory.status, 4);
        EXPECT_EQ(directory.err, "tarn: cannot read " + folder.path() + ": Is a directory\n");
    }
}

#ifndef SANITIZED
TEST(Main, exitsWithStatus1WhenTheMemoryIsExhausted)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", std::string(100 << 20, '#'));
    const ProcessResult result = runTarn({"check", file}, {{}, "ulimit -v 150000"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "tarn: out of memory\n");
}
#endif

} // namespace MainTest
