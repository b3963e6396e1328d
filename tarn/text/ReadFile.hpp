#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// Returns the content of the file \p path.
/// \throw Loam::FileError
std::string readFile(const std::string& path);

/// Returns the absolute path of the folder that contains the file \p path.
/// \throw Loam::FileError
std::string folderOf(const std::string& path);

/// Returns the folders named in the environment variable TARN_DATA, separated by ";", with "\\"
/// converted to "/". Files that a network reads may be there instead of beside the network.
std::vector<std::string> dataFolders();

} // namespace Tarn
