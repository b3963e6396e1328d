#pragma once

#include <earth/Export.hpp>
#include <earth/GlobeProjection.hpp>
#include <earth/View.hpp>

namespace Earth {

/// The Earth as a camera sees it, lit from the upper left. It has a closed form: PROJ has no
/// perspective of a free camera, and GEOS computes in a plane.
class EARTH_API GlobeView final : public View {
public:
    /// \throw std::invalid_argument for a camera that `GlobeProjection` refuses.
    GlobeView(const Orla::VCamera& camera, const Rectangle& space);

    const GlobeProjection& projection() const noexcept { return m_globe; }

    std::optional<Pixel> seen(const LonLat& place) const override { return m_globe.seen(place); }
    std::vector<Canvas::Path> seen(const Ring& ring) const override { return m_globe.seen(ring); }
    std::vector<Canvas::Path> seenLine(const Line& line) const override { return m_globe.seenLine(line); }
    void beginClip(Canvas& canvas) const override { canvas.beginClip(m_space); }
    void drawSea(Canvas& canvas) const override;
    void drawGround(Canvas& canvas, const Canvas::Color& color) const override { canvas.fill({m_disc}, color); }
    void drawGraticule(Canvas& canvas) const override;
    void drawCoasts(Canvas& canvas, const std::vector<Polygon>& land) const override;
    void drawShade(Canvas& canvas) const override;
    void drawMark(Canvas& canvas, const LonLat& place, const Mark& mark) const override;

private:
    Canvas::RadialColors lit(double innerRadius, const Canvas::Color& inner, const Canvas::Color& outer) const;

    GlobeProjection m_globe;
    Rectangle m_space;
    Canvas::Path m_disc;
    std::optional<GlobeProjection::Circle> m_circle;
};

} // namespace Earth
