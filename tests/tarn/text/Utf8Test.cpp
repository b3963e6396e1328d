#include <tarn/text/Utf8.hpp>

#include <gtest/gtest.h>

#include <string>

using namespace Tarn;

TEST(Utf8, isValidIfEveryCharacterHasItsShortestEncoding)
{
    for (const std::string text : {"", "plain\n", "\x7f", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                                   "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(findInvalidUtf8(text), std::string::npos);
    }
}

TEST(Utf8, isInvalidOtherwise)
{
    for (const std::string text : {
             "\x80", // continuation without a first byte
             "\xBF",
             "\xC0\x80", // longer than necessary
             "\xC1\xBF",
             "\xE0\x9F\xBF",
             "\xF0\x8F\xBF\xBF",
             "\xED\xA0\x80", // surrogates
             "\xED\xBF\xBF",
             "\xF4\x90\x80\x80", // beyond the last character
             "\xF5\x80\x80\x80",
             "\xFF",
             "\xC3", // truncated
             "\xE2\x82",
             "\xF0\x9F\x98",
             "\xC3(", // continuation missing
             "\xE2\x82(",
         }) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(findInvalidUtf8("ä" + text), 2u);
        EXPECT_EQ(findInvalidUtf8("ä" + text + "b"), 2u);
    }
}

TEST(Utf8, hasPlacesCountedInCharacters)
{
    const std::string text = "a\nöäb\n";
    EXPECT_EQ(placeAt(text, 0), (Place{1, 1}));
    EXPECT_EQ(placeAt(text, 1), (Place{1, 2}));
    EXPECT_EQ(placeAt(text, 2), (Place{2, 1}));
    EXPECT_EQ(placeAt(text, text.find('b')), (Place{2, 3}));
    EXPECT_EQ(placeAt(text, text.size()), (Place{3, 1}));
}

TEST(Utf8, isCountedInCharacters)
{
    EXPECT_EQ(countCharacters(""), 0u);
    EXPECT_EQ(countCharacters("aä€😀"), 4u);
}

TEST(Utf8, isMadeValidByReplacingEachInvalidByte)
{
    EXPECT_EQ(validUtf8(""), "");
    EXPECT_EQ(validUtf8("Größe 😀"), "Größe 😀");
    EXPECT_EQ(validUtf8("\xFF"), "\uFFFD");
    EXPECT_EQ(validUtf8("a\xC3(\xE2\x82ä"), "a\uFFFD(\uFFFD\uFFFDä");
}
