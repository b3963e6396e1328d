#include <earth/ChartPlaces.hpp>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Earth {

using Orla::StrongPtr;

ChartPlaces::ChartPlaces()
    : VChartDependent{"chart", 0}
    , Atlas{"atlas"}
    , m_places{this, "places", Loam::makeStrong<Loam::TypedChunk<double>>()}
    , m_box{this, "box", Loam::makeStrong<Gyre::BoundingBox>(point{}, point{})}
{
}

Chart ChartPlaces::chartIn(const StrongPtr<Orla::ValuePool>& pool) const
{
    const std::string name = getChart(pool).name();
    if (name.empty())
        return Chart::Geographic;
    const std::optional<Chart> chart = chartOfName(name);
    if (!chart)
        throw std::runtime_error{"the chart \"" + name
                                 + "\" is not supported, expected geographic, geocentric or plate carree"};
    return *chart;
}

void ChartPlaces::give(const StrongPtr<Orla::ValuePool>& pool, const std::vector<point>& places) const
{
    // First, so another chart can be picked if the rest fails.
    publish(pool, Orla::VChartList(
                      {chartName(Chart::Geographic), chartName(Chart::Geocentric), chartName(Chart::PlateCarree)}));
    const Chart chart = chartIn(pool);

    const auto coordinates = Loam::TypedChunk<double>::createNewChunk(3 * places.size(), false);
    point lowest;
    point highest;
    bool isFirst = true;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const point place = converted(places[i], Chart::Geographic, chart);
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
