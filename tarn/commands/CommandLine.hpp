#pragma once

#include <tarn/commands/Command.hpp>

#include <string>
#include <vector>

namespace Tarn {

/// What the program was asked to do.
struct CommandLine {
    enum class Request { Perform, Help, Version };

    Request request = Request::Help;
    const Command* command = nullptr; ///< with `Help` null for help on everything
    Arguments arguments;

    /// Reads the arguments of `main`; \p commands are those there are.
    /// \throw UsageError
    static CommandLine parse(int argc, char** argv, const std::vector<const Command*>& commands);

    /// What `tarn --help` prints.
    static std::string generalHelp(const std::vector<const Command*>& commands);

    /// The parts of it that are not about one command: where results go and data are
    /// looked for, and a line for each exit status.
    static std::string filesHelp();
    static std::string statusHelp();

    static std::string versionText();
};

} // namespace Tarn
