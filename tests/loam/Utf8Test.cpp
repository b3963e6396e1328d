#include <loam/Utf8.hpp>

#include <gtest/gtest.h>

#include <string>

namespace Utf8Test {

using namespace Loam;

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

TEST(Utf8, hasCharactersOfOneToFourBytes)
{
    EXPECT_EQ(characterLength(""), 0u);
    EXPECT_EQ(characterLength("ab"), 1u);
    EXPECT_EQ(characterLength("äb"), 2u);
    EXPECT_EQ(characterLength("€b"), 3u);
    EXPECT_EQ(characterLength("😀b"), 4u);
    EXPECT_EQ(characterLength("\xC3(b"), 0u);
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

TEST(Utf8, encodesTheFirstAndLastCharacterOfEachLength)
{
    const struct {
        char32_t code;
        const char* encoded;
    } cases[] = {
        {0x01, "\x01"},
        {0x7F, "\x7F"},
        {0x80, "\xC2\x80"},
        {0x7FF, "\xDF\xBF"},
        {0x800, "\xE0\xA0\x80"},
        {0xD7FF, "\xED\x9F\xBF"},
        {0xE000, "\xEE\x80\x80"},
        {0xFFFF, "\xEF\xBF\xBF"},
        {0x10000, "\xF0\x90\x80\x80"},
        {0x10FFFF, "\xF4\x8F\xBF\xBF"},
    };
    for (const auto& [code, encoded] : cases) {
        std::string text = "a";
        appendUtf8(text, code);
        EXPECT_EQ(text, "a" + std::string(encoded));
    }
    std::string text;
    appendUtf8(text, 0);
    EXPECT_EQ(text, std::string(1, '\0'));
}

TEST(Utf8, consistsOfCharactersThatBeginWithAnotherByteThanTheyContinueWith)
{
    for (const char32_t code : {U'a', U'\u00E4', U'\u20AC', U'\U0001F600'}) {
        std::string text;
        appendUtf8(text, code);
        EXPECT_FALSE(isContinuation(text[0]));
        for (std::size_t i = 1; i < text.size(); ++i)
            EXPECT_TRUE(isContinuation(text[i]));
    }
}

} // namespace Utf8Test
