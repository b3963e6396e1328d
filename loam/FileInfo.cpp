#include <loam/FileInfo.hpp>

#include <utility>

#include <sys/stat.h>

namespace Loam {

namespace {

// All zero, which is no type of file, if there is nothing under the path.
//
// The system's own call, because a path of std::filesystem allocates and so
// might throw.
struct stat status(const std::string& path) noexcept
{
    struct stat result {};
    // The system would look at the part before a NUL.
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
