#pragma once

#include <loam/Result.hpp>

#include <string>
#include <vector>

namespace Tarn {

/// A file that is, or looks like, an object library.
struct LibraryFile {
    std::string name; ///< the name by which networks load it
    std::string path;
    std::string shadowedBy;               ///< the file of the same name that is loaded instead, if any
    Loam::Result<void> loading;           ///< whether it can be loaded
    std::vector<std::string> objectTypes; ///< the types it registers, in alphabetical order
    std::vector<std::string> valueTypes;
};

/// Loads each file NAME.so in \p folders, or only those named in \p names, which may be files in
/// Python, records the types it registers, and unloads it before the next. Object types of another
/// object library in the same folder, which was loaded with it, do not count. Returns the files
/// ordered by folder, then by name or in the order of \p names. Names that no folder contains come
/// last, without a path and with the reason.
std::vector<LibraryFile> findLibraryFiles(const std::vector<std::string>& folders,
                                          const std::vector<std::string>& names);

} // namespace Tarn
