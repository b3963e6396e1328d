#pragma once

#include <earth/Export.hpp>

#include <gable/ColorTypes.hpp>

namespace Earth {

/// Returns a colour of the scale from light yellow at 0 through red to dark violet at 1.
///
/// Lightness decreases evenly: equal steps look equal, and a greyscale print keeps the
/// order. Positions beyond the ends have the colours of the ends; NaN has the colour
/// of 0.
EARTH_API Gyre::rgba_float_t scaleColor(double position) noexcept;

} // namespace Earth
