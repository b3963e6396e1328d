#include "MapView.hpp"

#include <earth/DateLine.hpp>
#include <earth/Projection.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace Quakes {

namespace {

constexpr int graticuleStep = 30; // degrees

std::string degrees(int value, const char* positive, const char* negative)
{
    if (value == 0 || value == 180 || value == -180)
        return std::to_string(std::abs(value)) + "\u00b0";
    return std::to_string(std::abs(value)) + "\u00b0" + (value > 0 ? positive : negative);
}

void drawGraticule(Canvas& canvas, const MapFrame& frame, double point)
{
    std::vector<Canvas::Path> lines;
    for (int longitude = -180 + graticuleStep; longitude < 180; longitude += graticuleStep)
        lines.push_back(
            {frame.pixel({static_cast<double>(longitude), -90}), frame.pixel({static_cast<double>(longitude), 90})});
    for (int latitude = -90 + graticuleStep; latitude < 90; latitude += graticuleStep) {
        const double y = frame.pixel({0, static_cast<double>(latitude)}).y;
        lines.push_back({{frame.rectangle().left, y},
                         {frame.rectangle().left + frame.rectangle().width / 2, y},
                         {frame.rectangle().right(), y}});
    }
    canvas.stroke(lines, Palette::graticule, 0.8 * point);
}

void drawDegrees(Canvas& canvas, const MapFrame& frame, double point)
{
    constexpr double fontSize = 10.5;
    for (int longitude = -180; longitude <= 180; longitude += 2 * graticuleStep)
        canvas.text({frame.pixel({static_cast<double>(longitude), 0}).x, frame.rectangle().bottom() + 14 * point},
                    degrees(longitude, "E", "W"), fontSize * point, Palette::faintInk, Canvas::Align::Center);
    for (int latitude = -90; latitude <= 90; latitude += graticuleStep)
        canvas.text({frame.rectangle().left - 6 * point, frame.pixel({0, static_cast<double>(latitude)}).y + 4 * point},
                    degrees(latitude, "N", "S"), fontSize * point, Palette::faintInk, Canvas::Align::Right);
}

void drawQuakes(Canvas& canvas, const QuakePicture& picture, const MapFrame& frame, double point)
{
    for (const Quake* const quake : drawnQuakes(picture.quakes.until(picture.instant))) {
        const LonLat place{std::remainder(quake->longitude, 360), quake->latitude};
        const Pixel pixel = frame.pixel(place);
        drawQuake(canvas, picture, *quake, pixel);
        // Near the date line, part of the circle is on the other side of the map.
        const double reach = (quakeRadius(quake->magnitude) + 1) * point;
        const Rectangle& map = frame.rectangle();
        if (pixel.x + reach > map.right())
            drawQuake(canvas, picture, *quake, {pixel.x - map.width, pixel.y});
        if (pixel.x - reach < map.left)
            drawQuake(canvas, picture, *quake, {pixel.x + map.width, pixel.y});
    }
}

} // namespace

MapFrame::MapFrame(const Rectangle& space) noexcept
{
    const auto eastEnd = plateCarree({180, 90, 0});
    m_scale = std::min(space.width / 2 / eastEnd.x(), space.height / 2 / eastEnd.y());
    const double width = 2 * eastEnd.x() * m_scale;
    const double height = 2 * eastEnd.y() * m_scale;
    m_rectangle = {space.left + (space.width - width) / 2, space.top + (space.height - height) / 2, width, height};
}

Pixel MapFrame::pixel(const LonLat& place) const noexcept
{
    const auto metres = plateCarree({place.longitude, place.latitude, 0});
    return {m_rectangle.left + m_rectangle.width / 2 + metres.x() * m_scale,
            m_rectangle.top + m_rectangle.height / 2 - metres.y() * m_scale};
}

MapFrame drawMap(Canvas& canvas, const QuakePicture& picture, const std::vector<Polygon>& land)
{
    const double point = pixelsOfPoint(canvas);
    drawFrame(canvas, picture);
    Rectangle space = pictureSpace(canvas);
    // The latitudes are on the left; equal space on the right keeps the map centred.
    space.left += 14 * point;
    space.width -= 28 * point;
    space.height -= 20 * point;
    const MapFrame frame{space};

    canvas.beginClip(frame.rectangle());
    canvas.fill(frame.rectangle(), Palette::sea);
    std::vector<Canvas::Path> coasts;
    for (const Polygon& polygon : land) {
        std::vector<Canvas::Path> paths;
        for (const Ring& ring : cutAtDateLine(polygon)) {
            Canvas::Path& path = paths.emplace_back();
            for (const LonLat& place : ring)
                path.push_back(frame.pixel(place));
        }
        canvas.fill(paths, Palette::land);
        // Only the coast, without the cuts at the date line and the edges along a pole.
        for (const Ring& ring : polygon) {
            if (ring.empty())
                continue;
            Line closed = ring;
            closed.push_back(ring.front());
            for (const Line& line : cutLineAtDateLine(closed)) {
                Canvas::Path& path = coasts.emplace_back();
                for (const LonLat& place : line)
                    path.push_back(frame.pixel(place));
            }
        }
    }
    drawGraticule(canvas, frame, point);
    canvas.stroke(coasts, Palette::coast, 0.6 * point);
    drawQuakes(canvas, picture, frame, point);
    canvas.endClip();

    canvas.stroke(frame.rectangle(), Palette::faintInk, 0.8 * point);
    drawDegrees(canvas, frame, point);
    return frame;
}

} // namespace Quakes
