#include <tarn/libraries/PythonLibraries.hpp>

#include "tarn/TarnProcess.hpp"

#include <trellis/VObjectCreator.hpp>

#include <gmock/gmock.h>

namespace PythonLibrariesTest {

using namespace Tarn;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

TEST(PythonLibraries, haveNamesThatEndWithTheExtensionOfPython)
{
    EXPECT_TRUE(isPythonLibrary("deepest.py"));
    EXPECT_FALSE(isPythonLibrary("deepest"));
    EXPECT_FALSE(isPythonLibrary("py"));
}

// Presets without the Python package cannot load such libraries.
#ifdef HAS_PYTHON_PACKAGE

TEST(PythonLibraries, registerTheirTypesUntilTheLastUserUnloadsThem)
{
    const TestFolder folder;
    const std::string path =
        folder.write("idle.py", "import fathom\n@fathom.object\nclass Idle(fathom.Object): pass\n");
    EXPECT_TRUE(loadPythonLibrary(path, STANDARD_FOLDER));
    EXPECT_TRUE(loadPythonLibrary(path, STANDARD_FOLDER));
    EXPECT_EQ(Orla::VObjectCreator::find("Idle")->file(), path);
    unloadPythonLibrary(path);
    EXPECT_THAT(Orla::VObjectCreator::names(), Contains("Idle"));
    unloadPythonLibrary(path);
    EXPECT_THAT(Orla::VObjectCreator::names(), Not(Contains("Idle")));
}

TEST(PythonLibraries, areRefusedWithTheLineOfTheError)
{
    const TestFolder folder;
    const std::string path = folder.write("broken.py", "import fathom\nnowhere\n");
    EXPECT_THAT(loadPythonLibrary(path, STANDARD_FOLDER).reason(),
                HasSubstr(path + ": line 2: NameError: name 'nowhere' is not defined"));
}

#endif

} // namespace PythonLibrariesTest
