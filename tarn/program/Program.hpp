#pragma once

namespace Tarn {

class StandardStreams;
struct CommandLine;

/// Performs the request of a command line. Returns the exit status.
/// \throw UsageError, Loam::FileError
int perform(const CommandLine& line, const StandardStreams& streams);

/// The body of a `main` function: prepares the process, parses the command line, calls
/// \p performRequest and reports its exceptions. Returns the exit status.
int runProgram(int argc, char** argv,
               int (*performRequest)(const CommandLine& line, const StandardStreams& streams) = &perform);

} // namespace Tarn
