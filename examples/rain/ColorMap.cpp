#include "ColorMap.hpp"

#include "Levels.hpp"

#include <earth/ColorScale.hpp>
#include <earth/Palette.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Rain {

namespace {

// The lightness in Oklab decreases from 0.94 to 0.30 in equal steps.
constexpr std::uint32_t table[] = {0xf5ead3, 0xd3e0b1, 0x98cda5, 0x55b2ab, 0x328fb0, 0x3169a4, 0x30458a, 0x251f60};

} // namespace

const ColorMap::Color ColorMap::unknown = Earth::Palette::color(0xd9d9d9);

ColorMap::ColorMap(const Gyre::MultiRange& levels) : m_levels{levelsOf(levels)}
{
    const double last = static_cast<double>(m_levels.size());
    for (std::size_t i = 0; i <= m_levels.size(); ++i)
        m_colors.push_back(Earth::mixedColor(table, static_cast<double>(i) / last));
}

std::size_t ColorMap::classOf(double value) const noexcept
{
    return static_cast<std::size_t>(std::upper_bound(m_levels.begin(), m_levels.end(), value) - m_levels.begin());
}

ColorMap::Color ColorMap::operator()(double value) const noexcept
{
    return std::isnan(value) ? unknown : m_colors[classOf(value)];
}

} // namespace Rain
