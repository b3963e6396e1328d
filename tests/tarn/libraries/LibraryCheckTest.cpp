#include <tarn/libraries/LibraryCheck.hpp>

#include "support/TestFolder.hpp"

#include <loam/InterfaceVersion.hpp>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

#include <elf.h>
#include <sys/stat.h>

namespace LibraryCheckTest {

using namespace Tarn;
using testing::HasSubstr;

namespace {

const std::string objects = TEST_OBJECTS_FOLDER "/testobjects.so";

// Returns the bytes of the test objects with `found`, which must occur, replaced.
std::string objectsWith(const std::string& found, const std::string& replacement)
{
    std::string bytes = contentOf(objects);
    const std::size_t place = bytes.find(found);
    EXPECT_NE(place, std::string::npos);
    return bytes.replace(place, found.size(), replacement);
}

std::string note(char version)
{
    using namespace std::string_literals;
    return "\1\0\0\0fathom\0\0"s + version + "\0\0\0"s;
}

} // namespace

TEST(LibraryCheck, acceptsObjectLibrariesOfThisBuild)
{
    EXPECT_TRUE(checkLibraryFile(objects));
    EXPECT_TRUE(checkLibraryFile(STANDARD_FOLDER "/standard.so"));
}

TEST(LibraryCheck, refusesLibrariesForAnotherBinaryInterfaceWithBothVersions)
{
    const TestFolder folder;
    const auto own = static_cast<char>(Loam::InterfaceVersion);
    const std::string file = folder.write("newer.so", objectsWith(note(own), note(char(own + 7))));
    EXPECT_EQ(checkLibraryFile(file).reason(), "it was built for version " + std::to_string(own + 7)
                                                   + " of the binary interface, expected version "
                                                   + std::to_string(Loam::InterfaceVersion));
}

TEST(LibraryCheck, refusesLibrariesThatNeedOtherVersionsOfTheFramework)
{
    const TestFolder folder;
    const std::string own = "libfathom.so." + std::to_string(Loam::InterfaceVersion);
    const std::string other = "libfathom.so.9";
    ASSERT_EQ(own.size(), other.size());
    EXPECT_EQ(checkLibraryFile(folder.write("other.so", objectsWith(own, other))).reason(),
              "it needs libfathom.so.9, expected " + own);
}

TEST(LibraryCheck, refusesLibrariesThatNeedABrokenLibraryBesideThem)
{
    const TestFolder folder;
    std::filesystem::copy_file(STANDARD_FOLDER "/quakes.so", folder.file("quakes.so"));
    EXPECT_TRUE(checkLibraryFile(folder.file("quakes.so"))) << "the loader searches for libraries elsewhere";
    const std::string earth = folder.write("earth.so", "This is a text.");
    EXPECT_EQ(checkLibraryFile(folder.file("quakes.so")).reason(),
              "it needs " + earth + ": the file is not a shared library");
}

TEST(LibraryCheck, refusesFilesThatAreNotObjectLibraries)
{
    const TestFolder folder;
    std::filesystem::create_directory(folder.file("folder.so"));
    ::mkfifo(folder.file("pipe.so").c_str(), 0600);
    const std::string notALibrary = "the file is not a shared library";
    const std::string withoutNote = "the file is not an object library: it lacks the note";
    const struct {
        std::string path;
        std::string reason;
    } cases[] = {
        {folder.write("empty.so", ""), notALibrary},
        {folder.write("text.so", "This is a text that is longer than the header of a library, which has 64 bytes.\n"),
         notALibrary},
        {folder.file("folder.so"), notALibrary},
        {folder.file("pipe.so"), notALibrary},
        {"/dev/null", notALibrary},
        {folder.file("missing.so"), std::string("cannot read it: ") + std::strerror(ENOENT)},
        {TARN_PROGRAM, withoutNote},
        {STANDARD_FOLDER "/../libloam.so", withoutNote},
    };
    for (const auto& [path, reason] : cases) {
        SCOPED_TRACE(path);
        EXPECT_THAT(checkLibraryFile(path).reason(), HasSubstr(reason));
    }
}

TEST(LibraryCheck, refusesTruncatedFilesOfAnyLength)
{
    const TestFolder folder;
    const std::string bytes = contentOf(objects);
    const std::string file = folder.write("cut.so", bytes);
    for (std::size_t size = bytes.size(); size-- > 0; size -= std::min(size, size < 5000 ? 0 : size / 300)) {
        std::filesystem::resize_file(file, size);
        ASSERT_FALSE(checkLibraryFile(file)) << size;
    }
    folder.write("cut.so", bytes.substr(0, bytes.size() - 1));
    EXPECT_EQ(checkLibraryFile(file).reason(), "the file is truncated: found " + std::to_string(bytes.size() - 1)
                                                   + " bytes, expected " + std::to_string(bytes.size()));
}

TEST(LibraryCheck, survivesDamagedHeaders)
{
    const TestFolder folder;
    const std::string bytes = contentOf(objects);
    for (std::size_t place = 0; place < 1024; ++place) {
        for (const char wrong : {'\xff', '\x7f', '\0'}) {
            std::string damaged = bytes.substr(0, 4096) + std::string(4096, '\0');
            damaged[place] = wrong;
            EXPECT_FALSE(checkLibraryFile(folder.write("damaged.so", damaged))) << place;
        }
    }
}

TEST(LibraryCheck, refusesPartsWhoseEndIsNotANumberOf64Bits)
{
    const TestFolder folder;
    std::string bytes = contentOf(objects);
    // The first part, whose offset and size in the file follow the headers.
    const std::uint64_t offset = ~std::uint64_t{0} - 0xFFF;
    const std::uint64_t size = 0x2000;
    std::memcpy(bytes.data() + sizeof(Elf64_Ehdr) + offsetof(Elf64_Phdr, p_offset), &offset, sizeof offset);
    std::memcpy(bytes.data() + sizeof(Elf64_Ehdr) + offsetof(Elf64_Phdr, p_filesz), &size, sizeof size);
    EXPECT_EQ(checkLibraryFile(folder.write("damaged.so", bytes)).reason(),
              "the file is damaged: a part ends beyond any file");
}

} // namespace LibraryCheckTest
