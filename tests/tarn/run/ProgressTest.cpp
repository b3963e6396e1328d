#include <tarn/run/Progress.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ProgressTest {

using Tarn::Progress;
using testing::HasSubstr;
using testing::Not;

TEST(Progress, showsABarTheStepsTheRateAndTheTimeLeft)
{
    EXPECT_EQ(Progress::line(25, 100, 5, 79), "[##########..............................] 25/100, 5.0/s, 15s left");
    EXPECT_EQ(Progress::line(100, 100, 5, 79), "[########################################] 100/100, 20/s, 0s left");
}

TEST(Progress, omitsUnknownValues)
{
    EXPECT_EQ(Progress::line(50, 100, 5, 79, 3),
              "[####################....................] 50/100, 10/s, 5s left, 3 failures");
    EXPECT_EQ(Progress::line(0, 8, 0, 79), "[........................................] 0/8");
    EXPECT_EQ(Progress::line(0, 0, 0, 30), "[########################] 0/0");
}

TEST(Progress, writesLongTimesInMinutesAndHours)
{
    EXPECT_THAT(Progress::line(1, 201, 1, 79), HasSubstr("3m 20s left"));
    EXPECT_THAT(Progress::line(1, 7501, 1, 79), HasSubstr("2h 5m left"));
    EXPECT_THAT(Progress::line(1, 1'000'000'000'000, 1, 79), HasSubstr("long left"));
}

TEST(Progress, fitsNarrowTerminals)
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

namespace {

// Runs a network on a terminal with this many columns. Returns the output of the program.
std::string shownOnATerminal(const std::string& network, unsigned short columns)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", networkHead + network);
    winsize size{};
    size.ws_col = columns;
    size.ws_row = 24;
    int terminal = -1;
    const pid_t process = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (process == 0) {
        ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1);
        ::execl(TARN_PROGRAM, TARN_PROGRAM, "run", file.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    std::string shown;
    char buffer[4096];
    // When the other end of a terminal is closed, read() reports an error, not end of file.
    for (ssize_t got = 0; (got = ::read(terminal, buffer, sizeof buffer)) > 0;)
        shown.append(buffer, static_cast<std::size_t>(got));
    ::close(terminal);
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << shown;
    return shown;
}

// Long enough for the line to be drawn several times.
const std::string longRun =
    object("clock", "GlobalTime", "set = { time = '0[0,1]@0.000002' }\n") + object("reader", "TimeReader");

} // namespace

TEST(Progress, isShownOnATerminalAndErasedAtTheEnd)
{
    const std::string shown = shownOnATerminal(longRun, 100);
    EXPECT_THAT(shown, testing::ContainsRegex("\\[[#.]+\\] [0-9]+/500001, [0-9]+/s, [0-9]+s left"));
    const std::string before = shown.substr(0, shown.find("2 objects, 500001 steps"));
    EXPECT_LT(before.rfind("/s, "), before.rfind("\r\x1b[K")) << "the line is erased before the message";
}

TEST(Progress, fitsATerminalOfTwentyColumns)
{
    const std::string shown = shownOnATerminal(longRun, 20);
    const std::string erase = "\r\x1b[K";
    std::size_t lines = 0;
    for (auto at = shown.find(erase); at != std::string::npos; at = shown.find(erase, at + 1)) {
        const auto start = at + erase.size();
        const std::string line = shown.substr(start, shown.find_first_of("\r\n", start) - start);
        if (line.find("/500001") != std::string::npos) {
            EXPECT_LT(line.size(), 20u) << line;
            ++lines;
        }
    }
    EXPECT_GT(lines, 0u);
}

TEST(Progress, isNotShownWithoutATerminal)
{
    const ProcessResult result = evaluate(clockInQuarters + object("a", "TimeReader"));
    EXPECT_THAT(result.err, Not(HasSubstr("\x1b")));
    EXPECT_THAT(result.err, Not(HasSubstr("5/5")));
}

} // namespace ProgressTest
