#include <earth/DateLine.hpp>

#include <earth/Degree.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

namespace Earth {

namespace {

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
Line withPlacesOnDateLine(const Line& line)
{
    Line result;
    result.reserve(line.size() + 4);
    for (std::size_t i = 0; i < line.size(); ++i) {
        const LonLat place{principal(line[i].longitude), line[i].latitude};
        result.push_back(place);
        if (i + 1 == line.size())
            break;
        const LonLat& following = line[i + 1];
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

Line unrolledLine(const Line& line)
{
    Line result;
    result.reserve(line.size() + 3);
    for (const LonLat& place : line)
        result.push_back({result.empty() ? principal(place.longitude)
                                         : result.back().longitude + eastward(line[result.size() - 1], place),
                          place.latitude});
    return result;
}

Ring unrolled(const Ring& ring)
{
    const Ring source = withInsideOnTheLeft(ring);
    Ring result = unrolledLine(source);
    if (result.empty())
        return result;
    const double end = result.back().longitude + eastward(source.back(), source.front());
    const double begin = result.front().longitude;
    if (std::abs(end - begin) > 180) {
        // The inside is on the left: eastwards around the north pole.
        const double pole = end > begin ? 90 : -90;
        result.push_back({end, source.front().latitude});
        result.push_back({end, pole});
        result.push_back({begin, pole});
    }
    return result;
}

std::vector<Line> cutLineAtDateLine(const Line& line)
{
    const Line nodes = withPlacesOnDateLine(line);
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
    const Ring plane = unrolled(ring);
    for (std::size_t i = 0; i < plane.size(); ++i) {
        const LonLat& a = plane[i];
        const LonLat& b = plane[(i + 1) % plane.size()];
        if ((a.latitude > place.latitude) == (b.latitude > place.latitude))
            continue;
        // Counts the places of this longitude, in whole turns, west of the segment.
        const double crossing =
            a.longitude + (b.longitude - a.longitude) * (place.latitude - a.latitude) / (b.latitude - a.latitude);
        if (std::fmod(std::ceil((crossing - place.longitude) / 360), 2) != 0)
            isInside = !isInside;
    }
    return isInside;
}

} // namespace Earth
