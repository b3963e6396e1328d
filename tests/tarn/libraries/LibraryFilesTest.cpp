#include <tarn/libraries/LibraryFiles.hpp>

#include "tarn/TarnProcess.hpp"

#include <trellis/VObjectCreator.hpp>

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace LibraryFilesTest {

using namespace Tarn;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string testObjects = TEST_OBJECTS_FOLDER "/testobjects.so";

} // namespace

TEST(LibraryFiles, areFoundInOrderOfFolderAndName)
{
    const TestFolder folder;
    for (const char* name : {"b.so", "a.so", "a.txt", ".so", "so"})
        folder.write(std::string("second/") + name, "This is a text.");
    const auto files = findLibraryFiles({folder.file("none"), TEST_OBJECTS_FOLDER, folder.file("second")}, {});
    ASSERT_EQ(files.size(), 3u);
    EXPECT_EQ(files[0].name, "testobjects");
    EXPECT_EQ(files[0].path, testObjects);
    EXPECT_TRUE(files[0].loading);
    EXPECT_THAT(files[0].objectTypes, Contains("Adder"));
    EXPECT_THAT(files[0].objectTypes, Not(Contains("GlobalTime")));
    EXPECT_THAT(files[0].valueTypes, Contains("Ticket"));
    EXPECT_THAT(files[0].valueTypes, Not(Contains("double")));
    EXPECT_EQ(files[1].name, "a");
    EXPECT_THAT(files[1].loading.reason(),
                HasSubstr("library \"a\" cannot be loaded: " + folder.file("second/a.so") + ": "));
    EXPECT_THAT(files[1].objectTypes, IsEmpty());
    EXPECT_EQ(files[2].path, folder.file("second/b.so"));
    EXPECT_FALSE(Orla::VObjectCreator::find("Adder")) << "the library is still loaded";
}

TEST(LibraryFiles, reportWhichFileShadowsOthersOfTheSameName)
{
    const TestFolder folder;
    folder.write("bad/testobjects.so", "This is a text.");
    std::filesystem::create_directory(folder.file("copy"));
    std::filesystem::copy_file(testObjects, folder.file("copy/testobjects.so"));
    const auto files =
        findLibraryFiles({folder.file("bad"), TEST_OBJECTS_FOLDER, folder.file("copy")}, {"none", "testobjects"});
    ASSERT_EQ(files.size(), 4u);
    EXPECT_FALSE(files[0].loading);
    EXPECT_EQ(files[1].path, testObjects);
    EXPECT_EQ(files[1].shadowedBy, "") << "the earlier file cannot be loaded";
    EXPECT_EQ(files[2].path, folder.file("copy/testobjects.so"));
    EXPECT_EQ(files[2].shadowedBy, testObjects);
    EXPECT_THAT(files[2].objectTypes, Contains("Adder")) << "each file is examined separately";
    EXPECT_EQ(files[3].name, "none");
    EXPECT_EQ(files[3].path, "");
    EXPECT_THAT(files[3].loading.reason(), HasSubstr("library \"none\" was not found"));
}

// Presets without the Python package cannot load such libraries.
#ifdef HAS_PYTHON_PACKAGE

TEST(LibraryFiles, mayBeFilesInPythonThatAreNamed)
{
    const TestFolder folder;
    const std::string path =
        folder.write("idle.py", "import fathom\n@fathom.object\nclass Idle(fathom.Object): pass\n");
    EXPECT_THAT(findLibraryFiles({folder.path()}, {}), IsEmpty());
    const auto files = findLibraryFiles({folder.path()}, {"idle.py", "none.py"});
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].path, path);
    EXPECT_TRUE(files[0].loading) << files[0].loading.reason();
    EXPECT_THAT(files[0].objectTypes, ElementsAre("Idle"));
    EXPECT_THAT(files[0].valueTypes, IsEmpty());
    EXPECT_THAT(files[1].loading.reason(), HasSubstr("no file none.py in " + folder.path()));
    EXPECT_FALSE(Orla::VObjectCreator::find("Idle")) << "the library is still loaded";
}

#endif

} // namespace LibraryFilesTest
