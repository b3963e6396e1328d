#pragma once

#include "earth/World.hpp"

#include <earth/Canvas.hpp>
#include <earth/Palette.hpp>
#include <earth/PictureFrame.hpp>
#include <earth/View.hpp>

#include <string>
#include <vector>

/// A mark of a picture; the radius is in points.
struct Dot {
    Earth::LonLat place;
    double radius = 0;
};

inline constexpr auto dotColor = Earth::Palette::color(0xcd395d);

/// Draws the Earth with marks and returns the picture's bytes.
inline std::string drawnWith(Earth::Canvas& canvas, const Earth::View& view, const std::vector<Dot>& dots)
{
    const double point = pixelsOfPoint(canvas);
    drawPictureFrame(canvas, "Title", "Subtitle");
    view.beginClip(canvas);
    view.drawEarth(canvas, world());
    for (const Dot& dot : dots)
        view.drawMark(canvas, dot.place, {dot.radius * point, dotColor, Earth::Palette::ink, 0.8 * point});
    canvas.endClip();
    view.drawFrame(canvas);
    return canvas.finished();
}
