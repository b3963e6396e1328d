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

    static std::string versionText();
};

} // namespace Tarn
