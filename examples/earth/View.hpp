#pragma once

#include <earth/Canvas.hpp>
#include <earth/Chart.hpp>
#include <earth/Export.hpp>
#include <earth/Shapes.hpp>

#include <fathom/VCamera.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace Earth {

/// A map or globe in a rectangle of a picture, drawn in layers from the sea to the labels.
/// Between them, other layers are drawn with `seen` and `seenLine`:
///
///     view->beginClip(canvas);
///     view->drawSea(canvas);
///     view->drawLand(canvas, land);
///     canvas.fill(view->seen(ring), color);
///     view->drawGraticule(canvas);
///     view->drawCoasts(canvas, land);
///     view->drawShade(canvas);
///     view->drawMark(canvas, place, style);
///     canvas.endClip();
///     view->drawFrame(canvas);
///
/// Widths of lines are given in pixels; the layers use points, as `pixelsOfPoint` defines
/// them.
class EARTH_API View {
public:
    View() = default;
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View();

    /// Returns the pixel of a place, or nothing if the place is not visible.
    virtual std::optional<Pixel> seen(const LonLat& place) const = 0;

    /// Returns closed paths that enclose, by the even-odd rule, the visible part of a ring's
    /// inside.
    virtual std::vector<Canvas::Path> seen(const Ring& ring) const = 0;

    /// Returns the visible parts of a line.
    virtual std::vector<Canvas::Path> seenLine(const Line& line) const = 0;

    /// Restricts drawing to the view until `Canvas::endClip`.
    virtual void beginClip(Canvas& canvas) const = 0;

    virtual void drawSea(Canvas& canvas) const = 0;

    /// Fills the whole map or disc, instead of the sea.
    virtual void drawGround(Canvas& canvas, const Canvas::Color& color) const = 0;

    void drawLand(Canvas& canvas, const std::vector<Polygon>& land) const;

    virtual void drawGraticule(Canvas& canvas) const = 0;

    virtual void drawCoasts(Canvas& canvas, const std::vector<Polygon>& land) const = 0;

    /// Shades what was drawn. Does nothing on a map.
    virtual void drawShade(Canvas& canvas) const;

    struct Mark {
        double radius = 1; ///< in pixels
        Canvas::Color color;
        Canvas::Color outline;
        double lineWidth = 1; ///< of the outline, which lies outside the radius
    };

    /// Draws the visible part of a circle around a place. Draws nothing if the place is not
    /// visible.
    virtual void drawMark(Canvas& canvas, const LonLat& place, const Mark& mark) const = 0;

    /// Draws the outline and the degrees. Does nothing on a globe.
    virtual void drawFrame(Canvas& canvas) const;

    /// Draws sea, land, graticule, coasts and shade.
    void drawEarth(Canvas& canvas, const std::vector<Polygon>& land) const;

    /// Draws the visible parts of lines. \p points is their width.
    void strokeLines(Canvas& canvas, const std::vector<Line>& lines, const Canvas::Color& color, double points) const;

    /// Draws the visible parts of the outlines of land.
    void strokeCoasts(Canvas& canvas, const std::vector<Polygon>& land, const Canvas::Color& color,
                      double points) const;
};

/// Returns a globe, as \p camera sees it, if \p chart is geocentric, or else a map, in the space
/// that `drawPictureFrame` leaves.
/// \throw std::invalid_argument for a camera that `GlobeProjection` refuses or a chart that
/// `ChartRegion` refuses.
EARTH_API std::unique_ptr<View> makeView(const Canvas& canvas, const Chart& chart, const Orla::VCamera& camera);

} // namespace Earth
