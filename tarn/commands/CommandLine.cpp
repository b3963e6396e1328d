#include <tarn/commands/CommandLine.hpp>

#include <tarn/text/Messages.hpp>

#include <fathom/CommandLineParser.hpp>

#include <algorithm>
#include <utility>

namespace Tarn {

namespace {

constexpr char Opening[] = R"(Usage: tarn COMMAND [ARGUMENT]...
  or:  tarn --help
  or:  tarn --version

Loads networks of processing objects and evaluates them.

Results are written to the given files, or to standard output if the file is "-";
messages are written to standard error.

Commands:
)";

constexpr char Closing[] = R"(
Exit status:
  0  everything is fine
  1  an object reported an error, a loop did not settle, or compared networks differ
  2  the network has faults
  3  the command line is wrong
  4  a file could not be read or written
  129, 130, 143  interrupted by SIGHUP, SIGINT or SIGTERM

Environment:
  TARN_DATA       Folders, separated by semicolons, in which networks and data are
                  looked for that are not found under their names.
  TARN_LIBRARIES  Folders, separated by colons, in which libraries are looked for.
  BROWSER         Commands, separated by colons, of which the first that works shows
                  web pages; "%s" is replaced by the address.
)";

class ArgumentParser final : public Orla::CommandLineParser {
public:
    explicit ArgumentParser(const std::vector<const Command*>& commands) : m_commands{commands} {}

    bool processOption(const std::string& option) override
    {
        if (m_optionsEnded || option.empty())
            return processArgument("-" + option);
        if (option == "-") {
            m_optionsEnded = true;
            return true;
        }
        if (option == "-help" || option == "h") {
            m_line.request = CommandLine::Request::Help;
            return false;
        }
        if (!m_line.command && option == "-version") {
            m_line.request = CommandLine::Request::Version;
            return false;
        }
        readOption("-" + option);
        return true;
    }

    bool processArgument(const std::string& argument) override
    {
        if (m_line.command)
            m_line.arguments.names.push_back(argument);
        else
            m_line.command = &findCommand(argument);
        m_line.request = CommandLine::Request::Perform;
        return true;
    }

    CommandLine takeLine()
    {
        if (m_line.request != CommandLine::Request::Perform)
            return std::move(m_line);
        const Command& command = *m_line.command;
        const std::vector<std::string>& names = m_line.arguments.names;
        const std::string expected = ", expected " + synopsisOf(command);
        if (names.size() < command.fewestNames)
            throw UsageError{
                (names.empty() ? "no " + command.nameShape.substr(0, command.nameShape.find(' ')) : "too few names")
                + expected};
        if (names.size() > command.mostNames)
            throw UsageError{"one name too many, " + inQuotes(names[command.mostNames]) + expected};
        return std::move(m_line);
    }

    bool isEmpty() const noexcept { return !m_line.command; }

private:
    const Command& findCommand(const std::string& name) const
    {
        std::vector<std::string> known;
        for (const Command* command : m_commands) {
            if (command->name == name)
                return *command;
            known.push_back(command->name);
        }
        throw UsageError{"unknown command " + inQuotes(name) + insteadOf(name, known)};
    }

    void readOption(const std::string& argument)
    {
        const auto equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const std::vector<Option> none;
        const std::vector<Option>& options = m_line.command ? m_line.command->options : none;
        const auto option = std::ranges::find(options, name, [](const Option& each) { return "--" + each.name; });
        if (option == options.end()) {
            std::vector<std::string> known{"--help"};
            if (!m_line.command)
                known.emplace_back("--version");
            for (const Option& each : options)
                known.push_back("--" + each.name);
            throw UsageError{"unknown option " + inQuotes(name) + insteadOf(name, known)};
        }
        const std::string text = equals == std::string::npos ? std::string() : argument.substr(equals + 1);
        if (option->shape.empty() && equals != std::string::npos)
            throw UsageError{printable(argument) + ": expected " + name + " without a value"};
        if (!option->shape.empty() && text.empty())
            throw UsageError{name + " has no value, expected " + name + "=" + option->shape};
        std::vector<std::string>& texts = m_line.arguments.options[option->name];
        if (!texts.empty() && !option->repeats)
            throw UsageError{name + " is given twice"};
        texts.push_back(text);
    }

    const std::vector<const Command*>& m_commands;
    CommandLine m_line;
    bool m_optionsEnded = false;
};

} // namespace

CommandLine CommandLine::parse(int argc, char** argv, const std::vector<const Command*>& commands)
{
    ArgumentParser parser{commands};
    const bool isWhole = parser.process(argc, argv);
    if (isWhole && parser.isEmpty()) {
        std::vector<std::string> known;
        for (const Command* command : commands)
            known.push_back(command->name);
        throw UsageError{"no command" + insteadOf({}, known)};
    }
    return parser.takeLine();
}

std::string CommandLine::generalHelp(const std::vector<const Command*>& commands)
{
    // help2man makes the manual page from this layout.
    std::string text = Opening;
    std::vector<std::pair<std::string, std::string>> lines;
    for (const Command* command : commands)
        lines.emplace_back(command->name + (command->nameShape.empty() ? "" : " " + command->nameShape),
                           command->summary);
    lines.emplace_back("COMMAND --help", "Describes a command and its options.");
    std::size_t width = 0;
    for (const auto& [lead, summary] : lines)
        width = std::max(width, lead.size());
    for (const auto& [lead, summary] : lines)
        text += "  tarn " + lead + std::string(width - lead.size() + 2, ' ') + summary + "\n";
    return text + Closing;
}

std::string CommandLine::versionText()
{
    return "tarn " TARN_VERSION "\n";
}

} // namespace Tarn
