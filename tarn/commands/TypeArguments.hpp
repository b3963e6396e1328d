#pragma once

#include <tarn/commands/Command.hpp>

#include <string>
#include <vector>

// Options shared by the commands that describe types.

namespace Tarn {

class TypeCatalogue;

Option libraryOption();
Option levelOption();
Option jsonOption();

/// Returns the libraries named with --library.
std::vector<std::string> librariesOf(const Arguments& arguments);

/// Returns the number of --level, or all levels without it.
/// \throw UsageError
int levelOf(const Arguments& arguments);

/// Prints why libraries could not be loaded, and returns the exit status.
int reportRefusals(const TypeCatalogue& catalogue);

} // namespace Tarn
