#pragma once

#include <earth/Export.hpp>
#include <earth/Shapes.hpp>

#include <vector>

// Converts shapes on the Earth's surface to shapes in the plane of longitude and
// latitude, which ends at the date line and at the poles.

namespace Earth {

/// Returns the area to the left of a ring on the unit sphere, from 0 to 4 pi.
EARTH_API double areaOnTheLeft(const Ring& ring);

/// Returns the ring with its inside on the left: counterclockwise, seen from above.
EARTH_API Ring withInsideOnTheLeft(Ring ring);

/// Cuts a ring at the date line. The returned rings together enclose, in the plane, the
/// area that \p ring encloses on the Earth. Their longitudes lie between -180 and 180.
/// A ring around a pole is extended to the pole and along it. No segment is longer than
/// 180 degrees.
EARTH_API std::vector<Ring> cutAtDateLine(const Ring& ring);

/// Cuts all rings of a polygon.
EARTH_API Polygon cutAtDateLine(const Polygon& polygon);

/// Cuts a line into parts that do not cross the date line.
EARTH_API std::vector<Line> cutLineAtDateLine(const Line& line);

/// Returns true if a ring encloses a place.
EARTH_API bool encloses(const Ring& ring, const LonLat& place);

} // namespace Earth
