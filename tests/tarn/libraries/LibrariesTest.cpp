#include <tarn/libraries/Libraries.hpp>

#include "tarn/TarnProcess.hpp"

#include <trellis/VActionNotifier.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VValueCreator.hpp>

#include <loam/Environment.hpp>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>

namespace LibrariesTest {

using namespace Tarn;
using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

const std::string objectsFile = TEST_OBJECTS_FOLDER "/testobjects.so";

bool isLoaded(const std::string& path)
{
    void* handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle)
        ::dlclose(handle);
    return handle != nullptr;
}

class WarningListener final : public Orla::VActionNotifier {
public:
    bool warned(const std::string& message) override
    {
        last = message;
        return true;
    }

    std::string last;
};

// Sets an environment variable for the duration of a test.
class Setting {
public:
    Setting(const char* name, const std::string& value) : m_name{name}, m_former{Loam::getEnvString(name)}
    {
        ::setenv(name, value.c_str(), 1);
    }
    ~Setting() { ::setenv(m_name, m_former.c_str(), 1); }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

private:
    const char* m_name;
    std::string m_former;
};

} // namespace

TEST(Libraries, registerTheirTypesAndRemoveThemWhenUnloaded)
{
    const auto values = Orla::VValueCreator::names();
    const auto objects = Orla::VObjectCreator::names();
    Libraries libraries{{STANDARD_FOLDER, TEST_OBJECTS_FOLDER}};
    EXPECT_TRUE(libraries.load("standard"));
    EXPECT_TRUE(libraries.load("testobjects"));
    EXPECT_TRUE(Orla::VObjectCreator::find("GlobalTime"));
    EXPECT_TRUE(Orla::VObjectCreator::find("Adder"));
    EXPECT_TRUE(Orla::VValueCreator::find("int"));
    EXPECT_TRUE(libraries.unload());
    EXPECT_EQ(Orla::VValueCreator::names(), values);
    EXPECT_EQ(Orla::VObjectCreator::names(), objects);
    EXPECT_FALSE(isLoaded(objectsFile));
}

TEST(Libraries, areLoadedOnce)
{
    Libraries libraries{{TEST_OBJECTS_FOLDER}};
    EXPECT_TRUE(libraries.load("testobjects"));
    EXPECT_TRUE(libraries.load("testobjects"));
    EXPECT_TRUE(libraries.unload());
    EXPECT_FALSE(isLoaded(objectsFile));
}

TEST(Libraries, stayLoadedUnlessTheyAreUnloaded)
{
    {
        Libraries libraries{{TEST_OBJECTS_FOLDER}};
        EXPECT_TRUE(libraries.load("testobjects"));
    }
    void* handle = ::dlopen(objectsFile.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_TRUE(handle);
    ::dlclose(handle); // the reference taken above
    ::dlclose(handle); // the reference left behind
    EXPECT_FALSE(isLoaded(objectsFile));
}

TEST(Libraries, listTheFoldersSearchedForAMissingLibrary)
{
    const TestFolder folder;
    Libraries libraries{{folder.path(), "/nowhere"}};
    EXPECT_EQ(libraries.load("none").reason(),
              "library \"none\" was not found: no file none.so in " + folder.path() + ", /nowhere");
}

TEST(Libraries, addOneFaultPerMissingLibraryAtItsFirstPlace)
{
    const TestFolder folder;
    Libraries libraries{{folder.path()}};
    Faults faults{"net.toml"};
    EXPECT_THAT(libraries.loadAll({{"none", {2, 14}}, {"none", {2, 22}}}, faults), ElementsAre("standard", "none"));
    EXPECT_THAT(faults.lines(), ElementsAre(HasSubstr("net.toml:2:14: library \"none\" was not found"),
                                            HasSubstr("library \"standard\" was not found")));
}

TEST(Libraries, reportTheReasonForEachFileThatCannotBeLoaded)
{
    const TestFolder folder;
    folder.write("a/broken.so", "This is not a library.\n");
    folder.write("b/broken.so", "");
    Libraries libraries{{folder.file("a"), folder.file("none"), folder.file("b")}};
    EXPECT_EQ(libraries.load("broken").reason(), "library \"broken\" cannot be loaded: " + folder.file("a/broken.so")
                                                     + ": the file is not a shared library; "
                                                     + folder.file("b/broken.so")
                                                     + ": the file is not a shared library");
}

TEST(Libraries, areRefusedAndUnloadedIfTheyRegisterNoTypes)
{
    Libraries libraries{{ODD_LIBRARIES_FOLDER}};
    EXPECT_EQ(libraries.load("emptylibrary").reason(),
              "library \"emptylibrary\" cannot be loaded: " ODD_LIBRARIES_FOLDER
              "/emptylibrary.so: the library registers neither object types nor value types");
    EXPECT_FALSE(isLoaded(ODD_LIBRARIES_FOLDER "/emptylibrary.so"));
}

TEST(Libraries, stayInMemoryWhileAnObjectOfThemExists)
{
    Libraries libraries{{STANDARD_FOLDER, TEST_OBJECTS_FOLDER}};
    ASSERT_TRUE(libraries.load("standard"));
    ASSERT_TRUE(libraries.load("testobjects"));
    Orla::StrongPtr<Orla::VObject> adder = Orla::VObjectCreator::find("Adder")->create("first", 0, nullptr);
    EXPECT_EQ(libraries.unload().reason(),
              "library \"testobjects\" stays in memory because Adder \"first\" is still in use");
    EXPECT_TRUE(Orla::VObjectCreator::find("GlobalTime")) << "a library that was loaded before it was unloaded";
    adder.reset();
    EXPECT_TRUE(libraries.unload());
    EXPECT_FALSE(isLoaded(objectsFile));
}

TEST(Libraries, mayBeLoadedAndUnloadedRepeatedly)
{
    for (int i = 0; i < 20; ++i) {
        Libraries libraries{{STANDARD_FOLDER, TEST_OBJECTS_FOLDER}};
        ASSERT_TRUE(libraries.load("testobjects"));
        ASSERT_TRUE(libraries.load("quakes"));
        ASSERT_TRUE(libraries.unload());
        ASSERT_FALSE(isLoaded(objectsFile));
        ASSERT_FALSE(isLoaded(STANDARD_FOLDER "/earth.so"));
    }
}

TEST(Libraries, areLoadedFromTheNextFolderWhenTheFirstFileIsBroken)
{
    const TestFolder folder;
    folder.write("testobjects.so", "broken");
    const auto listener = Loam::makeStrong<WarningListener>();
    Orla::VActionNotifier::add(listener);
    Libraries libraries{{folder.path(), TEST_OBJECTS_FOLDER}};
    EXPECT_TRUE(libraries.load("testobjects"));
    EXPECT_TRUE(Orla::VObjectCreator::find("Adder"));
    EXPECT_THAT(listener->last, AllOf(StartsWith("library \"testobjects\" was loaded from " + objectsFile
                                                 + " after other files failed to load: "),
                                      ContainsRegex(folder.file("testobjects.so") + ": .+")));
    EXPECT_TRUE(libraries.unload());
}

TEST(Libraries, areSearchedInTheInstallationTheVariableAndTheNetworkFolder)
{
    const Setting setting{"TARN_LIBRARIES", "/a/b:relative::/a/b/"};
    const std::string beside = std::filesystem::path(Loam::getExecutableDir()).parent_path().string() + "/lib/fathom";
    EXPECT_THAT(Libraries::searchPath("/network"),
                testing::ElementsAre(beside, "/a/b", Loam::getCurrentDir() + "/relative", "/network", "/network/lib"));
    EXPECT_THAT(Libraries::searchPath(), testing::ElementsAre(beside, "/a/b", Loam::getCurrentDir() + "/relative"));
}

TEST(Libraries, areInstalledUnderThePrefixOfAProgramOrASharedLibrary)
{
    const TestFolder folder;
    const std::string expected = folder.file("lib/fathom");
    for (const char* file :
         {"bin/tarn", "lib/libtarn.so.0", "lib64/libtarn.so.0", "lib/x86_64-linux-gnu/libtarn.so.0"}) {
        SCOPED_TRACE(file);
        EXPECT_EQ(Libraries::installedFolder(folder.write(file, "")), expected);
    }
    const TestFolder other;
    std::filesystem::create_symlink(folder.file("lib/libtarn.so.0"), other.file("libtarn.so.0"));
    EXPECT_EQ(Libraries::installedFolder(other.file("libtarn.so.0")), expected);
    EXPECT_EQ(Libraries::installedFolder("/deleted/lib/libtarn.so.0"), "/deleted/lib/fathom");
}

} // namespace LibrariesTest
