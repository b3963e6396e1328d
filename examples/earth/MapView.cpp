#include <earth/MapView.hpp>

#include <earth/Palette.hpp>
#include <earth/PictureFrame.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

namespace Earth {

namespace {

double distance(const Pixel& a, const Pixel& b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

LonLat between(const LonLat& a, const LonLat& b, double part)
{
    return {a.longitude + (b.longitude - a.longitude) * part, a.latitude + (b.latitude - a.latitude) * part};
}

// Returns the distance of a place from the line between two others.
double distanceToSegment(const Pixel& a, const Pixel& b, const Pixel& place)
{
    const double length = distance(a, b);
    return length == 0 ? distance(a, place)
                       : std::abs((b.x - a.x) * (place.y - a.y) - (b.y - a.y) * (place.x - a.x)) / length;
}

bool isFinite(const Pixel& pixel)
{
    return std::isfinite(pixel.x) && std::isfinite(pixel.y);
}

// Returns the multiples of a step from `first` to `last`, in degrees. The ends themselves move
// slightly inside, where rounding cannot lose them.
std::vector<double> multiples(double step, double first, double last)
{
    constexpr double inside = 1e-7;
    std::vector<double> result;
    for (double i = std::ceil(first / step - inside); i * step <= last + inside; ++i)
        result.push_back(std::clamp(i * step, first + inside, last - inside));
    return result;
}

double rounded(double degrees)
{
    return std::round(degrees * 1e6) / 1e6;
}

std::string degrees(double value, const char* positive, const char* negative)
{
    const std::string number = Loam::numberText(std::abs(value)) + "\u00b0";
    if (value == 0 || std::abs(value) == 180)
        return number;
    return number + (value > 0 ? positive : negative);
}

} // namespace

MapView::MapView(const Chart& chart, const Rectangle& space)
    : m_chart{chart.name() == "geographic" ? Chart{"plate carree"} : chart}, m_region{ChartRegion::of(m_chart)}
{
    // Roughly first: curves are as precise as the scale demands.
    std::vector<Canvas::Path> rough;
    for (const Ring& ring : m_region->area().rings()) {
        Canvas::Path& path = rough.emplace_back();
        constexpr int parts = 8;
        for (std::size_t i = 0; i < ring.size(); ++i) {
            for (int part = 0; part < parts; ++part)
                path.push_back(pixel(between(ring[i], ring[(i + 1) % ring.size()], static_cast<double>(part) / parts)));
        }
    }
    fit(rough, space);
    fit(outline(), space);
    m_outline = outline();
}

// Moves and scales the map to the middle of a space. The paths are its outline so far.
void MapView::fit(const std::vector<Canvas::Path>& paths, const Rectangle& space)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    Pixel lowest{infinity, infinity};
    Pixel highest{-infinity, -infinity};
    for (const Canvas::Path& path : paths) {
        for (const Pixel& corner : path) {
            if (!isFinite(corner))
                continue;
            lowest = {std::min(lowest.x, corner.x), std::min(lowest.y, corner.y)};
            highest = {std::max(highest.x, corner.x), std::max(highest.y, corner.y)};
        }
    }
    const double enlarged = std::min(space.width / (highest.x - lowest.x), space.height / (highest.y - lowest.y));
    const double width = (highest.x - lowest.x) * enlarged;
    const double height = (highest.y - lowest.y) * enlarged;
    m_left += (lowest.x - m_rectangle.left) / m_scale;
    m_top -= (lowest.y - m_rectangle.top) / m_scale;
    m_scale *= enlarged;
    m_rectangle = {space.left + (space.width - width) / 2, space.top + (space.height - height) / 2, width, height};
}

std::vector<Canvas::Path> MapView::outline() const
{
    std::vector<Canvas::Path> paths;
    for (const Ring& ring : m_region->area().rings())
        paths.push_back(curve(ring, true));
    return paths;
}

Pixel MapView::pixel(const LonLat& place) const
{
    const Chart::point found = m_chart.fromGeographic({place.longitude, place.latitude, 0});
    return {m_rectangle.left + (found.x() - m_left) * m_scale, m_rectangle.top + (m_top - found.y()) * m_scale};
}

// Appends the places of a curve after its first.
void MapView::appendCurve(Canvas::Path& path, const LonLat& from, const Pixel& fromPixel, const LonLat& to,
                          const Pixel& toPixel, int depth) const
{
    constexpr double precision = 0.1; // pixels
    constexpr int deepest = 12;
    const Pixel middle = pixel(between(from, to, 0.5));
    const bool isStraight = std::max({distanceToSegment(fromPixel, toPixel, middle),
                                      distanceToSegment(fromPixel, toPixel, pixel(between(from, to, 0.27))),
                                      distanceToSegment(fromPixel, toPixel, pixel(between(from, to, 0.73)))})
                            <= precision;
    if (!isStraight && isFinite(middle) && depth < deepest) {
        const LonLat half = between(from, to, 0.5);
        appendCurve(path, from, fromPixel, half, middle, depth + 1);
        appendCurve(path, half, middle, to, toPixel, depth + 1);
    } else if (isFinite(toPixel)) {
        path.push_back(toPixel);
    }
}

Canvas::Path MapView::curve(const Line& line, bool isClosed) const
{
    Canvas::Path path;
    if (line.empty())
        return path;
    Pixel previous = pixel(line.front());
    if (isFinite(previous))
        path.push_back(previous);
    for (std::size_t i = 1; i < line.size() + (isClosed ? 1 : 0); ++i) {
        const LonLat& place = line[i % line.size()];
        const Pixel next = pixel(place);
        appendCurve(path, line[i - 1], previous, place, next, 0);
        previous = next;
    }
    return path;
}

std::optional<Pixel> MapView::seen(const LonLat& place) const
{
    const std::optional<LonLat> inRegion = m_region->find(place);
    if (!inRegion)
        return std::nullopt;
    const Pixel found = pixel(*inRegion);
    return isFinite(found) ? std::optional{found} : std::nullopt;
}

std::vector<Canvas::Path> MapView::seen(const Ring& ring) const
{
    std::vector<Canvas::Path> paths;
    for (const Ring& part : m_region->area().clipped(ring))
        paths.push_back(curve(part, true));
    return paths;
}

std::vector<Canvas::Path> MapView::seenLine(const Line& line) const
{
    std::vector<Canvas::Path> paths;
    for (const Line& part : m_region->area().clippedLine(line))
        paths.push_back(curve(part, false));
    return paths;
}

void MapView::drawSea(Canvas& canvas) const
{
    canvas.fill(m_outline, Palette::sea);
}

double MapView::graticuleStep() const
{
    const PlaneArea::Bounds bounds = m_region->area().bounds();
    const double span = std::max(bounds.east - bounds.west, bounds.north - bounds.south);
    for (const double step : {30.0, 15.0, 10.0, 5.0, 2.0, 1.0, 0.5, 0.2}) {
        if (step <= span / 4)
            return step;
    }
    return 0.1;
}

// The graticule's lines between the ends of the plane.
std::vector<Line> MapView::meridians(double step) const
{
    const PlaneArea::Bounds& frame = m_region->frame();
    std::vector<Line> lines;
    for (const double longitude : multiples(step, frame.west, frame.east))
        lines.push_back({{longitude, frame.south}, {longitude, frame.north}});
    return lines;
}

std::vector<Line> MapView::parallels(double step) const
{
    const PlaneArea::Bounds& frame = m_region->frame();
    std::vector<Line> lines;
    for (const double latitude : multiples(step, frame.south, frame.north)) {
        Line& line = lines.emplace_back();
        // Lines on the Earth take the shorter way from place to place.
        constexpr int parts = 4;
        for (int part = 0; part <= parts; ++part)
            line.push_back({frame.west + (frame.east - frame.west) * part / parts, latitude});
    }
    return lines;
}

void MapView::drawGraticule(Canvas& canvas) const
{
    const double step = graticuleStep();
    std::vector<Line> lines = meridians(step);
    const std::vector<Line> across = parallels(step);
    lines.insert(lines.end(), across.begin(), across.end());
    strokeLines(canvas, lines, Palette::graticule, 0.8);
}

void MapView::drawCoasts(Canvas& canvas, const std::vector<Polygon>& land) const
{
    strokeCoasts(canvas, land, Palette::coast, 0.6);
}

void MapView::drawMark(Canvas& canvas, const LonLat& place, const Mark& mark) const
{
    const std::optional<LonLat> inRegion = m_region->find(place);
    if (!inRegion)
        return;
    const Pixel center = pixel(*inRegion);
    if (!isFinite(center))
        return;
    const auto draw = [&](const Pixel& at) {
        canvas.circle(at, mark.radius, mark.color, mark.outline, mark.lineWidth);
    };
    draw(center);
    const PlaneArea::Bounds& frame = m_region->frame();
    const Pixel west = pixel({frame.west, inRegion->latitude});
    const Pixel east = pixel({frame.east, inRegion->latitude});
    const double reach = mark.radius + mark.lineWidth;
    if (distance(west, east) <= 2 * reach)
        return; // the sides of the plane meet here
    if (distance(center, east) < reach)
        draw({center.x + west.x - east.x, center.y + west.y - east.y});
    if (distance(center, west) < reach)
        draw({center.x + east.x - west.x, center.y + east.y - west.y});
}

// Returns true if an edge of the region does not belong to the edge of the map: a pole that is
// a single place, or a side of the plane that meets the other side.
bool MapView::isSeam(const LonLat& from, const LonLat& to) const
{
    constexpr double apart = 0.01; // pixels
    const PlaneArea::Bounds& frame = m_region->frame();
    const LonLat middle = between(from, to, 0.5);
    const Pixel here = pixel(middle);
    const auto isOn = [&](double side) { return from.longitude == side && to.longitude == side; };
    if (isOn(frame.west) || isOn(frame.east))
        return distance(pixel({frame.west, middle.latitude}), pixel({frame.east, middle.latitude})) < apart;
    return std::abs(middle.latitude) == 90 && std::max(distance(pixel(from), here), distance(here, pixel(to))) < apart;
}

bool MapView::isOnMap(const Pixel& pixel) const
{
    bool isInside = false;
    for (const Canvas::Path& path : m_outline) {
        for (std::size_t i = 0; i < path.size(); ++i) {
            const Pixel& a = path[i];
            const Pixel& b = path[(i + 1) % path.size()];
            if ((a.y > pixel.y) != (b.y > pixel.y) && pixel.x < a.x + (b.x - a.x) * (pixel.y - a.y) / (b.y - a.y))
                isInside = !isInside;
        }
    }
    return isInside;
}

// Returns the direction, of length 1, in which the map ends at a place on its outline. At a
// corner, it is the one nearest to the way of a line that ends there.
Pixel MapView::outwards(const Pixel& place, const Pixel& way) const
{
    constexpr double near = 0.5;
    Pixel result;
    double best = 0;
    for (const Canvas::Path& path : m_outline) {
        for (std::size_t i = 0; i < path.size(); ++i) {
            const Pixel& a = path[i];
            const Pixel& b = path[(i + 1) % path.size()];
            const double length = distance(a, b);
            if (length == 0 || distanceToSegment(a, b, place) > near || distance(a, place) > length + near
                || distance(b, place) > length + near)
                continue;
            const Pixel normal{(b.y - a.y) / length, (a.x - b.x) / length};
            const double along = normal.x * way.x + normal.y * way.y;
            if (std::abs(along) > best) {
                best = std::abs(along);
                result = along > 0 ? normal : Pixel{-normal.x, -normal.y};
            }
        }
    }
    return result;
}

// Returns the ends of a line's parts that lie on the map's edge.
std::vector<MapView::End> MapView::endsAtEdge(const Line& line) const
{
    constexpr double near = 1e-6; // degrees
    const PlaneArea::Bounds& frame = m_region->frame();
    std::vector<End> ends;
    const auto add = [&](const LonLat& place, bool isParallel, const Pixel& pixel, const Pixel& before) {
        const bool isAtSide = std::min(place.longitude - frame.west, frame.east - place.longitude) < near;
        const double pole = std::copysign(90, place.latitude);
        if (isParallel && isAtSide && isSeam({frame.west, place.latitude}, {frame.west, place.latitude}))
            return;
        if (!isParallel && std::abs(place.latitude - pole) < near
            && isSeam({place.longitude, pole}, {place.longitude + 1, pole}))
            return;
        ends.push_back({pixel, outwards(pixel, {pixel.x - before.x, pixel.y - before.y})});
    };
    for (const Line& part : m_region->area().clippedLine(line)) {
        const Canvas::Path path = curve(part, false);
        if (path.size() > 1) {
            const bool isParallel = part.front().latitude == part.back().latitude;
            add(part.front(), isParallel, path.front(), path[1]);
            add(part.back(), isParallel, path.back(), path[path.size() - 2]);
        }
    }
    return ends;
}

void MapView::drawFrame(Canvas& canvas) const
{
    const double point = pixelsOfPoint(canvas);
    const double lineWidth = 0.8 * point;
    for (const Ring& ring : m_region->area().rings()) {
        std::vector<Canvas::Path> edges;
        bool isWhole = true;
        bool isContinued = false;
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const LonLat& next = ring[(i + 1) % ring.size()];
            if (isSeam(ring[i], next)) {
                isWhole = isContinued = false;
                continue;
            }
            if (!isContinued)
                edges.emplace_back();
            isContinued = true;
            const Pixel from = pixel(ring[i]);
            if (edges.back().empty() && isFinite(from))
                edges.back().push_back(from);
            appendCurve(edges.back(), ring[i], from, next, pixel(next), 0);
        }
        canvas.stroke(edges, Palette::faintInk, lineWidth, isWhole);
    }

    constexpr double fontSize = 10.5;
    const double step = graticuleStep();
    std::vector<Rectangle> used;
    // Writes the degrees beyond the end of a line, unless they would cover the map or others.
    const auto label = [&](const std::string& text, const End& end) {
        constexpr double gap = 6;
        constexpr double letterHeight = 8;
        const double width = canvas.textWidth(text, fontSize * point);
        const double height = letterHeight * point;
        // The box touches the line through the gap's end.
        const double away = gap * point + (std::abs(end.direction.x) * width + std::abs(end.direction.y) * height) / 2;
        const Rectangle box{end.pixel.x + away * end.direction.x - width / 2,
                            end.pixel.y + away * end.direction.y - height / 2, width, height};
        if (isOnMap({box.left, box.top}) || isOnMap({box.right(), box.top}) || isOnMap({box.left, box.bottom()})
            || isOnMap({box.right(), box.bottom()}))
            return;
        for (const Rectangle& other : used) {
            if (box.left < other.right() && other.left < box.right() && box.top < other.bottom()
                && other.top < box.bottom())
                return;
        }
        used.push_back(box);
        canvas.text({box.left, box.bottom()}, text, fontSize * point, Palette::faintInk);
    };
    const auto isHigher = [](const End& a, const End& b) { return a.pixel.y < b.pixel.y; };
    const auto isFurtherRight = [](const End& a, const End& b) { return a.pixel.x > b.pixel.x; };
    for (const Line& meridian : meridians(2 * step)) {
        const std::vector<End> ends = endsAtEdge(meridian);
        if (const auto lowest = std::max_element(ends.begin(), ends.end(), isHigher); lowest != ends.end())
            label(degrees(std::remainder(rounded(meridian.front().longitude), 360), "E", "W"), *lowest);
    }
    for (const Line& parallel : parallels(step)) {
        const std::vector<End> ends = endsAtEdge(parallel);
        if (const auto leftmost = std::max_element(ends.begin(), ends.end(), isFurtherRight); leftmost != ends.end())
            label(degrees(rounded(parallel.front().latitude), "N", "S"), *leftmost);
    }
}

} // namespace Earth
