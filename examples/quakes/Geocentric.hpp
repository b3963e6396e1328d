#pragma once

#include <gable/PhysicalSpace.hpp>

namespace Quakes {

/// Where a place on the ellipsoid WGS 84 is in space: metres from the Earth's
/// centre, x through latitude and longitude 0, z through the north pole.
///
/// \p longitude and \p latitude in degrees, \p height in metres above the
/// ellipsoid. EPSG method 9602, geographic to geocentric.
Gyre::PhysicalSpace::point geocentric(double longitude, double latitude, double height) noexcept;

} // namespace Quakes
