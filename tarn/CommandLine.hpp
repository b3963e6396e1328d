#pragma once

#include <cstdint>
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

/// What the program was asked to do.
struct CommandLine {
    enum class Command { Help, Version, Run, Check, Types };

    Command command = Command::Help;
    std::optional<Command> helpOn; ///< with `Help`: one command instead of all

    std::string network;                ///< with `Run` and `Check`
    std::vector<std::string> overrides; ///< with `Run`: OBJECT.SLOT=TEXT
    std::optional<std::uint64_t> steps; ///< with `Run`; not 0
    std::optional<std::string> table;   ///< with `Run`; "-" is standard output
    std::vector<std::string> libraries; ///< with `Types`

    /// \p arguments without the program's name.
    /// \throw UsageError
    static CommandLine parse(const std::vector<std::string>& arguments);

    /// What `tarn --help` and `tarn COMMAND --help` print.
    std::string helpText() const;

    static std::string versionText();
};

} // namespace Tarn
