// The whole program: its exit status, its output and the files it leaves.

#include <tarn/commands/ExitStatus.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;

static_assert(Tarn::Fine == 0 && Tarn::ObjectFailed == 1 && Tarn::NotUnderstood == 2 && Tarn::WrongUsage == 3
              && Tarn::FileFailed == 4);

namespace {

const std::string network = "format = 1\nlibraries = ['testobjects']\n"
                            "[[object]]\nname = 'a'\ntype = 'Adder'\nset = { a = 1 }\n"
                            "[[column]]\ntitle = 'sum'\nvalue = 'a.sum'\n";

} // namespace

TEST(Main, printsHelpAndVersionToStandardOutput)
{
    const ProcessResult help = runTarn({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr("tarn run NETWORK.toml"));
    EXPECT_EQ(help.err, "");
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

TEST(Main, searchesTheDataFoldersForNetworks)
{
    const TestFolder folder;
    folder.write("nets/one/net.toml", network);
    const TarnProcess::Options options{.environment = {"TARN_DATA=" + folder.file("none") + ";" + folder.file("nets")},
                                       .shell = {}};
    const ProcessResult found = runTarn({"run", "one/net.toml", "--table=-"}, options);
    EXPECT_EQ(found.status, 0) << found.err;
    EXPECT_EQ(found.out, "step,sum\n0,1\n");
    EXPECT_THAT(found.err, HasSubstr("Checking file '" + folder.file("none") + "/one/net.toml'... invalid\n"));
    EXPECT_THAT(found.err, HasSubstr("Checking file '" + folder.file("nets") + "/one/net.toml'... valid\n"));
    EXPECT_EQ(runTarn({"run", "two/net.toml"}, options).status, 4);
}

TEST(Main, exitsWithStatus2AndEvaluatesNothingOnFaults)
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

TEST(Main, setsInputsFromTheCommandLine)
{
    const TestFolder folder;
    const ProcessResult result =
        runTarn({"run", folder.write("net.toml", network), "--set=a.b=2.5", "--set=a.a=40", "--table=-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,sum\n0,42.5\n");
}

TEST(Main, writesTheTableAndNothingElse)
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

TEST(Main, exitsWithStatus4WhenTheTableCannotBeWritten)
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

TEST(Main, leavesTheOldTableWhenTheNewOneDoesNotFit)
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

TEST(Main, doesNotOverwriteTheNetworkWithTheTable)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    const ProcessResult result = runTarn({"run", file, "--table=" + folder.path() + "/./net.toml"});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr("would overwrite the network\n"));
    EXPECT_EQ(contentOf(file), network);
}

TEST(Main, writesTheTableToAPipe)
{
    const TestFolder folder;
    const std::string pipe = folder.file("pipe");
    const ProcessResult result = runTarn({"run", folder.write("net.toml", network), "--table=" + pipe},
                                         {{}, "mkfifo " + pipe + "; cat " + pipe + " & true"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,sum\n0,1\n");
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(Main, acceptsUnusualCharactersInPaths)
{
    const TestFolder folder;
    const std::string name = "two\nlines 'ä' \"x\"/net %s.toml";
    const ProcessResult result = runTarn({"run", folder.write(name, network), "--table=-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,sum\n0,1\n");
    EXPECT_EQ(result.err, folder.path() + "/two\\nlines 'ä' \"x\"/net %s.toml: 1 object, 1 step\n");
}
