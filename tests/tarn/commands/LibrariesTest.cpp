#include <tarn/commands/Commands.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace LibrariesTest {

using testing::HasSubstr;
using testing::Not;

TEST(LibrariesCommand, listsLibrariesWithTheirTypes)
{
    const ProcessResult result = runTarn({"libraries"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("standard, " STANDARD_FOLDER "/standard.so\n  object types  GlobalTime, "));
    EXPECT_THAT(result.out, HasSubstr("testobjects, " TEST_OBJECTS_FOLDER
                                      "/testobjects.so\n  object types  ActionCounter, Adder,"));
}

TEST(LibrariesCommand, returnsStatus2IfANamedLibraryCannotBeLoaded)
{
    const TestFolder folder;
    folder.write("broken.so", "This is a text.");
    const TarnProcess::Options options{.environment = {"TARN_LIBRARIES=" TEST_OBJECTS_FOLDER ":" + folder.path()},
                                       .shell = {}};
    const ProcessResult all = runTarn({"libraries"}, options);
    EXPECT_EQ(all.status, 0);
    EXPECT_THAT(all.out,
                HasSubstr("broken, " + folder.file("broken.so") + "\n  refused: library \"broken\" cannot be loaded: "
                          + folder.file("broken.so") + ": the file is not a shared library\n"));
    const ProcessResult named = runTarn({"libraries", "broken"}, options);
    EXPECT_EQ(named.status, 2);
    EXPECT_THAT(named.out, HasSubstr("the file is not a shared library\n"));
    EXPECT_THAT(named.out, Not(HasSubstr("standard,")));
    const ProcessResult missing = runTarn({"libraries", "none", "testobjects", "--json"}, options);
    EXPECT_EQ(missing.status, 2);
    const auto read = nlohmann::json::parse(missing.out);
    ASSERT_EQ(read["libraries"].size(), 2u);
    EXPECT_EQ(read["libraries"][0]["name"], "testobjects");
    EXPECT_TRUE(read["libraries"][1]["path"].is_null());
    EXPECT_EQ(runTarn({"libraries", "testobjects"}, options).status, 0);
}

TEST(LibrariesCommand, loadsLibrariesOfTheWorkingFolderOnlyIfTheyAreNamed)
{
    const TarnProcess::Options inFolder{.environment = {}, .shell = "cd '" ODD_LIBRARIES_FOLDER "'"};
    const ProcessResult all = runTarn({"libraries"}, inFolder);
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.err, "") << "a library of the working folder ends the program";
    EXPECT_THAT(all.out, Not(HasSubstr(ODD_LIBRARIES_FOLDER)));
    EXPECT_THAT(runTarn({"libraries", "rivalobjects"}, inFolder).out,
                HasSubstr("rivalobjects, " ODD_LIBRARIES_FOLDER "/rivalobjects.so\n"));
}

} // namespace LibrariesTest
