#pragma once

#include <tarn/commands/StandardStreams.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tarn {

/// The command line is wrong.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The arguments after the name of a command.
struct Arguments {
    std::vector<std::string> names;
    std::map<std::string, std::vector<std::string>> options; ///< by name; a switch has an empty text

    bool has(const std::string& option) const { return options.contains(option); }

    /// Returns the text of an option that may not be repeated; nothing if it is not given.
    std::optional<std::string> text(const std::string& option) const
    {
        const auto found = options.find(option);
        return found == options.end() ? std::nullopt : std::optional(found->second.front());
    }

    /// Returns the texts of an option that may be repeated, in order.
    std::vector<std::string> texts(const std::string& option) const
    {
        const auto found = options.find(option);
        return found == options.end() ? std::vector<std::string>{} : found->second;
    }
};

/// An option `--NAME=SHAPE` of a command, or a switch `--NAME`.
struct Option {
    std::string name;
    std::string shape = {}; ///< placeholder for its text; empty for a switch
    std::string help = {};  ///< one or more lines
    bool repeats = false;
};

/// A command of the program. Each has a file in `tarn/commands`.
struct Command {
    std::string name;
    std::string nameShape = {}; ///< placeholder for its names, such as "NETWORK.toml"; empty for none
    std::size_t fewestNames = 0;
    std::size_t mostNames = 0;
    std::string summary = {}; ///< one short sentence
    std::string help = {};    ///< paragraphs that follow the summary
    std::vector<Option> options = {};
    std::string libraryFolders = {}; ///< searched for libraries besides the usual folders; empty if it loads none

    /// Runs the command and returns the exit status.
    /// \throw UsageError, Loam::FileError
    int (*perform)(const Arguments& arguments, const StandardStreams& streams) = nullptr;
};

/// Returns the synopsis, such as "tarn run NETWORK.toml [OPTION]...".
std::string synopsisOf(const Command& command);

/// Returns the output of `tarn COMMAND --help`.
std::string helpOn(const Command& command);

} // namespace Tarn
