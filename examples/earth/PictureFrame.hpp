#pragma once

#include <earth/Canvas.hpp>
#include <earth/Export.hpp>

#include <string>
#include <vector>

// The layout of pictures: titles above, a map or globe, and space for a legend below.

namespace Earth {

/// Returns the size of a point of text and markers in pixels: 1 for a picture of
/// 900 x 720. It scales with the picture, so all pictures have the same layout.
EARTH_API double pixelsOfPoint(const Canvas& canvas) noexcept;

/// Returns the space for the map or globe.
EARTH_API Rectangle pictureSpace(const Canvas& canvas) noexcept;

/// Returns the space for the legend, below that. It is 88 points high.
EARTH_API Rectangle legendSpace(const Canvas& canvas) noexcept;

/// Returns the space for a second legend, at the right of the titles. It is 350 points wide.
EARTH_API Rectangle upperLegendSpace(const Canvas& canvas) noexcept;

/// Clears the picture and writes the title and the line below it. Long texts are written
/// smaller, and shortened if that is not enough. \p right is the width in pixels that is left
/// empty at the right.
EARTH_API void drawPictureFrame(Canvas& canvas, const std::string& title, const std::string& subtitle,
                                double right = 0);

/// A scale of colours.
struct ColorBar {
    std::string title;                 ///< with the unit: "Depth (km)"
    std::vector<Canvas::Color> colors; ///< equally spaced, at least two

    /// A value to mark; the position is from 0 to 1.
    struct Value {
        double value;
        double position;
    };
    std::vector<Value> values;
};

/// Draws a scale of colours as a bar with its title above and its values below, 14 and 22 points
/// away.
EARTH_API void drawColorBar(Canvas& canvas, const Rectangle& bar, const ColorBar& content);

/// A scale of classes of values. The bounds lie between the classes, so there is one fewer.
struct ColorClasses {
    std::string title; ///< with the unit: "Rain (mm)"
    std::vector<Canvas::Color> colors;
    std::vector<double> bounds;
    Canvas::Color unknown;   ///< the colour of places without a value
    bool hasUnknown = false; ///< explain that colour

    friend bool operator==(const ColorClasses&, const ColorClasses&) = default;
};

/// Draws classes as a bar of boxes of equal width, with the bounds below. Bounds that would
/// overlap the previous one are not written. Distances are those of `drawColorBar`.
EARTH_API void drawColorClasses(Canvas& canvas, const Rectangle& bar, const ColorClasses& content);

} // namespace Earth
