#include <tarn/CommandLine.hpp>

#include <tarn/Wording.hpp>

#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>

namespace Tarn {

namespace {

using Command = CommandLine::Command;

constexpr std::pair<const char*, Command> Commands[] = {
    {"run", Command::Run},
    {"check", Command::Check},
    {"types", Command::Types},
};

constexpr char GeneralHelp[] = R"(Loads networks of processing objects and evaluates them.

  tarn run NETWORK.toml [--set=OBJECT.SLOT=TEXT]... [--steps=N] [--table=FILE.csv]
  tarn check NETWORK.toml
  tarn types [LIBRARY]...
  tarn --version
  tarn [COMMAND] --help

Results go to the files that are asked for, or to standard output where a file is
called "-"; messages go to standard error.

Exit status:
  0  everything is fine
  1  an object reported an error, or a loop did not settle
  2  the network has faults; nothing was evaluated
  3  the command line is wrong
  4  a file could not be read or written
  129, 130, 143  interrupted by SIGHUP, SIGINT or SIGTERM
)";

constexpr char SearchHelp[] = R"(
Libraries are files NAME.so. They are looked for in ../lib/fathom beside the program,
in the folders of the environment variable TARN_LIBRARIES (separated by colons), and
in )";

constexpr char RunHelp[] = R"(tarn run NETWORK.toml [--set=OBJECT.SLOT=TEXT]... [--steps=N] [--table=FILE.csv]

Evaluates the network, once for each step of its global time; without an object
that provides the time, once.

  --set=OBJECT.SLOT=TEXT  Sets an input, whatever the file says. May be repeated; of
                          several texts for one input the last one counts.
  --steps=N               Evaluates the first N steps only.
  --table=FILE.csv        Writes the columns that the network lists, one row a step,
                          as comma-separated values; "-" is standard output.

Relative names in the texts of inputs start at the folder of the network.

A table appears when it is complete: until then, and if something fails on the way,
FILE.csv is what it was before. Objects that report an error do not end the run, and
the table shows their last good values; the exit status is then 1.

SIGINT and SIGTERM end the run within a second, with exit status 130 or 143. FILE.csv
is then as before; standard output has got the rows of the steps before.
)";

constexpr char CheckHelp[] = R"(tarn check NETWORK.toml

Loads the network and its libraries, makes and connects its objects, and lists all
faults, each with its place. Evaluates nothing. The exit status is 2 if there are any.
)";

constexpr char TypesHelp[] = R"(tarn types [LIBRARY]...

Lists the value types, with a note which of them can be inputs, and the object types
that the standard library and the libraries named bring, with their files.
)";

// Takes "--name=VALUE" apart; empty if the argument is another option.
std::optional<std::string> valueOf(const std::string& argument, const std::string& name, const std::string& shape)
{
    const std::string option = "--" + name;
    if (argument == option)
        throw UsageError{option + " has no value, expected " + option + "=" + shape};
    if (!argument.starts_with(option + "="))
        return std::nullopt;
    return argument.substr(option.size() + 1);
}

std::uint64_t readSteps(const std::string& text)
{
    std::uint64_t steps = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, steps);
    if (error != std::errc{} || stop != end || steps == 0)
        throw UsageError{"--steps=" + printable(text) + ": expected a whole number, 1 or more"};
    return steps;
}

bool readRunOption(const std::string& argument, CommandLine& line)
{
    if (const auto set = valueOf(argument, "set", "OBJECT.SLOT=TEXT")) {
        const std::string target = set->substr(0, set->find('='));
        if (target.size() == set->size() || target.find('.') == std::string::npos)
            throw UsageError{printable(argument) + ": expected --set=OBJECT.SLOT=TEXT"};
        line.overrides.push_back(*set);
        return true;
    }
    if (const auto steps = valueOf(argument, "steps", "N")) {
        if (line.steps)
            throw UsageError{"--steps is given twice"};
        line.steps = readSteps(*steps);
        return true;
    }
    if (const auto table = valueOf(argument, "table", "FILE.csv")) {
        if (line.table)
            throw UsageError{"--table is given twice"};
        if (table->empty())
            throw UsageError{"--table has no value, expected --table=FILE.csv"};
        line.table = *table;
        return true;
    }
    return false;
}

[[noreturn]] void refuseOption(const std::string& argument, const CommandLine& line)
{
    std::vector<std::string> known{"--help"};
    if (line.command == Command::Run)
        known.insert(known.end(), {"--set", "--steps", "--table"});
    const std::string name = argument.substr(0, argument.find('='));
    throw UsageError{"unknown option " + inQuotes(name) + insteadOf(name, known)};
}

Command readCommand(const std::string& name)
{
    std::vector<std::string> known;
    for (const auto& [text, command] : Commands) {
        if (name == text)
            return command;
        known.emplace_back(text);
    }
    throw UsageError{"unknown command " + inQuotes(name) + insteadOf(name, known)};
}

bool isHelp(const std::string& argument)
{
    return argument == "--help" || argument == "-h";
}

} // namespace

CommandLine CommandLine::parse(const std::vector<std::string>& arguments)
{
    CommandLine line;
    if (arguments.empty())
        throw UsageError{"no command, expected run, check or types"};
    if (isHelp(arguments[0]))
        return line;
    if (arguments[0] == "--version") {
        line.command = Command::Version;
        return line;
    }
    line.command = readCommand(arguments[0]);

    std::vector<std::string> names;
    bool optionsEnded = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (optionsEnded || !argument.starts_with('-') || argument == "-") {
            names.push_back(argument);
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (isHelp(argument)) {
            line.helpOn = line.command;
            line.command = Command::Help;
            return line;
        } else if (line.command != Command::Run || !readRunOption(argument, line)) {
            refuseOption(argument, line);
        }
    }

    if (line.command == Command::Types) {
        line.libraries = names;
        return line;
    }
    if (names.empty())
        throw UsageError{"no network, expected tarn " + arguments[0] + " NETWORK.toml"};
    if (names.size() > 1)
        throw UsageError{"more than one network: " + inQuotes(names[0]) + " and " + inQuotes(names[1])};
    line.network = names[0];
    return line;
}

std::string CommandLine::helpText() const
{
    const std::string search = SearchHelp;
    switch (helpOn.value_or(Command::Help)) {
    case Command::Run:
        return RunHelp + search + "the network's folder and its subfolder \"lib\".\n";
    case Command::Check:
        return CheckHelp + search + "the network's folder and its subfolder \"lib\".\n";
    case Command::Types:
        return TypesHelp + search + "the working folder and its subfolder \"lib\".\n";
    default:
        return GeneralHelp;
    }
}

std::string CommandLine::versionText()
{
    return "tarn " TARN_VERSION "\n";
}

} // namespace Tarn
