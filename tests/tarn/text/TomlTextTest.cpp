#include <tarn/text/TomlText.hpp>

#include <tarn/network/NetworkParser.hpp>

#include <loam/Numbers.hpp>

#include "support/Locales.hpp"

#include <gmock/gmock.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

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
    };
    for (const auto& [key, spelled] : cases) {
        SCOPED_TRACE(key);
        EXPECT_EQ(tomlKey(key), spelled);
        EXPECT_EQ(read(tomlKey(key), "''").input.text, key);
    }
}

TEST(TomlText, writesStringsOnOneLine)
{
    EXPECT_EQ(tomlString(std::string("a\0\x1F\x7F", 4)), "\"a\\u0000\\u001F\\u007F\"");
    EXPECT_EQ(tomlString("\b\t\n\f\r\"\\'"), "\"\\b\\t\\n\\f\\r\\\"\\\\'\"");
    EXPECT_EQ(tomlString("\xC3\xA4 \xF0\x9F\x8C\x8D"), "\"\xC3\xA4 \xF0\x9F\x8C\x8D\"");
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
