#pragma once

#include <gable/ColorTypes.hpp>

namespace Quakes {

/// A colour of the scale from light yellow at 0 over red to dark violet at 1.
///
/// Lightness falls evenly, so that equal steps look equal, the order is seen
/// without colours too, and a print in grey keeps it. Positions beyond the ends
/// have the colours of the ends; NaN has that of 0.
Gyre::rgba_float_t scaleColor(double position) noexcept;

} // namespace Quakes
