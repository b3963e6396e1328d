#include <loam/Environment.hpp>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <dlfcn.h>
#include <link.h>

namespace Loam {

namespace {

// The system marks the path of a file that has since been deleted or replaced, for
// example by a new version of a running program or loaded library.
std::string withoutDeletionMark(std::string path)
{
    constexpr std::string_view mark = " (deleted)";
    std::error_code error;
    if (path.ends_with(mark) && !std::filesystem::exists(path, error))
        path.resize(path.size() - mark.size());
    return path;
}

std::string executablePath()
{
    std::error_code error;
    return withoutDeletionMark(std::filesystem::read_symlink("/proc/self/exe", error).string());
}

// Returns the file mapped at an address. The loader keeps the path that a library was
// loaded by, which may be relative; the system knows the absolute path.
std::string mappedFile(std::uintptr_t address)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        // "from-to permissions offset device inode   /path"
        const char* const last = line.data() + line.size();
        std::uintptr_t from = 0;
        std::uintptr_t to = 0;
        const auto dash = std::from_chars(line.data(), last, from, 16).ptr;
        if (dash == last)
            continue;
        std::from_chars(dash + 1, last, to, 16);
        if (address < from || address >= to)
            continue;
        const auto slash = line.find('/');
        return slash == std::string::npos ? std::string() : withoutDeletionMark(line.substr(slash));
    }
    return {};
}

} // namespace

std::string getExecutableDir()
{
    return std::filesystem::path(executablePath()).parent_path().string();
}

std::string getCurrentDir()
{
    std::error_code error;
    return std::filesystem::current_path(error).string();
}

std::string getEnvString(const std::string& name, const std::string& fallback)
{
    // std::getenv would stop at a NUL, and would find "A=B" where A is set to "B=...".
    if (name.find_first_of(std::string_view("=\0", 2)) != std::string::npos)
        return fallback;
    const char* value = std::getenv(name.c_str());
    return value ? value : fallback;
}

std::string getLibraryPath(const void* address)
{
    Dl_info info{};
    void* extra = nullptr;
    if (dladdr1(address, &info, &extra, RTLD_DL_LINKMAP) == 0 || !extra)
        return {};
    const std::string path = static_cast<const link_map*>(extra)->l_name;
    if (path.empty()) // the loader's name for the program itself
        return executablePath();
    return path.front() == '/' ? path : mappedFile(reinterpret_cast<std::uintptr_t>(info.dli_fbase));
}

} // namespace Loam
