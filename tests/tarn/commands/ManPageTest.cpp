#include <tarn/commands/ManPage.hpp>

#include <tarn/commands/Commands.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <regex>
#include <string>

using namespace Tarn;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t place = 0; (place = text.find(from, place)) != std::string::npos; place += to.size())
        text.replace(place, from.size(), to);
    return text;
}

// Returns the page as a reader sees it: without markup, with single blanks.
std::string plain(std::string page)
{
    page = std::regex_replace(page, std::regex(R"((^|\n)\.([A-Z]+|ad .) ?)"), "\n");
    page = replaced(page, "\\fB", "");
    page = replaced(page, "\\fI", "");
    page = replaced(page, "\\fR", "");
    page = replaced(page, "\\&", "");
    page = replaced(page, "\\-", "-");
    page = replaced(page, "\\(aq", "'");
    page = replaced(page, "\\(ga", "`");
    page = replaced(page, "\\(ha", "^");
    page = replaced(page, "\\(ti", "~");
    page = replaced(page, "\\(rs", "\\");
    return std::regex_replace(page, std::regex(R"([ \n]+)"), " ");
}

std::string joined(const std::string& text)
{
    return std::regex_replace(text, std::regex(R"([ \n]+)"), " ");
}

const Command cook{
    .name = "cook",
    .nameShape = "RECIPE",
    .fewestNames = 1,
    .mostNames = 1,
    .summary = "Cooks.",
    .help = "Slowly.\n",
    .options = {{.name = "add", .shape = "SPICE", .help = "Adds a\nspice.", .repeats = true},
                {.name = "well-done", .shape = "", .help = "Takes longer."}},
    .libraryFolders = "the kitchen",
};

} // namespace

TEST(ManPage, hasASectionForEachCommandWithItsOptions)
{
    const std::string page = manPage({&cook});
    EXPECT_THAT(page, StartsWith(".TH TARN 1 \"\" \"tarn "));
    EXPECT_THAT(
        page,
        HasSubstr(".SH SYNOPSIS\n.ad l\n.HP 8\n\\fBtarn cook\\fR RECIPE [\\-\\-add=SPICE]... [\\-\\-well\\-done]\n"));
    EXPECT_THAT(page, HasSubstr(".SS cook\n.PP\nCooks.\n"
                                ".TP\n\\fB\\-\\-add\\fR=\\fISPICE\\fR\nAdds a\nspice.\n"
                                ".TP\n\\fB\\-\\-well\\-done\\fR\nTakes longer.\n"
                                ".PP\nSlowly.\n"
                                ".PP\nLibraries are files NAME.so."));
    EXPECT_THAT(page, HasSubstr("\nin the kitchen.\n.SH \"EXIT STATUS\"\n.TP\n\\fB0\\fR\neverything is fine\n"));
}

TEST(ManPage, containsTheHelpOnEveryCommand)
{
    const std::string page = plain(manPage(commands()));
    for (const Command* command : commands()) {
        SCOPED_TRACE(command->name);
        EXPECT_THAT(page, HasSubstr(joined(synopsisOf(*command))));
        EXPECT_THAT(page, HasSubstr(command->summary));
        EXPECT_THAT(page, HasSubstr(joined(paragraphsOn(*command))));
        for (const Option& option : command->options) {
            const std::string spelled = "--" + option.name + (option.shape.empty() ? "" : "=" + option.shape);
            EXPECT_THAT(page, HasSubstr(" " + spelled + " " + joined(option.help)));
        }
    }
}

TEST(ManPage, neitherBreaksNorIndentsSynopsisLines)
{
    const std::string page = manPage(commands());
    EXPECT_THAT(page, Not(HasSubstr("\n ")));
    EXPECT_THAT(page, HasSubstr("\\fBtarn run\\fR NETWORK.toml ["));
}

TEST(ManPage, listsEveryEnvironmentVariableThatTheHelpNames)
{
    const std::string page = manPage(commands());
    const std::string environment = page.substr(page.find(".SH ENVIRONMENT"));
    const std::regex variable("TARN_[A-Z]+");
    std::size_t count = 0;
    for (std::sregex_iterator each(page.begin(), page.end(), variable), end; each != end; ++each, ++count)
        EXPECT_THAT(environment, HasSubstr(".B " + each->str() + "\n"));
    EXPECT_GE(count, 4u);
}

TEST(ManPage, escapesTextThatLooksLikeMarkup)
{
    EXPECT_EQ(manText(".profile\n'quoted' a\\b `c` ^~ x-y\n"),
              ".PP\n\\&.profile\n\\(aqquoted\\(aq a\\(rsb \\(gac\\(ga \\(ha\\(ti x\\-y\n");
}

TEST(ManPage, fillsParagraphsAndSeparatesThemAtEmptyLines)
{
    EXPECT_EQ(manText("One\nline.\n\nAnother\n"), ".PP\nOne\nline.\n.PP\nAnother\n");
    EXPECT_EQ(manText("no end of line"), ".PP\nno end of line\n");
    EXPECT_EQ(manText(""), "");
}

TEST(ManPage, turnsIndentedLinesWithAGapIntoAList)
{
    EXPECT_EQ(manText("Status:\n  0        fine\n  128 + n  ended\n           by n\nMore.\n"),
              ".PP\nStatus:\n.TP\n\\fB0\\fR\nfine\n.TP\n\\fB128 + n\\fR\nended\nby n\n.PP\nMore.\n");
}

TEST(ManPage, leavesOtherIndentedLinesUnchanged)
{
    EXPECT_EQ(manText("Like:\n    a = 1\n    .b\n\nMore.\n"),
              ".PP\nLike:\n.PP\n.RS 4\n.EX\n\\&    a = 1\n\\&    .b\n.EE\n.RE\n.PP\nMore.\n");
    EXPECT_THAT(manText("  last\n"), EndsWith(".EE\n.RE\n"));
    EXPECT_THAT(manText("  last\n"), Not(HasSubstr(".TP")));
}
