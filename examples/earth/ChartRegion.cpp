#include <earth/ChartRegion.hpp>

#include <earth/Degree.hpp>
#include <earth/Recent.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Earth {

namespace {

constexpr double radius = 6378137; // metres; only ratios of scales matter
constexpr double besideCut = 1e-9; // degrees

struct Place {
    double x = 0;
    double y = 0;
    bool isFinite = false;
};

double distance(const Place& a, const Place& b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

Place onMap(const Chart& chart, double longitude, double latitude)
{
    const Chart::point found = chart.fromGeographic({longitude, latitude, 0});
    return {found.x(), found.y(), std::isfinite(found.x()) && std::isfinite(found.y())};
}

// The enlargement of lengths at a place, in the directions in which it is least and most.
struct Scales {
    double least = 0;
    double most = 0;
};

std::optional<Scales> scalesAt(const Chart& chart, const PlaneArea::Bounds& frame, double longitude, double latitude)
{
    constexpr double step = 1e-5; // degrees
    const double across = longitude < (frame.west + frame.east) / 2 ? step : -step;
    const double up = latitude < (frame.south + frame.north) / 2 ? step : -step;
    // Parallels have no direction at the poles.
    const double nearby = std::clamp(latitude, -89.999, 89.999);
    const Place here = onMap(chart, longitude, nearby);
    const Place east = onMap(chart, longitude + across, nearby);
    const Place north = onMap(chart, longitude, nearby + up);
    if (!here.isFinite || !east.isFinite || !north.isFinite)
        return std::nullopt;
    const double alongParallel = radius * degree * across * std::cos(nearby * degree);
    const double alongMeridian = radius * degree * up;
    const double a = (east.x - here.x) / alongParallel;
    const double b = (north.x - here.x) / alongMeridian;
    const double c = (east.y - here.y) / alongParallel;
    const double d = (north.y - here.y) / alongMeridian;
    // The singular values of the matrix.
    const double sum = a * a + b * b + c * c + d * d;
    const double determinant = std::abs(a * d - b * c);
    const double most = std::sqrt((sum + std::sqrt(std::max(0.0, sum * sum - 4 * determinant * determinant))) / 2);
    return Scales{most > 0 ? determinant / most : 0, most};
}

// Returns the longitude of a jump along a parallel, if there is exactly one.
std::optional<double> cutOnParallel(const Chart& chart, double latitude)
{
    constexpr std::size_t count = 120;
    std::vector<Place> places;
    std::vector<double> lengths;
    for (std::size_t i = 0; i <= count; ++i) {
        const double longitude = -180 + wholeTurn * static_cast<double>(i) / count;
        places.push_back(onMap(chart, longitude, latitude));
        if (!places.back().isFinite)
            return std::nullopt;
        if (i > 0)
            lengths.push_back(distance(places[i - 1], places[i]));
    }
    std::vector<double> sorted = lengths;
    std::nth_element(sorted.begin(), sorted.begin() + count / 2, sorted.end());
    const double usual = sorted[count / 2];
    std::optional<double> cut;
    if (distance(places.front(), places.back()) > usual)
        cut = -180;
    for (std::size_t i = 0; i < count; ++i) {
        if (!(lengths[i] > 3 * usual))
            continue;
        double west = -180 + wholeTurn * static_cast<double>(i) / count;
        double east = -180 + wholeTurn * static_cast<double>(i + 1) / count;
        for (int halving = 0; halving < 60; ++halving) {
            const double middle = (west + east) / 2;
            const Place at = onMap(chart, middle, latitude);
            if (distance(onMap(chart, west, latitude), at) > distance(at, onMap(chart, east, latitude)))
                east = middle;
            else
                west = middle;
        }
        if (!(distance(onMap(chart, west, latitude), onMap(chart, east, latitude)) > usual))
            continue;
        // The ends of the parallel are on either side of a cut at the date line.
        if (cut && !(*cut == -180 && (west <= -180 + 1e-9 || east >= 180 - 1e-9)))
            return std::nullopt;
        if (!cut)
            cut = (west + east) / 2;
    }
    return cut;
}

// Returns the plane's rectangle. It begins where the chart is cut from pole to pole.
PlaneArea::Bounds frameOf(const Chart& chart)
{
    PlaneArea::Bounds frame{-180, -90, 180, 90};
    if (const std::optional<Chart::Extent> use = chart.areaOfUse()) {
        frame = {use->west, use->south, use->east, use->north};
        if (frame.east - frame.west < wholeTurn)
            return frame;
    }
    std::optional<double> cut;
    for (const double latitude : {-43.7, 0.3, 52.1}) {
        const std::optional<double> found = cutOnParallel(chart, latitude);
        if (!found || (cut && std::abs(*cut - *found) > 1e-6))
            return frame;
        cut = found;
    }
    if (cut != -180) {
        // On the cut itself, a place may be on either side of the map.
        frame.west = *cut + besideCut;
        frame.east = *cut + wholeTurn - besideCut;
    }
    return frame;
}

// Searches the frame by dividing it into quarters where necessary.
class Search {
public:
    Search(const Chart& chart, const PlaneArea::Bounds& frame, std::size_t mostCells)
        : m_chart{chart}, m_frame{frame}, m_mostCells{mostCells}
    {
        constexpr std::size_t samples = 24;
        for (std::size_t row = 1; row < samples; ++row) {
            for (std::size_t column = 1; column < samples; ++column) {
                const auto scales = scalesAt(chart, frame, longitude(finest * columns * column / samples),
                                             latitude(finest * rows * row / samples));
                // A chart that is flattened to a line, as at a horizon, has no scale.
                if (scales && scales->most > 0)
                    m_leastEnlarged = std::min(m_leastEnlarged, scales->most);
            }
        }
        bool isAllFull = true;
        for (std::size_t row = 0; row < rows; ++row) {
            std::size_t begin = columns; // of cells that are entirely in the region
            for (std::size_t column = 0; column <= columns; ++column) {
                const bool isFull = column < columns && search({column * finest, row * finest, finest});
                isAllFull = isAllFull && (isFull || column == columns);
                if (isFull && begin == columns)
                    begin = column;
                if (!isFull && begin < columns) {
                    addRectangle(begin * finest, row * finest, column * finest, (row + 1) * finest);
                    begin = columns;
                }
            }
        }
        if (isAllFull) {
            rings.clear();
            addRectangle(0, 0, columns * finest, rows * finest);
        }
    }

    std::vector<Ring> rings;

private:
    // Divisions of the frame, and of the cells of these.
    static constexpr std::size_t columns = 128;
    static constexpr std::size_t rows = 64;
    static constexpr std::size_t finest = 64;
    static constexpr std::size_t smallestAtBorder = 8;
    static constexpr double mostEnlarged = 12;
    static constexpr double mostInBoth = 3.3;

    // In units of the finest division.
    struct Cell {
        std::size_t column;
        std::size_t row;
        std::size_t size;
    };

    double longitude(std::size_t column) const
    {
        return column == columns * finest
                   ? m_frame.east
                   : m_frame.west + (m_frame.east - m_frame.west) * static_cast<double>(column) / (columns * finest);
    }

    double latitude(std::size_t row) const
    {
        return row == rows * finest
                   ? m_frame.north
                   : m_frame.south + (m_frame.north - m_frame.south) * static_cast<double>(row) / (rows * finest);
    }

    Place shown(double longitude, double latitude) const
    {
        Place place = onMap(m_chart, longitude, latitude);
        if (place.isFinite) {
            const std::optional<Scales> scales = scalesAt(m_chart, m_frame, longitude, latitude);
            place.isFinite =
                scales
                && (scales->least <= mostInBoth * m_leastEnlarged || scales->most <= mostEnlarged * m_leastEnlarged);
        }
        return place;
    }

    // Returns true if a way across a cell has no jump: then both halves are about equally
    // long. Near poles they may differ more, but a jump makes them differ even more in smaller
    // cells. Short ways have no visible jump.
    bool isContinuous(const Place& from, const Place& middle, const Place& to, const Cell& cell) const
    {
        const double mostDifferent = cell.size > smallestAtBorder ? 1.3 : 3.5;
        const double before = distance(from, middle);
        const double after = distance(middle, to);
        const double visible = 0.1 * m_leastEnlarged * length(cell);
        return std::max(before, after) <= std::max(visible, mostDifferent * std::min(before, after));
    }

    // Returns true if the whole cell is in the region; otherwise adds the parts that are.
    bool search(const Cell& cell)
    {
        if (++m_searched > m_mostCells)
            throw std::invalid_argument{"found the chart \"" + m_chart.name()
                                        + "\", which has too many cuts, expected one that is mostly continuous"};
        const double half = static_cast<double>(cell.size) / 2;
        std::array<Place, 9> places;
        for (std::size_t i = 0; i < 9; ++i) {
            const std::size_t across = i % 3;
            const std::size_t up = i / 3;
            const double column = static_cast<double>(cell.column) + half * static_cast<double>(across);
            const double row = static_cast<double>(cell.row) + half * static_cast<double>(up);
            places[i] = shown(m_frame.west + (m_frame.east - m_frame.west) * column / (columns * finest),
                              m_frame.south + (m_frame.north - m_frame.south) * row / (rows * finest));
        }
        const auto isShown = [](const Place& place) { return place.isFinite; };
        if (std::none_of(places.begin(), places.end(), isShown))
            return false;
        const bool isWhole = std::all_of(places.begin(), places.end(), isShown);
        bool isFull = isWhole;
        for (std::size_t i = 0; isFull && i < 3; ++i)
            isFull = isContinuous(places[3 * i], places[3 * i + 1], places[3 * i + 2], cell)
                     && isContinuous(places[i], places[i + 3], places[i + 6], cell);
        if (isFull)
            return true;

        const bool hasCorners = places[0].isFinite && places[2].isFinite && places[6].isFinite && places[8].isFinite;
        const bool isCut = hasCorners || hasJump(places, cell);
        if (cell.size > (isCut ? 1 : smallestAtBorder))
            return searchQuarters(cell);
        if (!isCut)
            addBorder(cell, {places[0].isFinite, places[2].isFinite, places[8].isFinite, places[6].isFinite});
        return false;
    }

    // Returns true if neighbours among the shown places of a cell are too far apart for the chart
    // to be continuous between them.
    bool hasJump(const std::array<Place, 9>& places, const Cell& cell) const
    {
        const double furthest = mostEnlarged * m_leastEnlarged * length(cell);
        for (std::size_t i = 0; i < 9; ++i) {
            for (const std::size_t next : {i % 3 < 2 ? i + 1 : i, i < 6 ? i + 3 : i}) {
                if (places[i].isFinite && places[next].isFinite && distance(places[i], places[next]) > furthest)
                    return true;
            }
        }
        return false;
    }

    // Returns the length of a cell's side along a meridian, in metres on the Earth.
    double length(const Cell& cell) const
    {
        return radius * degree * (m_frame.north - m_frame.south) * static_cast<double>(cell.size) / (rows * finest);
    }

    bool searchQuarters(const Cell& cell)
    {
        const std::size_t half = cell.size / 2;
        const std::array<Cell, 4> quarters{Cell{cell.column, cell.row, half}, Cell{cell.column + half, cell.row, half},
                                           Cell{cell.column, cell.row + half, half},
                                           Cell{cell.column + half, cell.row + half, half}};
        std::array<bool, 4> isFull{};
        for (std::size_t i = 0; i < 4; ++i)
            isFull[i] = search(quarters[i]);
        if (std::all_of(isFull.begin(), isFull.end(), [](bool each) { return each; }))
            return true;
        for (std::size_t i = 0; i < 4; ++i) {
            if (isFull[i])
                addRectangle(quarters[i].column, quarters[i].row, quarters[i].column + half, quarters[i].row + half);
        }
        return false;
    }

    void addRectangle(std::size_t west, std::size_t south, std::size_t east, std::size_t north)
    {
        rings.push_back({{longitude(west), latitude(south)},
                         {longitude(east), latitude(south)},
                         {longitude(east), latitude(north)},
                         {longitude(west), latitude(north)}});
    }

    // Adds the part of a cell between its shown corners and the places where its sides leave
    // the region.
    void addBorder(const Cell& cell, const std::array<bool, 4>& isShown)
    {
        const std::array<LonLat, 4> corners{LonLat{longitude(cell.column), latitude(cell.row)},
                                            {longitude(cell.column + cell.size), latitude(cell.row)},
                                            {longitude(cell.column + cell.size), latitude(cell.row + cell.size)},
                                            {longitude(cell.column), latitude(cell.row + cell.size)}};
        Ring ring;
        for (std::size_t i = 0; i < 4; ++i) {
            const std::size_t next = (i + 1) % 4;
            if (isShown[i])
                ring.push_back(corners[i]);
            if (isShown[i] != isShown[next])
                ring.push_back(isShown[i] ? lastShown(corners[i], corners[next])
                                          : lastShown(corners[next], corners[i]));
        }
        if (ring.size() > 2)
            rings.push_back(std::move(ring));
    }

    // Neighbouring cells share a side and compute the same place. It stays a few metres away from
    // places where the chart is undefined: nearer ones are too far apart on the map.
    LonLat lastShown(LonLat inside, LonLat outside) const
    {
        for (int halving = 0; halving < 14; ++halving) {
            const LonLat middle{(inside.longitude + outside.longitude) / 2, (inside.latitude + outside.latitude) / 2};
            (shown(middle.longitude, middle.latitude).isFinite ? inside : outside) = middle;
        }
        return inside;
    }

    const Chart& m_chart;
    const PlaneArea::Bounds& m_frame;
    std::size_t m_mostCells;
    std::size_t m_searched = 0;
    double m_leastEnlarged = std::numeric_limits<double>::infinity(); // of the largest scales
};

} // namespace

std::shared_ptr<const ChartRegion> ChartRegion::of(const Chart& chart)
{
    static Recent<ChartRegion> recent;
    return recent.get(chart.name(), [&] { return std::make_shared<const ChartRegion>(chart); });
}

ChartRegion::ChartRegion(const Chart& chart, std::size_t mostCells)
{
    if (chart.isGeocentric())
        throw std::invalid_argument{"found the chart \"" + chart.name() + "\", expected one of a plane"};
    m_frame = frameOf(chart);
    m_area = PlaneArea{Search{chart, m_frame, mostCells}.rings};
    if (m_area.empty())
        throw std::invalid_argument{"the chart \"" + chart.name() + "\" shows no part of the Earth"};
}

std::optional<LonLat> ChartRegion::find(const LonLat& place) const
{
    LonLat found = place;
    if (m_area.contains(found))
        return found;
    // A place on the cut is on its eastern side.
    found.longitude += 2 * besideCut;
    return m_area.contains(found) ? std::optional{found} : std::nullopt;
}

} // namespace Earth
