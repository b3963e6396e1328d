#pragma once

#include "Grid.hpp"

#include <earth/Shapes.hpp>

#include <vector>

namespace Rain {

/// Returns rings that together enclose, by the even-odd rule, the places between the centres of
/// cells where the values reach a level; see `Squares`. Minus infinity gives all places with
/// values.
///
/// The area is cut into tiles of at most 30 degrees, because a ring on the Earth encloses the
/// smaller part of the surface. Neighbouring tiles share the places along their border.
std::vector<Earth::Ring> areaAbove(const Grid& grid, double level);

} // namespace Rain
