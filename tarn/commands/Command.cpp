#include <tarn/commands/Command.hpp>

#include <algorithm>

namespace Tarn {

namespace {

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
    std::string text = "tarn " + command.name;
    if (const std::string& shape = command.nameShape; !shape.empty())
        text += command.fewestNames == 0 ? " [" + shape + "]" + (command.mostNames > 1 ? "..." : "") : " " + shape;
    return text + (command.options.empty() ? "" : " [OPTION]...");
}

std::string helpOn(const Command& command)
{
    // help2man makes the manual pages from this layout.
    std::string text = "Usage: " + synopsisOf(command) + "\n\n" + command.summary + "\n";
    if (!command.help.empty())
        text += "\n" + command.help;
    if (!command.libraryFolders.empty())
        text += "\n" + (SearchHelp + command.libraryFolders) + ".\n";
    if (command.options.empty())
        return text;
    std::size_t width = 0;
    for (const Option& option : command.options)
        width = std::max(width, spelled(option).size());
    text += "\nOptions:\n";
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
    return text;
}

} // namespace Tarn
