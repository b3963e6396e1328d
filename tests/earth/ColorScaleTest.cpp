#include <earth/ColorScale.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace ColorScaleTest {

using Gyre::rgba_float_t;
using Earth::mixedColor;
using Earth::scaleColor;

namespace {

double linear(float channel)
{
    const double c = static_cast<double>(channel);
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

// Returns the CIE lightness L*, from 0 to 100. The colours are mixed by another measure.
double lightness(const rgba_float_t& color)
{
    const double y = 0.2126 * linear(color.r) + 0.7152 * linear(color.g) + 0.0722 * linear(color.b);
    return y > 216.0 / 24389 ? 116 * std::cbrt(y) - 16 : y * 24389 / 27;
}

void expectHex(const rgba_float_t& color, int red, int green, int blue)
{
    EXPECT_NEAR(static_cast<double>(color.r) * 255, red, 0.01);
    EXPECT_NEAR(static_cast<double>(color.g) * 255, green, 0.01);
    EXPECT_NEAR(static_cast<double>(color.b) * 255, blue, 0.01);
    EXPECT_EQ(color.a, 1);
}

} // namespace

TEST(ColorScale, runsFromLightYellowToDarkViolet)
{
    expectHex(scaleColor(0), 0xf6, 0xd5, 0x6b);
    expectHex(scaleColor(0.5), 0xcd, 0x39, 0x5d);
    expectHex(scaleColor(1), 0x29, 0x13, 0x5b);
}

TEST(ColorScale, darkensEvenly)
{
    constexpr int steps = 24;
    const double whole = lightness(scaleColor(0)) - lightness(scaleColor(1));
    EXPECT_GT(whole, 70);
    for (int i = 0; i < steps; ++i) {
        SCOPED_TRACE(i);
        const double step = lightness(scaleColor(i / 24.0)) - lightness(scaleColor((i + 1) / 24.0));
        EXPECT_GT(step, 0.5 * whole / steps);
        EXPECT_LT(step, 1.6 * whole / steps);
    }
}

TEST(ColorScale, clampsPositionsToItsEnds)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(scaleColor(-1), scaleColor(0));
    EXPECT_EQ(scaleColor(-infinity), scaleColor(0));
    EXPECT_EQ(scaleColor(std::numeric_limits<double>::quiet_NaN()), scaleColor(0));
    EXPECT_EQ(scaleColor(1.5), scaleColor(1));
    EXPECT_EQ(scaleColor(infinity), scaleColor(1));
}

TEST(ColorScale, passesThroughTheColoursOfATable)
{
    constexpr std::uint32_t table[] = {0xffffff, 0x808080, 0x102030};
    expectHex(mixedColor(table, 0), 0xff, 0xff, 0xff);
    expectHex(mixedColor(table, 0.5), 0x80, 0x80, 0x80);
    expectHex(mixedColor(table, 1), 0x10, 0x20, 0x30);
    expectHex(mixedColor(table, 7), 0x10, 0x20, 0x30);
    expectHex(mixedColor(table, std::numeric_limits<double>::quiet_NaN()), 0xff, 0xff, 0xff);
    // Half-way in Oklab: the cube roots of the greys' linear values, 1 and 0.21586, are averaged.
    const double grey = 255 * (1.055 * std::pow(std::pow((1 + std::cbrt(0.2158605)) / 2, 3), 1 / 2.4) - 0.055);
    EXPECT_NEAR(static_cast<double>(mixedColor(table, 0.25).g) * 255, grey, 0.05);
}

} // namespace ColorScaleTest
