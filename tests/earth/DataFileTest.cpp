#include <earth/DataFile.hpp>

#include "support/TestFolder.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

namespace DataFileTest {

TEST(DataFile, isFoundUnderItsOwnNameFirst)
{
    const TestFolder folder;
    const std::string file = folder.write("land.json", "{}");
    EXPECT_EQ(Earth::findData(file), file);
    EXPECT_EQ(Earth::findData(folder.path()), folder.path());
    EXPECT_EQ(Earth::findData("/dev/null"), "/dev/null");
}

TEST(DataFile, keepsItsNameIfItDoesNotExist)
{
    EXPECT_EQ(Earth::findData("no such folder/land.json"), "no such folder/land.json");
}

// The data folders are determined once per process.
TEST(DataFileDeathTest, isFoundInTheDataFoldersInTheirOrder)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const TestFolder folder;
    const std::string expected = folder.write("one/land.json", "{}");
    folder.write("two/land.json", "{}");
    EXPECT_EXIT(
        {
            const std::string folders = folder.file("none") + ';' + folder.file("one") + ';' + folder.file("two");
            ::setenv("TARN_DATA", folders.c_str(), 1);
            std::exit(Earth::findData("land.json") == expected ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace DataFileTest
