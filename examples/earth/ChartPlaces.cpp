#include <earth/ChartPlaces.hpp>

#include <earth/DateLine.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Earth {

using Orla::describe;

ChartPlaces::ChartPlaces()
    : m_places{this, "places", Loam::makeStrong<Loam::TypedChunk<double>>(),
               describe("The coordinates in the chart, three per place; NaN separates lines.")}
    , m_box{this, "box", Loam::makeStrong<Gyre::BoundingBox>(point{}, point{}),
            describe("The smallest box around the places.")}
{
}

std::vector<ChartPlaces::point> ChartPlaces::placesOf(const std::vector<Line>& lines)
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    std::vector<point> places;
    for (const Line& line : lines) {
        for (const Line& part : cutLineAtDateLine(line)) {
            for (const LonLat& place : part)
                places.emplace_back(place.longitude, place.latitude, 0);
            places.emplace_back(none, none, none);
        }
    }
    return places;
}

void ChartPlaces::give(const Orla::StrongPtr<Orla::ValuePool>& pool, const Chart& chart,
                       std::vector<point> places) const
{
    chart.fromGeographic(places);
    const auto coordinates = Loam::TypedChunk<double>::createNewChunk(3 * places.size(), false);
    point lowest;
    point highest;
    bool isFirst = true;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const point& place = places[i];
        std::copy(place.begin(), place.end(), coordinates->begin() + static_cast<std::ptrdiff_t>(3 * i));
        if (!std::isfinite(place.x()) || !std::isfinite(place.y()) || !std::isfinite(place.z()))
            continue;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            lowest[axis] = isFirst ? place[axis] : std::min(lowest[axis], place[axis]);
            highest[axis] = isFirst ? place[axis] : std::max(highest[axis], place[axis]);
        }
        isFirst = false;
    }
    m_places(pool) <<= Array{coordinates};
    const auto box = Loam::makeStrong<Gyre::BoundingBox>(lowest, highest);
    m_box(pool) <<= Box{box};
}

} // namespace Earth
