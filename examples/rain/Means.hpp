#pragma once

#include "Grid.hpp"

#include <fathom/Range.hpp>

#include <cstddef>
#include <vector>

namespace Rain {

/// Part of the Earth between two parallels and two meridians, in degrees. A cell belongs to it
/// if the cell's centre does, or lies on its boundary.
struct Area {
    Orla::Range latitudes{-90, 90};

    /// From the western to the eastern meridian: `170:190` and `170:-170` cross the date line.
    Orla::Range longitudes{-180, 180};

    bool containsLatitude(double degrees) const noexcept;
    bool containsLongitude(double degrees) const noexcept;
};

/// Returns the mean of each row's cells in an area, without missing values. The mean of no
/// values is `missing`.
std::vector<double> zonalMeans(const Grid& grid, const Area& area);

/// The values of a grid in an area, without missing values.
struct AreaSummary {
    double mean = missing; ///< weighted by the cosine of the latitude
    double lowest = missing;
    double highest = missing;
    std::size_t cells = 0; ///< cells with a value
};
AreaSummary summaryOf(const Grid& grid, const Area& area);

} // namespace Rain
