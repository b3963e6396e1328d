#pragma once

#include "Catalogue.hpp"
#include "QuakeStyle.hpp"

#include <earth/Canvas.hpp>
#include <earth/Layer.hpp>
#include <earth/View.hpp>

#include <string>
#include <vector>

namespace Quakes {

/// The content of a picture.
struct QuakePicture {
    std::string title;
    double instant = 0; ///< seconds since 1970 UTC; later events are not drawn
    Catalogue quakes;
    ColorRule colorRule = ColorRule::Depth;
    Earth::Layer under; ///< drawn below the events, with its legend beside the titles
};

/// Draws the titles above the map or globe and the legends.
void drawFrame(Earth::Canvas& canvas, const QuakePicture& picture);

/// Draws the visible events.
void drawQuakes(Earth::Canvas& canvas, const QuakePicture& picture, const Earth::View& view);

/// Draws a whole picture: titles, legend, the Earth, and the events.
void draw(Earth::Canvas& canvas, const QuakePicture& picture, const std::vector<Earth::Polygon>& land,
          const Earth::View& view);

/// Returns the events in drawing order, largest first: no event hides a smaller one
/// completely.
std::vector<const Quake*> drawnQuakes(const Catalogue& happened);

} // namespace Quakes
