#include <tarn/commands/Command.hpp>

#include <tarn/commands/Commands.hpp>

#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <string>

using namespace Tarn;
using testing::HasSubstr;

TEST(Command, showsWhatMayBeRepeatedOrOmitted)
{
    const Command command{
        .name = "list",
        .nameShape = "SHELF",
        .mostNames = 3,
        .summary = "Lists.",
        .help = "More.\n",
        .options = {{.name = "only", .shape = "KIND", .help = "One line.\nAnother one.", .repeats = true},
                    {.name = "all", .shape = "", .help = "Everything."}},
    };
    EXPECT_EQ(synopsisOf(command), "tarn list [SHELF]... [--only=KIND]... [--all]");
    EXPECT_EQ(helpOn(command), "tarn list [SHELF]... [--only=KIND]... [--all]\n\nLists.\n\n"
                               "  --only=KIND  One line.\n"
                               "               Another one.\n"
                               "  --all        Everything.\n"
                               "\nMore.\n");
}

TEST(Command, breaksALongSynopsisBetweenWords)
{
    Command command{.name = "run", .nameShape = "NETWORK", .fewestNames = 1, .mostNames = 1};
    for (int i = 0; i < 9; ++i)
        command.options.push_back({.name = "an-option", .shape = "VALUE", .help = ""});
    std::istringstream lines(synopsisOf(command));
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_LE(line.size(), 88u);
        EXPECT_TRUE(line.starts_with(count == 0 ? "tarn run NETWORK [--an-option" : "         [--an-option")) << line;
    }
    EXPECT_EQ(count, 3u);
}

TEST(Command, describesEachCommand)
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
