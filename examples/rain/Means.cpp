#include "Means.hpp"

#include <earth/Degree.hpp>

#include <algorithm>
#include <cmath>

namespace Rain {

namespace {

// Calls `take(row, value)` for each value in an area, row by row.
template<class Take>
void forEachValue(const Grid& grid, const Area& area, Take take)
{
    const GridFrame& frame = grid.frame();
    std::vector<std::size_t> columns;
    for (std::size_t column = 0; column < frame.columns; ++column) {
        if (area.containsLongitude(frame.longitudeAt(static_cast<double>(column))))
            columns.push_back(column);
    }
    for (std::size_t row = 0; row < frame.rows; ++row) {
        if (!area.containsLatitude(frame.latitudeAt(static_cast<double>(row))))
            continue;
        for (const std::size_t column : columns) {
            if (const double value = grid.at(column, row); !std::isnan(value))
                take(row, value);
        }
    }
}

} // namespace

bool Area::containsLatitude(double degrees) const noexcept
{
    return latitudes.begin <= degrees && degrees <= latitudes.end;
}

bool Area::containsLongitude(double degrees) const noexcept
{
    const auto turned = [](double angle) { return angle - Earth::wholeTurn * std::floor(angle / Earth::wholeTurn); };
    const double width = longitudes.end - longitudes.begin;
    return turned(degrees - longitudes.begin) <= (width < 0 ? turned(width) : width);
}

std::vector<double> zonalMeans(const Grid& grid, const Area& area)
{
    std::vector<double> sums(grid.frame().rows, 0);
    std::vector<std::size_t> counts(sums.size(), 0);
    forEachValue(grid, area, [&](std::size_t row, double value) {
        sums[row] += value;
        ++counts[row];
    });
    for (std::size_t row = 0; row < sums.size(); ++row)
        sums[row] = counts[row] == 0 ? missing : sums[row] / static_cast<double>(counts[row]);
    return sums;
}

AreaSummary summaryOf(const Grid& grid, const Area& area)
{
    AreaSummary summary;
    double sum = 0;
    double weights = 0;
    forEachValue(grid, area, [&](std::size_t row, double value) {
        // A row at a pole may be slightly beyond it by rounding.
        const double weight =
            std::max(std::cos(grid.frame().latitudeAt(static_cast<double>(row)) * Earth::degree), 0.0);
        sum += weight * value;
        weights += weight;
        summary.lowest = std::fmin(summary.lowest, value);
        summary.highest = std::fmax(summary.highest, value);
        ++summary.cells;
    });
    if (weights > 0)
        summary.mean = sum / weights;
    return summary;
}

} // namespace Rain
