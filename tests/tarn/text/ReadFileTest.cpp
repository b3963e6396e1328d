#include <tarn/text/ReadFile.hpp>

#include <loam/FileError.hpp>

#include "support/TestFolder.hpp"

#include <gmock/gmock.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace ReadFileTest {

using namespace Tarn;

TEST(ReadFile, returnsEveryByte)
{
    const TestFolder folder;
    const std::string content = std::string("a\0b\r\n", 5) + std::string(200000, 'x');
    EXPECT_EQ(readFile(folder.write("file", content)), content);
    EXPECT_EQ(readFile(folder.write("empty", "")), "");
}

TEST(ReadFile, reportsWhichFileCannotBeReadAndWhy)
{
    const TestFolder folder;
    const auto failure = [](const std::string& path) -> std::string {
        try {
            readFile(path);
        } catch (const Loam::FileError& error) {
            return error.what();
        }
        return "read";
    };
    EXPECT_EQ(failure(folder.file("none")),
              "cannot read " + folder.file("none") + ": " + std::generic_category().message(ENOENT));
    EXPECT_EQ(failure(folder.path()), "cannot read " + folder.path() + ": " + std::generic_category().message(EISDIR));
    EXPECT_EQ(failure("/dev/zero"), "cannot read /dev/zero: it is larger than 256 MiB");
}

TEST(ReadFile, knowsTheFolderOfAFile)
{
    EXPECT_EQ(folderOf("/a/b/c.toml"), "/a/b");
}

} // namespace ReadFileTest
