#pragma once

#include <loam/Export.hpp>

#include <string>

// What the process can be asked about its surroundings. Paths are absolute and
// end without a slash, unless they are the root directory; an empty one means
// that the system gave no answer.

namespace Loam {

/// The directory of the running program's file, with links in its path resolved.
LOAM_API std::string getExecutableDir();

/// The working directory; empty if it has been deleted.
LOAM_API std::string getCurrentDir();

/// The value of an environment variable, or \p fallback if there is none of that
/// name. A variable that is set to nothing has an empty value.
LOAM_API std::string getEnvString(const std::string& name, const std::string& fallback = {});

/// The file of the shared library or program that an address of code or static
/// data lies in; empty for any other address.
LOAM_API std::string getLibraryPath(const void* address);

} // namespace Loam
