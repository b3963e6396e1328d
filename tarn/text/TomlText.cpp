#include <tarn/text/TomlText.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace Tarn {

namespace {

bool isBare(char letter) noexcept
{
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9')
           || letter == '_' || letter == '-';
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
    return !key.empty() && std::ranges::all_of(key, isBare) ? std::string(key) : tomlString(key);
}

std::string tomlString(std::string_view text)
{
    std::string spelling = "\"";
    for (const char letter : text) {
        switch (letter) {
        case '"':
        case '\\':
            spelling += '\\';
            spelling += letter;
            break;
        case '\b':
            spelling += "\\b";
            break;
        case '\t':
            spelling += "\\t";
            break;
        case '\n':
            spelling += "\\n";
            break;
        case '\f':
            spelling += "\\f";
            break;
        case '\r':
            spelling += "\\r";
            break;
        default:
            if (const auto code = static_cast<unsigned char>(letter); code < 0x20 || code == 0x7F) {
                constexpr char digits[] = "0123456789ABCDEF";
                spelling += "\\u00";
                spelling += digits[code >> 4];
                spelling += digits[code & 0xF];
            } else {
                spelling += letter;
            }
        }
    }
    return spelling + '"';
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

} // namespace Tarn
