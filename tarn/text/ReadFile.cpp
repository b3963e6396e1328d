#include <tarn/text/ReadFile.hpp>

#include <tarn/text/Messages.hpp>

#include <loam/Environment.hpp>
#include <loam/FileError.hpp>
#include <loam/ScopeExit.hpp>
#include <loam/StringUtil.hpp>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace Tarn {

namespace {

// No network is this large; a larger input is probably endless, such as a device.
constexpr std::size_t LargestFile = std::size_t{256} << 20;

} // namespace

std::string readFile(const std::string& path)
{
    const std::string failed = "cannot read " + printable(path);
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        throw Loam::FileError{failed, errno};
    const Loam::ScopeExit closed{[file] { ::close(file); }};

    constexpr std::size_t BlockSize = 65536;
    const auto block = std::make_unique<char[]>(BlockSize);
    std::string content;
    while (const ssize_t got = ::read(file, block.get(), BlockSize)) {
        if (got < 0) {
            if (errno == EINTR)
                continue;
            throw Loam::FileError{failed, errno};
        }
        content.append(block.get(), static_cast<std::size_t>(got));
        if (content.size() > LargestFile)
            throw Loam::FileError{failed + ": it is larger than 256 MiB"};
    }
    return content;
}

std::string folderOf(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (error)
        throw Loam::FileError{"cannot read " + printable(path), error.value()};
    return absolute.parent_path().string();
}

std::vector<std::string> dataFolders()
{
    std::string value = Loam::getEnvString("TARN_DATA");
    std::ranges::replace(value, '\\', '/');
    std::vector<std::string> folders;
    Loam::StringUtil::split(value, folders, ';', false);
    return folders;
}

} // namespace Tarn
