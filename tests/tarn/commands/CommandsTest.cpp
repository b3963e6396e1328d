#include <tarn/commands/Commands.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <string>

namespace CommandsTest {

using namespace Tarn;
using testing::ElementsAre;

namespace {

const std::string network = networkHead + object("a", "Adder", "set = { a = 1 }\n") + column("sum", "a.sum");

} // namespace

TEST(Commands, mentionInTheirHelpThatAnOptionMayBeRepeated)
{
    for (const Command* command : commands()) {
        for (const Option& option : command->options)
            EXPECT_EQ(option.help.find("May be repeated") != std::string::npos, option.repeats)
                << command->name << " --" << option.name;
    }
}

TEST(Commands, haveDifferentNamesAndCompleteDescriptions)
{
    std::set<std::string> names;
    for (const Command* command : commands()) {
        SCOPED_TRACE(command->name);
        EXPECT_TRUE(names.insert(command->name).second);
        EXPECT_TRUE(command->perform);
        EXPECT_GE(command->mostNames, command->fewestNames);
        EXPECT_TRUE(command->summary.ends_with("."));
        std::istringstream lines(helpOn(*command));
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 90u) << line;
    }
}

TEST(Commands, acceptSettingsWhoseTextsContainDotsAndEqualsSigns)
{
    EXPECT_THAT(overridesOf({.names = {}, .options = {{"set", {"a.b=1", "a.b.c=x=y.z", "a.b=", "a=b.c=1"}}}}),
                ElementsAre("a.b=1", "a.b.c=x=y.z", "a.b=", "a=b.c=1"));
    EXPECT_TRUE(overridesOf({}).empty());
}

TEST(Commands, refuseSettingsWithoutObjectInputOrText)
{
    for (const std::string set : {"", "a", "a.b", "a=1", "=", "a=b.c"}) {
        SCOPED_TRACE(set);
        try {
            overridesOf({.names = {}, .options = {{"set", {"a.b=1", set}}}});
            ADD_FAILURE() << "the setting was accepted";
        } catch (const UsageError& error) {
            EXPECT_EQ(error.what(), "--set=" + set + ": expected --set=OBJECT.SLOT=TEXT");
        }
    }
}

TEST(Commands, searchTheDataFoldersForNetworks)
{
    const TestFolder folder;
    folder.write("nets/one/net.toml", network);
    const TarnProcess::Options options{.environment = {"TARN_DATA=" + folder.file("none") + ";" + folder.file("nets")},
                                       .shell = {}};
    const ProcessResult found = runTarn({"run", "one/net.toml", "--table=-"}, options);
    EXPECT_EQ(found.status, 0) << found.err;
    EXPECT_EQ(found.out, "step,sum\n0,1\n");
    EXPECT_EQ(found.err, folder.file("nets") + "/one/net.toml: 1 object, 1 step\n");
    const ProcessResult missing = runTarn({"run", "two/net.toml"}, options);
    EXPECT_EQ(missing.status, 4);
    EXPECT_EQ(missing.err, "tarn: cannot read two/net.toml: No such file or directory\n");
}

TEST(Commands, recogniseOtherNamesOfStandardOutput)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    for (const std::string name : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(runTarn({"run", file, "--table=" + name}).out, "step,sum\n0,1\n");
    }
}

} // namespace CommandsTest
