#include <tarn/text/TomlText.hpp>

#include <tarn/network/NetworkParser.hpp>
#include <tarn/text/TomlTable.hpp>

#include <loam/Numbers.hpp>

#include "support/Locales.hpp"

#include <gmock/gmock.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace TomlTextTest {

using namespace Tarn;
using testing::IsEmpty;

namespace {

// Returns the input text that is read from `key = value`.
NetworkFile::InputText read(const std::string& key, const std::string& value)
{
    Faults faults{"net"};
    const NetworkFile file =
        parseNetwork("format = 1\n[[object]]\nname = 'a'\ntype = 'T'\nset." + key + " = " + value + "\n", faults);
    EXPECT_THAT(faults.lines(), IsEmpty());
    return file.objects.size() == 1 && file.objects[0].texts.size() == 1 ? file.objects[0].texts[0]
                                                                         : NetworkFile::InputText{};
}

// Returns all Unicode characters as UTF-8.
std::string allCharacters()
{
    std::string text;
    for (std::uint32_t code = 0; code <= 0x10FFFF; ++code) {
        const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
        if (code < 0x80) {
            add(code);
        } else if (code < 0x800) {
            add(0xC0 | code >> 6);
            add(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            if (code >= 0xD800 && code < 0xE000)
                continue;
            add(0xE0 | code >> 12);
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        } else {
            add(0xF0 | code >> 18);
            add(0x80 | (code >> 12 & 0x3F));
            add(0x80 | (code >> 6 & 0x3F));
            add(0x80 | (code & 0x3F));
        }
    }
    return text;
}

} // namespace

TEST(TomlText, quotesKeysThatNeedIt)
{
    const struct {
        const char* key;
        const char* spelled;
    } cases[] = {
        {"time", "time"},
        {"A-1_b", "A-1_b"},
        {"7", "7"},
        {"", "\"\""},
        {"in.a=b", "\"in.a=b\""},
        {"a b", "\"a b\""},
        {"\xC3\xA4", "\"\xC3\xA4\""},
        {"say \"x\"\n", "\"say \\\"x\\\"\\n\""},
        {"it's", R"("it's")"},
        {"a\tb", R"("a\tb")"},
        {"a\nb", R"("a\nb")"},
    };
    for (const auto& [key, spelled] : cases) {
        SCOPED_TRACE(key);
        EXPECT_EQ(tomlKey(key), spelled);
        EXPECT_EQ(read(tomlKey(key), "''").input.text, key);
    }
}

TEST(TomlText, writesStringsOnOneLine)
{
    const struct {
        std::string text;
        const char* spelled;
    } cases[] = {
        {"", R"("")"},
        {"a b", R"("a b")"},
        {R"(it's "C:\x")", R"("it's \"C:\\x\"")"},
        {R"(\u0041 ''' """)", R"("\\u0041 ''' \"\"\"")"},
        {"\b\t\n\f\r", R"("\b\t\n\f\r")"},
        {"a\nb\n", R"("a\nb\n")"},
        {std::string("a\0\x01\x1F\x7F", 5), R"("a\u0000\u0001\u001F\u007F")"},
        {std::string("ä\0\x7F\t\"", 6), R"("ä\u0000\u007F\t\"")"},
        {"\xC2\x85 \xE2\x80\xA8 \xE2\x80\xA9", R"("\u0085 \u2028 \u2029")"},
        {"\u0080\u009b \u200e\u202e\u2066", R"("\u0080\u009b \u200e\u202e\u2066")"},
        {"ä \u00A0\uFEFF\U0001F30D", "\"ä \u00A0\uFEFF\U0001F30D\""},
    };
    const UnderDecimalComma comma;
    for (const auto& [text, spelled] : cases) {
        SCOPED_TRACE(spelled);
        EXPECT_EQ(tomlString(text), spelled);
        EXPECT_EQ(read("x", spelled).value.text, text);
    }
}

TEST(TomlText, keepsEveryCharacter)
{
    const std::string all = allCharacters();
    ASSERT_EQ(all.size(), 0x80u + 2 * 0x780 + 3 * (0xF800 - 0x800) + 4 * 0x100000);
    EXPECT_EQ(read("x", tomlString(all)).value.text, all);
    EXPECT_EQ(read(tomlKey(all.substr(0, 0x900)), "''").input.text, all.substr(0, 0x900));
}

TEST(TomlText, writesNumbersUnquotedIfTheyAreReadWithTheSameDigits)
{
    const struct {
        const char* text;
        const char* spelled;
    } cases[] = {
        {"0", "0"},
        {"-7", "-7"},
        {"4.5", "4.5"},
        {"1e+22", "1e+22"},
        {"1e-07", "1e-07"},
        {"-0", "-0.0"},
        {"9223372036854775807", "9223372036854775807"},
        {"-9223372036854775808", "-9223372036854775808"},
        {"12345678901234567168", "12345678901234567168.0"},
        {"inf", "inf"},
        {"-inf", "-inf"},
        {"nan", "nan"},
        {"1.1754944e-38", "1.1754944e-38"},
    };
    for (const auto& [text, spelled] : cases) {
        SCOPED_TRACE(text);
        ASSERT_TRUE(tomlNumber(std::string(text)));
        EXPECT_EQ(*tomlNumber(std::string(text)), spelled);
        EXPECT_EQ(read("x", spelled).value.text, text);
        EXPECT_TRUE(read("x", spelled).isNumber);
    }
    for (const char* text :
         {"", "a", "1 ", " 1", "+1", "01", "1.50", "1e5", "0x10", "1:2", "-nan", "18446744073709551615"})
        EXPECT_FALSE(tomlNumber(std::string(text))) << text;
}

TEST(TomlText, keepsEveryBitOfANumberInEveryLocale)
{
    const UnderDecimalComma comma;
    std::mt19937_64 random{1};
    using Limits = std::numeric_limits<double>;
    std::vector<double> numbers{0.0,
                                -0.0,
                                0.1,
                                1e15,
                                1e16,
                                1e17,
                                1e18,
                                1e19,
                                1e22,
                                1e23,
                                Limits::max(),
                                Limits::min(),
                                Limits::denorm_min(),
                                Limits::epsilon(),
                                -1.0 / 3};
    while (numbers.size() < 2000) {
        const double number = std::bit_cast<double>(random());
        if (number - number == 0)
            numbers.push_back(number);
    }
    for (const double number : numbers) {
        const std::string spelled = tomlNumber(number);
        SCOPED_TRACE(spelled);
        EXPECT_NE(spelled.find_first_of(".e"), std::string::npos) << "would be an integer";
        const std::string text = read("x", spelled).value.text;
        double again = 0;
        ASSERT_TRUE(Loam::readNumber(again, text));
        EXPECT_EQ(std::bit_cast<std::uint64_t>(again), std::bit_cast<std::uint64_t>(number));
        ASSERT_TRUE(tomlNumber(text)); // the text of the number is a number itself
        EXPECT_EQ(read("x", *tomlNumber(text)).value.text, text);
    }
}

TEST(TomlText, writesEachValueOnOneLineInOneSpellingInEveryLocale)
{
    const std::string wide = "\"" + std::string(130, 'x') + "\"";
    const struct {
        std::string text;
        std::string spelled;
    } cases[] = {
        {"+1979", "1979"},
        {"1_000_000", "1000000"},
        {"0xFF", "255"},
        {"0o17", "15"},
        {"0b101", "5"},
        {"-9223372036854775808", "-9223372036854775808"},
        {"0.10", "0.1"},
        {"100000.0", "100000.0"},
        {"1e300", "1e+300"},
        {"-0.0", "-0.0"},
        {"+inf", "inf"},
        {"-inf", "-inf"},
        {"-nan", "nan"},
        {"true", "true"},
        {"false", "false"},
        {R"('a\b')", R"("a\\b")"},
        {"0001-01-01", "0001-01-01"},
        {"2020-01-02 10:20:30", "2020-01-02T10:20:30"},
        {"2020-01-02t10:20:30z", "2020-01-02T10:20:30Z"},
        {"2020-01-02T10:20:30+00:00", "2020-01-02T10:20:30Z"},
        {"2020-01-02T10:20:30.500+02:30", "2020-01-02T10:20:30.5+02:30"},
        {"2020-01-02T10:20:30-00:30", "2020-01-02T10:20:30-00:30"},
        {"07:05:00.000500", "07:05:00.0005"},
        {"07:05:00.000000001", "07:05:00.000000001"},
        {"[]", "[]"},
        {"{}", "{}"},
        {"[ 1,\n [2.50, 'a'], ]", "[1, [2.5, \"a\"]]"},
        {"[" + wide + "," + wide + "]", "[" + wide + ", " + wide + "]"},
        {R"({z=1,a={"it's"=[],'d e'={}}})", R"({ z = 1, a = { "it's" = [], "d e" = {} } })"},
    };
    const UnderDecimalComma comma;
    for (const auto& [text, spelled] : cases) {
        SCOPED_TRACE(text);
        Faults faults{"file"};
        const std::optional<toml::table> given = parseToml("x = " + text, faults);
        const std::optional<toml::table> again = parseToml("x = " + spelled, faults);
        ASSERT_THAT(faults.lines(), IsEmpty());
        EXPECT_EQ(tomlValue(*given->get("x")), spelled);
        EXPECT_EQ(tomlValue(*again->get("x")), spelled);
    }
}

} // namespace TomlTextTest
