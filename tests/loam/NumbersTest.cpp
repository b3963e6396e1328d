#include <loam/Numbers.hpp>

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <locale.h>

namespace NumbersTest {

using namespace Loam;

template<class T>
concept HasText = requires(T value, const char* text, char* buffer) {
    numberText(value);
    writeNumber(buffer, buffer, value);
    readNumber(text, text, value);
    readNumber(value, text);
};

static_assert(HasText<double> && HasText<float> && HasText<short> && HasText<unsigned long long>);
static_assert(!HasText<bool> && !HasText<char> && !HasText<signed char> && !HasText<unsigned char>,
              "characters and booleans are not numbers");
static_assert(!HasText<long double>, "it would silently lose digits");
static_assert(noexcept(writeNumber(nullptr, nullptr, 1.0)) && noexcept(writeNumber(nullptr, nullptr, 1)));

namespace {

using Random = std::mt19937_64;

constexpr const char* decimalComma = "de_DE.UTF-8";

// Switches the calling thread to the C locale, for the C functions that results
// are compared with.
class InCLocale {
public:
    InCLocale() : m_former{uselocale(cLocale())} {}
    InCLocale(const InCLocale&) = delete;
    InCLocale& operator=(const InCLocale&) = delete;
    ~InCLocale() { uselocale(m_former); }

private:
    static locale_t cLocale()
    {
        static const locale_t theLocale = newlocale(LC_ALL_MASK, "C", nullptr);
        return theLocale;
    }

    locale_t m_former;
};

template<class... Arguments>
std::string print(const char* form, Arguments... arguments)
{
    const InCLocale c;
    std::string result(static_cast<std::size_t>(std::snprintf(nullptr, 0, form, arguments...)), '\0');
    std::snprintf(result.data(), result.size() + 1, form, arguments...);
    return result;
}

template<class T>
std::string hexText(T value)
{
    return print("%a", static_cast<double>(value));
}

double strtoNumber(const char* text, char** end, double)
{
    return std::strtod(text, end);
}

float strtoNumber(const char* text, char** end, float)
{
    return std::strtof(text, end);
}

template<class T>
bool sameBits(T a, T b)
{
    if (std::isnan(a) || std::isnan(b)) // payloads are not preserved
        return std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

std::string inQuotes(const std::string& text)
{
    std::string result;
    for (const char c : text.substr(0, 200)) {
        if (c >= ' ' && c <= '~')
            result += c;
        else
            result += print("\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
    }
    return '"' + result + (text.size() > 200 ? "\"..." : "\"");
}

// A copy without a final NUL, to let AddressSanitizer detect reads past the end.
class Exact {
public:
    explicit Exact(const std::string& text) : m_text{std::make_unique<char[]>(text.size())}, m_size{text.size()}
    {
        text.copy(m_text.get(), text.size());
    }

    const char* first() const { return m_text.get(); }
    const char* last() const { return m_text.get() + m_size; }

private:
    std::unique_ptr<char[]> m_text;
    std::size_t m_size;
};

// Expects the same value, end or rejection as from strtod or strtof.
template<class T>
void expectSameAsInC(const std::string& text)
{
    char* expectedEnd = nullptr;
    T expected{};
    {
        const InCLocale c;
        expected = strtoNumber(text.c_str(), &expectedEnd, T{});
    }
    const auto expectedLength = expectedEnd - text.c_str();

    const Exact copy(text);
    const T before = 42;
    T value = before;
    const char* end = readNumber(copy.first(), copy.last(), value);
    if (expectedLength == 0) {
        if (end || value != before)
            ADD_FAILURE() << inQuotes(text) << " is not a number but was read as " << hexText(value);
    } else if (!end) {
        ADD_FAILURE() << inQuotes(text) << " was rejected instead of read as " << hexText(expected);
    } else if (end - copy.first() != expectedLength || !sameBits(value, expected)) {
        ADD_FAILURE() << inQuotes(text) << " was read as " << hexText(value) << " from " << end - copy.first()
                      << " characters instead of " << hexText(expected) << " from " << expectedLength;
    }
}

void expectSameAsInC(const std::string& text)
{
    expectSameAsInC<double>(text);
    expectSameAsInC<float>(text);
}

double randomDouble(Random& random)
{
    return std::bit_cast<double>(random());
}

double randomDenormal(Random& random)
{
    return std::bit_cast<double>(random() >> 12 >> random() % 52);
}

float randomFloat(Random& random)
{
    return std::bit_cast<float>(static_cast<std::uint32_t>(random()));
}

std::size_t upTo(Random& random, std::size_t most)
{
    return static_cast<std::size_t>(random() % (most + 1));
}

template<class Range>
const auto& oneOf(Random& random, const Range& range)
{
    return *(std::begin(range) + static_cast<std::ptrdiff_t>(random() % std::size(range)));
}

std::string zeros(std::size_t count)
{
    return std::string(count, '0');
}

// Runs each test in the C locale and in one that writes 0.5 as 0,5 and 1000 as
// 1.000, set for both the C and the C++ library.
class Numbers : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        m_formerOfC = std::setlocale(LC_ALL, nullptr);
        ASSERT_NE(std::setlocale(LC_ALL, GetParam()), nullptr)
            << "The locale " << GetParam() << " is missing on this machine. Generate it as root with:\n"
            << "  localedef -i de_DE -f UTF-8 de_DE.UTF-8";
        m_former = std::locale::global(std::locale(GetParam()));
        char half[8];
        std::snprintf(half, sizeof half, "%g", 0.5);
        ASSERT_STREQ(half, GetParam() == decimalComma ? "0,5" : "0.5");
    }

    void TearDown() override
    {
        std::locale::global(m_former);
        std::setlocale(LC_ALL, m_formerOfC.c_str());
    }

private:
    std::locale m_former;
    std::string m_formerOfC;
};

INSTANTIATE_TEST_SUITE_P(Locales, Numbers, testing::Values("C", decimalComma),
                         [](const auto& test) { return test.param == decimalComma ? "DecimalComma" : "C"; });

// Returns by trial the fewest significant digits that read back as the same number.
template<class T>
int fewestDigits(T value)
{
    for (int digits = 1;; ++digits) {
        const InCLocale c;
        char text[64];
        std::snprintf(text, sizeof text, "%.*e", digits - 1, static_cast<double>(value));
        if (sameBits(strtoNumber(text, nullptr, T{}), value))
            return digits;
    }
}

// Returns true if a text has no more digits than the number needs. Whole numbers
// are written out if an exponent would make them longer.
template<class T>
bool hasNoSuperfluousDigit(const std::string& text, T value)
{
    if (text.find_first_of(".e") == std::string::npos)
        return text == print("%.0f", static_cast<double>(value));
    std::string digits;
    for (const char c : text.substr(0, text.find('e'))) {
        if (c >= '0' && c <= '9')
            digits += c;
    }
    digits.erase(0, digits.find_first_not_of('0'));
    return static_cast<int>(digits.size()) == fewestDigits(value);
}

} // namespace

TEST_P(Numbers, writesTheShortestTextOfADouble)
{
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {45.0, "45"},
        {-45.0, "-45"},
        {0.0, "0"},
        {-0.0, "-0"},
        {0.5, "0.5"},
        {0.1, "0.1"},
        {1.0 / 3, "0.3333333333333333"},
        {1234567.25, "1234567.25"},
        {100000, "100000"},
        {-1e15, "-1000000000000000"},
        {9007199254740991, "9007199254740991"},
        {9007199254740992, "9007199254740992"},
        {1e16, "1e+16"},
        {1e22, "1e+22"},
        {0.001, "0.001"},
        {0.0001, "1e-04"},
        {1.7976931348623157e308, "1.7976931348623157e+308"},
        {-2.2250738585072014e-308, "-2.2250738585072014e-308"},
        {5e-324, "5e-324"},
        {std::numeric_limits<double>::infinity(), "inf"},
        {-std::numeric_limits<double>::infinity(), "-inf"},
        {std::copysign(std::numeric_limits<double>::quiet_NaN(), 1.0), "nan"},
        {std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0), "-nan"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(numberText(value), text);
}

TEST_P(Numbers, writesTheShortestTextOfAFloat)
{
    const struct {
        float value;
        const char* text;
    } cases[] = {
        {45.0f, "45"},
        {-0.0f, "-0"},
        {0.1f, "0.1"},
        {1.0f / 3, "0.33333334"},
        {16777216.0f, "16777216"},
        {3.4028235e38f, "3.4028235e+38"},
        {1e-45f, "1e-45"},
        {-std::numeric_limits<float>::infinity(), "-inf"},
        {std::copysign(std::numeric_limits<float>::quiet_NaN(), -1.0f), "-nan"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(numberText(value), text);
}

TEST_P(Numbers, readsBackWhatItWroteWithTheFewestDigits)
{
    Random random(1);
    for (int i = 0; i != 30'000; ++i) {
        const double value = i % 4 == 0 ? randomDenormal(random) : randomDouble(random);
        const std::string text = numberText(value);
        double read = 42;
        ASSERT_TRUE(readNumber(read, text)) << text;
        ASSERT_TRUE(sameBits(read, value)) << text;
        if (std::isfinite(value) && i % 8 < 2) {
            ASSERT_TRUE(hasNoSuperfluousDigit(text, value)) << text;
        }

        const float small = randomFloat(random);
        const std::string smallText = numberText(small);
        float smallRead = 42;
        ASSERT_TRUE(readNumber(smallRead, smallText)) << smallText;
        ASSERT_TRUE(sameBits(smallRead, small)) << smallText;
        if (std::isfinite(small) && i % 8 < 2) {
            ASSERT_TRUE(hasNoSuperfluousDigit(smallText, small)) << smallText;
        }
    }
}

template<class T>
void expectExactFit(T value)
{
    const std::string text = numberText(value);
    SCOPED_TRACE(text);
    ASSERT_LE(text.size(), numberTextSize);
    for (std::size_t size = 0; size != text.size() + 2; ++size) {
        std::vector<char> buffer(size);
        char* first = buffer.data();
        char* end = writeNumber(first, first + size, value);
        if (size < text.size()) {
            EXPECT_EQ(end, nullptr) << size;
        } else {
            ASSERT_NE(end, nullptr) << size;
            EXPECT_EQ(std::string(first, end), text);
        }
    }
}

TEST_P(Numbers, returnsNullIfTheBufferIsTooSmallAndNeverWritesBeyondIt)
{
    Random random(2);
    for (int i = 0; i != 300; ++i) {
        expectExactFit(randomDouble(random));
        expectExactFit(randomDenormal(random));
        expectExactFit(randomFloat(random));
        expectExactFit(static_cast<long long>(random()) >> random() % 64);
    }
    expectExactFit(-std::numeric_limits<double>::max());
    expectExactFit(-std::numeric_limits<double>::min());
    expectExactFit(-std::numeric_limits<double>::infinity());
    expectExactFit(std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0));
    expectExactFit(45.0);
    expectExactFit(std::numeric_limits<long long>::min());
    expectExactFit(std::numeric_limits<unsigned long long>::max());
    expectExactFit(short{0});
}

TEST_P(Numbers, readsAllNumbersOfTheCLocale)
{
    using Limits = std::numeric_limits<double>;
    const struct {
        std::string text;
        double value;
        std::size_t length;
    } cases[] = {
        {"45", 45, 2},
        {"+45.5", 45.5, 5},
        {"-45.5abc", -45.5, 5},
        {" \t\n\v\f\r7", 7, 7},
        {".5", 0.5, 2},
        {"5.", 5, 2},
        {"-.5e1", -5, 5},
        {"1.5e3", 1500, 5},
        {"1.5E+3", 1500, 6},
        {"1.5e", 1.5, 3},
        {"1.5e+", 1.5, 3},
        {"1.5e+x", 1.5, 3},
        {"1,5", 1, 1},
        {"1.000,5", 1, 5},
        {"1.2.3", 1.2, 3},
        {"1 2", 1, 1},
        {std::string("1\0002", 3), 1, 1},
        {std::string("1e5\0", 4), 1e5, 3},
        {"-0", -0.0, 2},
        {"0e99999999999999999999", 0, 22},
        {"-0e99999999999999999999", -0.0, 23},
        {"1e400", Limits::infinity(), 5},
        {"-1e400", -Limits::infinity(), 6},
        {"1e-400", 0, 6},
        {"-1e-400", -0.0, 7},
        {"5e-324", Limits::denorm_min(), 6},
        {"2.4703282292062328e-324", Limits::denorm_min(), 23},
        {"2.4703282292062327e-324", 0, 23},
        {"1.7976931348623158e308", Limits::max(), 22},
        {"1.7976931348623159e308", Limits::infinity(), 22},
        {"0x", 0, 1},
        {"-0x", -0.0, 2},
        {"0xg", 0, 1},
        {"0x.", 0, 1},
        {"0x.p1", 0, 1},
        {"0x1", 1, 3},
        {"0X1F", 31, 4},
        {"0x1.8p3", 12, 7},
        {"-0x1.8P-3", -0.1875, 9},
        {"0x.8", 0.5, 4},
        {"0x8.", 8, 4},
        {"0x1p", 1, 3},
        {"0x1p+", 1, 3},
        {"0x1.8.8", 1.5, 5},
        {"0x0p99999999999999999999", 0, 24},
        {"0x1p1023", 0x1p1023, 8},
        {"0x1p1024", Limits::infinity(), 8},
        {"0x1.fffffffffffff8p1023", Limits::infinity(), 23},
        {"0x1.fffffffffffff7p1023", Limits::max(), 23},
        {"0x1p-1074", Limits::denorm_min(), 9},
        {"0x1p-1075", 0, 9},
        {"0x1.00000000000000000001p-1075", Limits::denorm_min(), 30},
        {"0x3p-1075", 0x1p-1073, 9},
        {"0x1p-1076", 0, 9},
        {"-0x1p-99999999999999999999", -0.0, 26},
        {"inf", Limits::infinity(), 3},
        {"-InF", -Limits::infinity(), 4},
        {"+INFINITY", Limits::infinity(), 9},
        {"infinit", Limits::infinity(), 3},
        {"infinityandbeyond", Limits::infinity(), 8},
        {"nan", std::copysign(Limits::quiet_NaN(), 1.0), 3},
        {"-NaN", std::copysign(Limits::quiet_NaN(), -1.0), 4},
        {"nan()", std::copysign(Limits::quiet_NaN(), 1.0), 5},
        {"nan(0x7F_z)", std::copysign(Limits::quiet_NaN(), 1.0), 11},
        {"nan(a-b)", std::copysign(Limits::quiet_NaN(), 1.0), 3},
        {"nan(a", std::copysign(Limits::quiet_NaN(), 1.0), 3},
        {"nan(", std::copysign(Limits::quiet_NaN(), 1.0), 3},
    };
    for (const auto& [text, value, length] : cases) {
        SCOPED_TRACE(inQuotes(text));
        expectSameAsInC(text);
        const Exact copy(text);
        double read = 42;
        const char* end = readNumber(copy.first(), copy.last(), read);
        ASSERT_NE(end, nullptr);
        EXPECT_EQ(end - copy.first(), static_cast<std::ptrdiff_t>(length));
        EXPECT_TRUE(sameBits(read, value)) << hexText(read);
    }
}

TEST_P(Numbers, leavesTheValueUnchangedIfTheTextIsNotANumber)
{
    const std::string cases[] = {
        "",
        " ",
        "+",
        "-",
        ".",
        "-.",
        "e5",
        ".e5",
        "+-1",
        "-+1",
        "--1",
        "+ 1",
        "- 1",
        ",5",
        "x1",
        "in",
        "na",
        "i",
        "-e",
        "$1",
        "\xa0"
        "1",
        "\xe2\x80\x83"
        "1",
        "(1)",
        "p1",
        "-inx",
        std::string("\0"
                    "1",
                    2),
        std::string(" \0"
                    "1",
                    3),
        std::string("-\0"
                    "1",
                    3),
    };
    for (const std::string& text : cases) {
        SCOPED_TRACE(inQuotes(text));
        expectSameAsInC(text);
        double value = 42;
        EXPECT_FALSE(readNumber(value, text));
        EXPECT_EQ(value, 42);
        float small = 42;
        EXPECT_FALSE(readNumber(small, text));
        EXPECT_EQ(small, 42.0f);
        long whole = 42;
        EXPECT_FALSE(readNumber(whole, text));
        EXPECT_EQ(whole, 42);
    }
    double value = 42;
    EXPECT_FALSE(readNumber(value, std::string_view()));
    EXPECT_EQ(readNumber(nullptr, nullptr, value), nullptr);
    EXPECT_EQ(value, 42);
}

TEST_P(Numbers, readsNumbersOfAnyLength)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::string nines(5000, '9');
    const struct {
        const char* what;
        std::string text;
        double value;
    } cases[] = {
        {"many zeros after the point, cancelled", "0." + zeros(399) + "1e400", 1},
        {"even more of them", "0." + zeros(5000) + "1e5001", 1},
        {"more than common limits of exponents", "0." + zeros(699'999) + "1e700000", 1},
        {"almost cancelled", "0." + zeros(699'999) + "1e699990", 1e-10},
        {"not cancelled", "0." + zeros(5000) + "1e400", 0},
        {"many digits, cancelled", "1" + zeros(5000) + "e-5000", 1},
        {"even more of them, cancelled", "-1" + zeros(700'000) + "e-700000", -1},
        {"many digits, barely reduced", "-1" + zeros(5000) + "e-400", -infinity},
        {"more than cancelled", "1" + zeros(100'000) + "e-1000000", 0},
        {"an exponent that would cancel if truncated", "0." + zeros(99'999) + "1e1000000", infinity},
        {"many digits", "1" + zeros(5000), infinity},
        {"many nines", nines, infinity},
        {"many nines after the point", "0." + nines, 1},
        {"many leading zeros", zeros(5000) + "12.5", 12.5},
        {"many leading zeros, then too small", zeros(5000) + "1e-400", 0},
        {"only zeros", zeros(5000) + "." + zeros(5000) + "e" + nines, 0},
        {"a huge exponent", "1e" + nines, infinity},
        {"a huge negative exponent", "-1e-" + nines, -0.0},
        {"zeros before an exponent", "1e+" + zeros(5000) + "5", 1e5},
        {"zeros before a negative exponent", "1e-" + zeros(5000) + "5", 1e-5},
        {"midpoint, rounded down to even", "9007199254740993." + zeros(5000), 9007199254740992},
        {"above the midpoint by a late digit", "9007199254740993." + zeros(5000) + "1", 9007199254740994},
        {"above the midpoint, leading zeros", "0." + zeros(5000) + "9007199254740993" + zeros(900) + "1e5016",
         9007199254740994},
        {"midpoint, leading zeros", "0." + zeros(5000) + "9007199254740993" + zeros(900) + "0e5016", 9007199254740992},
        {"above the midpoint, all digits before the point", "9007199254740993" + zeros(5000) + "1e-5001",
         9007199254740994},
        {"midpoint to infinity",
         "179769313486231580793728971405303415079934132710037826936173778980444968292764750946649017977587"
         "207096330286416692887910946555547851940402630657488671505820681908902000708383676273854845817711"
         "531764475730270069855571366959622842914819860834936475292719074168444365510704342711559699508093"
         "042880177904174497792."
             + zeros(4500),
         infinity},
        {"just below it",
         "179769313486231580793728971405303415079934132710037826936173778980444968292764750946649017977587"
         "207096330286416692887910946555547851940402630657488671505820681908902000708383676273854845817711"
         "531764475730270069855571366959622842914819860834936475292719074168444365510704342711559699508093"
         "042880177904174497791."
             + nines,
         std::numeric_limits<double>::max()},
        {"hexadecimal zeros after the point, cancelled", "0x0." + zeros(100'000) + "1p400004", 1},
        {"many hexadecimal digits, cancelled", "0x1" + zeros(100'000) + "p-400000", 1},
        {"many hexadecimal digits", "0x1" + zeros(5000), infinity},
        {"leading hexadecimal zeros", "0x" + zeros(5000) + "1.8", 1.5},
        {"hexadecimal midpoint", "0x1.00000000000008" + zeros(5000), 1},
        {"above a hexadecimal midpoint", "0x1.00000000000008" + zeros(5000) + "1", 1 + 0x1p-52},
        {"a huge hexadecimal exponent", "-0x1p" + nines, -infinity},
        {"a huge negative hexadecimal exponent", "0x1p-" + nines, 0},
        {"a long NaN", "nan(" + nines + ")", std::copysign(std::numeric_limits<double>::quiet_NaN(), 1.0)},
        {"much white space", std::string(100'000, ' ') + "3", 3},
    };
    for (const auto& [what, text, value] : cases) {
        SCOPED_TRACE(what);
        expectSameAsInC(text + "#");
        double read = 42;
        EXPECT_TRUE(readNumber(read, text));
        EXPECT_TRUE(sameBits(read, value)) << hexText(read);
    }
}

TEST_P(Numbers, readsRandomNumbersInEveryFormatLikeC)
{
    Random random(3);
    const char* const forms[] = {"%.17g", "%.6g", "%.3e", "%.20e", "%a", "%A", "%.3a", "%.30a", "%.17G"};
    for (int i = 0; i != 40'000; ++i) {
        const double value = i % 4 == 0   ? randomDenormal(random)
                             : i % 4 == 1 ? static_cast<double>(randomFloat(random))
                                          : randomDouble(random);
        expectSameAsInC(print(oneOf(random, forms), value));
        if (i % 50 == 0)
            expectSameAsInC(print("%.*f", static_cast<int>(upTo(random, 1200)), value));
    }
}

// Numbers with few digits are not read by std::from_chars.
TEST_P(Numbers, readsDecimalNumbersOfAnyNumberOfDigitsLikeC)
{
    Random random(6);
    const char* const ends[] = {"", ",", ".", "e", "e3", "E-2", "-1", " 5", "x", "0123456789012345678"};
    for (int i = 0; i != 100'000; ++i) {
        std::string text = i % 3 == 0 ? "-" : "";
        for (std::size_t digits = upTo(random, 20); digits != 0; --digits)
            text += static_cast<char>('0' + upTo(random, i % 7 == 0 ? 1 : 9));
        if (i % 4 != 0)
            text.insert(upTo(random, text.size()), ".");
        expectSameAsInC(text + oneOf(random, ends));
    }
}

TEST_P(Numbers, roundsMidpointsBetweenNeighboursLikeC)
{
    Random random(4);
    for (int i = 0; i != 5000; ++i) {
        // A long double holds the midpoint between two doubles, and `print` writes all
        // its digits.
        const double value = std::fabs(i % 2 == 0 ? randomDenormal(random) : randomDouble(random));
        const double next = std::nextafter(value, std::numeric_limits<double>::infinity());
        if (std::isfinite(next)) {
            const long double middle = (static_cast<long double>(value) + static_cast<long double>(next)) / 2;
            const std::string text = print("%.1100Lg", middle);
            const auto exponent = std::min(text.find('e'), text.size());
            for (const char* more : {"", "0", "1", "00000000000000000000000001"}) {
                std::string mantissa = text.substr(0, exponent);
                if (*more && mantissa.find('.') == std::string::npos)
                    mantissa += '.';
                expectSameAsInC<double>(mantissa + more + text.substr(exponent));
            }
            expectSameAsInC<double>(print("%.*Lg", static_cast<int>(upTo(random, 800)), middle));
            expectSameAsInC<double>(print("%La", middle));
        }
        const float small = std::fabs(randomFloat(random)) / (i % 3 == 0 ? 1e30f : 1.0f);
        const float nextSmall = std::nextafter(small, std::numeric_limits<float>::infinity());
        if (std::isfinite(nextSmall)) {
            const double middle = (static_cast<double>(small) + static_cast<double>(nextSmall)) / 2;
            expectSameAsInC<float>(print("%.200g", middle));
            expectSameAsInC<float>(print("%.*g", static_cast<int>(upTo(random, 130)), middle));
            expectSameAsInC<float>(print("%a", middle));
            expectSameAsInC<float>(print("%a", std::nextafter(middle, 0.0)));
            expectSameAsInC<float>(print("%a", std::nextafter(middle, 1e300)));
        }
    }
}

TEST_P(Numbers, readsGarbledNumbersLikeC)
{
    Random random(5);
    const std::string seeds[] = {
        "1",
        "-12.5e-3",
        "0x1.8p3",
        "infinity",
        "nan(123)",
        "1e308",
        "4.9e-324",
        "  +0.00",
        "0X.8P-1074",
        "123456789012345",
        "1.7976931348623157e308",
        "-nan",
        "0x1p-1074",
        "1e-400",
    };
    const std::string alphabet("+-..00112345678999eeExXpPinfINFatyNA()_abcdefF \t\n\v\f\r,;\0", 55);
    for (int i = 0; i != 60'000; ++i) {
        std::string text = oneOf(random, seeds);
        for (std::size_t changes = upTo(random, 4); changes != 0; --changes) {
            const std::size_t at = upTo(random, text.size());
            switch (random() % 4) {
            case 0:
                text.insert(at, 1, oneOf(random, alphabet));
                break;
            case 1:
                text.erase(at, 1);
                break;
            case 2:
                text.insert(at, oneOf(random, seeds));
                break;
            default:
                if (at < text.size())
                    text[at] = oneOf(random, alphabet);
            }
        }
        expectSameAsInC(text);
    }
    for (int i = 0; i != 60'000; ++i) {
        std::string text;
        for (std::size_t length = upTo(random, 9); length != 0; --length)
            text += oneOf(random, alphabet);
        expectSameAsInC(text);
    }
}

TEST_P(Numbers, readsHexadecimalNumbersLikeC)
{
    Random random(6);
    for (int i = 0; i != 60'000; ++i) {
        std::string text = "0x";
        const std::size_t digits = upTo(random, 24);
        const std::size_t point = upTo(random, 24);
        for (std::size_t k = 0; k != digits; ++k) {
            if (k == point)
                text += '.';
            // Many zeros and ones, which produce midpoints.
            text += oneOf(random, std::string("000000000001178888fF"));
        }
        const int exponents[] = {0, -1074, -1060, -1022, 1023, 1000, -149, -126, 127};
        text += 'p' + std::to_string(oneOf(random, exponents) + static_cast<int>(upTo(random, 100)) - 50);
        expectSameAsInC(text);
    }
}

template<class T>
class IntegerNumbers : public testing::Test {};

using Integers =
    testing::Types<short, unsigned short, int, unsigned int, long, unsigned long, long long, unsigned long long>;

struct IntegerNames {
    template<class T>
    static std::string GetName(int)
    {
        return std::string(std::is_signed_v<T> ? "Signed" : "Unsigned") + typeid(T).name();
    }
};

TYPED_TEST_SUITE(IntegerNumbers, Integers, IntegerNames);

namespace {

// Expects the same result as from strtoll or strtoull, but rejection of numbers that
// do not fit.
template<class T>
void expectSameIntegerAsInC(const std::string& text)
{
    char* expectedEnd = nullptr;
    bool fits = false;
    T expected{};
    const InCLocale c;
    errno = 0;
    if constexpr (std::is_signed_v<T>) {
        const long long number = std::strtoll(text.c_str(), &expectedEnd, 10);
        fits = errno == 0 && std::in_range<T>(number);
        expected = static_cast<T>(number);
    } else {
        const unsigned long long number = std::strtoull(text.c_str(), &expectedEnd, 10);
        const std::string read(text.c_str(), static_cast<const char*>(expectedEnd));
        fits = errno == 0 && std::in_range<T>(number) && (number == 0 || read.find('-') == std::string::npos);
        expected = static_cast<T>(number);
    }
    const auto expectedLength = expectedEnd - text.c_str();

    SCOPED_TRACE(inQuotes(text));
    const Exact copy(text);
    T value = 42;
    const char* end = readNumber(copy.first(), copy.last(), value);
    if (expectedLength == 0 || !fits) {
        ASSERT_EQ(end, nullptr);
        ASSERT_EQ(value, 42);
    } else {
        ASSERT_NE(end, nullptr);
        ASSERT_EQ(end - copy.first(), expectedLength);
        ASSERT_EQ(value, expected);
    }
}

} // namespace

TYPED_TEST(IntegerNumbers, areReadLikeInCButRejectedIfOutOfRange)
{
    const std::string cases[] = {
        "0",
        "-0",
        "+0",
        "-000",
        "7",
        "-7",
        "+7",
        "007",
        " \t\n\v\f\r7",
        "7 8",
        "7.9",
        "7e3",
        "0x10",
        "7,5",
        "1.000",
        "-",
        "+",
        "+-7",
        "-+7",
        "--7",
        "- 7",
        "",
        " ",
        "x",
        ".5",
        "-x",
        std::string("7\0008", 3),
        std::string("\0007", 2),
        zeros(5000) + "12",
        "-" + zeros(5000),
        "32767",
        "32768",
        "-32768",
        "-32769",
        "65535",
        "65536",
        "2147483647",
        "2147483648",
        "-2147483648",
        "-2147483649",
        "4294967295",
        "4294967296",
        "9223372036854775807",
        "9223372036854775808",
        "-9223372036854775808",
        "-9223372036854775809",
        "18446744073709551615",
        "18446744073709551616",
        "-18446744073709551616",
        std::string(5000, '9'),
        "-" + std::string(5000, '9'),
        "99999999999999999999x",
    };
    for (const std::string& text : cases)
        expectSameIntegerAsInC<TypeParam>(text);

    Random random(7);
    const std::string alphabet = "+-0123456789012345678901234567890123456789 \t.x";
    for (int i = 0; i != 20'000; ++i) {
        std::string text;
        for (std::size_t length = upTo(random, 22); length != 0; --length)
            text += oneOf(random, alphabet);
        expectSameIntegerAsInC<TypeParam>(text);
    }
}

TYPED_TEST(IntegerNumbers, rejectNegativeNumbersForUnsignedTypes)
{
    TypeParam value = 42;
    EXPECT_EQ(readNumber(value, "-5"), std::is_signed_v<TypeParam>);
    EXPECT_EQ(value, std::is_signed_v<TypeParam> ? static_cast<TypeParam>(-5) : TypeParam{42});
    EXPECT_TRUE(readNumber(value, "-0"));
    EXPECT_EQ(value, 0);
}

TYPED_TEST(IntegerNumbers, areReadBackAsWritten)
{
    Random random(8);
    std::vector<TypeParam> values{
        0, 1, 9, 10, std::numeric_limits<TypeParam>::min(), std::numeric_limits<TypeParam>::max()};
    for (int i = 0; i != 5000; ++i)
        values.push_back(static_cast<TypeParam>(random() >> random() % 64));
    for (const TypeParam value : values) {
        const std::string text = numberText(value);
        ASSERT_EQ(text, std::to_string(value));
        TypeParam read = 42;
        ASSERT_TRUE(readNumber(read, text)) << text;
        ASSERT_EQ(read, value);
    }
}

TEST_P(Numbers, writesAndReadsIntegersWithoutGrouping)
{
    EXPECT_EQ(numberText(1234567), "1234567");
    EXPECT_EQ(numberText(std::numeric_limits<long long>::min()), "-9223372036854775808");
    int value = 0;
    EXPECT_TRUE(readNumber(value, "1.234"));
    EXPECT_EQ(value, 1);
}

TEST_P(Numbers, formatsLikePrintf)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::copysign(std::numeric_limits<double>::quiet_NaN(), 1.0);
    const struct {
        double value;
        const char* g;
        const char* f;
    } cases[] = {
        {0, "0", "0.000000"},
        {-0.0, "-0", "-0.000000"},
        {0.1, "0.1", "0.100000"},
        {123456, "123456", "123456.000000"},
        {1234567, "1.23457e+06", "1234567.000000"},
        {-1.5e-7, "-1.5e-07", "-0.000000"},
        {0.0001, "0.0001", "0.000100"},
        {1e100, "1e+100",
         "100000000000000001590289110975991804683608085639452813897813275577478387721703810608134699"
         "85856815104.000000"},
        {2.5, "2.5", "2.500000"},
        {infinity, "inf", "inf"},
        {-infinity, "-inf", "-inf"},
        {nan, "nan", "nan"},
        {-nan, "-nan", "-nan"},
    };
    for (const auto& [value, g, f] : cases) {
        EXPECT_EQ(formatG(value), g);
        EXPECT_EQ(formatF(value), f);
    }
    EXPECT_EQ(formatG(2.5, 0), "2");
    EXPECT_EQ(formatF(2.5, 0), "2");
    EXPECT_EQ(formatF(3.5, 0), "4");
    EXPECT_EQ(formatG(1.0 / 3, -1), "0.333333");
    EXPECT_EQ(formatF(1.0 / 3, -1), "0.333333");
}

TEST_P(Numbers, formatsWithAnyPrecisionLikePrintf)
{
    Random random(9);
    const double limits[] = {std::numeric_limits<double>::max(),
                             -std::numeric_limits<double>::max(),
                             std::numeric_limits<double>::min(),
                             -std::numeric_limits<double>::denorm_min(),
                             -std::bit_cast<double>((std::uint64_t{1} << 52) - 1), // has the most digits
                             0.00012345678901234567,
                             1e308,
                             1e22,
                             -0.0,
                             std::numeric_limits<double>::infinity(),
                             std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0)};
    const int precisions[] = {-1,  0,   1,   2,   6,   15,  17,  100, 200, 201,  202,  308,
                              309, 310, 495, 496, 497, 751, 766, 767, 768, 1074, 1100, 5000};
    for (const double value : limits) {
        for (const int precision : precisions) {
            ASSERT_EQ(formatG(value, precision), print("%.*g", precision, value)) << precision;
            ASSERT_EQ(formatF(value, precision), print("%.*f", precision, value)) << precision;
        }
    }
    for (const int precision : {1'000'000, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(formatG(0.1, precision), print("%.1000g", 0.1));
        EXPECT_LT(formatG(0.1, precision).capacity(), 2000u) << "it allocates only the memory that it needs";
    }
    EXPECT_EQ(formatG(0.1, std::numeric_limits<int>::min()), "0.1");
    EXPECT_EQ(formatF(0.1, std::numeric_limits<int>::min()), "0.100000");
    for (int i = 0; i != 40'000; ++i) {
        double value = randomDouble(random);
        if (i % 2 == 0) { // of a size that both formats write without an exponent
            const auto whole = static_cast<double>(static_cast<std::int64_t>(random()));
            value = std::ldexp(whole, -static_cast<int>(upTo(random, 80)));
        }
        const int precision = static_cast<int>(upTo(random, i % 100 == 0 ? 1200 : 20)) - 1;
        ASSERT_EQ(formatG(value, precision), print("%.*g", precision, value)) << precision;
        ASSERT_EQ(formatF(value, precision), print("%.*f", precision, value)) << precision;
    }
}

TEST_P(Numbers, skipsOnlyTheSixBlanksOfTheCLocale)
{
    const std::string text = " \t\n\v\f\r\x1f";
    EXPECT_EQ(skipBlanks(text.data(), text.data() + text.size()), text.data() + 6);
    EXPECT_EQ(skipBlanks(text.data(), text.data() + 3), text.data() + 3);
    const std::string noBreakSpace = "\xa0";
    EXPECT_EQ(skipBlanks(noBreakSpace.data(), noBreakSpace.data() + 1), noBreakSpace.data());
}

} // namespace NumbersTest
