#include <loam/FileInfo.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <type_traits>
#include <utility>

#include <sys/stat.h>

namespace FileInfoTest {

using namespace Loam;

static_assert(!std::is_convertible_v<std::string, FileInfo>, "not every string is a path");
static_assert(noexcept(FileInfo(std::declval<std::string>())));
static_assert(noexcept(std::declval<FileInfo&>().exists()));
static_assert(noexcept(std::declval<FileInfo&>().isDirectory()));
static_assert(noexcept(std::declval<FileInfo&>().size()));

namespace {

namespace fs = std::filesystem;

// Gives each test its own folder and removes it afterwards.
class FileInfoTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string path = (fs::path(testing::TempDir()) / "FileInfo XXXXXX").string();
        ASSERT_NE(mkdtemp(path.data()), nullptr) << path;
        m_folder = path;
    }

    void TearDown() override
    {
        std::error_code error;
        fs::remove_all(m_folder, error);
    }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    std::string file(const std::string& name, const std::string& content = "12345") const
    {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

    std::string directory(const std::string& name) const
    {
        fs::create_directory(path(name));
        return path(name);
    }

    std::string link(const std::string& name, const std::string& target) const
    {
        fs::create_symlink(target, path(name));
        return path(name);
    }

private:
    fs::path m_folder;
};

std::string withNul(const std::string& path)
{
    return path + std::string("\0rest", 5);
}

} // namespace

TEST_F(FileInfoTest, distinguishesFilesDirectoriesAndMissingPaths)
{
    const std::string plain = file("plain");
    const std::string folder = directory("folder");
    const std::string loop = link("loop", "loop");
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);

    enum class Kind { Nothing, File, Directory };
    const struct {
        const char* what;
        std::string path;
        Kind kind;
        std::uintmax_t size;
    } cases[] = {
        {"a file", plain, Kind::File, 5},
        {"an empty file", file("empty", ""), Kind::File, 0},
        {"a hidden file", file(".hidden", "1"), Kind::File, 1},
        {"a name with spaces", file(" a name ", "12"), Kind::File, 2},
        {"a non-ASCII name",
         file("gr\xc3\xbc\xc3\x9f"
              "e",
              "123"),
         Kind::File, 3},
        {"a directory", folder, Kind::Directory, 0},
        {"a directory with a trailing slash", folder + "/", Kind::Directory, 0},
        {"a file in a directory", file("folder/inner", "1234"), Kind::File, 4},
        {"a path with dots", folder + "/../folder/./inner", Kind::File, 4},
        {"a link to a file", link("link", "plain"), Kind::File, 5},
        {"a link to a link", link("link to link", "link"), Kind::File, 5},
        {"a link to a directory", link("link to folder", "folder"), Kind::Directory, 0},
        {"a file through a link", path("link to folder") + "/inner", Kind::File, 4},
        {"a broken link", link("broken", "missing"), Kind::Nothing, 0},
        {"a link to itself", loop, Kind::Nothing, 0},
        {"a pipe", pipe, Kind::Nothing, 0},
        {"a device", "/dev/null", Kind::Nothing, 0},
        {"a missing path", path("missing"), Kind::Nothing, 0},
        {"a path in a missing directory", path("missing/missing"), Kind::Nothing, 0},
        {"a file with a trailing slash", plain + "/", Kind::Nothing, 0},
        {"a path below a file", plain + "/inner", Kind::Nothing, 0},
        {"the empty path", "", Kind::Nothing, 0},
        {"the path of a file and a NUL", withNul(plain), Kind::Nothing, 0},
        {"the path of a directory and a NUL", withNul(folder), Kind::Nothing, 0},
        {"a path that is too long", path(std::string(100'000, 'x')), Kind::Nothing, 0},
    };
    for (const auto& [what, path, kind, size] : cases) {
        SCOPED_TRACE(what);
        const FileInfo info(path);
        EXPECT_EQ(info.exists(), kind == Kind::File);
        EXPECT_EQ(info.isDirectory(), kind == Kind::Directory);
        EXPECT_EQ(info.size(), size);
        EXPECT_EQ(info.path(), path);
    }
}

TEST_F(FileInfoTest, findsFilesRelativeToTheWorkingDirectory)
{
    const std::string plain = file("plain");
    EXPECT_TRUE(FileInfo(fs::relative(plain).string()).exists());
    EXPECT_TRUE(FileInfo(".").isDirectory());
}

TEST_F(FileInfoTest, queriesTheFileSystemEachTime)
{
    const FileInfo info(path("changing"));
    EXPECT_FALSE(info.exists());
    file("changing", "1");
    EXPECT_TRUE(info.exists());
    EXPECT_EQ(info.size(), 1u);
    file("changing", "123");
    EXPECT_EQ(info.size(), 3u);
    fs::remove(info.path());
    EXPECT_FALSE(info.exists());
    EXPECT_EQ(info.size(), 0u);
    directory("changing");
    EXPECT_FALSE(info.exists());
    EXPECT_TRUE(info.isDirectory());
}

TEST_F(FileInfoTest, returnsSizesBeyondFourGigabytes)
{
    const std::string large = file("large", "");
    fs::resize_file(large, 5'000'000'000); // sparse: takes no space
    EXPECT_EQ(FileInfo(large).size(), 5'000'000'000u);
}

} // namespace FileInfoTest
