#pragma once

#include <tarn/commands/StandardStreams.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tarn {

/// The command line asks for something that the program does not know.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What stands behind the name of a command.
struct Arguments {
    std::vector<std::string> names;
    std::map<std::string, std::vector<std::string>> options; ///< switches without a text

    bool has(const std::string& option) const { return options.contains(option); }

    /// The text of an option that is given once at most; nothing if it is not given.
    std::optional<std::string> text(const std::string& option) const
    {
        const auto found = options.find(option);
        return found == options.end() ? std::nullopt : std::optional(found->second.front());
    }

    /// The texts of an option that may be repeated, in their order.
    std::vector<std::string> texts(const std::string& option) const
    {
        const auto found = options.find(option);
        return found == options.end() ? std::vector<std::string>{} : found->second;
    }
};

/// An option `--NAME=SHAPE` of a command, or a switch `--NAME`.
struct Option {
    std::string name;
    std::string shape; ///< what its text looks like; empty for a switch
    std::string help;  ///< one or more lines
    bool repeats = false;
};

/// One thing that the program does. There is a file for each in `tarn/commands`.
struct Command {
    std::string name;
    std::string nameShape = {}; ///< what its names look like, for example "NETWORK.toml"; empty for none
    std::size_t fewestNames = 0;
    std::size_t mostNames = 0;
    std::string summary = {}; ///< half a line
    std::string help = {};    ///< paragraphs that follow the summary
    std::vector<Option> options = {};
    std::string libraryFolders = {}; ///< where it looks for libraries beside the usual places; empty if it loads none

    /// Does it and returns the exit status.
    /// \throw UsageError, Loam::FileError
    int (*perform)(const Arguments& arguments, const StandardStreams& streams) = nullptr;
};

/// "tarn run NETWORK.toml [--steps=N] ...", in lines that fit.
std::string synopsisOf(const Command& command);

/// What the help on it says below the options; empty if it says no more.
std::string paragraphsOn(const Command& command);

/// What `tarn COMMAND --help` prints.
std::string helpOn(const Command& command);

} // namespace Tarn
