#include <tarn/commands/Command.hpp>

#include <gmock/gmock.h>

#include <string>

namespace CommandTest {

using namespace Tarn;

TEST(Command, writesTheSynopsisTheDescriptionAndTheOptions)
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
    EXPECT_EQ(synopsisOf(command), "tarn list [SHELF]... [OPTION]...");
    EXPECT_EQ(helpOn(command), "Usage: tarn list [SHELF]... [OPTION]...\n\nLists.\n\nMore.\n\n"
                               "Options:\n"
                               "  --only=KIND  One line.\n"
                               "               Another one.\n"
                               "  --all        Everything.\n");
}

TEST(Command, omitsWhatACommandDoesNotHave)
{
    EXPECT_EQ(helpOn(Command{.name = "rest", .summary = "Does nothing."}), "Usage: tarn rest\n\nDoes nothing.\n");
    EXPECT_EQ(synopsisOf(Command{.name = "read", .nameShape = "BOOK", .fewestNames = 1, .mostNames = 1}),
              "tarn read BOOK");
    EXPECT_EQ(synopsisOf(Command{.name = "read", .nameShape = "BOOK", .mostNames = 1}), "tarn read [BOOK]");
    EXPECT_THAT(helpOn(Command{.name = "dig", .summary = "Digs.", .libraryFolders = "the garden"}),
                testing::MatchesRegex("Usage: tarn dig\n\nDigs\\.\n\nLibraries are (.|\n)* and\nin the garden\\.\n"));
}

} // namespace CommandTest
