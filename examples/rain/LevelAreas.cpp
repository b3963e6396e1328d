#include "LevelAreas.hpp"

#include "Squares.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace Rain {

namespace {

using Earth::LonLat;
using Earth::Ring;

// A range of squares.
struct Tile {
    std::size_t firstColumn;
    std::size_t firstRow;
    std::size_t endColumn;
    std::size_t endRow;

    bool contains(std::size_t column, std::size_t row) const
    {
        return column >= firstColumn && column < endColumn && row >= firstRow && row < endRow;
    }
};

struct BorderEdge {
    std::uint32_t from;
    std::uint32_t to;
    std::size_t square;
    LonLat place; // of `from`
    bool isUsed;
};

// Returns the edges of a tile's part that no two of its squares share, ordered by `from`.
std::vector<BorderEdge> borderOf(const Tile& tile, const Squares& squares, const GridFrame& frame)
{
    std::vector<BorderEdge> border;
    for (std::size_t row = tile.firstRow; row < tile.endRow; ++row) {
        for (std::size_t column = tile.firstColumn; column < tile.endColumn; ++column) {
            if (!squares.hasValues(column, row))
                continue;
            // Beyond the first row or column, the index wraps to a large one.
            const std::size_t besideColumn[] = {column, column + 1, column, column - 1};
            const std::size_t besideRow[] = {row - 1, row, row + 1, row};
            for (const Squares::Edge& edge : squares.partOf(column, row)) {
                if (edge.side != Squares::Edge::isoline) {
                    const auto side = static_cast<std::size_t>(edge.side);
                    if (tile.contains(besideColumn[side], besideRow[side])
                        && squares.hasValues(besideColumn[side], besideRow[side]))
                        continue;
                }
                border.push_back({edge.from.id,
                                  edge.to.id,
                                  row * squares.columns() + column,
                                  {frame.longitudeAt(edge.from.column), frame.latitudeAt(edge.from.row)},
                                  false});
            }
        }
    }
    std::stable_sort(border.begin(), border.end(),
                     [](const BorderEdge& a, const BorderEdge& b) { return a.from < b.from; });
    return border;
}

// Joins edges to rings. Where squares touch only at a corner, a ring stays in its square, so
// rings touch but do not cross.
void appendRings(std::vector<Ring>& rings, std::vector<BorderEdge> border)
{
    const auto next = [&border](const BorderEdge& edge) -> BorderEdge* {
        const auto isBefore = [](const BorderEdge& a, std::uint32_t id) { return a.from < id; };
        auto found = std::lower_bound(border.begin(), border.end(), edge.to, isBefore);
        BorderEdge* result = nullptr;
        for (; found != border.end() && found->from == edge.to; ++found) {
            if (!found->isUsed && (!result || found->square == edge.square))
                result = &*found;
        }
        return result;
    };
    for (BorderEdge& first : border) {
        if (first.isUsed)
            continue;
        Ring& ring = rings.emplace_back();
        for (BorderEdge* edge = &first; edge; edge = next(*edge)) {
            edge->isUsed = true;
            ring.push_back(edge->place);
        }
    }
}

} // namespace

std::vector<Ring> areaAbove(const Grid& grid, double level)
{
    constexpr double tileSize = 30; // degrees
    constexpr double margin = 1e-6; // of a side: no two corners of a ring coincide
    const Squares squares{grid, level, margin};
    const GridFrame& frame = grid.frame();
    const auto squaresIn = [](double step) {
        return static_cast<std::size_t>(std::max(tileSize / std::abs(step), 1.0));
    };
    const std::size_t columns = squaresIn(frame.eastStep);
    const std::size_t rows = squaresIn(frame.northStep);
    std::vector<Ring> rings;
    for (std::size_t row = 0; row < squares.rows(); row += rows) {
        for (std::size_t column = 0; column < squares.columns(); column += columns) {
            const Tile tile{column, row, std::min(column + columns, squares.columns()),
                            std::min(row + rows, squares.rows())};
            appendRings(rings, borderOf(tile, squares, frame));
        }
    }
    return rings;
}

} // namespace Rain
