#pragma once

#include <vector>

namespace Earth {

/// A place on the Earth's surface, in degrees.
struct LonLat {
    double longitude = 0; ///< positive to the east
    double latitude = 0;  ///< positive to the north

    friend bool operator==(const LonLat&, const LonLat&) = default;
};

/// An open line. Each segment is straight in longitude and latitude and takes the shorter
/// way around the Earth: from 179 to -179 it spans 2 degrees across the date line.
using Line = std::vector<LonLat>;

/// A closed line: the last place is joined to the first and does not repeat it. It
/// encloses the smaller of the two parts of the surface, whatever its orientation. The
/// part may contain a pole.
using Ring = std::vector<LonLat>;

/// The area that an odd number of the rings encloses: an outer ring, then its holes.
using Polygon = std::vector<Ring>;

/// The content of a file of shapes.
struct Shapes {
    std::vector<LonLat> points;
    std::vector<Line> lines;
    std::vector<Polygon> polygons;

    friend bool operator==(const Shapes&, const Shapes&) = default;
};

} // namespace Earth
