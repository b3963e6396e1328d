#include <earth/View.hpp>

#include <earth/GlobeView.hpp>
#include <earth/MapView.hpp>
#include <earth/Palette.hpp>
#include <earth/PictureFrame.hpp>

#include <iterator>
#include <utility>

namespace Earth {

namespace {

void append(std::vector<Canvas::Path>& to, std::vector<Canvas::Path> paths)
{
    std::move(paths.begin(), paths.end(), std::back_inserter(to));
}

} // namespace

View::~View() = default;

void View::drawShade(Canvas&) const
{
}

void View::drawFrame(Canvas&) const
{
}

void View::drawLand(Canvas& canvas, const std::vector<Polygon>& land) const
{
    for (const Polygon& polygon : land) {
        std::vector<Canvas::Path> paths;
        for (const Ring& ring : polygon)
            append(paths, seen(ring));
        canvas.fill(paths, Palette::land);
    }
}

void View::strokeLines(Canvas& canvas, const std::vector<Line>& lines, const Canvas::Color& color, double points) const
{
    std::vector<Canvas::Path> paths;
    for (const Line& line : lines)
        append(paths, seenLine(line));
    canvas.stroke(paths, color, points * pixelsOfPoint(canvas));
}

void View::strokeCoasts(Canvas& canvas, const std::vector<Polygon>& land, const Canvas::Color& color,
                        double points) const
{
    std::vector<Line> coasts;
    for (const Polygon& polygon : land) {
        for (const Ring& ring : polygon) {
            if (ring.empty())
                continue;
            coasts.push_back(ring);
            coasts.back().push_back(ring.front());
        }
    }
    strokeLines(canvas, coasts, color, points);
}

void View::drawEarth(Canvas& canvas, const std::vector<Polygon>& land) const
{
    drawSea(canvas);
    drawLand(canvas, land);
    drawGraticule(canvas);
    drawCoasts(canvas, land);
    drawShade(canvas);
}

std::unique_ptr<View> makeView(const Canvas& canvas, const Chart& chart, const Orla::VCamera& camera)
{
    Rectangle space = pictureSpace(canvas);
    if (chart.isGeocentric())
        return std::make_unique<GlobeView>(camera, space);
    // The latitudes are on the left; equal space on the right keeps the map centred.
    const double point = pixelsOfPoint(canvas);
    space.left += 14 * point;
    space.width -= 28 * point;
    space.height -= 20 * point;
    return std::make_unique<MapView>(chart, space);
}

} // namespace Earth
