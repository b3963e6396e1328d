#pragma once

#include <loam/Export.hpp>

#include <cstdint>
#include <string>

namespace Loam {

/// What the file system holds under a path. Each question is asked anew, links
/// are followed, and a path that cannot be looked at is as one of nothing.
class LOAM_API FileInfo {
public:
    explicit FileInfo(std::string path) noexcept;

    /// As it was given.
    const std::string& path() const noexcept { return m_path; }

    /// Whether this is a file; a directory, a device or a broken link is none.
    bool exists() const noexcept;

    bool isDirectory() const noexcept;

    /// In bytes; 0 for anything but a file.
    std::uintmax_t size() const noexcept;

private:
    std::string m_path;
};

} // namespace Loam
