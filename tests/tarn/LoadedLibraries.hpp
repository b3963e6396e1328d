#pragma once

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/libraries/Libraries.hpp>

#include <gtest/gtest.h>

/// Loads the standard library and the test objects. After the test, removes all announced
/// objects and unloads the libraries.
class LoadedLibraries : public testing::Test {
protected:
    LoadedLibraries()
    {
        EXPECT_TRUE(m_libraries.load(Tarn::StandardLibrary));
        EXPECT_TRUE(m_libraries.load("testobjects"));
    }

    ~LoadedLibraries() override
    {
        Tarn::removeAnnouncedObjects();
        EXPECT_TRUE(m_libraries.unload());
    }

private:
    Tarn::Libraries m_libraries{{STANDARD_FOLDER, TEST_OBJECTS_FOLDER}};
};
