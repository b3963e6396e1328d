#pragma once

#include <earth/Canvas.hpp>
#include "PictureFrame.hpp"
#include <earth/Shapes.hpp>

#include <vector>

namespace Quakes {

using namespace Earth;

/// The rectangle of a picture that the plate carree of the whole Earth fills.
class MapFrame {
public:
    /// Makes the map as large as possible and centres it in \p space.
    explicit MapFrame(const Rectangle& space) noexcept;

    const Rectangle& rectangle() const noexcept { return m_rectangle; }

    /// Returns the pixel of a place. Longitudes beyond -180 and 180 lie outside the map.
    Pixel pixel(const LonLat& place) const noexcept;

private:
    Rectangle m_rectangle;
    double m_scale; // pixels per metre
};

/// Draws a world map with the land and the events. Returns the frame of the map.
MapFrame drawMap(Canvas& canvas, const QuakePicture& picture, const std::vector<Polygon>& land);

} // namespace Quakes
