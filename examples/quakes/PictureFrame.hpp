#pragma once

#include "Canvas.hpp"
#include "Catalogue.hpp"
#include "Palette.hpp"
#include "QuakeStyle.hpp"

#include <string>
#include <vector>

// What a map and a globe have in common: the title above, the legend below, and
// how events look.

namespace Quakes {

/// What a picture shows.
struct QuakePicture {
    std::string title;
    double instant = 0; ///< seconds since 1970 UTC; later events are not drawn
    Catalogue quakes;
    ColorRule colorRule = ColorRule::Depth;
};

/// The length in pixels of a point of text and markers: 1 for a picture of 900 x
/// 720, more or less for others, so that all of them are laid out alike.
double pixelsOfPoint(const Canvas& canvas) noexcept;

/// The space that `drawFrame` leaves for the map or globe.
Rectangle pictureSpace(const Canvas& canvas) noexcept;

/// Draws everything around the map or globe.
void drawFrame(Canvas& canvas, const QuakePicture& picture);

/// The events to draw, the largest first, so that none hides a smaller one wholly.
std::vector<const Quake*> drawnQuakes(const Catalogue& happened);

/// Draws an event; if there is a convex path \p within, only what lies inside of it.
void drawQuake(Canvas& canvas, const QuakePicture& picture, const Quake& quake, const Pixel& place,
               const Canvas::Path& within = {});

} // namespace Quakes
