#include <loam/Environment.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

#include <dlfcn.h>

namespace EnvironmentTest {

using namespace Loam;

namespace {

namespace fs = std::filesystem;

int staticNumber = 1;
int zeroNumbers[100'000]; // zero pages, beyond the data that is read from the file

// Gives each test its own folder; removes it afterwards and restores the working
// directory.
class Environment : public testing::Test {
protected:
    void SetUp() override
    {
        m_former = fs::current_path();
        std::string path = (fs::canonical(testing::TempDir()) / "Environment XXXXXX").string();
        ASSERT_NE(mkdtemp(path.data()), nullptr) << path;
        m_folder = path;
    }

    void TearDown() override
    {
        fs::current_path(m_former);
        std::error_code error;
        fs::remove_all(m_folder, error);
    }

    const fs::path& folder() const { return m_folder; }

    // The file of the test program, derived from the name it was started by.
    fs::path program() const { return fs::canonical(m_former / program_invocation_name); }

private:
    fs::path m_former;
    fs::path m_folder;
};

// The path of a system library that this program has loaded.
fs::path mathLibrary()
{
    const std::unique_ptr<void, int (*)(void*)> library{dlopen("libm.so.6", RTLD_NOW), &dlclose};
    return library ? fs::canonical(getLibraryPath(dlsym(library.get(), "cos"))) : fs::path();
}

} // namespace

TEST_F(Environment, returnsTheDirectoryOfTheProgram)
{
    EXPECT_EQ(getExecutableDir(), program().parent_path().string());
    fs::current_path(folder());
    EXPECT_EQ(getExecutableDir(), program().parent_path().string()) << "in another working directory";
}

TEST_F(Environment, returnsTheWorkingDirectory)
{
    fs::current_path(folder());
    EXPECT_EQ(getCurrentDir(), folder().string());
    fs::current_path("/");
    EXPECT_EQ(getCurrentDir(), "/");
}

TEST_F(Environment, returnsAnEmptyPathWhenTheWorkingDirectoryIsDeleted)
{
    const fs::path deleted = folder() / "deleted";
    fs::create_directory(deleted);
    fs::current_path(deleted);
    fs::remove(deleted);
    EXPECT_EQ(getCurrentDir(), "");
}

TEST_F(Environment, returnsTheValueOfAVariableOrTheFallback)
{
    ASSERT_EQ(setenv("LOAM_TEST_SET", " a value=1; ", 1), 0);
    ASSERT_EQ(setenv("LOAM_TEST_EMPTY", "", 1), 0);
    ASSERT_EQ(unsetenv("LOAM_TEST_UNSET"), 0);
    EXPECT_EQ(getEnvString("LOAM_TEST_SET"), " a value=1; ");
    EXPECT_EQ(getEnvString("LOAM_TEST_SET", "fallback"), " a value=1; ");
    EXPECT_EQ(getEnvString("LOAM_TEST_EMPTY", "fallback"), "") << "an empty variable is set";
    EXPECT_EQ(getEnvString("LOAM_TEST_UNSET"), "");
    EXPECT_EQ(getEnvString("LOAM_TEST_UNSET", "fallback"), "fallback");
}

TEST_F(Environment, returnsTheFallbackForUnknownNames)
{
    ASSERT_EQ(setenv("LOAM_TEST_SET", "key=value", 1), 0);
    EXPECT_EQ(getEnvString("", "fallback"), "fallback");
    EXPECT_EQ(getEnvString("=", "fallback"), "fallback");
    EXPECT_EQ(getEnvString("LOAM_TEST_SET=key", "fallback"), "fallback");
    EXPECT_EQ(getEnvString(std::string("LOAM_TEST_SET\0", 14), "fallback"), "fallback");
    EXPECT_EQ(getEnvString("loam_test_set", "fallback"), "fallback");
}

TEST_F(Environment, findsTheProgramByAnAddressOfItsCodeOrData)
{
    EXPECT_EQ(getLibraryPath(reinterpret_cast<const void*>(&mathLibrary)), program().string());
    EXPECT_EQ(getLibraryPath(&staticNumber), program().string());
    EXPECT_EQ(getLibraryPath(&zeroNumbers[99'999]), program().string());
    fs::current_path(folder());
    EXPECT_EQ(getLibraryPath(&staticNumber), program().string()) << "in another working directory";
}

TEST_F(Environment, findsASystemLibraryByAnAddressOfItsCode)
{
    const fs::path path = mathLibrary();
    EXPECT_TRUE(path.is_absolute()) << path;
    EXPECT_EQ(path.filename().string().substr(0, 4), "libm") << path;
}

TEST_F(Environment, findsNoLibraryForOtherAddresses)
{
    int local = 0;
    const auto allocated = std::make_unique<int>(0);
    EXPECT_EQ(getLibraryPath(&local), "");
    EXPECT_EQ(getLibraryPath(allocated.get()), "");
    EXPECT_EQ(getLibraryPath(nullptr), "");
}

TEST_F(Environment, returnsTheAbsolutePathOfALibraryHoweverItWasLoaded)
{
    const fs::path copy = folder() / "a copy.so";
    fs::copy_file(mathLibrary(), copy);
    fs::current_path(folder());
    for (const std::string& name : {std::string("./a copy.so"), copy.string()}) {
        SCOPED_TRACE(name);
        const std::unique_ptr<void, int (*)(void*)> library{dlopen(name.c_str(), RTLD_NOW), &dlclose};
        ASSERT_TRUE(library) << dlerror();
        const void* const address = dlsym(library.get(), "cos");
        EXPECT_EQ(getLibraryPath(address), copy.string());
        fs::current_path("/");
        EXPECT_EQ(getLibraryPath(address), copy.string()) << "in another working directory";
        fs::current_path(folder());
    }
}

TEST_F(Environment, returnsTheFormerPathOfADeletedLibrary)
{
    const fs::path copy = folder() / "a copy.so";
    fs::copy_file(mathLibrary(), copy);
    fs::current_path(folder());
    const std::unique_ptr<void, int (*)(void*)> library{dlopen("./a copy.so", RTLD_NOW), &dlclose};
    ASSERT_TRUE(library) << dlerror();
    fs::remove(copy);
    EXPECT_EQ(getLibraryPath(dlsym(library.get(), "cos")), copy.string());
}

} // namespace EnvironmentTest
