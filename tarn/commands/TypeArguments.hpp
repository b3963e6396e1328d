#pragma once

#include <tarn/commands/Command.hpp>

#include <string>
#include <vector>

// What the commands that tell of types have in common.

namespace Tarn {

class TypeCatalogue;

Option libraryOption();
Option levelOption();
Option jsonOption();

/// The libraries that --library names.
std::vector<std::string> librariesOf(const Arguments& arguments);

/// The number of --level; all levels without.
/// \throw UsageError
int levelOf(const Arguments& arguments);

/// Says why libraries could not be loaded, and returns the exit status.
int reportRefusals(const TypeCatalogue& catalogue);

} // namespace Tarn
