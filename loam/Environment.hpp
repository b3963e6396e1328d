#pragma once

#include <loam/Export.hpp>

#include <string>

// Queries about the environment of the process. Paths are absolute and have no
// trailing slash, except for the root directory; an empty path means that the system
// could not determine it.

namespace Loam {

/// Returns the directory of the running program's file, with links resolved.
LOAM_API std::string getExecutableDir();

/// Returns the working directory; empty if it has been deleted.
LOAM_API std::string getCurrentDir();

/// Returns the value of an environment variable, or \p fallback if it is not set. A
/// variable that is set but empty returns an empty string.
LOAM_API std::string getEnvString(const std::string& name, const std::string& fallback = {});

/// Returns the file of the shared library or program that contains an address of code
/// or static data; empty for any other address.
LOAM_API std::string getLibraryPath(const void* address);

} // namespace Loam
