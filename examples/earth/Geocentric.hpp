#pragma once

#include <earth/Export.hpp>

#include <gable/PhysicalSpace.hpp>

namespace Earth {

/// Converts a place relative to the ellipsoid WGS 84 to a point in space: metres from
/// the Earth's centre, x through latitude and longitude 0, z through the north pole.
///
/// \p longitude and \p latitude are in degrees, \p height is in metres above the
/// ellipsoid. EPSG method 9602, geographic to geocentric.
EARTH_API Gyre::PhysicalSpace::point geocentric(double longitude, double latitude, double height) noexcept;

} // namespace Earth
