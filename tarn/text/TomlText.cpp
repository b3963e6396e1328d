#include <tarn/text/TomlText.hpp>

#include <tarn/text/TomlTable.hpp>

#include <loam/Ascii.hpp>
#include <loam/Numbers.hpp>
#include <loam/StringUtil.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <system_error>

namespace Tarn {

namespace {

bool isBare(char letter) noexcept
{
    return Loam::isLetter(letter) || Loam::isDigit(letter) || letter == '_' || letter == '-';
}

template<class Number>
bool readWhole(const std::string& text, Number& number)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end;
}

} // namespace

std::string tomlKey(std::string_view key)
{
    // The formatter leaves out the quotes if only tabs, line breaks or apostrophes need them.
    return !key.empty() && std::ranges::all_of(key, isBare) ? std::string(key) : tomlString(key);
}

std::string tomlString(std::string_view text)
{
    return tomlValue(toml::value<std::string>{text});
}

std::string tomlNumber(double number)
{
    std::string text = Loam::numberText(number);
    if (std::isfinite(number) && text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

std::optional<std::string> tomlNumber(const std::string& text)
{
    if (std::int64_t integer = 0; readWhole(text, integer) && std::to_string(integer) == text)
        return text;
    if (text == "inf" || text == "-inf" || text == "nan")
        return text;
    if (double number = 0; readWhole(text, number) && std::isfinite(number) && Loam::numberText(number) == text)
        return tomlNumber(number);
    return std::nullopt;
}

std::string tomlValue(const toml::node& node)
{
    // The formatter sorts tables by key, and breaks arrays by an estimate of their width.
    if (const auto* table = node.as_table()) {
        std::string text;
        for (const auto& [key, value] : entriesOf(*table))
            text += (text.empty() ? " " : ", ") + tomlKey(key.text) + " = " + tomlValue(*value);
        return '{' + text + (text.empty() ? "}" : " }");
    }
    if (const auto* array = node.as_array()) {
        std::string text;
        for (const toml::node& element : *array)
            text += (text.empty() ? "" : ", ") + tomlValue(element);
        return '[' + text + ']';
    }
    // The digits depend on how the formatter was built: 0.1 may be 0.10000000000000001.
    if (const auto* number = node.as_floating_point())
        return tomlNumber(number->get());
    std::ostringstream text;
    text << toml::toml_formatter{node, toml::format_flags::allow_unicode_strings};
    // Standard output may be a terminal.
    return Loam::StringUtil::unicodeEscaped(text.str());
}

} // namespace Tarn
