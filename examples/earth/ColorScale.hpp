#pragma once

#include <earth/Export.hpp>

#include <gable/ColorTypes.hpp>

#include <cstdint>
#include <span>

namespace Earth {

/// Returns a colour of the scale that passes through the colours of \p table, three bytes each
/// and equally spaced from 0 to 1. Between them, colours are mixed in Oklab, where equal steps
/// look equal.
///
/// Positions beyond the ends have the colours of the ends; NaN has the colour of 0.
/// \pre \p table has at least two colours.
EARTH_API Gyre::rgba_float_t mixedColor(std::span<const std::uint32_t> table, double position) noexcept;

/// Returns a colour of the scale from light yellow at 0 through red to dark violet at 1.
///
/// Lightness decreases evenly, so a greyscale print keeps the order.
EARTH_API Gyre::rgba_float_t scaleColor(double position) noexcept;

} // namespace Earth
