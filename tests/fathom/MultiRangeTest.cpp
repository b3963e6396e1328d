#include <fathom/MultiRange.hpp> // first: the header must be self-contained

#include "support/Locales.hpp"

#include <fathom/VConnectionTypeColors.hpp>

#include <loam/Typename.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace MultiRangeTest {

using namespace Orla;

using Gyre::MultiRange;
using Trait = VValueTrait<MultiRange>;

namespace {

TEST(MultiRange, isWrittenAsItsFirstAndLastBound)
{
    EXPECT_EQ(Trait::Text(MultiRange()), "");
    EXPECT_EQ(Trait::Text(MultiRange(std::vector<double>{1, 2, 3, 4.5})), "[1.000000;4.500000]");
    EXPECT_EQ(Trait::Text(MultiRange(std::vector<double>{7})), "[7.000000;7.000000]");
}

TEST(MultiRange, isNotTruncatedIfItsNumbersAreLong)
{
    constexpr double huge = std::numeric_limits<double>::max();
    char text[400];
    std::snprintf(text, sizeof text, "%.0f", huge);
    EXPECT_EQ(Trait::Text(MultiRange(std::vector<double>{-huge, huge})),
              "[-" + std::string(text) + ".000000;" + text + ".000000]");
}

TEST(MultiRange, readsBackItsFirstAndLastBound)
{
    MultiRange range;
    EXPECT_TRUE(Trait::setValueFromText(range, Trait::Text(MultiRange(std::vector<double>{1, 2, 3, 4.5}))));
    EXPECT_EQ(range, MultiRange(std::vector<double>{1, 4.5}));
}

TEST(MultiRange, acceptsUnreadableTextAndBecomesEmpty)
{
    for (const char* text : {"", "x", "[", "nothing to read"}) {
        MultiRange range(std::vector<double>{1, 2});
        EXPECT_TRUE(Trait::setValueFromText(range, text)) << text;
        EXPECT_TRUE(range.empty()) << text;
    }
}

TEST(MultiRange, hasTheSameTextInALocaleWithADecimalComma)
{
    const UnderDecimalComma comma;
    EXPECT_EQ(Trait::Text(MultiRange(std::vector<double>{1.5, 2})), "[1.500000;2.000000]");
    MultiRange range;
    Trait::setValueFromText(range, "[1.500000;2.000000]");
    EXPECT_EQ(range, MultiRange(std::vector<double>{1.5, 2}));
}

TEST(MultiRange, isIntentionallyPrintedAsTheOppositeOfItsState)
{
    testing::internal::CaptureStdout();
    speak(MultiRange(), "a");
    speak(MultiRange(std::vector<double>{1, 2}), "b");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a: not empty MultiRange\nb: empty MultiRange\n");
}

TEST(MultiRange, hasItsNameAndColour)
{
    EXPECT_EQ(Loam::Typename(typeid(MultiRange)), "MultiRange");
    EXPECT_EQ(VConnectionTypeColors::get(typeid(MultiRange)), "#8080FF");
    EXPECT_TRUE(Trait::TypenameInitialized);
}

} // namespace

} // namespace MultiRangeTest
