#pragma once

#include <tarn/commands/Command.hpp>

#include <loam/OutputFile.hpp>

#include <memory>
#include <string>
#include <vector>

namespace Tarn {

const Command& checkCommand();
const Command& convertCommand();
const Command& describeCommand();
const Command& graphCommand();
const Command& librariesCommand();
const Command& objectsCommand();
const Command& runCommand();
const Command& typesCommand();

/// All commands, in the order in which the help lists them.
const std::vector<const Command*>& commands();

// What several commands do in the same way.

/// Writes \p text to standard output.
/// \throw Loam::FileError
void print(const StandardStreams& streams, const std::string& text);

/// Whether \p name means standard output. That leads elsewhere by now, so its
/// other names must not be opened.
bool isStandardOutput(const std::string& name);

/// A result in the file \p path, or in standard output if that means it.
/// \throw Loam::FileError
std::unique_ptr<Loam::OutputFile> openResult(const std::string& path, const StandardStreams& streams);

/// The option `--set`, as all commands have it that make a network's objects anew.
Option setOption();

/// Where commands look for libraries beside the usual places: those that load a
/// network, and those that do not.
inline constexpr char NetworkFolders[] = "the network's folder and its subfolder \"lib\"";
inline constexpr char WorkingFolders[] = "the working folder and its subfolder \"lib\"";

/// The texts of the option `--set`.
/// \throw UsageError if one is not of the form OBJECT.SLOT=TEXT.
std::vector<std::string> overridesOf(const Arguments& arguments);

/// \p name from the root on: the working folder changes when a network is loaded.
/// \throw Loam::FileError
std::string absolutePath(const std::string& name);

/// The network \p name if there is such a file, else the first of that name in the
/// data folders, else \p name again. Absolute names are taken as they are.
std::string findNetwork(const std::string& name);

class Faults;

/// Lists \p faults on standard error, counts them with \p consequence behind, and
/// returns the exit status.
int reportFaults(const Faults& faults, const std::string& consequence);

} // namespace Tarn
