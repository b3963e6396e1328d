// The manual pages, which help2man makes from the help of the program.

#include <tarn/commands/CommandLine.hpp>
#include <tarn/commands/Commands.hpp>

#include "support/TestFolder.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace ManualTest {

using namespace Tarn;
using testing::ContainerEq;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string joined(const std::string& text)
{
    return std::regex_replace(text, std::regex(R"([ \n]+)"), " ");
}

std::string sourceOf(const std::string& page)
{
    return contentOf(MANUAL_FOLDER "/" + page + ".1");
}

// Returns the page as a reader sees it: without markup, with single blanks.
std::string textOf(const std::string& page)
{
    std::string text = std::regex_replace(sourceOf(page), std::regex(R"((^|\n)\.(\\"|TH)[^\n]*)"), "");
    text = std::regex_replace(text, std::regex(R"re(\n\.S[HS] "(.*)")re"), "\n$1");
    text = std::regex_replace(text, std::regex(R"((^|\n)\.[A-Za-z]+ ?)"), "\n");
    text = std::regex_replace(text, std::regex(R"(\\f[BIPR]|\\[,/&%])"), "");
    return joined(std::regex_replace(text, std::regex(R"(\\-)"), "-"));
}

// Returns the examples on the page that run the program, without variables and pipes.
std::vector<std::string> examplesOn(const std::string& page)
{
    const std::string source = std::regex_replace(sourceOf(page), std::regex(R"(\\-)"), "-");
    const std::regex example(R"((?:\n|&& |\n\w+=\S+ )(tarn [^\n|&]*))");
    std::vector<std::string> examples;
    const auto start = source.begin() + static_cast<std::ptrdiff_t>(source.find(".SH EXAMPLES"));
    for (std::sregex_iterator each(start, source.end(), example), end; each != end; ++each)
        examples.push_back((*each)[1]);
    return examples;
}

std::string between(const std::string& text, const std::string& begin, const std::string& end)
{
    const std::size_t first = text.find(begin) + begin.size();
    return text.substr(first, text.find(end, first) - first);
}

std::string spelled(const Option& option)
{
    return "--" + option.name + (option.shape.empty() ? "" : "=" + option.shape);
}

} // namespace

TEST(Manual, hasAPagePerCommandAndOneForTheProgram)
{
    std::set<std::string> expected{"tarn.1"};
    for (const Command* command : commands())
        expected.insert("tarn-" + command->name + ".1");
    std::set<std::string> pages;
    for (const auto& entry : std::filesystem::directory_iterator(MANUAL_FOLDER)) {
        if (entry.path().extension() == ".1")
            pages.insert(entry.path().filename());
    }
    EXPECT_THAT(pages, ContainerEq(expected));
}

TEST(Manual, describesEachCommandWithAllOfItsHelp)
{
    for (const Command* command : commands()) {
        SCOPED_TRACE(command->name);
        const std::string page = textOf("tarn-" + command->name);
        const std::string help = helpOn(*command);
        EXPECT_THAT(page, StartsWith(" NAME tarn-" + command->name + " - "));
        EXPECT_THAT(page, HasSubstr(" SYNOPSIS " + synopsisOf(*command) + " DESCRIPTION " + command->summary + " "));
        EXPECT_THAT(page, HasSubstr(joined(between(help, synopsisOf(*command), "\nOptions:"))));
        EXPECT_THAT(page, HasSubstr(" SEE ALSO tarn (1)"));
    }
}

TEST(Manual, describesEveryOption)
{
    for (const Command* command : commands()) {
        SCOPED_TRACE(command->name);
        const std::string options = between(textOf("tarn-" + command->name) + " EXAMPLES", " OPTIONS", " EXAMPLES");
        for (const Option& option : command->options)
            EXPECT_THAT(options + " ", HasSubstr(" " + spelled(option) + " " + joined(option.help) + " "));
    }
}

TEST(Manual, listsTheCommandsStatusesAndVariablesOfTheProgram)
{
    const std::string page = textOf("tarn");
    const std::string help = CommandLine::generalHelp(commands());
    EXPECT_THAT(page, StartsWith(" NAME tarn - "));
    EXPECT_THAT(page, HasSubstr(" SYNOPSIS tarn COMMAND [ARGUMENT]... tarn --help tarn --version DESCRIPTION "));
    EXPECT_THAT(page, HasSubstr(" Commands:" + joined(between(help, "Commands:", "\nExit status:"))));
    EXPECT_THAT(page, HasSubstr(" Exit status:" + joined(between(help, "Exit status:", "\nEnvironment:"))));
    EXPECT_THAT(page, HasSubstr(" ENVIRONMENT" + joined(help.substr(help.find("\n", help.find("Environment:"))))));
    for (const Command* command : commands())
        EXPECT_THAT(page, HasSubstr(" tarn-" + command->name + " (1)"));
}

TEST(Manual, hasExamplesThatTheProgramAccepts)
{
    std::vector<std::string> pages{"tarn"};
    for (const Command* command : commands())
        pages.push_back("tarn-" + command->name);
    for (const std::string& page : pages) {
        SCOPED_TRACE(page);
        const std::vector<std::string> examples = examplesOn(page);
        EXPECT_FALSE(examples.empty());
        for (const std::string& example : examples) {
            SCOPED_TRACE(example);
            std::vector<std::string> words;
            std::istringstream stream(example);
            for (std::string word; stream >> word;)
                words.push_back(word);
            std::vector<char*> pointers;
            for (std::string& word : words)
                pointers.push_back(word.data());
            const CommandLine line = CommandLine::parse(static_cast<int>(pointers.size()), pointers.data(), commands());
            EXPECT_EQ(line.request, CommandLine::Request::Perform);
        }
    }
}

} // namespace ManualTest
