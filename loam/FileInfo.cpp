#include <loam/FileInfo.hpp>

#include <utility>

#include <sys/stat.h>

namespace Loam {

namespace {

// Returns all zeros, which match no file type, if the path does not exist.
//
// Calls stat directly, because std::filesystem::path allocates and may throw.
struct stat status(const std::string& path) noexcept
{
    struct stat result {};
    // stat would stop at a NUL.
    if (path.find('\0') != std::string::npos || ::stat(path.c_str(), &result) != 0)
        return {};
    return result;
}

} // namespace

FileInfo::FileInfo(std::string path) noexcept : m_path{std::move(path)}
{
}

bool FileInfo::exists() const noexcept
{
    return S_ISREG(status(m_path).st_mode);
}

bool FileInfo::isDirectory() const noexcept
{
    return S_ISDIR(status(m_path).st_mode);
}

std::uintmax_t FileInfo::size() const noexcept
{
    const auto found = status(m_path);
    return S_ISREG(found.st_mode) ? static_cast<std::uintmax_t>(found.st_size) : 0;
}

} // namespace Loam
