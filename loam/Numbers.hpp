#pragma once

#include <loam/Export.hpp>

#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

// Conversion between numbers and text. It ignores the locale: setlocale and
// std::locale::global do not change what is read or written.

namespace Loam {

/// The integer types that have a text form. Characters and bool are excluded: they
/// would silently be written as their codes.
template<class T>
concept IntegerNumber = std::same_as<T, short> || std::same_as<T, unsigned short> || std::same_as<T, int>
                        || std::same_as<T, unsigned int> || std::same_as<T, long> || std::same_as<T, unsigned long>
                        || std::same_as<T, long long> || std::same_as<T, unsigned long long>;

template<class T>
concept Number = IntegerNumber<T> || std::same_as<T, float> || std::same_as<T, double>;

/// Buffer size in characters that is sufficient for writeNumber with any type.
inline constexpr std::size_t numberTextSize = 24;

/// Writes the shortest text that reads back as the same bits: "45" for 45.0, and
/// "inf", "-inf", "nan" or "-nan" for special values. Writes no terminating NUL.
///
/// Whole numbers of type double below 2 to the power of 53 are written as digits, "100000"
/// instead of the shorter "1e+05", which a reader of integers would take as 1.
///
/// Returns the end of the text, or null if it does not fit; the content of
/// [first, last) is then unspecified.
LOAM_API char* writeNumber(char* first, char* last, double value) noexcept;
LOAM_API char* writeNumber(char* first, char* last, float value) noexcept;

template<IntegerNumber T>
char* writeNumber(char* first, char* last, T value) noexcept
{
    const auto [end, error] = std::to_chars(first, last, value);
    return error == std::errc{} ? end : nullptr;
}

/// Returns the text of writeNumber as a string.
template<Number T>
std::string numberText(T value)
{
    char text[numberTextSize];
    return std::string(text, writeNumber(text, text + numberTextSize, value));
}

/// Reads the number at the start of [first, last), as strtod and strtof do in the
/// C locale: white space, a sign, then a decimal number, a hexadecimal number
/// (0x1.8p3), "inf", "infinity", "nan" or "nan(characters)", ignoring case. Text
/// after the number is ignored. A number that is too large reads as infinity, one
/// that is too small as zero or a denormal. The sign of a NaN is kept, its payload
/// is not.
///
/// Returns the end of the text read, or null if there is no number; \p value is
/// then unchanged.
LOAM_API const char* readNumber(const char* first, const char* last, double& value) noexcept;
LOAM_API const char* readNumber(const char* first, const char* last, float& value) noexcept;

/// Reads white space, a sign and decimal digits; text after them is ignored.
/// Returns the end of the text read, or null if there is no number or it does not
/// fit the type (for unsigned types: a negative number); \p value is then unchanged.
template<IntegerNumber T>
const char* readNumber(const char* first, const char* last, T& value) noexcept;

/// Reads the number at the start of \p text, by the rules above. Returns false and
/// leaves \p value unchanged if there is no number.
template<Number T>
bool readNumber(T& value, std::string_view text) noexcept
{
    return readNumber(text.data(), text.data() + text.size(), value) != nullptr;
}

/// Returns what printf("%.*g") prints in the C locale. A negative precision means 6.
LOAM_API std::string formatG(double value, int precision = 6);

/// Returns what printf("%.*f") prints in the C locale. A negative precision means 6.
LOAM_API std::string formatF(double value, int precision = 6);

/// Skips white space as defined by isspace in the C locale.
inline const char* skipBlanks(const char* first, const char* last) noexcept
{
    while (first != last && (*first == ' ' || (*first >= '\t' && *first <= '\r')))
        ++first;
    return first;
}

template<IntegerNumber T>
const char* readNumber(const char* first, const char* last, T& value) noexcept
{
    first = skipBlanks(first, last);
    const bool negative = first != last && *first == '-';
    const char* digits = first;
    if (digits != last && (*digits == '-' || *digits == '+'))
        ++digits;
    // from_chars itself accepts a minus sign, so "+-1" would pass.
    if (digits == last || *digits < '0' || *digits > '9')
        return nullptr;

    T number{};
    const char* start = std::signed_integral<T> && negative ? first : digits;
    const auto [end, error] = std::from_chars(start, last, number);
    if (error != std::errc{})
        return nullptr;
    if (std::unsigned_integral<T> && negative && number != 0)
        return nullptr;
    value = number;
    return end;
}

} // namespace Loam
