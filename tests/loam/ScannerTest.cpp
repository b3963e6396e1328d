#include <loam/Scanner.hpp> // first: checks that the header is self-contained

#include "support/Locales.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

namespace ScannerTest {

using Loam::Scanner;

namespace {

// The result of reading two numbers separated by a comma.
struct Scanned {
    int count = 0;
    double a = 7;
    double b = 7;

    friend bool operator==(const Scanned& x, const Scanned& y)
    {
        const auto same = [](double p, double q) {
            return std::bit_cast<std::uint64_t>(p) == std::bit_cast<std::uint64_t>(q)
                   || (std::isnan(p) && std::isnan(q) && std::signbit(p) == std::signbit(q));
        };
        return x.count == y.count && same(x.a, y.a) && same(x.b, y.b);
    }
};

Scanned readBySscanf(const std::string& text)
{
    Scanned scanned;
    const int count = std::sscanf(text.c_str(), "%lg,%lg", &scanned.a, &scanned.b);
    scanned.count = count < 0 ? 0 : count; // at the end of the text there is no conversion
    return scanned;
}

Scanned readByScanner(const std::string& text)
{
    Scanned scanned;
    Scanner scanner(text);
    scanned.count = scanner.number(scanned.a);
    if (scanned.count == 1)
        scanned.count += scanner.literal(',').number(scanned.b);
    return scanned;
}

TEST(Scanner, readsLikeSscanfInTheCLocale)
{
    const InClassicLocale classic;
    for (const char* text : {"1,2",   " 1,\n\t2", "1 ,2",         "+1,-2",        "1e5,2",
                             "1e,2",  "1e+,2",    "1e+5e,2",      "1.2.3,4",      ".,1",
                             ".5,5.", "0x,1",     "0x1p3,2",      "0x1p,2",       "0x.8,2",
                             "0xg,1", "inf,nan",  "infinity,INF", "infinit,1",    "infi,1",
                             "in,1",  "nan(1),2", "na,1",         "-inf,-nan",    "",
                             " ",     "-",        "+-1,2",        "1e400,1e-400", "1,",
                             ",1",    "e5,1",     "00012,0x0012", "1,2,3",        "1\v,\f2",
                             "--1",   "1e5.5,2",  "0x1e+3,2",     "0x1.8p-1,2",   "0X1P3,0XA"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(readByScanner(text), readBySscanf(text));
    }
}

TEST(Scanner, readsRandomTextLikeSscanf)
{
    const InClassicLocale classic;
    const std::string characters = "0123456789.eE+-xXpPaAfFnNiItTyY ,{}()";
    const char* const seeds[] = {"", "nan", "inf", "infinity", "0x", "1e", "1e5", "0x1p", "-", ".5", "5.", "1,2"};
    std::mt19937 random(1);
    for (int i = 0; i < 200'000; ++i) {
        std::string text = seeds[random() % std::size(seeds)];
        for (auto n = random() % 12; n > 0; --n)
            text.insert(random() % (text.size() + 1), 1, characters[random() % characters.size()]);
        ASSERT_EQ(readByScanner(text), readBySscanf(text)) << text;
    }
}

TEST(Scanner, readsDecimalPointsInALocaleWithADecimalComma)
{
    const UnderDecimalComma comma;
    const Scanned scanned = readByScanner("1.5,2.25");
    EXPECT_EQ(scanned.count, 2);
    EXPECT_EQ(scanned.a, 1.5);
    EXPECT_EQ(scanned.b, 2.25);
}

TEST(Scanner, readsFloatsAsFloats)
{
    float value = 0;
    EXPECT_TRUE(Scanner("0.1").number(value));
    EXPECT_EQ(value, 0.1f);
    EXPECT_TRUE(Scanner("1e39").number(value));
    EXPECT_EQ(value, HUGE_VALF);
}

TEST(Scanner, failsPermanentlyAtTheFirstError)
{
    double value = 3;
    Scanner scanner("(1");
    EXPECT_FALSE(scanner.literal('{').number(value));
    EXPECT_FALSE(scanner.literal('(').number(value));
    EXPECT_TRUE(scanner.hasFailed());
    EXPECT_EQ(value, 3.0);
}

TEST(Scanner, skipsBlanksBeforeALiteralOnlyOnRequest)
{
    double value = 0;
    EXPECT_FALSE(Scanner(" (1").literal('(').number(value));
    EXPECT_TRUE(Scanner(" \t\n(  1").blanks().literal('(').number(value));
    EXPECT_EQ(value, 1.0);
}

TEST(Scanner, stopsAtTheFirstNul)
{
    double value = 0;
    Scanner scanner(std::string_view("1\0,2", 4));
    EXPECT_TRUE(scanner.number(value));
    EXPECT_FALSE(scanner.literal(',').number(value));
}

} // namespace

} // namespace ScannerTest
