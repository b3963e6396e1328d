#pragma once

#include <loam/Result.hpp>

#include <string>
#include <string_view>

namespace Tarn {

/// Returns true if \p library is written in Python: its name ends in ".py".
bool isPythonLibrary(std::string_view library) noexcept;

/// Runs the file \p path, which registers object types. A process without an interpreter gets one:
/// the shared library of Python is loaded, and stays in memory. The package `fathom` is searched in
/// the installation or build folder that has \p libraryFolder, then where Python searches. Loading
/// a file again only counts its users.
Loam::Result<void> loadPythonLibrary(const std::string& path, const std::string& libraryFolder);

/// Ends one use of the file. The last one ends the registration of its types.
void unloadPythonLibrary(const std::string& path);

} // namespace Tarn
