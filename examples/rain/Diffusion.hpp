#pragma once

#include "Grid.hpp"

#include <cstddef>
#include <vector>

namespace Rain {

/// One step of diffusion on the sphere: the heat equation du/dt = k div grad u with the mean
/// radius of the Earth.
///
/// Neighbouring cells exchange what their difference at the end of the step drives (backward
/// Euler), first along the rows and then along the columns. The exchange is proportional to the
/// length of their common side, divided by the distance of their centres. A step of any length
/// is thus stable, although columns meet at the poles; each value stays between the lowest and
/// the highest; and the sum of the values, weighted by the cosine of the latitude, stays the
/// same.
///
/// The first column is beside the last if the grid goes around the Earth. Nothing crosses the
/// other borders of the grid or enters a missing value. Cells centred on a pole have no area and
/// keep their values.
class Diffusion {
public:
    /// \p amount is the diffusivity times the length of the step, in square kilometres. Missing
    /// values are those of \p grid.
    /// \pre \p amount is finite and not negative.
    Diffusion(const Grid& grid, double amount);

    /// Advances \p values, one per cell, by one step.
    void advance(std::vector<double>& values) const;

private:
    bool isLinked(std::size_t cell, std::size_t neighbour) const noexcept;
    void advanceRows(std::vector<double>& values) const;
    void advanceColumns(std::vector<double>& values) const;

    Grid m_grid;
    std::vector<double> m_weights;     // per row: the cosine of the latitude; 0 at a pole
    std::vector<double> m_alongRow;    // per row: exchange between its cells, per weight
    std::vector<double> m_betweenRows; // per row: exchange with the next row
};

} // namespace Rain
