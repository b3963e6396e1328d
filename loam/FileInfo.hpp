#pragma once

#include <loam/Export.hpp>

#include <cstdint>
#include <string>

namespace Loam {

/// Queries the file system about a path. Each call reads the file system again and
/// follows links; a path that cannot be examined counts as missing.
class LOAM_API FileInfo {
public:
    explicit FileInfo(std::string path) noexcept;

    /// Returns the path as given.
    const std::string& path() const noexcept { return m_path; }

    /// Returns true for a regular file; false for a directory, a device or a broken link.
    bool exists() const noexcept;

    bool isDirectory() const noexcept;

    /// Returns the size in bytes; 0 for anything but a regular file.
    std::uintmax_t size() const noexcept;

private:
    std::string m_path;
};

} // namespace Loam
