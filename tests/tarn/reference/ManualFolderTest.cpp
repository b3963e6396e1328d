#include <tarn/reference/ManualFolder.hpp>

#include "support/TestFolder.hpp"

#include <loam/FileError.hpp>

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace ManualFolderTest {

using Tarn::ManualFolder;
using Tarn::UnsuitableFolder;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Writes a manual of the files, whose content is their name followed by a text.
void write(const std::string& path, const std::vector<std::string>& names, const std::string& text)
{
    ManualFolder folder{path};
    for (const std::string& name : names)
        folder.add(name, name + text);
    folder.commit();
}

} // namespace

TEST(ManualFolder, replacesTheFilesOfAnEarlierManualAndKeepsOthers)
{
    const TestFolder folder;
    const std::string path = folder.file("manual");
    write(path, {"a.html", "b.html"}, " 1");
    folder.write("manual/notes", "mine");
    write(path, {"B.html", "c.html"}, " 2");
    EXPECT_THAT(folder.names(), ElementsAre("manual"));
    EXPECT_EQ(contentOf(path + "/B.html"), "B.html 2");
    EXPECT_EQ(contentOf(path + "/c.html"), "c.html 2");
    EXPECT_EQ(contentOf(path + "/notes"), "mine");
    EXPECT_FALSE(std::filesystem::exists(path + "/a.html"));
    EXPECT_FALSE(std::filesystem::exists(path + "/b.html"));
    EXPECT_FALSE(std::filesystem::exists(path + "/.tarn-manual-unfinished"));
}

TEST(ManualFolder, showsNothingBeforeItIsCommitted)
{
    const TestFolder folder;
    const std::string path = folder.file("manual");
    {
        ManualFolder manual{path};
        manual.add("a.html", "new");
        EXPECT_FALSE(std::filesystem::exists(path + "/a.html"));
    }
    EXPECT_THAT(folder.names(), IsEmpty());

    write(path, {"a.html"}, " old");
    {
        ManualFolder manual{path};
        manual.add("a.html", "new");
    }
    EXPECT_EQ(contentOf(path + "/a.html"), "a.html old");
}

TEST(ManualFolder, acceptsAnEmptyFolderAndWhatAKilledProcessLeft)
{
    const TestFolder folder;
    folder.write(".tarn-manual-unfinished/a.html", "incomplete");
    write(folder.path(), {"a.html"}, "");
    EXPECT_THAT(folder.names(), ElementsAre(".tarn-manual", "a.html"));
    EXPECT_EQ(contentOf(folder.file("a.html")), "a.html");
}

TEST(ManualFolder, refusesFoldersWithFilesOfOthers)
{
    const TestFolder folder;
    folder.write("notes", "mine");
    try {
        const ManualFolder manual{folder.path()};
        ADD_FAILURE() << "accepted";
    } catch (const UnsuitableFolder& error) {
        EXPECT_EQ(error.what(),
                  "the folder " + folder.path() + " contains \"notes\", expected an empty folder or an earlier manual");
    }
    EXPECT_THAT(folder.names(), ElementsAre("notes"));
}

TEST(ManualFolder, refusesToReplaceAFileThatItDidNotWrite)
{
    const TestFolder folder;
    write(folder.path(), {"a.html"}, " old");
    folder.write("b.html", "mine");
    EXPECT_THROW(write(folder.path(), {"a.html", "b.html"}, " new"), UnsuitableFolder);
    EXPECT_EQ(contentOf(folder.file("a.html")), "a.html old");
    EXPECT_EQ(contentOf(folder.file("b.html")), "mine");
}

TEST(ManualFolder, removesNothingOutsideItself)
{
    const TestFolder folder;
    folder.write("precious", "mine");
    folder.write("manual/.tarn-manual", "../precious\n..\n.\n/\n" + folder.file("precious") + "\n\n");
    write(folder.file("manual"), {"a.html"}, "");
    EXPECT_EQ(contentOf(folder.file("precious")), "mine");
}

TEST(ManualFolder, reportsFoldersAndFilesThatCannotBeWritten)
{
    const TestFolder folder;
    folder.write("file", "");
    EXPECT_THROW(ManualFolder{folder.file("file")}, Loam::FileError);
    EXPECT_THROW(ManualFolder{folder.file("missing/manual")}, Loam::FileError);
    ManualFolder manual{folder.file("manual")};
    EXPECT_THROW(manual.add(std::string(300, 'x'), ""), Loam::FileError);
}

} // namespace ManualFolderTest
