#pragma once

#include <loam/Export.hpp>

#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

// Numbers as text and back. Nothing here looks at a locale: neither setlocale
// nor std::locale::global changes one character of what is read or written.

namespace Loam {

/// The integer types that have a text form. Characters and bool are none:
/// they would silently be written as their codes.
template<class T>
concept IntegerNumber = std::same_as<T, short> || std::same_as<T, unsigned short> || std::same_as<T, int> || std::
    same_as<T, unsigned int> || std::same_as<T, long> || std::same_as<T, unsigned long> || std::same_as<
        T, long long> || std::same_as<T, unsigned long long>;

template<class T>
concept Number = IntegerNumber<T> || std::same_as<T, float> || std::same_as<T, double>;

/// Characters that hold every text of writeNumber, of every type.
inline constexpr std::size_t numberTextSize = 24;

/// Writes the shortest text that reads back as the same bits: 45 for 45.0,
/// "inf", "-inf", "nan", "-nan" for the specials. No terminating NUL.
///
/// Returns the end of the text, or null if it does not fit; [first, last) then
/// holds anything.
LOAM_API char* writeNumber(char* first, char* last, double value) noexcept;
LOAM_API char* writeNumber(char* first, char* last, float value) noexcept;

template<IntegerNumber T>
char* writeNumber(char* first, char* last, T value) noexcept
{
    const auto [end, error] = std::to_chars(first, last, value);
    return error == std::errc{} ? end : nullptr;
}

/// The text of writeNumber as a string.
template<Number T>
std::string numberText(T value)
{
    char text[numberTextSize];
    return std::string(text, writeNumber(text, text + numberTextSize, value));
}

/// Reads the number that [first, last) begins with, as strtod and strtof do in
/// the C locale: white space, a sign, then a decimal number, a hexadecimal one
/// (0x1.8p3), "inf", "infinity", "nan" or "nan(characters)" in any case. What
/// follows is ignored. A number too large reads as infinity, one too small as
/// zero or a denormal. The payload of a NaN is not kept, its sign is.
///
/// Returns the end of what was read, or null if there is no number; \p value
/// then keeps what it was.
LOAM_API const char* readNumber(const char* first, const char* last, double& value) noexcept;
LOAM_API const char* readNumber(const char* first, const char* last, float& value) noexcept;

/// Reads white space, a sign and decimal digits; what follows is ignored.
/// Returns the end of what was read, or null if there is no number or if it
/// does not fit the type (for unsigned types: a negative one); \p value then
/// keeps what it was.
template<IntegerNumber T>
const char* readNumber(const char* first, const char* last, T& value) noexcept;

/// Reads the number that \p text begins with, by the rules above. Returns
/// false, and leaves \p value as it was, if there is none.
template<Number T>
bool readNumber(T& value, std::string_view text) noexcept
{
    return readNumber(text.data(), text.data() + text.size(), value) != nullptr;
}

/// What printf("%.*g") prints in the C locale. A negative precision means 6.
LOAM_API std::string formatG(double value, int precision = 6);

/// What printf("%.*f") prints in the C locale. A negative precision means 6.
LOAM_API std::string formatF(double value, int precision = 6);

/// Skips white space as isspace knows it in the C locale.
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
    // from_chars takes a minus sign of its own, which would let "+-1" through.
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
