#include <tarn/CommandLine.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace Tarn;
using testing::ElementsAre;
using testing::HasSubstr;
using Command = CommandLine::Command;

namespace {

std::string refusalOf(const std::vector<std::string>& arguments)
{
    try {
        CommandLine::parse(arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

} // namespace

TEST(CommandLine, readsWhatARunIsToDo)
{
    const CommandLine line = CommandLine::parse(
        {"run", "--set=a.b=c=d", "net.toml", "--steps=12", "--table=-", "--set=a.b=", "--set=x.y.z=two words"});
    EXPECT_EQ(line.command, Command::Run);
    EXPECT_EQ(line.network, "net.toml");
    EXPECT_THAT(line.overrides, ElementsAre("a.b=c=d", "a.b=", "x.y.z=two words"));
    EXPECT_EQ(line.steps, 12u);
    EXPECT_EQ(line.table, "-");
}

TEST(CommandLine, runsAllStepsWithoutATableUnlessItIsTold)
{
    const CommandLine line = CommandLine::parse({"run", "net.toml"});
    EXPECT_TRUE(line.overrides.empty());
    EXPECT_FALSE(line.steps);
    EXPECT_FALSE(line.table);
}

TEST(CommandLine, readsTheOtherCommands)
{
    EXPECT_EQ(CommandLine::parse({"check", "net.toml"}).command, Command::Check);
    EXPECT_EQ(CommandLine::parse({"check", "net.toml"}).network, "net.toml");
    EXPECT_EQ(CommandLine::parse({"types"}).command, Command::Types);
    EXPECT_THAT(CommandLine::parse({"types", "a", "b"}).libraries, ElementsAre("a", "b"));
    EXPECT_EQ(CommandLine::parse({"--version"}).command, Command::Version);
}

TEST(CommandLine, takesANameThatBeginsWithADashBehindTwoDashes)
{
    EXPECT_EQ(CommandLine::parse({"run", "--", "--steps"}).network, "--steps");
}

TEST(CommandLine, saysWhatIsWrong)
{
    const struct { std::vector<std::string> arguments; const char* refusal; } cases[] = {
        {{}, "no command, expected run, check or types"},
        {{""}, "unknown command \"\"; there are run, check, types"},
        {{"chek"}, "unknown command \"chek\"; did you mean \"check\"?"},
        {{"run"}, "no network, expected tarn run NETWORK.toml"},
        {{"check"}, "no network, expected tarn check NETWORK.toml"},
        {{"run", "a", "b"}, "more than one network: \"a\" and \"b\""},
        {{"run", "a", "--step=1"}, "unknown option \"--step\"; did you mean \"--steps\"?"},
        {{"run", "a", "-q"}, "unknown option \"-q\"; there are --help, --set, --steps, --table"},
        {{"check", "a", "--steps=1"}, "unknown option \"--steps\"; there is --help"},
        {{"types", "--all"}, "unknown option \"--all\"; there is --help"},
        {{"run", "a", "--set"}, "--set has no value, expected --set=OBJECT.SLOT=TEXT"},
        {{"run", "a", "--set=b.c"}, "--set=b.c: expected --set=OBJECT.SLOT=TEXT"},
        {{"run", "a", "--set=b=c.d"}, "--set=b=c.d: expected --set=OBJECT.SLOT=TEXT"},
        {{"run", "a", "--steps"}, "--steps has no value, expected --steps=N"},
        {{"run", "a", "--steps="}, "--steps=: expected a whole number, 1 or more"},
        {{"run", "a", "--steps=0"}, "--steps=0: expected a whole number, 1 or more"},
        {{"run", "a", "--steps=-1"}, "--steps=-1: expected a whole number, 1 or more"},
        {{"run", "a", "--steps=5x"}, "--steps=5x: expected a whole number, 1 or more"},
        {{"run", "a", "--steps=1e3"}, "--steps=1e3: expected a whole number, 1 or more"},
        {{"run", "a", "--steps=18446744073709551616"},
         "--steps=18446744073709551616: expected a whole number, 1 or more"},
        {{"run", "a", "--steps=1", "--steps=1"}, "--steps is given twice"},
        {{"run", "a", "--table="}, "--table has no value, expected --table=FILE.csv"},
        {{"run", "a", "--table=b", "--table=b"}, "--table is given twice"},
    };
    for (const auto& [arguments, refusal] : cases) {
        SCOPED_TRACE(refusal);
        EXPECT_EQ(refusalOf(arguments), refusal);
    }
}

TEST(CommandLine, helpsWithEachCommandAndWithAll)
{
    const struct { std::vector<std::string> arguments; const char* text; } cases[] = {
        {{"--help"}, "tarn [COMMAND] --help"},
        {{"-h"}, "tarn [COMMAND] --help"},
        {{"run", "--help"}, "--steps=N "},
        {{"run", "a", "--steps=1", "-h"}, "--steps=N "},
        {{"check", "--help"}, "lists all\nfaults"},
        {{"types", "--help"}, "Lists the value types"},
    };
    for (const auto& [arguments, text] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const CommandLine line = CommandLine::parse(arguments);
        EXPECT_EQ(line.command, Command::Help);
        EXPECT_THAT(line.helpText(), HasSubstr(text));
    }
}

TEST(CommandLine, documentsEveryExitStatus)
{
    const std::string help = CommandLine::parse({"--help"}).helpText();
    for (const char* status : {"\n  0  ", "\n  1  ", "\n  2  ", "\n  3  ", "\n  4  ", "129, 130, 143"})
        EXPECT_THAT(help, HasSubstr(status));
}
