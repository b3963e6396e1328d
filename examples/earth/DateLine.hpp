#pragma once

#include <earth/Export.hpp>
#include <earth/Shapes.hpp>

#include <vector>

// Converts shapes on the Earth's surface to shapes in the plane of longitude and latitude.

namespace Earth {

/// Returns the area to the left of a ring on the unit sphere, from 0 to 4 pi.
EARTH_API double areaOnTheLeft(const Ring& ring);

/// Returns the ring with its inside on the left: counterclockwise, seen from above.
EARTH_API Ring withInsideOnTheLeft(Ring ring);

/// Returns a ring with its inside on the left, whose longitudes change by less than half a turn
/// from place to place and may go beyond 180. It begins between -180 and 180. A ring around a
/// pole is extended to the pole, along the pole and back: then its plane is a strip of one
/// whole turn.
EARTH_API Ring unrolled(const Ring& ring);

/// Returns a line whose longitudes change by at most half a turn from place to place.
EARTH_API Line unrolledLine(const Line& line);

/// Cuts a line into parts that do not cross the date line. Their longitudes lie between -180
/// and 180.
EARTH_API std::vector<Line> cutLineAtDateLine(const Line& line);

/// Returns true if a ring encloses a place.
EARTH_API bool encloses(const Ring& ring, const LonLat& place);

} // namespace Earth
