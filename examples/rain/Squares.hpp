#pragma once

#include "Grid.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Rain {

/// Marching squares: the parts of the squares between the centres of four neighbouring cells
/// where the values, interpolated linearly along the sides, reach a level.
///
/// If two opposite corners reach the level and the other two do not, the part is connected if
/// the mean of the four values reaches it. Squares with a missing value are left out. On grids
/// that go around the Earth, there are squares between the last column and the first.
class Squares {
public:
    /// \p margin keeps crossings away from the corners, as a part of the side: distinct
    /// crossings are then distinct places even if a value equals the level.
    Squares(const Grid& grid, double level, double margin = 0);

    /// The number of squares in a row and in a column.
    std::size_t columns() const noexcept { return m_columns; }
    std::size_t rows() const noexcept { return m_rows; }

    /// A corner of a part: the centre of a cell, or a crossing of the level with a side.
    struct Vertex {
        std::uint32_t id = 0; ///< the same in all squares that share it, below `vertices()`
        double column = 0;    ///< the place in the grid
        double row = 0;
    };

    /// The number of possible vertices.
    std::size_t vertices() const noexcept { return 3 * m_grid.frame().cells(); }

    /// From one vertex to the next, around the part of a square.
    struct Edge {
        static constexpr int isoline = -1;

        Vertex from;
        Vertex to;
        int side = isoline; ///< on this side of the square: 0 first row, 1 last column, 2, 3
    };

    /// The edges of one square.
    struct Edges {
        std::array<Edge, 8> edges;
        std::size_t count = 0;

        const Edge* begin() const noexcept { return edges.data(); }
        const Edge* end() const noexcept { return edges.data() + count; }
    };

    /// Returns the edges of the part of a square: one or two closed rings.
    Edges partOf(std::size_t column, std::size_t row) const;

    /// Returns true if all corners of the square have values. Squares beyond the last row or
    /// column have none.
    bool hasValues(std::size_t column, std::size_t row) const;

private:
    Vertex node(std::size_t column, std::size_t row) const;
    Vertex crossing(std::size_t column, std::size_t row, int side) const;
    double at(std::size_t column, std::size_t row) const;

    const Grid m_grid;
    double m_level;
    double m_margin;
    std::size_t m_columns = 0;
    std::size_t m_rows = 0;
};

} // namespace Rain
