#include <tarn/commands/Watch.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace WatchTest {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

namespace fs = std::filesystem;

const std::string waits = ": waiting for changes\n";

std::string chainWith(const std::string& number)
{
    return object("a", "Adder", "set = { a = " + number + " }\n") + object("b", "Adder", "connect = { a = 'a.sum' }\n")
           + object("c", "Adder", "set = { a = 5 }\n") + column("sum", "b.sum");
}

// A watched network in a folder of its own, and the program that watches it.
class WatchCommand : public testing::Test {
protected:
    void start(const std::string& text, const std::vector<std::string>& options = {})
    {
        save(text);
        std::vector<std::string> arguments{"run", file, "--watch"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        process.emplace(arguments);
    }

    void startAndWait(const std::string& text, const std::vector<std::string>& options = {})
    {
        start(text, options);
        ASSERT_TRUE(process->waitForMessage(waits));
    }

    // Saves as editors do: writes another file and renames it.
    void save(const std::string& text) const { replace("net/net.toml", networkHead + text); }

    void replace(const std::string& name, const std::string& content) const
    {
        fs::rename(folder.write(name + "~", content), folder.file(name));
    }

    ProcessResult end(int signal = SIGINT)
    {
        process->send(signal);
        return process->wait();
    }

    TestFolder folder;
    const std::string file = folder.file("net/net.toml");
    const std::string table = folder.file("table.csv");
    std::optional<TarnProcess> process;
};

} // namespace

TEST_F(WatchCommand, evaluatesAgainWhenAnInputChanges)
{
    startAndWait(chainWith("1"), {"--table=" + table, "--print=a.sum"});
    EXPECT_EQ(contentOf(table), "step,sum\n0,1\n");
    save(chainWith("2"));
    ASSERT_TRUE(process->waitForMessage(": a.a changed; 2 of 3 objects ran (a, b) in "));
    const ProcessResult result = end();
    EXPECT_EQ(contentOf(table), "step,sum\n0,2\n");
    EXPECT_EQ(result.out, "a.sum: 1\na.sum: 2\n");
    EXPECT_EQ(result.status, 130);
    EXPECT_THAT(result.err, MatchesRegex(".*net.toml: 3 objects, 1 step\n.*net.toml: waiting for changes\n"
                                         ".* in (less than 1|[0-9]+) ms\ntarn: interrupted\n"));
}

TEST_F(WatchCommand, endsByASignalWhileItWaitsOrEvaluates)
{
    startAndWait(chainWith("1"));
    EXPECT_EQ(end(SIGTERM).status, 143);
    start(object("slow", "Slow"));
    ASSERT_TRUE(process->waitForMessage("slow object at work"));
    const ProcessResult result = end(SIGINT);
    EXPECT_EQ(result.status, 130);
    EXPECT_THAT(result.err, HasSubstr("tarn: interrupted in step 0\n"));
}

TEST_F(WatchCommand, writesTheWholeTableAgainForAllSteps)
{
    const auto text = [](const std::string& scale) {
        return clockInQuarters + object("time", "TimeReader")
               + object("total", "Total", "connect = { in = 'time.out' }\nset = { scale = " + scale + " }\n")
               + column("total", "total.out");
    };
    startAndWait(text("1"), {"--table=-"});
    save(text("2"));
    ASSERT_TRUE(process->waitForMessage(": total.scale changed; 3 of 3 objects ran (clock, time, total) in "));
    EXPECT_EQ(end().out, "step,total\n0,0\n1,0.25\n2,0.75\n3,1.5\n4,2.5\n"
                         "step,total\n0,0\n1,0.5\n2,1.5\n3,3\n4,5\n");
}

TEST_F(WatchCommand, evaluatesAgainWhenADataFileIsReplaced)
{
    folder.write("net/data/line.txt", "one\n");
    startAndWait(object("reader", "FileReader", "set = { file = 'data/line.txt' }\n") + object("a", "Adder")
                     + column("line", "reader.line"),
                 {"--table=" + table});
    replace("net/data/line.txt", "two\n");
    ASSERT_TRUE(process->waitForMessage(": data/line.txt changed; 1 of 2 objects ran (reader) in "));
    EXPECT_EQ(contentOf(table), "step,line\n0,two\n");
}

TEST_F(WatchCommand, waitsUntilABrokenNetworkIsRepaired)
{
    startAndWait(chainWith("1"), {"--table=" + table});
    save(chainWith("[1]"));
    ASSERT_TRUE(process->waitForMessage("net.toml: 1 fault; the last network without faults is kept\n"));
    EXPECT_EQ(contentOf(table), "step,sum\n0,1\n");
    fs::remove(file);
    ASSERT_TRUE(process->waitForMessage("tarn: cannot read " + file));
    save(chainWith("3"));
    ASSERT_TRUE(process->waitForMessage(": a.a changed; 2 of 3 objects ran (a, b) in "));
    EXPECT_EQ(contentOf(table), "step,sum\n0,3\n");
}

TEST_F(WatchCommand, waitsForTheRepairOfANetworkThatIsBrokenAtTheBeginning)
{
    startAndWait("[[object]]\n", {"--table=" + table});
    EXPECT_FALSE(fs::exists(table));
    save(chainWith("1"));
    ASSERT_TRUE(process->waitForMessage(": loaded again; 3 of 3 objects ran (a, b, c) in "));
    EXPECT_EQ(contentOf(table), "step,sum\n0,1\n");
}

TEST_F(WatchCommand, reportsFailuresOfEachEvaluation)
{
    folder.write("net/line.txt", "one\n");
    startAndWait(object("reader", "FileReader", "set = { file = 'line.txt' }\n") + column("line", "reader.line"),
                 {"--table=" + table});
    fs::remove(folder.file("net/line.txt"));
    ASSERT_TRUE(
        process->waitForMessage(" ms, 1 failure, the first in step 0\n  reader: error: cannot read line.txt\n"));
    EXPECT_EQ(contentOf(table), "step,line\n0,\n");
    EXPECT_EQ(end().status, 130);
}

TEST_F(WatchCommand, survivesTheRemovalOfTheFolder)
{
    folder.write("net/line.txt", "one\n");
    const std::string text =
        object("reader", "FileReader", "set = { file = 'line.txt' }\n") + column("line", "reader.line");
    startAndWait(text, {"--table=" + folder.file("net/table.csv")});
    fs::rename(folder.file("net"), folder.file("away"));
    ASSERT_TRUE(process->waitForMessage("tarn: cannot write " + folder.file("net/table.csv")));
    folder.write("new/line.txt", "two\n");
    folder.write("new/net.toml", networkHead + text);
    fs::rename(folder.file("new"), folder.file("net"));
    ASSERT_TRUE(process->waitForMessage("1 of 1 object ran (reader) in "));
    EXPECT_EQ(contentOf(folder.file("net/table.csv")), "step,line\n0,two\n");
}

TEST_F(WatchCommand, runsNothingIfTheNetworkIsOnlyTouched)
{
    startAndWait(chainWith("1"));
    save(chainWith("1"));
    ASSERT_TRUE(process->waitForMessage("net.toml: no differences; nothing ran\n"));
    EXPECT_THAT(end().err, Not(HasSubstr(" ran in ")));
}

TEST_F(WatchCommand, runsTheReadersOfAFileThatIsOnlyTouched)
{
    folder.write("net/line.txt", "one\n");
    startAndWait(object("reader", "FileReader", "set = { file = 'line.txt' }\n"));
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.file("net/line.txt").c_str(), nullptr, 0), 0);
    EXPECT_TRUE(process->waitForMessage(": line.txt changed; 1 of 1 object ran (reader) in "));
}

TEST_F(WatchCommand, goesOnAfterAnObjectCancelledAnEvaluation)
{
    startAndWait(object("c", "Canceller"));
    save(chainWith("1"));
    ASSERT_TRUE(process->waitForMessage("loaded again; 3 of 3 objects ran (a, b, c) in "));
    EXPECT_EQ(end().status, 130);
}

TEST_F(WatchCommand, endsAtTheBeginningIfTheCommandLineIsWrong)
{
    save(chainWith("1"));
    const struct {
        std::vector<std::string> options;
        int status;
        std::string message;
    } cases[] = {
        {{"--trace=-"}, 3, "tarn: --trace describes one evaluation, so it cannot be used with --watch\n"},
        {{"--events=e.toml"},
         3,
         "tarn: --events changes a network for one evaluation, so it cannot be used with --watch\n"},
        {{"--print=d.sum"}, 2, "--print=d.sum: no object is named \"d\"; available: a, b, c\n"},
        {{"--table=" + folder.file("none/table.csv")}, 4, "tarn: cannot write " + folder.file("none/table.csv")},
    };
    for (const auto& [options, status, message] : cases) {
        SCOPED_TRACE(options.front());
        std::vector<std::string> arguments{"run", file, "--watch"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProcessResult result = runTarn(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_THAT(result.err, HasSubstr(message));
    }
    EXPECT_EQ(runTarn({"run", folder.file("none.toml"), "--watch"}).status, 4);
}

} // namespace WatchTest
