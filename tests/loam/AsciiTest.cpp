#include <loam/Ascii.hpp>

#include "support/Locales.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <limits>

namespace AsciiTest {

using namespace Loam;

TEST(Ascii, agreesWithTheClassesOfTheCLocale)
{
    const InClassicLocale locale;
    for (int code = std::numeric_limits<char>::min(); code <= std::numeric_limits<char>::max(); ++code) {
        SCOPED_TRACE(code);
        const char c = static_cast<char>(code);
        const int byte = static_cast<unsigned char>(c);
        EXPECT_EQ(isDigit(c), std::isdigit(byte) != 0);
        EXPECT_EQ(isLetter(c), std::isalpha(byte) != 0);
        EXPECT_EQ(toLower(c), static_cast<char>(std::tolower(byte)));
    }
}

} // namespace AsciiTest
