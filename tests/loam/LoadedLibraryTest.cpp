#include <loam/LoadedLibrary.hpp>

#include <loam/Environment.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

#include <dlfcn.h>

namespace LoadedLibraryTest {

namespace {

void* load(const char* path)
{
    void* const handle = ::dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        throw std::runtime_error(::dlerror());
    return handle;
}

const int ownData = 1;

} // namespace

TEST(LoadedLibrary, containsItsOwnCodeOnly)
{
    void* const handle = load(GABLE_LIBRARY);
    Loam::LoadedLibrary library{handle};
    const void* const code =
        ::dlsym(handle, "_ZN4Gyre10MultiRangeC1ERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
    ASSERT_TRUE(code);
    EXPECT_TRUE(library.contains(code));
    EXPECT_FALSE(library.contains(&ownData)) << "the program";
    EXPECT_FALSE(library.contains(reinterpret_cast<const void*>(&Loam::getLibraryPath))) << "a library that it needs";
    EXPECT_FALSE(library.contains(nullptr));
    EXPECT_FALSE(library.contains(&library));
    library.close();
    EXPECT_FALSE(::dlopen(GABLE_LIBRARY, RTLD_NOW | RTLD_NOLOAD));
}

TEST(LoadedLibrary, containsNothingThatTheProgramNeedsItself)
{
    Loam::LoadedLibrary library{
        load(Loam::getLibraryPath(reinterpret_cast<const void*>(&Loam::getLibraryPath)).c_str())};
    EXPECT_FALSE(library.contains(reinterpret_cast<const void*>(&Loam::getLibraryPath)));
    library.close();
}

TEST(LoadedLibrary, containsNothingThatAnotherLoadedLibraryNeeds)
{
    void* const left = load(LEFT_LIBRARY);
    const void* const common = ::dlsym(left, "commonValue");
    const void* const own = ::dlsym(left, "useCommon");
    ASSERT_TRUE(common && own);
    EXPECT_TRUE(Loam::LoadedLibrary{left}.contains(common)) << "unloaded together";

    void* const right = load(RIGHT_LIBRARY);
    Loam::LoadedLibrary library{left};
    EXPECT_FALSE(library.contains(common)) << "stays for the other library";
    EXPECT_TRUE(library.contains(own));
    library.close();
    EXPECT_TRUE(Loam::LoadedLibrary{right}.contains(common));
    Loam::LoadedLibrary{right}.close();
}

} // namespace LoadedLibraryTest
