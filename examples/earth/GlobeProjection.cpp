#include <earth/GlobeProjection.hpp>

#include <earth/BoundaryJoin.hpp>
#include <earth/DateLine.hpp>
#include <earth/Degree.hpp>
#include <earth/Ellipsoid.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numbers>
#include <stdexcept>
#include <string>
#include <utility>

namespace Earth {

using Gyre::cross;
using Gyre::dot;

namespace {

using point = Gyre::PhysicalSpace::point;
using vector = Gyre::PhysicalSpace::vector;

constexpr double twoPi = 2 * std::numbers::pi;

double length(const vector& v) noexcept
{
    return std::sqrt(dot(v, v));
}

vector unit(const vector& v) noexcept
{
    return v / length(v);
}

vector fromCenter(const point& p) noexcept
{
    return {p.x(), p.y(), p.z()};
}

point sphere(const LonLat& place) noexcept
{
    return onUnitSphere(geocentric(place.longitude, place.latitude, 0));
}

// Returns the places of a line on the unit sphere. Adds places between distant ones:
// lines that are straight in longitude and latitude are curved on the globe.
std::vector<point> spherical(const Line& line, bool isClosed)
{
    constexpr double longest = 2; // degrees
    std::vector<point> points;
    points.reserve(line.size());
    for (std::size_t i = 0; i < line.size(); ++i) {
        points.push_back(sphere(line[i]));
        if (i + 1 == line.size() && !isClosed)
            break;
        const LonLat& from = line[i];
        const LonLat& to = line[(i + 1) % line.size()];
        double longitudes = to.longitude - from.longitude;
        if (std::abs(longitudes) > 180)
            longitudes = std::remainder(longitudes, 360);
        const double latitudes = to.latitude - from.latitude;
        const double parts = std::ceil(std::max(std::abs(longitudes), std::abs(latitudes)) / longest);
        for (double part = 1; part < parts; ++part)
            points.push_back(
                sphere({from.longitude + longitudes * part / parts, from.latitude + latitudes * part / parts}));
    }
    return points;
}

std::string text(const point& p)
{
    return '{' + Loam::numberText(p.x()) + ',' + Loam::numberText(p.y()) + ',' + Loam::numberText(p.z()) + '}';
}

void check(const Orla::VCamera& camera)
{
    const auto refuse = [](const std::string& found, const char* expected) {
        throw std::invalid_argument{"camera: found " + found + ", expected " + expected};
    };
    const bool isFinite = [&] {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (!std::isfinite(camera.position[axis]) || !std::isfinite(camera.focus[axis])
                || !std::isfinite(camera.up[axis]))
                return false;
        }
        return true;
    }();
    if (!isFinite)
        refuse("a coordinate that is not finite", "finite coordinates");
    if (!(camera.fieldOfView > 0 && camera.fieldOfView < 180))
        refuse("an angle of " + Loam::numberText(camera.fieldOfView) + " degrees", "one between 0 and 180");
    const double fromCenterToEye = length(fromCenter(onUnitSphere(camera.position)));
    if (!(fromCenterToEye > 1))
        refuse("the position " + text(camera.position) + " inside the Earth",
               "one outside it, in metres from its centre");
    if (!std::isfinite(fromCenterToEye) || !(fromCenterToEye < 1e9))
        refuse("the position " + text(camera.position), "one within 6e15 metres of the Earth");
    for (const double element : camera.untranslatedLookAt()) {
        if (!std::isfinite(element))
            refuse("a degenerate orientation", "a focus away from the position and an up direction not along the view");
    }
}

} // namespace

GlobeProjection::GlobeProjection(const Orla::VCamera& camera, const Rectangle& view)
    : m_camera{(check(camera), camera)}, m_lookAt{camera.untranslatedLookAt()}, m_view{view}
{
    const double tangent = std::tan(camera.fieldOfView / 2 * degree);
    const double wideTangent = tangent * view.width / view.height;
    m_scale = view.height / 2 / tangent;

    constexpr double margin = 1.05;
    m_sides = {Plane{{1, 0, -wideTangent * margin}}, Plane{{-1, 0, -wideTangent * margin}},
               Plane{{0, 1, -tangent * margin}}, Plane{{0, -1, -tangent * margin}}};

    m_eye = fromCenter(onUnitSphere(camera.position));
    const double eyeDistance = length(m_eye);
    m_axis = m_eye / eyeDistance;
    m_right = unit(std::abs(m_axis.z()) < 0.9 ? cross({0, 0, 1}, m_axis) : cross({1, 0, 0}, m_axis));
    m_above = cross(m_axis, m_right);
    m_distance = 1 / eyeDistance;
    m_radius = std::sqrt((1 - m_distance) * (1 + m_distance));
}

// On the unit sphere, the outward normal is the point itself. The result is positive if
// the normal and the direction to the eye form an angle of less than 90 degrees.
double GlobeProjection::aboveHorizon(const point& onSphere) const noexcept
{
    return dot(fromCenter(onSphere), m_eye) - 1;
}

bool GlobeProjection::isHidden(const LonLat& place) const noexcept
{
    return !(aboveHorizon(sphere(place)) > 0);
}

point GlobeProjection::onHorizon(double angle) const noexcept
{
    const vector v =
        m_axis * m_distance + m_right * (m_radius * std::cos(angle)) + m_above * (m_radius * std::sin(angle));
    return {v.x(), v.y(), v.z()};
}

// Returns an angle from 0 to a whole turn, counterclockwise as seen from the eye.
double GlobeProjection::angleOnHorizon(const point& onSphere) const noexcept
{
    const vector v = fromCenter(onSphere);
    const double angle = std::atan2(dot(v, m_above), dot(v, m_right));
    return angle < 0 ? angle + twoPi : angle;
}

point GlobeProjection::crossing(const point& from, const point& to) const noexcept
{
    const double before = aboveHorizon(from);
    const double after = aboveHorizon(to);
    return onHorizon(angleOnHorizon(from + (to - from) * (before / (before - after))));
}

void GlobeProjection::walkAlongHorizon(std::vector<point>& ring, double from, double distance) const
{
    constexpr double step = degree;
    const double steps = std::ceil(distance / step);
    for (double i = 1; i < steps; ++i)
        ring.push_back(onHorizon(from + distance * i / steps));
}

std::vector<point> GlobeProjection::horizon() const
{
    std::vector<point> points;
    walkAlongHorizon(points, 0, twoPi);
    points.push_back(onHorizon(0));
    return points;
}

vector GlobeProjection::inCamera(const point& onSphere) const noexcept
{
    const vector v = fromUnitSphere(onSphere) - m_camera.position;
    const auto row = [&](std::size_t r) {
        return m_lookAt[r] * v.x() + m_lookAt[4 + r] * v.y() + m_lookAt[8 + r] * v.z();
    };
    return {row(0), row(1), row(2)};
}

Pixel GlobeProjection::projected(const vector& inCamera) const noexcept
{
    return {m_view.left + m_view.width / 2 + m_scale * inCamera.x() / -inCamera.z(),
            m_view.top + m_view.height / 2 - m_scale * inCamera.y() / -inCamera.z()};
}

std::optional<Pixel> GlobeProjection::seen(const LonLat& place) const noexcept
{
    const point onSphere = sphere(place);
    if (!(aboveHorizon(onSphere) > 0))
        return std::nullopt;
    const vector v = inCamera(onSphere);
    if (!(v.z() < 0))
        return std::nullopt;
    const Pixel pixel = projected(v);
    if (!(pixel.x >= m_view.left && pixel.x <= m_view.left + m_view.width && pixel.y >= m_view.top
          && pixel.y <= m_view.top + m_view.height))
        return std::nullopt;
    return pixel;
}

// Cuts a ring at each side of the view in turn.
std::vector<Pixel> GlobeProjection::projectedRing(const std::vector<point>& ring) const
{
    std::vector<vector> current;
    current.reserve(ring.size());
    for (const point& onSphere : ring)
        current.push_back(inCamera(onSphere));
    std::vector<vector> cut;
    for (const Plane& side : m_sides) {
        cut.clear();
        for (std::size_t i = 0; i < current.size(); ++i) {
            const vector& from = current[i];
            const vector& to = current[(i + 1) % current.size()];
            const double before = dot(side.normal, from);
            const double after = dot(side.normal, to);
            if (before >= 0)
                cut.push_back(from);
            if ((before >= 0) != (after >= 0))
                cut.push_back(from + (to - from) * (before / (before - after)));
        }
        current.swap(cut);
    }
    std::vector<Pixel> pixels;
    pixels.reserve(current.size());
    for (const vector& v : current)
        pixels.push_back(projected(v));
    return pixels;
}

std::vector<std::vector<Pixel>> GlobeProjection::seen(const Ring& given) const
{
    const Ring ring = withInsideOnTheLeft(given);
    const std::vector<point> points = spherical(ring, true);
    std::vector<double> above;
    above.reserve(points.size());
    for (const point& p : points)
        above.push_back(aboveHorizon(p));
    const auto isAbove = [](double height) { return height > 0; };

    std::vector<std::vector<point>> rings;
    if (std::none_of(above.begin(), above.end(), isAbove)) {
        // The visible part of the Earth lies entirely inside or outside the ring.
        const point below = fromUnitSphere({m_axis.x(), m_axis.y(), m_axis.z()});
        const point nearest = geographic(below);
        if (encloses(ring, {nearest.x(), nearest.y()}))
            rings.push_back(horizon());
    } else if (std::all_of(above.begin(), above.end(), isAbove)) {
        rings.push_back(points);
    } else {
        std::vector<RingPiece<point>> pieces;
        const std::size_t count = points.size();
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t before = (i + count - 1) % count;
            if (!isAbove(above[i]) || isAbove(above[before]))
                continue;
            RingPiece<point> piece;
            piece.points.push_back(crossing(points[before], points[i]));
            std::size_t k = i;
            for (; isAbove(above[k]); k = (k + 1) % count)
                piece.points.push_back(points[k]);
            piece.points.push_back(crossing(points[(k + count - 1) % count], points[k]));
            piece.entry = angleOnHorizon(piece.points.front());
            piece.exit = angleOnHorizon(piece.points.back());
            pieces.push_back(std::move(piece));
        }
        rings = joinAlongBoundary(std::move(pieces), twoPi,
                                  [this](std::vector<point>& joined, double from, double distance) {
                                      walkAlongHorizon(joined, from, distance);
                                  });
    }

    std::vector<std::vector<Pixel>> result;
    for (const std::vector<point>& cut : rings) {
        std::vector<Pixel> pixels = projectedRing(cut);
        if (pixels.size() > 2)
            result.push_back(std::move(pixels));
    }
    return result;
}

void GlobeProjection::appendProjectedLine(std::vector<std::vector<Pixel>>& lines, const std::vector<point>& line) const
{
    bool isContinued = false;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const vector from = inCamera(line[i]);
        const vector to = inCamera(line[i + 1]);
        double first = 0;
        double last = 1;
        for (const Plane& side : m_sides) {
            const double before = dot(side.normal, from);
            const double after = dot(side.normal, to);
            if (before < 0 && after < 0)
                last = -1;
            else if (before < 0)
                first = std::max(first, before / (before - after));
            else if (after < 0)
                last = std::min(last, before / (before - after));
        }
        if (!(first < last)) {
            isContinued = false;
            continue;
        }
        if (!isContinued || first > 0)
            lines.push_back({projected(from + (to - from) * first)});
        lines.back().push_back(projected(from + (to - from) * last));
        isContinued = last == 1;
    }
}

std::vector<std::vector<Pixel>> GlobeProjection::seenLine(const Line& line) const
{
    const std::vector<point> points = spherical(line, false);
    std::vector<std::vector<Pixel>> result;
    std::vector<point> current;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const bool isAbove = aboveHorizon(points[i]) > 0;
        if (i > 0 && isAbove != (aboveHorizon(points[i - 1]) > 0))
            current.push_back(crossing(points[i - 1], points[i]));
        if (isAbove) {
            current.push_back(points[i]);
        } else {
            appendProjectedLine(result, current);
            current.clear();
        }
    }
    appendProjectedLine(result, current);
    return result;
}

std::vector<Pixel> GlobeProjection::disc() const
{
    return projectedRing(horizon());
}

std::optional<GlobeProjection::Circle> GlobeProjection::circleAroundDisc() const
{
    const vector middle = m_axis * m_distance;
    const vector center = inCamera({middle.x(), middle.y(), middle.z()});
    if (!(center.z() < 0))
        return std::nullopt;
    Circle circle{projected(center), 0};
    for (const point& p : horizon()) {
        const vector v = inCamera(p);
        if (!(v.z() < 0))
            return std::nullopt;
        const Pixel pixel = projected(v);
        circle.radius = std::max(circle.radius, std::hypot(pixel.x - circle.center.x, pixel.y - circle.center.y));
    }
    return circle;
}

} // namespace Earth
