#include <loam/Numbers.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Loam {

namespace {

// Where exponents stop being counted: no text in memory has the digits that
// would make up for one of this size.
constexpr std::int64_t exponentLimit = 100'000'000'000'000'000;

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The value of a hexadecimal digit, or -1.
constexpr int hexValue(char c)
{
    if (isDigit(c))
        return c - '0';
    const char letter = lower(c);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// Whether [first, last) begins with a word, given in lower case, in any case.
constexpr bool beginsWith(const char* first, const char* last, std::string_view word)
{
    return static_cast<std::size_t>(last - first) >= word.size()
           && std::equal(word.begin(), word.end(), first, [](char a, char b) { return a == lower(b); });
}

// Reads the part of a number from its "e" or "p" on. Where no digit follows,
// the letter is not part of the number: the exponent is 0 and nothing is read.
const char* readExponent(const char* first, const char* last, char letter, std::int64_t& exponent)
{
    exponent = 0;
    const char* p = first;
    if (p == last || lower(*p) != letter)
        return first;
    ++p;
    const bool negative = p != last && *p == '-';
    if (p != last && (*p == '-' || *p == '+'))
        ++p;
    if (p == last || !isDigit(*p))
        return first;
    for (; p != last && isDigit(*p); ++p) {
        if (exponent < exponentLimit)
            exponent = exponent * 10 + (*p - '0');
    }
    if (negative)
        exponent = -exponent;
    return p;
}

// Whether a decimal number beyond the range of its type is too large; otherwise
// it is too small. Any of the zeros and the exponent may be thousands of digits
// long and make up for the other.
bool isTooLarge(const char* first, const char* last)
{
    std::int64_t magnitude = 0; // of ten, for a number written 0.DIGITS
    bool significant = false;
    bool fraction = false;
    const char* p = first;
    for (; p != last && (isDigit(*p) || *p == '.'); ++p) {
        if (*p == '.') {
            fraction = true;
            continue;
        }
        significant = significant || *p != '0';
        if (significant && !fraction)
            ++magnitude;
        else if (fraction && !significant)
            --magnitude;
    }
    std::int64_t exponent = 0;
    readExponent(p, last, 'e', exponent);
    return magnitude + exponent > 0;
}

// The rest of a number after "0x". Null if there is no digit.
//
// Not left to std::from_chars, because that gives no value when the number is
// out of range.
template<class T>
const char* readHexadecimal(const char* first, const char* last, T& value)
{
    using Limits = std::numeric_limits<T>;

    std::uint64_t mantissa = 0;
    std::int64_t exponent = 0;
    bool remainder = false;
    bool any = false;
    bool fraction = false;
    const char* p = first;
    for (; p != last; ++p) {
        if (*p == '.' && !fraction) {
            fraction = true;
            continue;
        }
        const int digit = hexValue(*p);
        if (digit < 0)
            break;
        any = true;
        if (mantissa >> 60 == 0) {
            mantissa = mantissa * 16 + static_cast<unsigned>(digit);
            exponent -= fraction ? 4 : 0;
        } else {
            remainder = remainder || digit != 0;
            exponent += fraction ? 0 : 4;
        }
    }
    if (!any)
        return nullptr;
    // The mantissa has at least 61 bits then, so its last one is never kept and
    // only says that there is more.
    if (remainder)
        mantissa |= 1;
    std::int64_t written = 0;
    p = readExponent(p, last, 'p', written);
    exponent += written;

    // Powers of two of the number's first bit and of the last bit that T keeps.
    const std::int64_t top = exponent + 63 - std::countl_zero(mantissa);
    const std::int64_t bottom =
        std::max<std::int64_t>(top - (Limits::digits - 1), Limits::min_exponent - Limits::digits);
    const std::int64_t excess = bottom - exponent;
    if (mantissa == 0 || excess > 64) {
        value = 0;
    } else if (top >= Limits::max_exponent) {
        value = Limits::infinity();
    } else if (excess <= 0) {
        value = std::ldexp(static_cast<T>(mantissa), static_cast<int>(exponent));
    } else {
        std::uint64_t kept = excess == 64 ? 0 : mantissa >> excess;
        const std::uint64_t rest = excess == 64 ? mantissa : mantissa - (kept << excess);
        const std::uint64_t half = std::uint64_t{1} << (excess - 1);
        if (rest > half || (rest == half && kept % 2 == 1))
            ++kept;
        value = std::ldexp(static_cast<T>(kept), static_cast<int>(bottom));
    }
    return p;
}

// "inf", "infinity", "nan" and "nan(characters)".
template<class T>
const char* readSpecial(const char* first, const char* last, T& value)
{
    if (beginsWith(first, last, "inf")) {
        value = std::numeric_limits<T>::infinity();
        return first + (beginsWith(first, last, "infinity") ? 8 : 3);
    }
    if (!beginsWith(first, last, "nan"))
        return nullptr;
    value = std::numeric_limits<T>::quiet_NaN();
    first += 3;
    if (first == last || *first != '(')
        return first;
    const char* close = std::find_if_not(
        first + 1, last, [](char c) { return isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'z') || c == '_'; });
    return close != last && *close == ')' ? close + 1 : first;
}

template<class T>
const char* readUnsigned(const char* first, const char* last, T& value)
{
    if (first == last)
        return nullptr;
    if (!isDigit(*first) && *first != '.')
        return readSpecial(first, last, value);
    if (beginsWith(first, last, "0x")) {
        if (const char* end = readHexadecimal(first + 2, last, value))
            return end;
        value = 0;
        return first + 1;
    }
    const auto [end, error] = std::from_chars(first, last, value);
    if (error == std::errc::invalid_argument)
        return nullptr;
    if (error == std::errc::result_out_of_range)
        value = isTooLarge(first, end) ? std::numeric_limits<T>::infinity() : T{0};
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
    // (of which no double has more than 767 before only zeros follow).
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
