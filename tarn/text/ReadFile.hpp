#pragma once

#include <string>

namespace Tarn {

/// Returns the content of the file \p path.
/// \throw Loam::FileError
std::string readFile(const std::string& path);

/// Returns the absolute path of the folder that contains the file \p path.
/// \throw Loam::FileError
std::string folderOf(const std::string& path);

} // namespace Tarn
