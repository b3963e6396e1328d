#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// A file that is, or looks like, an object library.
struct LibraryFile {
    std::string name; ///< by which networks load it
    std::string path;
    std::string shadowedBy;               ///< the file of that name that is loaded instead, if there is one
    std::string refusal;                  ///< why it cannot be loaded; empty if it can
    std::vector<std::string> objectTypes; ///< what it registers, in alphabetic order
    std::vector<std::string> valueTypes;
};

/// Loads, one after the other, all files NAME.so in \p folders, or those whose names
/// are \p names, looks at what each registers, and unloads it again. They come by
/// folder, then by name or in the order of \p names. Those of \p names that no folder
/// has come last, without a path and with the reason.
std::vector<LibraryFile> findLibraryFiles(const std::vector<std::string>& folders,
                                          const std::vector<std::string>& names);

} // namespace Tarn
