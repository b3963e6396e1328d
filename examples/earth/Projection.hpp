#pragma once

#include <earth/Export.hpp>
#include <earth/Shapes.hpp>

#include <gable/PhysicalSpace.hpp>

#include <optional>
#include <string_view>

namespace Earth {

/// Coordinate systems for places near the Earth, all based on the ellipsoid WGS 84.
enum class Chart {
    Geographic, ///< longitude and latitude in degrees, height above the ellipsoid in metres
    Geocentric, ///< metres from the centre, x through longitude and latitude 0, z through the north pole
    PlateCarree ///< metres east and north along the equator's circle, height above the ellipsoid in metres
};

/// Returns "geographic", "geocentric" or "plate carree".
EARTH_API const char* chartName(Chart chart) noexcept;

/// Returns the chart with that name, or nothing if the name is unknown.
EARTH_API std::optional<Chart> chartOfName(std::string_view name) noexcept;

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

/// Converts the coordinates of a place from one chart to another.
EARTH_API Gyre::PhysicalSpace::point converted(const Gyre::PhysicalSpace::point& place, Chart from, Chart to) noexcept;

/// Scales space by the axes of the ellipsoid: the ellipsoid becomes the unit sphere, and
/// straight lines stay straight.
EARTH_API Gyre::PhysicalSpace::point onUnitSphere(const Gyre::PhysicalSpace::point& geocentric) noexcept;

/// The inverse of `onUnitSphere`.
EARTH_API Gyre::PhysicalSpace::point fromUnitSphere(const Gyre::PhysicalSpace::point& point) noexcept;

} // namespace Earth
