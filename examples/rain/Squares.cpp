#include "Squares.hpp"

#include <algorithm>
#include <cmath>

namespace Rain {

namespace {

// The corners of a square, in order: columns and rows relative to the first.
constexpr std::size_t right[] = {0, 1, 1, 0};
constexpr std::size_t down[] = {0, 0, 1, 1};

} // namespace

Squares::Squares(const Grid& grid, double level, double margin) : m_grid{grid}, m_level{level}, m_margin{margin}
{
    const GridFrame& frame = grid.frame();
    // The shorter way between two columns must be unique.
    if (frame.rows < 2 || frame.columns < 2 || frame.eastStep >= 180)
        return;
    m_columns = frame.isWholeTurn() ? frame.columns : frame.columns - 1;
    m_rows = frame.rows - 1;
}

double Squares::at(std::size_t column, std::size_t row) const
{
    return m_grid.at(column % m_grid.frame().columns, row);
}

bool Squares::hasValues(std::size_t column, std::size_t row) const
{
    if (column >= m_columns || row >= m_rows)
        return false;
    for (std::size_t i = 0; i < 4; ++i) {
        if (std::isnan(at(column + right[i], row + down[i])))
            return false;
    }
    return true;
}

Squares::Vertex Squares::node(std::size_t column, std::size_t row) const
{
    const std::size_t cell = row * m_grid.frame().columns + column % m_grid.frame().columns;
    return {static_cast<std::uint32_t>(3 * cell), static_cast<double>(column), static_cast<double>(row)};
}

// Always computed from the corner with the lower column and row, so both squares beside a side
// find the same place.
Squares::Vertex Squares::crossing(std::size_t column, std::size_t row, int side) const
{
    const bool isAlongRow = side % 2 == 0;
    const std::size_t fromColumn = column + (side == 1 ? 1 : 0);
    const std::size_t fromRow = row + (side == 2 ? 1 : 0);
    const double from = at(fromColumn, fromRow);
    const double to = isAlongRow ? at(fromColumn + 1, fromRow) : at(fromColumn, fromRow + 1);
    const double part = std::clamp((m_level - from) / (to - from), m_margin, 1 - m_margin);
    Vertex vertex = node(fromColumn, fromRow);
    vertex.id += isAlongRow ? 1 : 2;
    (isAlongRow ? vertex.column : vertex.row) += part;
    return vertex;
}

Squares::Edges Squares::partOf(std::size_t column, std::size_t row) const
{
    std::array<bool, 4> reaches{};
    double sum = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const double value = at(column + right[i], row + down[i]);
        reaches[i] = value >= m_level;
        sum += value;
    }

    Edges result;
    std::array<Vertex, 8> ring;
    std::array<int, 8> sides{}; // the side that begins at a vertex
    std::size_t size = 0;
    const auto close = [&] {
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t next = (i + 1) % size;
            result.edges[result.count++] = {ring[i], ring[next], sides[i]};
        }
        size = 0;
    };
    const auto add = [&](const Vertex& vertex, int side) {
        ring[size] = vertex;
        sides[size++] = side;
    };
    const bool isSaddle = reaches[0] == reaches[2] && reaches[1] == reaches[3] && reaches[0] != reaches[1];
    const bool isSplit = isSaddle && sum / 4 < m_level;
    for (std::size_t i = 0; i < 4; ++i) {
        const int side = static_cast<int>(i);
        const bool next = reaches[(i + 1) % 4];
        if (isSplit && reaches[i]) {
            // A triangle of its own at the corner.
            const int before = (side + 3) % 4;
            add(crossing(column, row, before), before);
            add(node(column + right[i], row + down[i]), side);
            add(crossing(column, row, side), Edge::isoline);
            close();
        } else if (!isSplit) {
            if (reaches[i])
                add(node(column + right[i], row + down[i]), side);
            if (reaches[i] != next)
                add(crossing(column, row, side), next ? side : Edge::isoline);
        }
    }
    close();
    return result;
}

} // namespace Rain
