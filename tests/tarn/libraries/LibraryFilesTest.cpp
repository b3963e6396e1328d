#include <tarn/libraries/LibraryFiles.hpp>

#include "tarn/TarnProcess.hpp"

#include <trellis/VObjectCreator.hpp>

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>

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

TEST(LibraryFiles, areListedWithTheirTypes)
{
    const ProcessResult result = runTarn({"libraries"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("standard, " STANDARD_FOLDER "/standard.so\n  object types  GlobalTime, "));
    EXPECT_THAT(result.out, HasSubstr("testobjects, " + testObjects + "\n  object types  ActionCounter, Adder,"));
}

TEST(LibraryFiles, failTheCommandOnlyIfTheyAreNamed)
{
    const TestFolder folder;
    folder.write("broken.so", "This is a text.");
    const TarnProcess::Options options{.environment = {}, .shell = "cd '" + folder.path() + "'"};
    const ProcessResult all = runTarn({"libraries"}, options);
    EXPECT_EQ(all.status, 0);
    EXPECT_THAT(all.out,
                HasSubstr("broken, " + folder.file("broken.so") + "\n  refused: library \"broken\" cannot be loaded: "
                          + folder.file("broken.so") + ": file too short\n"));
    const ProcessResult named = runTarn({"libraries", "broken"}, options);
    EXPECT_EQ(named.status, 2);
    EXPECT_THAT(named.out, HasSubstr("file too short\n"));
    EXPECT_THAT(named.out, Not(HasSubstr("standard,")));
    const ProcessResult missing = runTarn({"libraries", "none", "testobjects", "--json"}, options);
    EXPECT_EQ(missing.status, 2);
    const auto read = nlohmann::json::parse(missing.out);
    ASSERT_EQ(read["libraries"].size(), 2u);
    EXPECT_EQ(read["libraries"][0]["name"], "testobjects");
    EXPECT_TRUE(read["libraries"][1]["path"].is_null());
    EXPECT_EQ(runTarn({"libraries", "testobjects"}, options).status, 0);
}
