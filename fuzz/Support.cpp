#include "Support.hpp"

#include <tarn/libraries/Libraries.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace Fuzz {

namespace {

class Folder {
public:
    Folder() : m_path{(std::filesystem::temp_directory_path() / "fuzz-XXXXXX").string()}
    {
        if (!::mkdtemp(m_path.data()))
            throw std::runtime_error("cannot create " + m_path);
    }

    ~Folder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const noexcept { return m_path; }

private:
    std::string m_path;
};

void printBytes(const char* title, std::string_view bytes)
{
    std::fprintf(stderr, "%s (%zu bytes):\n%.*s\n", title, bytes.size(), static_cast<int>(bytes.size()), bytes.data());
}

} // namespace

void require(bool kept, std::string_view promise)
{
    if (kept)
        return;
    printBytes("broken promise", promise);
    std::abort();
}

void requireEqual(std::string_view found, std::string_view expected, std::string_view promise)
{
    if (found == expected)
        return;
    printBytes("found", found);
    printBytes("expected", expected);
    require(false, promise);
}

std::string fileWith(const std::string& name, std::string_view content)
{
    static const Folder folder;
    std::string path = folder.path() + '/' + name;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file.write(content.data(), static_cast<std::streamsize>(content.size())).flush())
        throw std::runtime_error("cannot write " + path);
    return path;
}

void prepareHost()
{
    static const auto libraries = [] {
        static const auto warnings = Loam::makeStrong<SilentWarnings>();
        Orla::VActionNotifier::add(warnings);
        ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1);
        auto* const loaded = new Tarn::Libraries{Tarn::Libraries::searchPath(".")};
        require(bool(loaded->load(Tarn::StandardLibrary)), "the standard library can be loaded");
        require(bool(loaded->load("testobjects")), "the test objects can be loaded");
        return loaded; // never unloaded: values of the targets may be destroyed later
    }();
    static_cast<void>(libraries);
}

} // namespace Fuzz
