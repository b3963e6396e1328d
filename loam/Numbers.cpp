#include <loam/Numbers.hpp>

#include <loam/Ascii.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>

#include <locale.h>

namespace Loam {

namespace {

// Never freed: numbers may be read until the very end of the program.
locale_t cLocale()
{
    static const locale_t theLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    return theLocale;
}

void readInCLocale(const char* text, char** end, double& value)
{
    value = strtod_l(text, end, cLocale());
}

void readInCLocale(const char* text, char** end, float& value)
{
    value = strtof_l(text, end, cLocale());
}

// Reads the numbers that std::from_chars does not: hexadecimal ones after "0x", and those
// beyond the range of their type. Returns null if memory for a long text
// cannot be allocated.
template<class T>
const char* readWithStrtod(const char* first, const char* last, T& value)
{
    // strtod needs a terminating NUL. Nothing after the first other character can belong to
    // the number.
    last = std::find_if_not(first, last,
                            [](char c) { return isDigit(c) || isLetter(c) || c == '.' || c == '+' || c == '-'; });
    const auto length = static_cast<std::size_t>(last - first);
    char shortText[128];
    std::unique_ptr<char[]> longText;
    char* text = shortText;
    if (length >= sizeof shortText) {
        longText.reset(new (std::nothrow) char[length + 1]);
        text = longText.get();
        if (!text)
            return nullptr;
    }
    *std::copy(first, last, text) = '\0';
    char* end = nullptr;
    readInCLocale(text, &end, value);
    return first + (end - text);
}

template<class T>
const char* readUnsigned(const char* first, const char* last, T& value)
{
    // from_chars would accept a second sign.
    if (first == last || !(isDigit(*first) || isLetter(*first) || *first == '.'))
        return nullptr;
    const bool isHexadecimal = last - first > 1 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X');
    if (isHexadecimal)
        return readWithStrtod(first, last, value);
    const auto [end, error] = std::from_chars(first, last, value);
    if (error == std::errc::invalid_argument)
        return nullptr;
    if (error == std::errc::result_out_of_range)
        return readWithStrtod(first, end, value);
    return end;
}

template<class T>
const char* readFloating(const char* first, const char* last, T& value)
{
    first = skipBlanks(first, last);
    const bool negative = first != last && *first == '-';
    if (first != last && (*first == '-' || *first == '+'))
        ++first;
    T number{};
    const char* end = readUnsigned(first, last, number);
    if (end)
        value = negative ? -number : number;
    return end;
}

template<class T>
char* writeFloating(char* first, char* last, T value)
{
    const auto [end, error] = std::to_chars(first, last, value);
    return error == std::errc{} ? end : nullptr;
}

std::string format(double value, std::chars_format form, int precision, std::size_t longest)
{
    char text[512];
    if (longest <= sizeof text)
        return std::string(text, std::to_chars(text, text + sizeof text, value, form, precision).ptr);
    std::string result(longest, '\0');
    char* first = result.data();
    const char* end = std::to_chars(first, first + longest, value, form, precision).ptr;
    result.resize(static_cast<std::size_t>(end - first));
    return result;
}

} // namespace

char* writeNumber(char* first, char* last, double value) noexcept
{
    // Readers of integers stop at the exponent of 1e+05.
    constexpr double exactWholeNumbers = 9007199254740992; // 2 to the power of 53
    if (std::abs(value) < exactWholeNumbers && value == std::trunc(value) && !(value == 0 && std::signbit(value)))
        return writeNumber(first, last, static_cast<long long>(value));
    return writeFloating(first, last, value);
}

char* writeNumber(char* first, char* last, float value) noexcept
{
    return writeFloating(first, last, value);
}

const char* readNumber(const char* first, const char* last, double& value) noexcept
{
    return readFloating(first, last, value);
}

const char* readNumber(const char* first, const char* last, float& value) noexcept
{
    return readFloating(first, last, value);
}

std::string formatG(double value, int precision)
{
    // A sign, a point, an exponent or four zeros after the point, and digits
    // (a double has at most 767 significant digits).
    constexpr std::size_t most = 16 + 767;
    const std::size_t digits = precision < 0 ? 6 : static_cast<std::size_t>(precision);
    return format(value, std::chars_format::general, precision, std::min(digits + 16, most));
}

std::string formatF(double value, int precision)
{
    // A sign, the 309 digits of the largest double, a point.
    const std::size_t decimals = precision < 0 ? 6 : static_cast<std::size_t>(precision);
    return format(value, std::chars_format::fixed, precision, decimals + 311);
}

} // namespace Loam
