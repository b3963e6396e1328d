#include <tarn/network/Session.hpp>

#include <loam/FileError.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <string>
#include <type_traits>

namespace SessionTest {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

static_assert(!std::is_copy_constructible_v<Tarn::Session>);

namespace {

const std::string head = "format = 1\nlibraries = ['testobjects']\n";

ProcessResult check(const std::string& network)
{
    const TestFolder folder;
    ProcessResult result = runTarn({"check", folder.write("net.toml", network)});
    // Messages contain the path of the folder, which differs each time.
    for (auto found = result.err.find(folder.path() + '/'); found != std::string::npos;
         found = result.err.find(folder.path() + '/'))
        result.err.erase(found, folder.path().size() + 1);
    return result;
}

} // namespace

TEST(Session, resolvesRelativeNamesInTheFolderOfTheNetwork)
{
    const TestFolder folder;
    folder.write("project/data/greeting.txt", "hello\n");
    const std::string network = head
                                + "[[object]]\nname = 'file'\ntype = 'FileReader'\n"
                                  "set = { file = 'data/greeting.txt' }\n"
                                  "[[column]]\ntitle = 'line'\nvalue = 'file.line'\n";
    folder.write("project/net.toml", network);
    // The name of the table is relative to the folder in which the program was started.
    const ProcessResult result = runTarn({"run", "project/net.toml", "--table=table.csv"}, {{}, "cd " + folder.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "project/net.toml: 1 object, 1 step\n");
    EXPECT_EQ(contentOf(folder.file("table.csv")), "step,line\n0,hello\n");
}

TEST(Session, findsLibrariesBesideTheNetwork)
{
    for (const std::string name : {"testobjects", "lib/testobjects"}) {
        SCOPED_TRACE(name);
        const TestFolder own;
        own.write(name + ".so", contentOf(TEST_OBJECTS_FOLDER "/testobjects.so"));
        const ProcessResult result =
            runTarn({"check", own.write("net.toml", head + "[[object]]\nname = 'a'\ntype = 'Adder'\n")},
                    {{}, "export TARN_LIBRARIES="});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.err, HasSubstr("1 object, 0 connections, no faults\n"));
    }
}

TEST(Session, reportsLibrariesThatCannotBeLoadedAndContinues)
{
    const TestFolder folder;
    folder.write("broken.so", "This is a text.");
    const std::string file =
        folder.write("net.toml", "format = 1\nlibraries = ['broken', 'none', 'testobjects', 'none']\n"
                                 "[[object]]\nname = 'a'\ntype = 'Adder'\nset = { a = 'x' }\n");
    const ProcessResult result = runTarn({"check", file});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr(file + ":2:14: library \"broken\" cannot be loaded: " + folder.file("broken.so")
                                      + ": the file is not a shared library\n"));
    EXPECT_THAT(result.err, HasSubstr(file + ":2:24: library \"none\" was not found: no file none.so in "));
    EXPECT_THAT(result.err, HasSubstr(file + ":6:13: object \"a\", input \"a\": the text \"x\" is refused"));
    EXPECT_THAT(result.err, HasSubstr(file + ": 3 faults\n"));
}

TEST(Session, refusesEmptyAndTruncatedFiles)
{
    EXPECT_EQ(check("").err, "net.toml:1:1: the file holds no network, expected format = 1\nnet.toml: 1 fault\n");
    EXPECT_EQ(check("").status, 2);
    EXPECT_EQ(check("format = 1\n[[object]]\nname = 'a'\ntype = 'Ad").status, 2);
}

TEST(Session, refusesATimeWithAnInvalidNumberOfSteps)
{
    const struct {
        const char* time;
        const char* fault;
    } cases[] = {
        {"0[0,inf]@1", "the time 0[0,inf]@1 has inf steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,nan]@1", "the time 0[0,nan]@1 has nan steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,10]@-1", "the time 0[0,10]@-1 has -9 steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,1]@1e-16", "steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,1]@1e-12",
         "the time 0[0,1]@1e-12 has 1000000000001 steps, more than 1000000000; --steps=N evaluates the first N "
         "of them"},
    };
    for (const auto& [time, fault] : cases) {
        SCOPED_TRACE(time);
        const ProcessResult result =
            check("format = 1\n[[object]]\nname = 'clock'\ntype = 'GlobalTime'\nset = { time = '" + std::string(time)
                  + "' }\n");
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err,
                    AllOf(testing::StartsWith("net.toml:5:16: object \"clock\", input \"time\": "), HasSubstr(fault)));
    }
}

TEST(Session, countsTheStepsOfALongTimeExactly)
{
    const TestFolder folder;
    const std::string file = folder.write(
        "net.toml", "format = 1\n[[object]]\nname = 'clock'\ntype = 'GlobalTime'\nset = { time = '0[0,4e14]@1' }\n"
                    "[[column]]\ntitle = 'time'\nvalue = 'clock.GlobalTime.time'\n");
    EXPECT_EQ(runTarn({"run", file, "--steps=3", "--table=-"}).out, "step,time\n0,0\n1,1\n2,2\n");
}

TEST(Session, keepsLibrariesInMemoryWhileAnObjectIsHeld)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", head + "[[object]]\nname = 'vine'\ntype = 'Clinging'\n");
    const ProcessResult result = runTarn({"run", file});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err,
                HasSubstr("The library \"testobjects\" stays in memory because Clinging \"vine\" is still in use\n"));
    EXPECT_THAT(runTarn({"check", file}).err, Not(HasSubstr("stay in memory")));
}

TEST(Session, loadsTenThousandObjects)
{
    std::string network = head;
    for (int i = 0; i < 10000; ++i)
        network += "[[object]]\nname = 'object " + std::to_string(i) + "'\ntype = 'Adder'\n";
    EXPECT_EQ(check(network).err, "net.toml: 10000 objects, 0 connections, no faults\n");
}

} // namespace SessionTest
