#pragma once

#include <loam/OutputFile.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/// A temporary folder for a test, removed with its content at the end.
class TestFolder {
public:
    TestFolder() : m_path{testing::TempDir() + "test-folder-XXXXXX"}
    {
        if (!::mkdtemp(m_path.data()))
            throw std::runtime_error("cannot create the folder " + m_path);
    }

    ~TestFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::string& path() const noexcept { return m_path; }

    /// Returns the path of the file \p name in the folder.
    std::string file(const std::string& name) const { return m_path + '/' + name; }

    /// Writes a file and returns its path.
    std::string write(const std::string& name, const std::string& content) const
    {
        const std::string path = file(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream stream(path, std::ios::binary);
        if (!stream.write(content.data(), static_cast<std::streamsize>(content.size())).flush())
            throw std::runtime_error("cannot write " + path);
        return path;
    }

    /// Returns the names of all entries, sorted.
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

private:
    std::string m_path;
};

/// Returns the content of the file \p path; fails the test if it cannot be read.
inline std::string contentOf(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        ADD_FAILURE() << "cannot read " << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Returns true if anything but a regular file is written directly. Tests check this
/// before they name a device: otherwise a faulty program, run as root, would replace
/// the device with a file.
inline bool isSafeToWriteDevices()
{
    const TestFolder folder;
    const std::string pipe = folder.file("pipe");
    if (::mkfifo(pipe.c_str(), 0600) != 0)
        return false;
    // Without a reader, the writer would block.
    const int reader = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    const bool direct = Loam::OutputFile{pipe}.isStream();
    ::close(reader);
    return direct && std::filesystem::is_fifo(pipe);
}
