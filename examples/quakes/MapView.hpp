#pragma once

#include "Canvas.hpp"
#include "PictureFrame.hpp"
#include "Shapes.hpp"

#include <vector>

namespace Quakes {

/// Where the plate carree of the whole Earth stands in a picture.
class MapFrame {
public:
    /// As large as it fits into \p space, in its middle.
    explicit MapFrame(const Rectangle& space) noexcept;

    const Rectangle& rectangle() const noexcept { return m_rectangle; }

    /// Where a place is, for longitudes from -180 to 180; those beyond lie outside.
    Pixel pixel(const LonLat& place) const noexcept;

private:
    Rectangle m_rectangle;
    double m_scale; // pixels for each metre
};

/// Draws a world map with the land and the events on it. Returns where the map is.
MapFrame drawMap(Canvas& canvas, const QuakePicture& picture, const std::vector<Polygon>& land);

} // namespace Quakes
