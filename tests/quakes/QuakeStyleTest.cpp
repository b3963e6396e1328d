#include <quakes/QuakeStyle.hpp>

#include <earth/ColorScale.hpp>
#include <earth/Palette.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace QuakeStyleTest {

using Quakes::ColorRule;
using Quakes::colorRuleName;
using Quakes::colorRuleOfName;
using Quakes::Quake;
using Quakes::quakeColor;
using Quakes::quakeRadius;
using Earth::scaleColor;
using Quakes::scalePosition;

namespace {

constexpr ColorRule allRules[] = {ColorRule::Magnitude, ColorRule::Depth, ColorRule::Age};

Quake quake(std::optional<double> magnitude, std::optional<double> depth, double time)
{
    Quake result;
    result.magnitude = magnitude;
    result.depth = depth;
    result.time = time;
    return result;
}

} // namespace

TEST(QuakeStyle, findsRulesByName)
{
    const char* const names[] = {"magnitude", "depth", "age"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_STREQ(colorRuleName(allRules[i]), names[i]);
        EXPECT_EQ(colorRuleOfName(names[i]), allRules[i]);
    }
    EXPECT_FALSE(colorRuleOfName(""));
    EXPECT_FALSE(colorRuleOfName("Depth"));
}

TEST(QuakeStyle, placesValuesOnTheScale)
{
    const struct {
        ColorRule rule;
        double value;
        double position;
    } cases[] = {
        {ColorRule::Magnitude, 0, 0}, {ColorRule::Magnitude, 3.5, 0.5}, {ColorRule::Magnitude, 7, 1},
        {ColorRule::Magnitude, 9, 1}, {ColorRule::Magnitude, -1, 0},    {ColorRule::Depth, 0, 0},
        {ColorRule::Depth, 175, 0.5}, {ColorRule::Depth, 700, 1},       {ColorRule::Depth, -2, 0},
        {ColorRule::Age, 0, 1},       {ColorRule::Age, 84, 0.5},        {ColorRule::Age, 168, 0},
        {ColorRule::Age, 1000, 0},
    };
    for (const auto& [rule, value, position] : cases)
        EXPECT_DOUBLE_EQ(scalePosition(rule, value), position) << colorRuleName(rule) << ' ' << value;
}

TEST(QuakeStyle, coloursEventsByTheirRule)
{
    const Quake event = quake(3.5, 175, 1000);
    EXPECT_EQ(quakeColor(event, ColorRule::Magnitude, 0), scaleColor(0.5));
    EXPECT_EQ(quakeColor(event, ColorRule::Depth, 0), scaleColor(0.5));
    const auto age = quakeColor(event, ColorRule::Age, 1000 + 84 * 3600);
    auto expected = scaleColor(0.5);
    expected.a = 0.675f;
    EXPECT_EQ(age, expected);
}

TEST(QuakeStyle, fadesOldEvents)
{
    const Quake event = quake(5, 10, 0);
    EXPECT_EQ(quakeColor(event, ColorRule::Age, 0), scaleColor(1));
    float last = 1;
    for (const int hours : {24, 72, 168}) {
        const float opacity = quakeColor(event, ColorRule::Age, hours * 3600.0).a;
        EXPECT_LT(opacity, last);
        last = opacity;
    }
    EXPECT_EQ(last, 0.35f);
    EXPECT_EQ(quakeColor(event, ColorRule::Age, 500 * 3600.0).a, last) << "never completely invisible";
}

TEST(QuakeStyle, coloursUnknownValuesGrey)
{
    const Quake event = quake(std::nullopt, std::nullopt, 0);
    EXPECT_EQ(quakeColor(event, ColorRule::Magnitude, 0), Quakes::unknownColor);
    EXPECT_EQ(quakeColor(event, ColorRule::Depth, 0), Quakes::unknownColor);
    EXPECT_NE(quakeColor(event, ColorRule::Age, 0), Quakes::unknownColor);
}

TEST(QuakeStyle, doublesTheRadiusEverySevenQuartersOfMagnitude)
{
    EXPECT_DOUBLE_EQ(quakeRadius(0), 1);
    EXPECT_DOUBLE_EQ(quakeRadius(1.75), 2);
    EXPECT_DOUBLE_EQ(quakeRadius(7), 16);
    EXPECT_DOUBLE_EQ(quakeRadius(std::nullopt), 1);
    EXPECT_EQ(quakeRadius(-5), quakeRadius(-1)) << "still visible";
    EXPECT_EQ(quakeRadius(1e300), quakeRadius(9.5)) << "not larger than the picture";
}

TEST(QuakeStyle, marksValuesInTheOrderOfTheScale)
{
    for (const ColorRule rule : allRules) {
        const auto values = Quakes::colorLegend(rule).values;
        ASSERT_GT(values.size(), 2u);
        EXPECT_EQ(scalePosition(rule, values.front()), 0);
        EXPECT_EQ(scalePosition(rule, values.back()), 1);
        for (std::size_t i = 1; i < values.size(); ++i)
            EXPECT_GT(scalePosition(rule, values[i]), scalePosition(rule, values[i - 1]) + 0.05) << "labels overlap";
    }
    EXPECT_STREQ(Quakes::colorLegend(ColorRule::Depth).title, "Depth (km)");
    EXPECT_STREQ(Quakes::colorLegend(ColorRule::Age).title, "Age (hours)");
}

} // namespace QuakeStyleTest
