#pragma once

#include <earth/Export.hpp>

#include <gable/PhysicalSpace.hpp>

// Closed forms on the ellipsoid WGS 84. They are exact to rounding, and other charts are
// converted through them.

namespace Earth {

/// Converts a place relative to the ellipsoid to a point in space: metres from the Earth's
/// centre, x through latitude and longitude 0, z through the north pole.
///
/// \p longitude and \p latitude are in degrees, \p height is in metres above the
/// ellipsoid. EPSG method 9602, geographic to geocentric.
EARTH_API Gyre::PhysicalSpace::point geocentric(double longitude, double latitude, double height) noexcept;

/// Converts geocentric metres to longitude and latitude in degrees, those of the nearest
/// point of the ellipsoid, and height in metres.
///
/// Longitudes lie between -180 and 180, latitudes between -90 and 90. On the axis and near
/// the centre, several points are equally near: then longitude 0 and the north are
/// chosen. The centre is below the north pole. If \p geocentric is not finite, the height
/// is not finite.
EARTH_API Gyre::PhysicalSpace::point geographic(const Gyre::PhysicalSpace::point& geocentric) noexcept;

/// Converts to metres on the plate carree, by EPSG method 1028 on the sphere with the
/// equator's radius. Keeps the height.
EARTH_API Gyre::PhysicalSpace::point plateCarree(const Gyre::PhysicalSpace::point& geographic) noexcept;

/// The inverse of `plateCarree`.
EARTH_API Gyre::PhysicalSpace::point fromPlateCarree(const Gyre::PhysicalSpace::point& metres) noexcept;

/// Scales space by the axes of the ellipsoid: the ellipsoid becomes the unit sphere, and
/// straight lines stay straight.
EARTH_API Gyre::PhysicalSpace::point onUnitSphere(const Gyre::PhysicalSpace::point& geocentric) noexcept;

/// The inverse of `onUnitSphere`.
EARTH_API Gyre::PhysicalSpace::point fromUnitSphere(const Gyre::PhysicalSpace::point& point) noexcept;

} // namespace Earth
