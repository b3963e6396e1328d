#pragma once

#include <earth/Export.hpp>
#include <earth/Shapes.hpp>

#include <memory>
#include <vector>

namespace Earth {

/// An area in the plane of longitude and latitude, with straight edges. The plane goes on
/// beyond -180 and 180: longitudes that differ by whole turns are the same place.
///
/// Copies share the area. It may be used in several threads.
class EARTH_API PlaneArea {
public:
    struct Bounds {
        double west = 0;
        double south = 0;
        double east = 0;
        double north = 0;
    };

    /// Makes the empty area.
    PlaneArea() = default;

    /// Makes the union of what each of the rings encloses.
    explicit PlaneArea(const std::vector<Ring>& rings);

    static PlaneArea rectangle(const Bounds& bounds);

    bool empty() const noexcept { return !m_state; }
    Bounds bounds() const noexcept;

    /// Returns in square degrees.
    double area() const;

    /// Returns the boundary: outer rings and holes.
    std::vector<Ring> rings() const;

    /// Returns true if the area or its boundary contains a place, and changes the place's
    /// longitude by whole turns to the one in the area. Otherwise leaves the place unchanged.
    bool contains(LonLat& place) const;

    /// Returns the rings that together enclose, by the even-odd rule, the part of the area
    /// that a ring on the Earth encloses.
    std::vector<Ring> clipped(const Ring& ring) const;

    /// Returns the parts of a line on the Earth in the area.
    std::vector<Line> clippedLine(const Line& line) const;

private:
    struct State;

    std::shared_ptr<const State> m_state;
};

} // namespace Earth
