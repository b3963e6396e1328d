#include <loam/Numbers.hpp>

#include <loam/Ascii.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
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

// The whole numbers up to `wholeNumbers` are exact, and so are these powers of ten. One division of
// two exact numbers is rounded once, so its result is the nearest number.
template<class T>
struct Exact;

template<>
struct Exact<double> {
    static constexpr std::uint64_t wholeNumbers = std::uint64_t{1} << 53;
    static constexpr double powers[] = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                        1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
};

template<>
struct Exact<float> {
    static constexpr std::uint64_t wholeNumbers = std::uint64_t{1} << 24;
    static constexpr float powers[] = {1e0F, 1e1F, 1e2F, 1e3F, 1e4F, 1e5F, 1e6F, 1e7F, 1e8F, 1e9F, 1e10F};
};

// Returns true if the second eight of at least 16 characters are digits, which most numbers with
// too many digits for `readShort` begin with.
bool isLong(const char* first, const char* last) noexcept
{
    if (last - first < 16)
        return false;
    std::uint64_t word = 0;
    std::memcpy(&word, first + 8, sizeof word);
    // A digit is 0x30 to 0x39: its upper half is 3, also after 6 is added.
    constexpr std::uint64_t upperHalves = 0xF0F0F0F0F0F0F0F0;
    return (word & upperHalves) == 0x3030303030303030
           && ((word + 0x0606060606060606) & upperHalves) == 0x3030303030303030;
}

// Reads a decimal number of few digits without an exponent, with the result of std::from_chars in
// less time. Returns null for all others, valid or not.
template<class T>
const char* readShort(const char* first, const char* last, T& value) noexcept
{
    constexpr std::ptrdiff_t MostCharacters = 17; // with a point, so the digits fit
    const char* const limit = last - first > MostCharacters ? first + MostCharacters : last;
    std::uint64_t digits = 0;
    const char* place = first;
    for (; place != limit && isDigit(*place); ++place)
        digits = 10 * digits + static_cast<unsigned char>(*place - '0');
    std::size_t decimals = 0;
    if (place != limit && *place == '.') {
        const char* const point = place;
        for (++place; place != limit && isDigit(*place); ++place)
            digits = 10 * digits + static_cast<unsigned char>(*place - '0');
        decimals = static_cast<std::size_t>(place - point) - 1;
        if (decimals == 0 || decimals >= std::size(Exact<T>::powers))
            return nullptr;
    }
    const bool isCutOff = place == limit && limit != last;
    if (place == first || isCutOff || digits > Exact<T>::wholeNumbers
        || (place != last && (*place == 'e' || *place == 'E')))
        return nullptr;
    value = decimals == 0 ? static_cast<T>(digits) : static_cast<T>(digits) / Exact<T>::powers[decimals];
    return place;
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
    if (!isLong(first, last)) {
        if (const char* const end = readShort(first, last, value))
            return end;
    }
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
    if (first == last)
        return nullptr;
    // Without branches: the signs of data are often unpredictable.
    const bool negative = *first == '-';
    first += static_cast<int>(negative) | static_cast<int>(*first == '+');
    T number{};
    const char* end = readUnsigned(first, last, number);
    constexpr T signs[] = {1, -1};
    if (end)
        value = std::copysign(number, signs[static_cast<int>(negative)]);
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
