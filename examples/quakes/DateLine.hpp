#pragma once

#include "Shapes.hpp"

#include <vector>

// Shapes on the Earth's surface as shapes in the plane of longitude and latitude,
// which ends at the date line and at the poles.

namespace Quakes {

/// The area to the left of a ring on the sphere of radius 1, from 0 to 4 pi.
double areaOnTheLeft(const Ring& ring);

/// Turns a ring so that what it encloses lies on its left: counterclockwise,
/// seen from above.
Ring withInsideOnTheLeft(Ring ring);

/// Cuts a ring at the date line. The rings returned together enclose, in the
/// plane, what the given one encloses on the Earth; their longitudes lie between
/// -180 and 180. A ring around a pole is continued to the pole and along it. No
/// segment is longer than 180 degrees.
std::vector<Ring> cutAtDateLine(const Ring& ring);

/// Cuts all rings of a polygon.
Polygon cutAtDateLine(const Polygon& polygon);

/// Cuts a line into those that do not cross the date line.
std::vector<Line> cutLineAtDateLine(const Line& line);

/// Whether a place lies in what a ring encloses.
bool encloses(const Ring& ring, const LonLat& place);

} // namespace Quakes
