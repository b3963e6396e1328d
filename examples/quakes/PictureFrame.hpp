#pragma once

#include <earth/Canvas.hpp>
#include "Catalogue.hpp"
#include <earth/Palette.hpp>
#include "QuakeStyle.hpp"

#include <string>
#include <vector>

// The common parts of maps and globes: the title above, the legend below, and the events.

namespace Quakes {

using namespace Earth;

/// The content of a picture.
struct QuakePicture {
    std::string title;
    double instant = 0; ///< seconds since 1970 UTC; later events are not drawn
    Catalogue quakes;
    ColorRule colorRule = ColorRule::Depth;
};

/// Returns the size of a point of text and markers in pixels: 1 for a picture of
/// 900 x 720. It scales with the picture, so all pictures have the same layout.
double pixelsOfPoint(const Canvas& canvas) noexcept;

/// Returns the space that `drawFrame` leaves for the map or globe.
Rectangle pictureSpace(const Canvas& canvas) noexcept;

/// Draws everything around the map or globe.
void drawFrame(Canvas& canvas, const QuakePicture& picture);

/// Returns the events in drawing order, largest first: no event hides a smaller one
/// completely.
std::vector<const Quake*> drawnQuakes(const Catalogue& happened);

/// Draws an event. If the convex path \p within is not empty, draws only the part inside.
void drawQuake(Canvas& canvas, const QuakePicture& picture, const Quake& quake, const Pixel& place,
               const Canvas::Path& within = {});

} // namespace Quakes
