#pragma once

#include <numbers>

namespace Earth {

/// One degree in radians.
inline constexpr double degree = std::numbers::pi / 180;

/// A whole turn in degrees.
inline constexpr double wholeTurn = 360;

} // namespace Earth
