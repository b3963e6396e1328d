#include <tarn/commands/Command.hpp>

#include <algorithm>

namespace Tarn {

namespace {

constexpr std::size_t LineWidth = 88;

constexpr char SearchHelp[] = R"(Libraries are files NAME.so. They are looked for in ../lib/fathom beside the program,
in the folders of the environment variable TARN_LIBRARIES (separated by colons), and
in )";

std::string spelled(const Option& option)
{
    return "--" + option.name + (option.shape.empty() ? "" : "=" + option.shape);
}

} // namespace

std::string synopsisOf(const Command& command)
{
    const std::string start = "tarn " + command.name;
    std::vector<std::string> words;
    if (!command.nameShape.empty()) {
        const std::string& shape = command.nameShape;
        words.push_back(command.fewestNames == 0 ? "[" + shape + "]" + (command.mostNames > 1 ? "..." : "") : shape);
    }
    for (const Option& option : command.options)
        words.push_back("[" + spelled(option) + "]" + (option.repeats ? "..." : ""));

    std::string text = start;
    std::size_t column = start.size();
    for (const std::string& word : words) {
        if (column + 1 + word.size() > LineWidth) {
            text += "\n" + std::string(start.size(), ' ');
            column = start.size();
        }
        text += " " + word;
        column += 1 + word.size();
    }
    return text;
}

std::string helpOn(const Command& command)
{
    std::string text = synopsisOf(command) + "\n\n" + command.summary + "\n";
    if (!command.options.empty()) {
        std::size_t width = 0;
        for (const Option& option : command.options)
            width = std::max(width, spelled(option).size());
        text += "\n";
        for (const Option& option : command.options) {
            std::string lead = "  " + spelled(option) + std::string(width - spelled(option).size() + 2, ' ');
            std::size_t start = 0;
            while (start <= option.help.size()) {
                const std::size_t end = std::min(option.help.find('\n', start), option.help.size());
                text += lead + option.help.substr(start, end - start) + "\n";
                lead.assign(lead.size(), ' ');
                start = end + 1;
            }
        }
    }
    if (const std::string paragraphs = paragraphsOn(command); !paragraphs.empty())
        text += "\n" + paragraphs;
    return text;
}

std::string paragraphsOn(const Command& command)
{
    std::string text = command.help;
    if (!command.libraryFolders.empty())
        text += (text.empty() ? "" : "\n") + (SearchHelp + command.libraryFolders) + ".\n";
    return text;
}

} // namespace Tarn
