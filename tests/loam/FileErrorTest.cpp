#include <loam/FileError.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <system_error>
#include <type_traits>

namespace FileErrorTest {

using namespace Loam;

static_assert(std::is_base_of_v<std::runtime_error, FileError>);
static_assert(!std::is_convertible_v<std::string, FileError>);

TEST(FileError, statesWhatFailedAndWhy)
{
    EXPECT_STREQ(FileError("cannot read a: it is a folder").what(), "cannot read a: it is a folder");
    EXPECT_EQ(FileError("cannot read a", ENOENT).what(), "cannot read a: " + std::generic_category().message(ENOENT));
}

} // namespace FileErrorTest
