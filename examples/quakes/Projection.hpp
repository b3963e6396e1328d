#pragma once

#include "Shapes.hpp"

#include <gable/PhysicalSpace.hpp>

#include <optional>
#include <string_view>

namespace Quakes {

/// Coordinates in which places near the Earth are given, all on the ellipsoid
/// WGS 84.
enum class Chart {
    Geographic, ///< longitude and latitude in degrees, height above the ellipsoid in metres
    Geocentric, ///< metres from the centre, x through longitude and latitude 0, z through the north pole
    PlateCarree ///< metres east and north along the equator's circle, height above the ellipsoid in metres
};

/// "geographic", "geocentric" or "plate carree".
const char* chartName(Chart chart) noexcept;

/// The chart of that name; nothing if there is none.
std::optional<Chart> chartOfName(std::string_view name) noexcept;

/// Longitude and latitude in degrees, and the height, of a place in geocentric
/// metres: those of the nearest point of the ellipsoid.
///
/// Longitudes lie between -180 and 180, latitudes between -90 and 90. Where
/// several points are the nearest, on the axis and near the centre, longitude 0
/// and the north are chosen; the centre itself is below the north pole. The
/// height of a place that is not finite is not finite either.
Gyre::PhysicalSpace::point geographic(const Gyre::PhysicalSpace::point& geocentric) noexcept;

/// Metres on the plate carree, EPSG method 1028 on the sphere of the equator's
/// radius: the height is kept.
Gyre::PhysicalSpace::point plateCarree(const Gyre::PhysicalSpace::point& geographic) noexcept;

/// The same place in the coordinates of another chart.
Gyre::PhysicalSpace::point converted(const Gyre::PhysicalSpace::point& place, Chart from, Chart to) noexcept;

/// A place in space as a point relative to the axes of the ellipsoid: the
/// ellipsoid is the sphere of radius 1, and straight lines stay straight.
Gyre::PhysicalSpace::point onUnitSphere(const Gyre::PhysicalSpace::point& geocentric) noexcept;

/// The inverse of `onUnitSphere`.
Gyre::PhysicalSpace::point fromUnitSphere(const Gyre::PhysicalSpace::point& point) noexcept;

} // namespace Quakes
