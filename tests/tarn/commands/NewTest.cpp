#include <tarn/commands/Commands.hpp>
#include <tarn/commands/Templates.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/wait.h>

namespace NewTest {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

ProcessResult runIn(const std::string& folder, const std::vector<std::string>& arguments)
{
    return runTarn(arguments, {.environment = {}, .shell = "cd '" + folder + "'"});
}

// Runs a command of the shell in the folder and returns what it printed. Expects its success.
std::string shell(const TestFolder& folder, const std::string& command)
{
    const std::string log = folder.file("log");
    const int status = std::system(("{ " + command + "; } >" + log + " 2>&1").c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command << '\n' << contentOf(log);
    return contentOf(log);
}

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    return names;
}

} // namespace

TEST(NewCommand, createsALibraryThatBuildsPassesItsTestsAndRuns)
{
    const TestFolder folder;
    const ProcessResult created = runIn(folder.path(), {"new", "library", "tides"});
    EXPECT_EQ(created.status, 0) << created.err;
    EXPECT_EQ(created.out, "created tides with the object type Tides; see tides/README.md\n");
    const std::string library = folder.file("tides");
    EXPECT_THAT(namesIn(library), UnorderedElementsAre(".gitignore", "CMakeLists.txt", "README.md", "Tides.cpp",
                                                       "TidesTest.cpp", "tides.toml"));
    const ProcessResult added = runIn(library, {"new", "object", "Harbour"});
    EXPECT_EQ(added.status, 0) << added.err;
    EXPECT_EQ(added.out, "created Harbour.cpp and HarbourTest.cpp\n");

    const std::string cmake = CMAKE_PROGRAM;
    const std::string build = "'" + library + "/build'";
    shell(folder, cmake + " -S '" + library + "' -B " + build
                      + " -G Ninja -Dfathom_DIR='" FATHOM_PACKAGE "' -DCMAKE_CXX_COMPILER='" CXX_COMPILER
                        "' -DCMAKE_CXX_FLAGS='" CXX_FLAGS "' -DCMAKE_COMPILE_WARNING_AS_ERROR=ON && "
                      + cmake + " --build " + build);
    EXPECT_THAT(shell(folder, "cd " + build + " && ctest"), HasSubstr("100% tests passed, 0 tests failed out of 4"));

    const TarnProcess::Options built{.environment = {"TARN_LIBRARIES=" + library + "/build/lib/fathom"}, .shell = {}};
    const ProcessResult run = runTarn({"run", library + "/tides.toml", "--table=-"}, built);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "step,result\n0,0\n1,1.5\n2,3\n");
    EXPECT_THAT(runTarn({"objects", "tides"}, built).out,
                ContainsRegex("Object type Harbour, (.|\n)*Object type Tides, "));
}

TEST(NewCommand, fillsInEveryTemplateOfTheFolder)
{
    std::vector<std::string> embedded;
    for (const Tarn::Template& file : Tarn::libraryTemplates()) {
        embedded.push_back(file.name);
        EXPECT_EQ(file.text, contentOf(TEMPLATES_FOLDER "/" + file.name));
    }
    EXPECT_THAT(embedded, testing::UnorderedElementsAreArray(namesIn(TEMPLATES_FOLDER)));

    const TestFolder folder;
    EXPECT_EQ(runIn(folder.path(), {"new", "library", "tides"}).status, 0);
    for (const std::string& name : namesIn(folder.file("tides"))) {
        SCOPED_TRACE(name);
        EXPECT_THAT(contentOf(folder.file("tides/" + name)),
                    testing::Not(testing::AnyOf(HasSubstr("SampleObject"), HasSubstr("samplelibrary"))));
    }
}

TEST(NewCommand, usesNamesThatContainThoseOfTheTemplates)
{
    const TestFolder folder;
    const std::string name = "SampleObject_samplelibrary";
    EXPECT_EQ(runIn(folder.path(), {"new", "library", name}).status, 0);
    EXPECT_THAT(contentOf(folder.file(name + "/" + name + ".toml")), HasSubstr("libraries = [\"" + name + "\"]\n"));
}

TEST(NewCommand, refusesNamesThatWouldNotBuildOrAreTaken)
{
    const TestFolder folder;
    const struct {
        const char* kind;
        const char* name;
        const char* message;
    } cases[] = {
        {"library", "", "the name \"\" is refused, expected letters, digits"},
        {"library", "2d", "the name \"2d\" is refused, expected letters, digits"},
        {"library", "a-b", "the name \"a-b\" is refused"},
        {"library", "a b", "the name \"a b\" is refused"},
        {"library", "../a", "the name \"../a\" is refused"},
        {"library", "_a", "the name \"_a\" is refused"},
        {"library", "a__b", "the name \"a__b\" is refused"},
        {"library", "EOF", "the name \"EOF\" is refused"},
        {"library", "m\xC3\xB6we", "is refused"},
        {"library", "class", "the name \"class\" has a meaning of its own in C++, CMake or the framework"},
        {"library", "test", "the name \"test\" has a meaning of its own"},
        {"library", "standard", "the name \"standard\" has a meaning of its own"},
        {"library", "keyAction", "an object type \"KeyAction\" exists already, expected another name"},
        {"library", "range", "a value type \"Range\" exists already, expected another name"},
        {"object", "GlobalTime", "an object type \"GlobalTime\" exists already"},
        {"object", "Orla", "the name \"Orla\" has a meaning of its own"},
        {"object", "berth", "the name \"berth\" is refused, expected one that begins with a capital letter"},
        {"network", "tides", "found \"network\", expected library or object"},
    };
    for (const auto& [kind, name, message] : cases) {
        SCOPED_TRACE(name);
        const ProcessResult result = runIn(folder.path(), {"new", kind, name});
        EXPECT_EQ(result.status, 3);
        EXPECT_THAT(result.err, HasSubstr(message));
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(runIn(folder.path(), {"new", "library", std::string(101, 'a')}).status, 3);
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(NewCommand, leavesFilesThatExistAsTheyAre)
{
    const TestFolder folder;
    folder.write("tides/mine", "mine");
    const ProcessResult taken = runIn(folder.path(), {"new", "library", "tides"});
    EXPECT_EQ(taken.status, 4);
    EXPECT_EQ(taken.err, "tarn: cannot create the folder tides: File exists\n");
    EXPECT_THAT(namesIn(folder.file("tides")), ElementsAre("mine"));

    EXPECT_EQ(runIn(folder.path(), {"new", "library", "waves"}).status, 0);
    const std::string library = folder.file("waves");
    const std::string build = contentOf(library + "/CMakeLists.txt");
    folder.write("waves/BerthTest.cpp", "mine");
    const ProcessResult object = runIn(library, {"new", "object", "Berth"});
    EXPECT_EQ(object.status, 4);
    EXPECT_EQ(object.err, "tarn: cannot create BerthTest.cpp: File exists\n");
    EXPECT_EQ(contentOf(library + "/BerthTest.cpp"), "mine");
    EXPECT_FALSE(std::filesystem::exists(library + "/Berth.cpp"));
    EXPECT_EQ(contentOf(library + "/CMakeLists.txt"), build);
}

TEST(NewCommand, addsObjectsOnlyToFoldersThatItMade)
{
    const TestFolder folder;
    const std::string message =
        "tarn: the working folder has no CMakeLists.txt with the lines \"# Objects:\" and \"# Tests:\", "
        "expected a folder that tarn new library made\n";
    const ProcessResult empty = runIn(folder.path(), {"new", "object", "Berth"});
    EXPECT_EQ(empty.status, 3);
    EXPECT_THAT(empty.err, HasSubstr(message));
    folder.write("CMakeLists.txt", "project(other)\n    # Objects:\n");
    EXPECT_THAT(runIn(folder.path(), {"new", "object", "Berth"}).err, HasSubstr(message));
    EXPECT_THAT(folder.names(), ElementsAre("CMakeLists.txt"));
    EXPECT_EQ(contentOf(folder.file("CMakeLists.txt")), "project(other)\n    # Objects:\n");
}

TEST(NewCommand, leavesNothingBehindIfItCannotReport)
{
    const TestFolder folder;
    const ProcessResult result = runTarn({"new", "library", "tides"},
                                         {.environment = {}, .shell = "cd '" + folder.path() + "'; exec >/dev/full"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(folder.names(), IsEmpty());
}

} // namespace NewTest
