#pragma once

#include <tarn/commands/Command.hpp>

#include <string>
#include <vector>

namespace Tarn {

/// The parsed command line.
struct CommandLine {
    enum class Request { Perform, Help, Version };

    Request request = Request::Help;
    const Command* command = nullptr; ///< null with `Help` for the general help
    Arguments arguments;

    /// Parses the arguments of `main`; \p commands are the available commands.
    /// \throw UsageError
    static CommandLine parse(int argc, char** argv, const std::vector<const Command*>& commands);

    /// Returns the output of `tarn --help`.
    static std::string generalHelp(const std::vector<const Command*>& commands);

    /// Return the parts of the general help that are not about one command: where results are
    /// written and data are looked for, and one line per exit status.
    static std::string filesHelp();
    static std::string statusHelp();

    static std::string versionText();
};

} // namespace Tarn
