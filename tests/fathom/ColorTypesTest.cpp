#include <fathom/ColorTypes.hpp> // first: the header must be self-contained

#include "support/Locales.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace ColorTypesTest {

using namespace Orla;

using Colour = Gyre::rgba_float_t;
using Trait = VValueTrait<Colour>;

TEST(Colour, isWrittenWithSixDigits)
{
    EXPECT_EQ(Trait::Text({1, 0.5f, 0.1f, 0}), "(1,0.5,0.1,0)");
    EXPECT_EQ(Trait::Text({1.0f / 3, 1e-7f, 1e10f, -2}), "(0.333333,1e-07,1e+10,-2)");
    constexpr float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Trait::Text({inf, -inf, std::numeric_limits<float>::quiet_NaN(), 16777216}),
              "(inf,-inf,nan,1.67772e+07)");
}

TEST(Colour, isReadWithBlanksAndAMissingEnd)
{
    const struct {
        const char* text;
        bool ok;
        Colour colour;
    } cases[] = {
        {"(1,0,0,1)", true, {1, 0, 0, 1}},
        {" ( 1, 0, 0 )", true, {1, 0, 0, 1}},
        {"(0.5,0.5,0.5)", true, {0.5f, 0.5f, 0.5f, 1}},
        {"(0.25,0.5", true, {0.25f, 0.5f, 1, 1}},
        {"\t(\n0.25,\n0.5,x", true, {0.25f, 0.5f, 1, 1}},
        {"(0.1,0.2,0.3,0.4 and more", true, {0.1f, 0.2f, 0.3f, 0.4f}},
        {"(0.1 ,0.2)", false, {0.1f, 1, 1, 1}},
        {"(0.5)", false, {0.5f, 1, 1, 1}},
        {"(", false, {1, 1, 1, 1}},
        {"", false, {1, 1, 1, 1}},
        {"0.5,0.5", false, {1, 1, 1, 1}},
        {"red", false, {1, 1, 1, 1}},
    };
    for (const auto& [text, ok, colour] : cases) {
        SCOPED_TRACE(text);
        Colour read{9, 9, 9, 9};
        EXPECT_EQ(Trait::setValueFromText(read, text), ok);
        EXPECT_EQ(read, colour) << "missing components become 1 and do not keep their old value";
    }
}

TEST(Colour, isReadLikeSscanf)
{
    const InClassicLocale classic;
    const std::string characters = "0123456789.e+-xinfa (),,, \n";
    std::mt19937 random(1);
    for (int i = 0; i < 50'000; ++i) {
        std::string text = "(0.5,1,0.25,1)";
        for (auto n = random() % 5; n > 0; --n)
            text[random() % text.size()] = characters[random() % characters.size()];
        Colour expected{1, 1, 1, 1};
        const int count =
            std::sscanf(text.c_str(), " ( %g, %g, %g, %g )", &expected.r, &expected.g, &expected.b, &expected.a);
        Colour read;
        ASSERT_EQ(Trait::setValueFromText(read, text), count > 1) << text;
        ASSERT_EQ(Trait::Text(read), Trait::Text(expected)) << text;
    }
}

TEST(Colour, hasTheSameTextInALocaleWithADecimalComma)
{
    const UnderDecimalComma comma;
    EXPECT_EQ(Trait::Text({0.5f, 1, 0, 1}), "(0.5,1,0,1)");
    Colour read;
    EXPECT_TRUE(Trait::setValueFromText(read, "(0.5,1,0,1)"));
    EXPECT_EQ(read, (Colour{0.5f, 1, 0, 1}));
}

} // namespace ColorTypesTest
