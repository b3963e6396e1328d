#include <earth/GlobeView.hpp>

#include <earth/Palette.hpp>

#include <cmath>

namespace Earth {

GlobeView::GlobeView(const Orla::VCamera& camera, const Rectangle& space)
    : m_globe{camera, space}, m_space{space}, m_disc{m_globe.disc()}, m_circle{m_globe.circleAroundDisc()}
{
}

/// \pre The whole disc is in front of the camera.
Canvas::RadialColors GlobeView::lit(double innerRadius, const Canvas::Color& inner, const Canvas::Color& outer) const
{
    const double aside = 0.28 * m_circle->radius;
    const Pixel highlight{m_circle->center.x - aside, m_circle->center.y - aside};
    return {highlight, innerRadius * m_circle->radius, inner, m_circle->center, m_circle->radius, outer};
}

void GlobeView::drawSea(Canvas& canvas) const
{
    if (m_circle)
        canvas.fill({m_disc}, lit(0, Palette::brightSea, Palette::farSea));
    else
        canvas.fill({m_disc}, Palette::sea);
}

void GlobeView::drawGraticule(Canvas& canvas) const
{
    constexpr double step = 15;
    constexpr double lastParallel = 75; // end of all meridians except every sixth
    std::vector<Line> lines;
    for (double longitude = -180; longitude < 180; longitude += step) {
        const double end = std::fmod(longitude, 6 * step) == 0 ? 90 : lastParallel;
        lines.push_back({{longitude, -end}, {longitude, end}});
    }
    for (double latitude = -lastParallel; latitude <= lastParallel; latitude += step)
        lines.push_back({{-180, latitude}, {-60, latitude}, {60, latitude}, {180, latitude}});
    strokeLines(canvas, lines, Palette::graticule, 0.7);
}

void GlobeView::drawCoasts(Canvas& canvas, const std::vector<Polygon>& land) const
{
    strokeCoasts(canvas, land, Palette::coast, 0.7);
}

void GlobeView::drawShade(Canvas& canvas) const
{
    if (m_circle)
        canvas.fill({m_disc}, lit(0.5, Palette::noShade, Palette::shade));
}

void GlobeView::drawMark(Canvas& canvas, const LonLat& place, const Mark& mark) const
{
    if (const std::optional<Pixel> pixel = m_globe.seen(place))
        canvas.circle(*pixel, mark.radius, mark.color, mark.outline, mark.lineWidth, m_disc);
}

} // namespace Earth
