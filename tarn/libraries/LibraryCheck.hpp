#pragma once

#include <loam/Result.hpp>

#include <string>

namespace Tarn {

/// Checks whether the file \p path is a complete object library for the binary interface of this
/// program, and whether the libraries beside it that it needs fit as well. Runs no code of the
/// file. The reason of a failure does not contain \p path.
Loam::Result<void> checkLibraryFile(const std::string& path);

} // namespace Tarn
