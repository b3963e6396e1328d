#include <tarn/commands/Commands.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace RunTest {

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string network = networkHead + object("a", "Adder", "set = { a = 1 }\n") + column("sum", "a.sum");

const std::string listening = object("ear", "Listener") + column("log", "ear.log");

ProcessResult play(const std::string& events, const std::string& text)
{
    const TestFolder folder;
    return evaluate(text, {"--events=" + folder.write("events.toml", events)});
}

} // namespace

TEST(RunCommand, returnsStatus2AndEvaluatesNothingOnFaults)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network + "[[object]]\nname = 't'\ntype = 'Talker'\nset = 5\n");
    const ProcessResult result = runTarn({"run", file, "--table=" + folder.file("table.csv"), "--set=b.a=1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "talker: puts in the constructor\n" + file
                              + ":13:7: object \"t\": set is an integer, expected a table of inputs and their texts\n"
                                "--set=b.a=1: no object is named \"b\"\n"
                              + file + ": 2 faults; nothing was evaluated\n");
    EXPECT_THAT(folder.names(), ElementsAre("net.toml"));
}

TEST(RunCommand, setsInputsFromTheCommandLine)
{
    const TestFolder folder;
    const ProcessResult result =
        runTarn({"run", folder.write("net.toml", network), "--set=a.b=2.5", "--set=a.a=40", "--table=-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,sum\n0,42.5\n");
}

TEST(RunCommand, writesTheTableAndNothingElse)
{
    const TestFolder folder;
    folder.write("table.csv", "old");
    const ProcessResult result =
        runTarn({"run", folder.write("net.toml", network), "--table=" + folder.file("table.csv")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(contentOf(folder.file("table.csv")), "step,sum\n0,1\n");
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv"));
}

TEST(RunCommand, returnsStatus4WhenTheTableCannotBeWritten)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    for (const std::string& table :
         {folder.file("none/table.csv"), file + "/table.csv", folder.path(), std::string("/dev/full")}) {
        SCOPED_TRACE(table);
        const ProcessResult result = runTarn({"run", file, "--table=" + table});
        EXPECT_EQ(result.status, 4);
        EXPECT_THAT(result.err, HasSubstr("tarn: cannot write " + table + ": "));
    }
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
    EXPECT_THAT(folder.names(), ElementsAre("net.toml"));
}

TEST(RunCommand, leavesTheOldTableWhenTheNewOneDoesNotFit)
{
    const TestFolder folder;
    folder.write("table.csv", "old");
    const std::string file =
        folder.write("net.toml", network + "[[object]]\nname = 'long'\ntype = 'Echo'\nset = { text = '"
                                     + std::string(100000, 'x') + "' }\n[[column]]\ntitle = 'x'\nvalue = 'long.out'\n");
    // The limit is in blocks; only a part of the table fits.
    const ProcessResult result = runTarn({"run", file, "--table=" + folder.file("table.csv")}, {{}, "ulimit -f 8"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr("tarn: cannot write " + folder.file("table.csv") + ": File too large\n"));
    EXPECT_EQ(contentOf(folder.file("table.csv")), "old");
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv"));
}

TEST(RunCommand, writesTheTableToAPipe)
{
    const TestFolder folder;
    const std::string pipe = folder.file("pipe");
    const ProcessResult result = runTarn({"run", folder.write("net.toml", network), "--table=" + pipe},
                                         {{}, "mkfifo " + pipe + "; cat " + pipe + " & true"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,sum\n0,1\n");
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(RunCommand, acceptsUnusualCharactersInPaths)
{
    const TestFolder folder;
    const std::string name = "two\nlines 'ä' \"x\"/net %s.toml";
    const ProcessResult result = runTarn({"run", folder.write(name, network), "--table=-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,sum\n0,1\n");
    EXPECT_EQ(result.err, folder.path() + "/two\\nlines 'ä' \"x\"/net %s.toml: 1 object, 1 step\n");
}

TEST(RunCommand, leavesTheOldTableWhenTheChartIsUnknown)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", networkHead + object("map", "Follower"));
    const std::string table = folder.write("table.csv", "old");
    EXPECT_EQ(runTarn({"run", file, "--chart=x", "--table=" + table}).status, 2);
    EXPECT_EQ(contentOf(table), "old");
}

TEST(RunCommand, refusesANumberOfStepsThatIsNotAPositiveInteger)
{
    for (const std::string steps : {"0", "-1", "1.5", "two", "3x", "18446744073709551616"}) {
        SCOPED_TRACE(steps);
        const ProcessResult result = runTarn({"run", "net.toml", "--steps=" + steps});
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.err,
                  "tarn: --steps=" + steps + ": expected a whole number, 1 or more\ntarn: see tarn --help\n");
    }
}

TEST(RunCommand, refusesEventsThatNoObjectWouldReceive)
{
    const ProcessResult deaf = play("event = [{ step = 0, kind = 'key', key = 'a' }]\n", object("a", "Adder"));
    EXPECT_EQ(deaf.status, 2);
    EXPECT_THAT(deaf.err, HasSubstr("--events: no object of \"net.toml\" listens to events\n"));
    const ProcessResult late =
        play("event = [{ step = 4, kind = 'key', key = 'a' },\n{ step = 5, kind = 'key', key = 'b' }]\n",
             clockInQuarters + listening);
    EXPECT_EQ(late.status, 2);
    EXPECT_THAT(late.err, HasSubstr("events.toml:2:1: step 5 is not evaluated; the last one is 4\n"));
    EXPECT_THAT(late.err, HasSubstr("; nothing was evaluated\n"));
}

TEST(RunCommand, refusesAnEventScriptWithFaults)
{
    const ProcessResult result = play("event = [{ step = 0, kind = 'press', x = 'here', y = 1 }]\n", listening);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("events.toml:1:42: x is \"here\""));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(evaluate(listening, {"--events=none"}).status, 4);
}

TEST(RunCommand, refusesResultsThatWouldOverwriteOtherFilesOrEachOther)
{
    const std::vector<std::string> cases[] = {{"--table=./net.toml"},
                                              {"--trace=net.toml"},
                                              {"--trace=./x", "--table=x"},
                                              {"--trace=-", "--table=/dev/stdout"},
                                              {"--trace=-", "--print=a.sum"}};
    for (const std::vector<std::string>& options : cases) {
        SCOPED_TRACE(testing::PrintToString(options));
        const TestFolder folder;
        folder.write("net.toml", network);
        std::vector<std::string> arguments{"run", "net.toml"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProcessResult result = runTarn(arguments, {{}, "cd '" + folder.path() + "'"});
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, AnyOf(HasSubstr(" would overwrite the "), HasSubstr(" would write into the trace ")));
        EXPECT_THAT(folder.names(), ElementsAre("net.toml"));
        EXPECT_EQ(contentOf(folder.file("net.toml")), network);
    }
}

TEST(RunCommand, printsOutputsAfterTheTable)
{
    EXPECT_EQ(evaluate(clockInQuarters + column("time", "clock.GlobalTime.time"),
                       {"--print=clock.GlobalTime.time", "--steps=2"})
                  .out,
              "step,time\n0,0\n1,0.25\nclock.GlobalTime.time: 0.25\n");
}

} // namespace RunTest
