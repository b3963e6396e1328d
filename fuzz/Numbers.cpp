#include "Support.hpp"

#include <loam/Numbers.hpp>
#include <loam/Scanner.hpp>

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

// Compares the number readers with those of the C library, whose process stays in the C locale.

namespace {

template<class T, class Bits>
void requireSame(T found, T expected, const std::string& promise)
{
    // The payload of a NaN is not kept.
    if (std::isnan(found) && std::isnan(expected))
        Fuzz::require(std::signbit(found) == std::signbit(expected), promise);
    else
        Fuzz::require(std::bit_cast<Bits>(found) == std::bit_cast<Bits>(expected), promise);
}

template<class T, class Bits, class Convert>
void checkReader(const std::string& text, Convert&& convert)
{
    char* end = nullptr;
    const T expected = convert(text.c_str(), &end);
    T found{};
    const char* const stop = Loam::readNumber(text.data(), text.data() + text.size(), found);
    Fuzz::require((stop != nullptr) == (end != text.c_str()), "readNumber accepts what strtod accepts");
    if (!stop)
        return;
    Fuzz::require(stop == end, "readNumber ends where strtod ends");
    requireSame<T, Bits>(found, expected, "readNumber returns the number of strtod");

    T again{};
    Fuzz::require(Loam::readNumber(again, Loam::numberText(found)), "the text of a number is a number");
    requireSame<T, Bits>(again, found, "the text of a number reads back as the same bits");
}

void checkInteger(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const long long expected = std::strtoll(text.c_str(), &end, 10);
    const bool isNumber = end != text.c_str() && errno == 0;
    long long found = 0;
    Fuzz::require(Loam::readNumber(found, text) == isNumber, "integers are accepted as by strtoll");
    Fuzz::require(!isNumber || found == expected, "integers are read as by strtoll");
}

// One directive of a format each, as in "{%lg,%lg}".
void checkScanner(const std::string& text)
{
    double expected[2] = {0, 0};
    double found[2] = {0, 0};
    const int count = std::sscanf(text.c_str(), "{%lg,%lg}", &expected[0], &expected[1]);
    Loam::Scanner scanner{text};
    const bool first = scanner.literal('{').number(found[0]);
    const bool second = first && scanner.literal(',').number(found[1]);
    Fuzz::require((first ? 1 : 0) + (second ? 1 : 0) == (count > 0 ? count : 0), "Scanner reads as much as sscanf");
    for (int i = 0; i < count; ++i)
        requireSame<double, std::uint64_t>(found[i], expected[i], "Scanner reads the numbers of sscanf");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A text of C ends at its first NUL.
    const std::string_view bytes = Fuzz::textOf(data, size);
    const std::string text{bytes.substr(0, bytes.find('\0'))};
    checkReader<double, std::uint64_t>(text, [](const char* first, char** end) { return std::strtod(first, end); });
    checkReader<float, std::uint32_t>(text, [](const char* first, char** end) { return std::strtof(first, end); });
    checkInteger(text);
    checkScanner(text);
    checkScanner('{' + text);
    return 0;
}
