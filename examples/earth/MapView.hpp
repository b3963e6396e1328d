#pragma once

#include <earth/Chart.hpp>
#include <earth/ChartRegion.hpp>
#include <earth/Export.hpp>
#include <earth/View.hpp>

#include <memory>

namespace Earth {

/// A map of the part of the Earth that a flat chart shows. The chart "geographic" is drawn as
/// plate carree.
///
/// Curved edges are drawn to a tenth of a pixel.
class EARTH_API MapView final : public View {
public:
    /// Makes the map as large as possible and centres it in \p space.
    /// \throw std::invalid_argument for a chart that `ChartRegion` refuses.
    MapView(const Chart& chart, const Rectangle& space);

    /// Returns the smallest rectangle around the map.
    const Rectangle& rectangle() const noexcept { return m_rectangle; }

    std::optional<Pixel> seen(const LonLat& place) const override;
    std::vector<Canvas::Path> seen(const Ring& ring) const override;
    std::vector<Canvas::Path> seenLine(const Line& line) const override;
    void beginClip(Canvas& canvas) const override { canvas.beginClip(m_outline); }
    void drawSea(Canvas& canvas) const override;
    void drawGround(Canvas& canvas, const Canvas::Color& color) const override { canvas.fill(m_outline, color); }
    void drawGraticule(Canvas& canvas) const override;
    void drawCoasts(Canvas& canvas, const std::vector<Polygon>& land) const override;

    /// At a cut from pole to pole, a mark is drawn on both sides of the map.
    void drawMark(Canvas& canvas, const LonLat& place, const Mark& mark) const override;
    void drawFrame(Canvas& canvas) const override;

private:
    // The end of a line on the outline, and the direction in which the map ends there.
    struct End {
        Pixel pixel;
        Pixel direction;
    };

    void fit(const std::vector<Canvas::Path>& paths, const Rectangle& space);
    std::vector<Canvas::Path> outline() const;
    Pixel pixel(const LonLat& place) const;
    void appendCurve(Canvas::Path& path, const LonLat& from, const Pixel& fromPixel, const LonLat& to,
                     const Pixel& toPixel, int depth) const;
    Canvas::Path curve(const Line& line, bool isClosed) const;
    bool isSeam(const LonLat& from, const LonLat& to) const;
    bool isOnMap(const Pixel& pixel) const;
    Pixel outwards(const Pixel& place, const Pixel& way) const;
    std::vector<End> endsAtEdge(const Line& line) const;
    double graticuleStep() const;
    std::vector<Line> meridians(double step) const;
    std::vector<Line> parallels(double step) const;

    Chart m_chart;
    std::shared_ptr<const ChartRegion> m_region;
    Rectangle m_rectangle;
    double m_scale = 1; // pixels per unit of the chart
    double m_left = 0;  // of the map, in the chart
    double m_top = 0;
    std::vector<Canvas::Path> m_outline;
};

} // namespace Earth
