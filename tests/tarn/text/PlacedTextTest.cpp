#include <tarn/text/PlacedText.hpp>

#include <gtest/gtest.h>

#include <string>

namespace PlacedTextTest {

using namespace Tarn;

TEST(PlacedText, hasItsPlaceCountedInCharacters)
{
    const std::string text = "a\nöäb\n";
    EXPECT_EQ(placeAt(text, 0), (Place{1, 1}));
    EXPECT_EQ(placeAt(text, 1), (Place{1, 2}));
    EXPECT_EQ(placeAt(text, 2), (Place{2, 1}));
    EXPECT_EQ(placeAt(text, text.find('b')), (Place{2, 3}));
    EXPECT_EQ(placeAt(text, text.size()), (Place{3, 1}));
}

} // namespace PlacedTextTest
