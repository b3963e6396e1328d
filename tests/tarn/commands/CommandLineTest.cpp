#include <tarn/commands/CommandLine.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace CommandLineTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

int doNothing(const Arguments&, const StandardStreams&)
{
    return 0;
}

const Command cook{
    .name = "cook",
    .nameShape = "RECIPE",
    .fewestNames = 1,
    .mostNames = 2,
    .summary = "Cooks.",
    .options = {{.name = "add", .shape = "SPICE", .help = "Adds a spice.", .repeats = true},
                {.name = "minutes", .shape = "N", .help = "How long."},
                {.name = "quietly", .shape = "", .help = "Prints nothing."}},
    .perform = &doNothing,
};
const Command list{.name = "list", .nameShape = "SHELF", .mostNames = 9, .summary = "Lists.", .perform = &doNothing};
const std::vector<const Command*> all{&cook, &list};

CommandLine parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "tarn");
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    return CommandLine::parse(static_cast<int>(pointers.size()), pointers.data(), all);
}

std::string refusalOf(const std::vector<std::string>& words)
{
    try {
        parse(words);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

} // namespace

TEST(CommandLine, readsACommandWithItsNamesAndOptionsInAnyOrder)
{
    const CommandLine line = parse({"cook", "--add=c=d", "soup", "--minutes=12", "--quietly", "--add=two words"});
    EXPECT_EQ(line.request, CommandLine::Request::Perform);
    EXPECT_EQ(line.command, &cook);
    EXPECT_THAT(line.arguments.names, ElementsAre("soup"));
    EXPECT_THAT(line.arguments.texts("add"), ElementsAre("c=d", "two words"));
    EXPECT_EQ(line.arguments.text("minutes"), "12");
    EXPECT_TRUE(line.arguments.has("quietly"));
}

TEST(CommandLine, hasNoOptionsUnlessTheyAreGiven)
{
    const CommandLine line = parse({"list"});
    EXPECT_EQ(line.command, &list);
    EXPECT_TRUE(line.arguments.names.empty());
    EXPECT_TRUE(line.arguments.texts("add").empty());
    EXPECT_FALSE(line.arguments.text("minutes"));
    EXPECT_FALSE(line.arguments.has("quietly"));
}

TEST(CommandLine, acceptsNamesThatBeginWithADashAfterTwoDashes)
{
    EXPECT_THAT(parse({"list", "--", "--steps", "-x", "-"}).arguments.names, ElementsAre("--steps", "-x", "-"));
    EXPECT_THAT(parse({"list", "-"}).arguments.names, ElementsAre("-"));
}

TEST(CommandLine, removesALeadingPlusFromAName)
{
    EXPECT_THAT(parse({"list", "+--steps", "++a"}).arguments.names, ElementsAre("--steps", "+a"));
}

TEST(CommandLine, reportsWrongUsage)
{
    const struct {
        std::vector<std::string> words;
        const char* refusal;
    } cases[] = {
        {{}, "no command; available: cook, list"},
        {{""}, "unknown command \"\"; available: cook, list"},
        {{"coko"}, "unknown command \"coko\"; did you mean \"cook\"?"},
        {{"--steps=1"}, "unknown option \"--steps\"; available: --help, --version"},
        {{"cook"}, "no RECIPE, expected tarn cook RECIPE [OPTION]..."},
        {{"cook", "a", "b", "c"}, "one name too many, \"c\", expected tarn cook RECIPE [OPTION]..."},
        {{"cook", "a", "--minute=1"}, "unknown option \"--minute\"; did you mean \"--minutes\"?"},
        {{"cook", "a", "-q"}, "unknown option \"-q\"; available: --help, --add, --minutes, --quietly"},
        {{"list", "a", "--minutes=1"}, "unknown option \"--minutes\"; available: --help"},
        {{"cook", "a", "--add"}, "--add has no value, expected --add=SPICE"},
        {{"cook", "a", "--minutes="}, "--minutes has no value, expected --minutes=N"},
        {{"cook", "a", "--minutes=1", "--minutes=1"}, "--minutes is given twice"},
        {{"cook", "a", "--quietly=yes"}, "--quietly=yes: expected --quietly without a value"},
        {{"cook", "a", "--quietly", "--quietly"}, "--quietly is given twice"},
    };
    for (const auto& [words, refusal] : cases) {
        SCOPED_TRACE(refusal);
        EXPECT_EQ(refusalOf(words), refusal);
    }
}

TEST(CommandLine, offersHelpEvenIfOtherArgumentsAreWrong)
{
    const struct {
        std::vector<std::string> words;
        const Command* command;
    } cases[] = {
        {{"--help"}, nullptr},
        {{"-h"}, nullptr},
        {{"cook", "--help"}, &cook},
        {{"cook", "a", "b", "c", "-h"}, &cook},
        {{"list", "--help", "--nonsense"}, &list},
    };
    for (const auto& [words, command] : cases) {
        SCOPED_TRACE(testing::PrintToString(words));
        const CommandLine line = parse(words);
        EXPECT_EQ(line.request, CommandLine::Request::Help);
        EXPECT_EQ(line.command, command);
    }
    EXPECT_EQ(parse({"--version"}).request, CommandLine::Request::Version);
}

TEST(CommandLine, listsCommandsStatusesAndVariablesInTheGeneralHelp)
{
    const std::string help = CommandLine::generalHelp(all);
    EXPECT_THAT(help, HasSubstr("  tarn cook RECIPE     Cooks.\n"));
    EXPECT_THAT(help, HasSubstr("  tarn list SHELF      Lists.\n"));
    EXPECT_THAT(help, HasSubstr("  tarn COMMAND --help  Describes a command and its options.\n"));
    EXPECT_THAT(help, testing::StartsWith("Usage: tarn COMMAND [ARGUMENT]...\n"));
    for (const char* variable : {"\n  TARN_DATA ", "\n  TARN_LIBRARIES "})
        EXPECT_THAT(help, HasSubstr(variable));
    for (const char* status : {"\n  0  ", "\n  1  ", "\n  2  ", "\n  3  ", "\n  4  ", "129, 130, 143"})
        EXPECT_THAT(help, HasSubstr(status));
}

} // namespace CommandLineTest
