#include "GlobeView.hpp"

#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

namespace Quakes {

namespace {

void append(std::vector<Canvas::Path>& to, std::vector<Canvas::Path> paths)
{
    std::move(paths.begin(), paths.end(), std::back_inserter(to));
}

std::vector<Canvas::Path> graticule(const GlobeProjection& globe)
{
    constexpr double step = 15;
    constexpr double lastParallel = 75; // end of all meridians except every sixth
    std::vector<Canvas::Path> lines;
    for (double longitude = -180; longitude < 180; longitude += step) {
        const double end = std::fmod(longitude, 6 * step) == 0 ? 90 : lastParallel;
        append(lines, globe.seenLine({{longitude, -end}, {longitude, end}}));
    }
    for (double latitude = -lastParallel; latitude <= lastParallel; latitude += step)
        append(lines, globe.seenLine({{-180, latitude}, {-60, latitude}, {60, latitude}, {180, latitude}}));
    return lines;
}

} // namespace

GlobeProjection drawGlobe(Canvas& canvas, const QuakePicture& picture, const std::vector<Polygon>& land,
                          const Orla::VCamera& camera)
{
    const double point = pixelsOfPoint(canvas);
    // Checks the camera before drawing anything.
    const Rectangle view = pictureSpace(canvas);
    const GlobeProjection globe{camera, view};
    drawFrame(canvas, picture);

    const std::vector<Canvas::Path> disc{globe.disc()};
    const std::optional<GlobeProjection::Circle> circle = globe.circleAroundDisc();
    canvas.beginClip(view);
    // Light comes from the upper left.
    const auto lit = [&](double innerRadius, const Canvas::Color& inner, const Canvas::Color& outer) {
        const double aside = 0.28 * circle->radius;
        const Pixel highlight{circle->center.x - aside, circle->center.y - aside};
        return Canvas::RadialColors{highlight, innerRadius * circle->radius, inner, circle->center, circle->radius,
                                    outer};
    };
    if (circle)
        canvas.fill(disc, lit(0, Palette::brightSea, Palette::farSea));
    else
        canvas.fill(disc, Palette::sea);

    std::vector<Canvas::Path> coasts;
    for (const Polygon& polygon : land) {
        std::vector<Canvas::Path> paths;
        for (const Ring& ring : polygon) {
            append(paths, globe.seen(ring));
            if (ring.empty())
                continue;
            Line closed = ring;
            closed.push_back(ring.front());
            append(coasts, globe.seenLine(closed));
        }
        canvas.fill(paths, Palette::land);
    }
    canvas.stroke(graticule(globe), Palette::graticule, 0.7 * point);
    canvas.stroke(coasts, Palette::coast, 0.7 * point);
    if (circle)
        canvas.fill(disc, lit(0.5, Palette::noShade, Palette::shade));

    for (const Quake* const quake : drawnQuakes(picture.quakes.until(picture.instant))) {
        if (const std::optional<Pixel> place = globe.seen(LonLat{quake->longitude, quake->latitude}))
            drawQuake(canvas, picture, *quake, *place, disc.front());
    }
    canvas.endClip();
    return globe;
}

} // namespace Quakes
