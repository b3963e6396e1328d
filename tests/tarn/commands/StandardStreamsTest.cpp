#include <tarn/commands/StandardStreams.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdlib>
#include <string>
#include <type_traits>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/types.h>
#include <unistd.h>

namespace StandardStreamsTest {

using testing::HasSubstr;

static_assert(!std::is_copy_constructible_v<Tarn::StandardStreams>);

namespace {

const std::string network = "format = 1\nlibraries = ['testobjects']\n[[object]]\nname = 'talker'\ntype = 'Talker'\n"
                            "[[object]]\nname = 'echo'\ntype = 'Echo'\nset = { text = 'result' }\n"
                            "[[column]]\ntitle = 'text'\nvalue = 'echo.out'\n";

// Reads at least \p length bytes. The kernel passes on what a terminal shows a while after the program has written it;
// after 30 seconds, the text so far is returned.
std::string readFrom(int terminal, std::size_t length)
{
    std::string text;
    pollfd input{terminal, POLLIN, 0};
    while (text.size() < length && ::poll(&input, 1, 30'000) == 1) {
        char bytes[100];
        const ssize_t count = ::read(terminal, bytes, sizeof bytes);
        if (count <= 0)
            break;
        text.append(bytes, static_cast<std::size_t>(count));
    }
    return text;
}

} // namespace

TEST(StandardStreams, reserveStandardOutputForResults)
{
    const TestFolder folder;
    const ProcessResult result = runTarn({"run", folder.write("net.toml", network), "--table=-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,text\n0,result\n");
    for (const char* text :
         {"talker: puts in the constructor\n", "talker: printf\n", "talker: cout\n", "talker: write\n"})
        EXPECT_THAT(result.err, HasSubstr(text));
}

TEST(StandardStreams, leaveStandardOutputEmptyIfNoResultIsRequested)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    EXPECT_EQ(runTarn({"run", file}).out, "");
    EXPECT_EQ(runTarn({"check", file}).out, "");
    EXPECT_EQ(runTarn({"run", folder.file("none")}).out, "");
    EXPECT_EQ(runTarn({"nonsense"}).out, "");
}

TEST(StandardStreams, showATableWithoutControlCharactersOnATerminal)
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    const std::string name = ::ptsname(terminal);
    const int other = ::open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC); // keeps the output until it is read

    const TestFolder folder;
    const std::string file = folder.write("net.toml", "format = 1\nlibraries = ['testobjects']\n[[object]]\n"
                                                      "name = 'echo'\ntype = 'Echo'\nset.text = \"\\u001b[31m\"\n"
                                                      "[[column]]\ntitle = 'text'\nvalue = 'echo.out'\n");
    EXPECT_EQ(runTarn({"run", file, "--table=-"}, {{}, "exec >" + name}).status, 0);
    const std::string expected = "step,text\r\n0,\\x1b[31m\r\n";
    EXPECT_EQ(readFrom(terminal, expected.size()), expected);
    ::close(other);
    ::close(terminal);
    EXPECT_EQ(runTarn({"run", file, "--table=-"}).out, "step,text\n0,\x1b[31m\n");
}

TEST(StandardStreams, mayBeClosed)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    const std::string table = folder.file("table.csv");
    EXPECT_EQ(runTarn({"run", file, "--table=" + table}, {{}, "exec <&- >&- 2>&-"}).status, 0);
    // With all three closed, the table could get the descriptor of a standard stream.
    EXPECT_EQ(contentOf(table), "step,text\n0,result\n");

    const ProcessResult result = runTarn({"run", file, "--table=-"}, {{}, "exec >&-"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr("tarn: cannot write standard output: it is closed\n"));
}

TEST(StandardStreams, reportAnErrorWhenFull)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"run", file, "--table=-"}, {"types"}, {"--help"}, {"--version"}}) {
        SCOPED_TRACE(arguments[0]);
        const ProcessResult result = runTarn(arguments, {{}, "exec >/dev/full"});
        EXPECT_EQ(result.status, 4);
        EXPECT_THAT(result.err, HasSubstr("tarn: cannot write standard output: No space left on device\n"));
    }
}

TEST(StandardStreams, reportAnErrorWhenTheReaderIsClosed)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    const std::string pipe = folder.file("pipe");
    // A pipe whose reader has closed it.
    const std::string shell = "mkfifo " + pipe + "; exec 3<>" + pipe + " >" + pipe + " 3<&-";
    const ProcessResult result = runTarn({"run", file, "--table=-"}, {{}, shell});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr("tarn: cannot write standard output: Broken pipe\n"));
}

} // namespace StandardStreamsTest
