#include <loam/StringUtil.hpp>

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace StringUtilTest {

using namespace Loam;

static_assert(StringUtil::afterFirst("a,b", ',') == "b");

template<class Container>
concept CanHoldPieces = requires(const std::string& text, Container& pieces) { StringUtil::split(text, pieces, ','); };

static_assert(CanHoldPieces<std::vector<std::string>>);
static_assert(CanHoldPieces<std::list<std::string>>);
static_assert(!CanHoldPieces<std::vector<std::string_view>>, "split is not instantiated for it");

namespace {

using Pieces = std::vector<std::string>;

template<class Container>
Pieces splitInto(const std::string& text, char separator, bool flag, char quote)
{
    Container pieces;
    const std::size_t appended = StringUtil::split(text, pieces, separator, flag, quote);
    EXPECT_EQ(appended, pieces.size());
    return Pieces(pieces.begin(), pieces.end());
}

// Expects the same pieces in a vector and in a list.
Pieces split(const std::string& text, char separator, bool flag = true, char quote = 0)
{
    const Pieces pieces = splitInto<std::vector<std::string>>(text, separator, flag, quote);
    EXPECT_EQ(splitInto<std::list<std::string>>(text, separator, flag, quote), pieces);
    return pieces;
}

std::string withNul(const char (&text)[4])
{
    return std::string(text, 3);
}

} // namespace

TEST(StringUtil, splitsAtEverySeparatorAndDropsAnEmptyLastPiece)
{
    const struct {
        const char* text;
        Pieces kept;
        Pieces filled;
    } cases[] = {
        {"", {}, {}},
        {",", {""}, {}},
        {",,", {"", ""}, {}},
        {"a", {"a"}, {"a"}},
        {"a,", {"a"}, {"a"}},
        {",a", {"", "a"}, {"a"}},
        {"a,b", {"a", "b"}, {"a", "b"}},
        {"a,,b", {"a", "", "b"}, {"a", "b"}},
        {"a,b,,", {"a", "b", ""}, {"a", "b"}},
        {",,a,,,b", {"", "", "a", "", "", "b"}, {"a", "b"}},
        {" a , b ", {" a ", " b "}, {" a ", " b "}},
        {"1;2", {"1;2"}, {"1;2"}},
        {"\"a,b\",c", {"\"a", "b\"", "c"}, {"\"a", "b\"", "c"}},
    };
    for (const auto& [text, kept, filled] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(split(text, ','), kept);
        EXPECT_EQ(split(text, ',', true), kept);
        EXPECT_EQ(split(text, ',', false), filled);
    }
}

TEST(StringUtil, keepsQuotesAndDoesNotSplitBetweenThem)
{
    const struct {
        const char* text;
        Pieces kept;
        Pieces filled;
    } cases[] = {
        {"", {}, {}},
        {"'a,b',c", {"'a,b'", "c"}, {"'a,b'", "c"}},
        {"a'b,c'd,e", {"a'b,c'd", "e"}, {"a'b,c'd", "e"}},
        {"'a','b'", {"'a'", "'b'"}, {"'a'", "'b'"}},
        {"''", {"''"}, {"''"}},
        {"'',", {"''"}, {"''"}},
        {"',',,'", {"','", "", "'"}, {"','", "'"}},
        {",',',", {"", "','"}, {"','"}},
        {"a,'b,c", {"a", "'b,c"}, {"a", "'b,c"}},
        {"a,'b,c,", {"a", "'b,c,"}, {"a", "'b,c,"}},
        {"a,'", {"a", "'"}, {"a", "'"}},
        {"'a''b,c',d", {"'a''b,c'", "d"}, {"'a''b,c'", "d"}},
        {"a,b", {"a", "b"}, {"a", "b"}},
    };
    for (const auto& [text, kept, filled] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(split(text, ',', true, '\''), kept);
        EXPECT_EQ(split(text, ',', false, '\''), filled);
    }
}

TEST(StringUtil, treatsNulAsACharacterButNotAsAQuote)
{
    EXPECT_EQ(split(withNul("a\0b"), '\0'), (Pieces{"a", "b"}));
    EXPECT_EQ(split(withNul("\0,\0"), ','), (Pieces{std::string(1, '\0'), std::string(1, '\0')}));
}

TEST(StringUtil, splitsEverywhereIfTheQuoteIsTheSeparator)
{
    EXPECT_EQ(split("a,b,c", ',', true, ','), (Pieces{"a", "b", "c"}));
}

TEST(StringUtil, appendsToExistingPieces)
{
    std::vector<std::string> vector{"first"};
    EXPECT_EQ(StringUtil::split("a,b", vector, ','), 2u);
    EXPECT_EQ(vector, (Pieces{"first", "a", "b"}));
    EXPECT_EQ(StringUtil::split("", vector, ','), 0u);
    EXPECT_EQ(vector.size(), 3u);

    std::list<std::string> list{"first"};
    EXPECT_EQ(StringUtil::split(",b", list, ',', false), 1u);
    EXPECT_EQ(list, (std::list<std::string>{"first", "b"}));
}

TEST(StringUtil, visitsEachPieceWithoutCopyingIt)
{
    const std::string_view text = ",a,'b,c',";
    std::vector<std::string_view> pieces;
    StringUtil::forEachPiece(text, ',', [&](std::string_view piece) { pieces.push_back(piece); });
    EXPECT_EQ(pieces, (std::vector<std::string_view>{"", "a", "'b", "c'"}));
    EXPECT_EQ(pieces[1].data(), text.data() + 1);

    pieces.clear();
    StringUtil::forEachPiece(
        text, ',', [&](std::string_view piece) { pieces.push_back(piece); }, '\'');
    EXPECT_EQ(pieces, (std::vector<std::string_view>{"", "a", "'b,c'"}));
}

TEST(StringUtil, findsTheFirstCharacterOutsideQuotes)
{
    EXPECT_EQ(StringUtil::findUnquoted("'a,b',c", ',', '\''), 5u);
    EXPECT_EQ(StringUtil::findUnquoted("'a,b',c", ',', 0), 2u);
    EXPECT_EQ(StringUtil::findUnquoted("'a,b", ',', '\''), std::string::npos);
    EXPECT_EQ(StringUtil::findUnquoted("", ',', 0), std::string::npos);
}

TEST(StringUtil, cropsThroughTheFirstOccurrenceIfAny)
{
    const struct {
        std::string text;
        char c;
        std::string rest;
    } cases[] = {
        {"{1,2,3}", ',', "2,3}"},
        {"2,3}", ',', "3}"},
        {"3}", ',', "3}"},
        {"", ',', ""},
        {",", ',', ""},
        {"a,", ',', ""},
        {",a", ',', "a"},
        {",,a", ',', ",a"},
        {withNul("a\0b"), '\0', "b"},
        {withNul("a\0b"), 'a', std::string("\0b", 2)},
    };
    for (const auto& [text, c, rest] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(StringUtil::crop_before_first(text, c), rest);
        EXPECT_EQ(StringUtil::afterFirst(text, c), rest);
    }
    EXPECT_EQ(StringUtil::afterFirst(std::string_view(), ','), "");
}

TEST(StringUtil, returnsAViewIntoTheTextFromAfterFirst)
{
    const std::string_view text = "name=value";
    EXPECT_EQ(StringUtil::afterFirst(text, '=').data(), text.data() + 5);
    EXPECT_EQ(StringUtil::afterFirst(text, '#').data(), text.data());
}

TEST(StringUtil, cropsThroughTheLastOccurrenceIfAny)
{
    EXPECT_EQ(StringUtil::afterLast("a/b/c", '/'), "c");
    EXPECT_EQ(StringUtil::afterLast("a/", '/'), "");
    EXPECT_EQ(StringUtil::afterLast("abc", '/'), "abc");
    EXPECT_EQ(StringUtil::afterLast("", '/'), "");
}

TEST(StringUtil, escapesControlCharacters)
{
    EXPECT_EQ(StringUtil::printable("a\nb\tc\rd\x1b[31m\x7f\\"), "a\\nb\\tc\\rd\\x1b[31m\\x7f\\\\");
    EXPECT_EQ(StringUtil::printable(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(StringUtil::printable("Größe \"x\""), "Größe \"x\"");
    EXPECT_EQ(StringUtil::printable("\u0080a\u009B[31m\u009F\u00A0"), "\\u0080a\\u009b[31m\\u009f\u00A0");
}

TEST(StringUtil, escapesCharactersThatReorderTheTextAroundThem)
{
    EXPECT_EQ(StringUtil::escaped("\u061c\u200e\u200f|\u202a\u202b\u202c\u202d\u202e|\u2066\u2067\u2068\u2069"),
              "\\u061c\\u200e\\u200f|\\u202a\\u202b\\u202c\\u202d\\u202e|\\u2066\\u2067\\u2068\\u2069");
    EXPECT_EQ(StringUtil::escaped("\u2028\u2029"), "\\u2028\\u2029");
    const std::string harmless = "\u061b\u061d\u200d\u2010\u2027\u202f\u2065\u206a שלום 😀";
    EXPECT_EQ(StringUtil::escaped(harmless), harmless);
}

TEST(StringUtil, escapesBytesThatAreNotUtf8)
{
    EXPECT_EQ(StringUtil::escaped("a\xC2"), "a\\xc2");
    EXPECT_EQ(StringUtil::escaped("\x9b[31m\xff ä\xe2\x80"), "\\x9b[31m\\xff ä\\xe2\\x80");
}

TEST(StringUtil, escapesOnlyCharactersBeyondAsciiForUnicodeStrings)
{
    EXPECT_EQ(StringUtil::unicodeEscaped("a\n\x1b\\ä\u0085\u202e\xff"), "a\n\x1b\\ä\\u0085\\u202e\xff");
}

TEST(StringUtil, escapesTextsOfAnyLength)
{
    EXPECT_EQ(StringUtil::escaped("a\nb\\"), "a\\nb\\\\");
    EXPECT_EQ(StringUtil::escaped(std::string(100000, '\t') + "end").size(), 200003u);
}

TEST(StringUtil, truncatesLongTextsBetweenCharacters)
{
    EXPECT_EQ(StringUtil::printable(std::string(200, 'a')), std::string(200, 'a'));
    EXPECT_EQ(StringUtil::printable(std::string(201, 'a')), std::string(200, 'a') + "...");
    // The last of the 200 bytes would be the first half of an umlaut.
    EXPECT_EQ(StringUtil::printable(std::string(199, 'a') + "ööö"), std::string(199, 'a') + "...");
}

TEST(StringUtil, putsMessagesOnOneLineWithoutEscapingThemTwice)
{
    EXPECT_EQ(StringUtil::onOneLine("\\x1b \x1b[31m\\\n\u202e\x9b"), "\\x1b \\x1b[31m\\\\n\\u202e\\x9b");
    EXPECT_EQ(StringUtil::onOneLine(""), "");
}

TEST(StringUtil, recognizesTheCharactersThatItEscapes)
{
    for (const char* const control : {"\n", "\x1b", "\x7f", "\u009b", "\u061c", "\u2028", "\u202e", "\u2069"})
        EXPECT_TRUE(StringUtil::isControl(control)) << StringUtil::escaped(control);
    for (const char* const harmless : {"a", " ", "\\", "\u00a0", "\u2027", "\u202f", "\U0001F30D", ""})
        EXPECT_FALSE(StringUtil::isControl(harmless)) << harmless;
}

} // namespace StringUtilTest
