#include <tarn/network/NetworkReading.hpp>

#include <loam/FileError.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace NetworkReadingTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class NetworkReadingTest : public testing::Test {
protected:
    NetworkReadingTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }

    ~NetworkReadingTest() override
    {
        std::filesystem::current_path(m_former);
        ::unsetenv("TARN_LIBRARIES");
    }

    NetworkSource source(const std::string& network) const
    {
        return NetworkSource{m_folder.write("net.toml", networkHead + network)};
    }

    const TestFolder& folder() const noexcept { return m_folder; }

private:
    const std::filesystem::path m_former = std::filesystem::current_path();
    TestFolder m_folder;
};

} // namespace

TEST_F(NetworkReadingTest, givesTheValuesOfTheInputs)
{
    NetworkReading reading{source(object("x", "Adder", "set.a = 1\n")), {"x.a=2.50"}};
    EXPECT_THAT(reading.faults().lines(), IsEmpty());
    ASSERT_EQ(reading.inputs().objects.size(), 1u);
    ASSERT_EQ(reading.inputs().objects[0].set.size(), 1u);
    EXPECT_EQ(reading.inputs().objects[0].set[0].value->Text(), "2.5");
    EXPECT_EQ(reading.file().objects[0].name.text, "x");
    EXPECT_EQ(reading.folder(), folder().path());
    EXPECT_TRUE(reading.unload());
}

TEST_F(NetworkReadingTest, knowsTheTypesUntilItsLibrariesAreUnloaded)
{
    NetworkReading reading{source(object("x", "Adder", "set.a = 1\n")), {}};
    EXPECT_TRUE(NetworkReading::isKnownType("Adder"));
    EXPECT_TRUE(reading.unload());
    EXPECT_FALSE(NetworkReading::isKnownType("Adder"));
}

TEST_F(NetworkReadingTest, keepsObjectsOfUnknownTypesApartFromFaults)
{
    NetworkReading reading{source(object("x", "Strange", "set.a = 1\n") + object("y", "Adder", "set.c = 1\n")), {}};
    EXPECT_THAT(reading.unknown().lines(), ElementsAre(folder().file("net.toml")
                                                       + ":5:8: object \"x\": no library has "
                                                         "an object type \"Strange\""));
    EXPECT_THAT(
        reading.faults().lines(),
        ElementsAre(folder().file("net.toml") + ":10:5: object \"y\": Adder has no input \"c\"; available: a, b"));
    EXPECT_EQ(reading.file().objects[0].kept, "set.a = 1\n");
    EXPECT_TRUE(reading.unload());
}

TEST_F(NetworkReadingTest, requiresAFile)
{
    EXPECT_THROW(NetworkSource{folder().file("none.toml")}, Loam::FileError);
}

} // namespace NetworkReadingTest
