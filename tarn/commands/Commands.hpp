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
const Command& diffCommand();
const Command& graphCommand();
const Command& librariesCommand();
const Command& manualCommand();
const Command& newCommand();
const Command& objectsCommand();
const Command& runCommand();
const Command& typesCommand();

/// All commands, in the order in which the help lists them.
const std::vector<const Command*>& commands();

// Functions shared by several commands.

/// Writes \p text to standard output.
/// \throw Loam::FileError
void print(const StandardStreams& streams, const std::string& text);

/// Returns true if \p name means standard output. Do not open such a name: the descriptor of
/// standard output now refers to standard error.
bool isStandardOutput(const std::string& name);

/// Opens the file \p path for a result, or standard output if \p path means it.
/// \throw Loam::FileError
std::unique_ptr<Loam::OutputFile> openResult(const std::string& path, const StandardStreams& streams);

/// Returns \p name, the file of the option --\p option, as an absolute path; a name of standard
/// output unchanged.
/// \throw UsageError if it is the file \p network; Loam::FileError
std::string resultPath(const std::string& option, const std::string& name, const std::string& network);

/// Reports that a signal arrived before the result was complete. Returns the exit status.
int reportNothingWritten();

/// Returns the option `--set`, which several commands have.
Option setOption();

/// Where commands look for libraries besides the usual folders: commands that load a network,
/// and commands that do not.
inline constexpr char NetworkFolders[] = "the network's folder and its subfolder \"lib\"";
inline constexpr char WorkingFolders[] = "the working folder and its subfolder \"lib\"";

/// Returns the texts of the option `--set`.
/// \throw UsageError if one is not of the form OBJECT.SLOT=TEXT.
std::vector<std::string> overridesOf(const Arguments& arguments);

/// Returns \p name as an absolute path, since loading a network changes the working folder.
/// \throw Loam::FileError
std::string absolutePath(const std::string& name);

/// Returns \p name if it is absolute or the file exists, else the first file of that name in
/// the data folders, else \p name.
std::string findNetwork(const std::string& name);

class Faults;

/// Prints \p faults to standard error, then their number followed by \p consequence. Returns
/// the exit status.
int reportFaults(const Faults& faults, const std::string& consequence);

} // namespace Tarn
