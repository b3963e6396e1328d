#include <earth/DateLine.hpp>

#include <earth/BoundaryJoin.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numbers>
#include <utility>

namespace Earth {

namespace {

constexpr double degree = std::numbers::pi / 180;

// Returns the same longitude between -180 and 180. Both ends stay unchanged.
double principal(double longitude)
{
    return std::abs(longitude) <= 180 ? longitude : std::remainder(longitude, 360);
}

bool isOnDateLine(const LonLat& place)
{
    return std::abs(place.longitude) == 180;
}

// Returns the longitudes from one place to the next, the shorter way around.
double eastward(const LonLat& from, const LonLat& to)
{
    const double difference = to.longitude - from.longitude;
    return std::abs(difference) <= 180 ? difference : std::remainder(difference, 360);
}

// Returns the places of a line with principal longitudes. Adds a place wherever a segment
// crosses the date line.
Line withPlacesOnDateLine(const Line& line, bool isClosed)
{
    Line result;
    result.reserve(line.size() + 4);
    for (std::size_t i = 0; i < line.size(); ++i) {
        const LonLat place{principal(line[i].longitude), line[i].latitude};
        result.push_back(place);
        if (i + 1 == line.size() && !isClosed)
            break;
        const LonLat& following = line[(i + 1) % line.size()];
        const LonLat next{principal(following.longitude), following.latitude};
        if (std::abs(next.longitude - place.longitude) <= 180 || isOnDateLine(place) || isOnDateLine(next))
            continue;
        const double before = 180 - std::abs(place.longitude);
        const double after = 180 - std::abs(next.longitude);
        result.push_back({std::copysign(180, place.longitude),
                          place.latitude + (next.latitude - place.latitude) * (before / (before + after))});
    }
    return result;
}

// Returns the longitude, -180 or 180, of a place on the date line for a line to or from
// the given neighbour.
double sideTowards(const LonLat& neighbour, const LonLat& onDateLine)
{
    return std::copysign(180, neighbour.longitude == 0 ? onDateLine.longitude : neighbour.longitude);
}

// The frame of the plane, counterclockwise: up the east side, west along the north pole,
// down the west side, east along the south pole.
constexpr double frameLength = 1080;

double placeOnFrame(const LonLat& place)
{
    return place.longitude > 0 ? place.latitude + 90 : 630 - place.latitude;
}

// Adds the frame's corners, and three places along each pole to keep segments shorter
// than half a turn.
void walkAlongFrame(Ring& ring, double from, double distance)
{
    constexpr LonLat stops[] = {{180, 90},   {90, 90},   {0, 90},  {-90, 90}, {-180, 90},
                                {-180, -90}, {-90, -90}, {0, -90}, {90, -90}, {180, -90}};
    constexpr double places[] = {180, 270, 360, 450, 540, 720, 810, 900, 990, 1080};
    constexpr std::size_t count = std::size(places);
    for (std::size_t i = 0; i < 2 * count; ++i) {
        const double place = places[i % count] + (i < count ? 0 : frameLength);
        if (place > from && place < from + distance)
            ring.push_back(stops[i % count]);
    }
}

std::vector<RingPiece<LonLat>> piecesOf(const Ring& nodes)
{
    std::vector<RingPiece<LonLat>> pieces;
    const auto first = std::find_if(nodes.begin(), nodes.end(), isOnDateLine) - nodes.begin();
    const auto node = [&](std::size_t i) { return nodes[(static_cast<std::size_t>(first) + i) % nodes.size()]; };
    std::size_t begin = 0;
    for (std::size_t i = 1; i <= nodes.size(); ++i) {
        if (!isOnDateLine(node(i)))
            continue;
        // Segments along the date line are already part of the frame.
        if (i > begin + 1) {
            RingPiece<LonLat> piece;
            for (std::size_t k = begin; k <= i; ++k)
                piece.points.push_back(node(k));
            LonLat& front = piece.points.front();
            LonLat& back = piece.points.back();
            front.longitude = sideTowards(piece.points[1], front);
            back.longitude = sideTowards(piece.points[piece.points.size() - 2], back);
            piece.entry = placeOnFrame(front);
            piece.exit = placeOnFrame(back);
            pieces.push_back(std::move(piece));
        }
        begin = i;
    }
    return pieces;
}

} // namespace

double areaOnTheLeft(const Ring& ring)
{
    constexpr double wholeSphere = 4 * std::numbers::pi;
    double turn = 0;
    double sum = 0; // of the sine of the latitude over the longitude
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const LonLat& from = ring[i];
        const LonLat& to = ring[(i + 1) % ring.size()];
        const double longitudes = eastward(from, to) * degree;
        const double middle = (from.latitude + to.latitude) / 2 * degree;
        const double half = (to.latitude - from.latitude) / 2 * degree;
        turn += longitudes;
        sum += longitudes * std::sin(middle) * (half == 0 ? 1 : std::sin(half) / half);
    }
    // A ring that goes around the axis once, in either direction, has a pole on its left.
    const double area = std::round(turn / (2 * std::numbers::pi)) == 0 ? -sum : wholeSphere / 2 - sum;
    return area < 0 ? area + wholeSphere : area;
}

Ring withInsideOnTheLeft(Ring ring)
{
    if (areaOnTheLeft(ring) > 2 * std::numbers::pi)
        std::reverse(ring.begin(), ring.end());
    return ring;
}

std::vector<Ring> cutAtDateLine(const Ring& ring)
{
    const Ring nodes = withPlacesOnDateLine(withInsideOnTheLeft(ring), true);
    if (std::none_of(nodes.begin(), nodes.end(), isOnDateLine))
        return {nodes};
    std::vector<Ring> rings = joinAlongBoundary(piecesOf(nodes), frameLength, walkAlongFrame);
    for (Ring& cut : rings) {
        if (cut.front() == cut.back())
            cut.pop_back();
    }
    return rings;
}

Polygon cutAtDateLine(const Polygon& polygon)
{
    Polygon result;
    for (const Ring& ring : polygon) {
        std::vector<Ring> rings = cutAtDateLine(ring);
        std::move(rings.begin(), rings.end(), std::back_inserter(result));
    }
    return result;
}

std::vector<Line> cutLineAtDateLine(const Line& line)
{
    const Line nodes = withPlacesOnDateLine(line, false);
    std::vector<Line> lines;
    Line current;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const LonLat& node = nodes[i];
        if (!isOnDateLine(node)) {
            current.push_back(node);
            continue;
        }
        // The sides of the date line before and after this node.
        const bool isFirst = current.empty();
        const bool isLast = i + 1 == nodes.size();
        double before = node.longitude;
        if (!isFirst)
            before = isOnDateLine(current.back()) ? current.back().longitude : sideTowards(current.back(), node);
        double after = before;
        if (!isLast && !isOnDateLine(nodes[i + 1]))
            after = sideTowards(nodes[i + 1], node);
        if (!isFirst)
            current.push_back({before, node.latitude});
        if (after != before && !isFirst) {
            lines.push_back(std::move(current));
            current.clear();
        }
        if (current.empty())
            current.push_back({after, node.latitude});
    }
    if (current.size() > 1)
        lines.push_back(std::move(current));
    return lines;
}

bool encloses(const Ring& ring, const LonLat& place)
{
    bool isInside = false;
    const double longitude = principal(place.longitude);
    // The west side of the plane counts as inside, the east side does not.
    const LonLat sought{longitude == 180 ? -180 : longitude, place.latitude};
    for (const Ring& cut : cutAtDateLine(ring)) {
        for (std::size_t i = 0; i < cut.size(); ++i) {
            const LonLat& a = cut[i];
            const LonLat& b = cut[(i + 1) % cut.size()];
            if ((a.latitude > sought.latitude) != (b.latitude > sought.latitude)
                && sought.longitude
                       < a.longitude
                             + (b.longitude - a.longitude) * (sought.latitude - a.latitude) / (b.latitude - a.latitude))
                isInside = !isInside;
        }
    }
    return isInside;
}

} // namespace Earth
