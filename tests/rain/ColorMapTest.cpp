#include <rain/ColorMap.hpp>

#include <rain/Grid.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <vector>

namespace ColorMapTest {

using Rain::ColorMap;

namespace {

// Returns the CIE lightness L*, from 0 to 100. The colours are mixed by another measure.
double lightness(const ColorMap::Color& color)
{
    const auto linear = [](float channel) {
        const double c = static_cast<double>(channel);
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 116 * std::cbrt(0.2126 * linear(color.r) + 0.7152 * linear(color.g) + 0.0722 * linear(color.b)) - 16;
}

} // namespace

TEST(ColorMap, hasAClassBelowBetweenAndAboveItsLevels)
{
    const ColorMap map{{100, 500, 1000}};
    EXPECT_EQ(map.colors().size(), 4u);
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double value;
        std::size_t expected;
    } cases[] = {{-infinity, 0}, {99.9, 0}, {100, 1}, {499, 1}, {500, 2}, {999, 2}, {1000, 3}, {infinity, 3}};
    for (const auto& [value, expected] : cases) {
        EXPECT_EQ(map.classOf(value), expected) << value;
        EXPECT_EQ(map(value), map.colors()[expected]) << value;
    }
}

TEST(ColorMap, marksMissingValues)
{
    EXPECT_EQ((ColorMap{{100}}(Rain::missing)), ColorMap::unknown);
}

TEST(ColorMap, darkensEvenlyFromDryToWet)
{
    const ColorMap map{{100, 250, 500, 1000, 1500, 2000, 3000, 4000, 6000}};
    const double whole = lightness(map.colors().front()) - lightness(map.colors().back());
    EXPECT_GT(whole, 70);
    for (std::size_t i = 1; i < map.colors().size(); ++i) {
        const double step = lightness(map.colors()[i - 1]) - lightness(map.colors()[i]);
        EXPECT_GT(step, 0.5 * whole / 9) << i;
        EXPECT_LT(step, 1.6 * whole / 9) << i;
    }
}

TEST(ColorMap, usesItsWholeScaleForAnyNumberOfLevels)
{
    const ColorMap one{{5}};
    const ColorMap many{{1, 2, 3, 4, 5, 6, 7}};
    EXPECT_EQ(one.colors().front(), many.colors().front());
    EXPECT_EQ(one.colors().back(), many.colors().back());
}

TEST(ColorMap, refusesLevelsOutOfOrder)
{
    EXPECT_THROW((ColorMap{{2, 1}}), std::runtime_error);
    EXPECT_THROW(ColorMap{{}}, std::runtime_error);
}

} // namespace ColorMapTest
