#pragma once

#include <fathom/VValueType.hpp>

#include <loam/Chunk.hpp>
#include <loam/StrongPtr.hpp>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace Rain {

/// The value of a cell without data.
inline constexpr double missing = std::numeric_limits<double>::quiet_NaN();

/// The places of a grid's cells, in degrees. Columns run eastwards; rows run southwards if
/// `northStep` is negative.
struct GridFrame {
    std::size_t columns = 0;
    std::size_t rows = 0;
    double longitude = 0; ///< of the centres of the first column
    double latitude = 0;  ///< of the centres of the first row
    double eastStep = 1;  ///< from column to column, positive
    double northStep = 1; ///< from row to row, not 0

    /// The largest number of cells: 0.1 degrees around the Earth need less than half of it.
    static constexpr std::size_t mostCells = std::size_t{1} << 24;

    std::size_t cells() const noexcept { return columns * rows; }

    /// Returns the longitude of a column, or of a place between columns; it may exceed 180.
    double longitudeAt(double column) const noexcept { return longitude + column * eastStep; }

    double latitudeAt(double row) const noexcept { return latitude + row * northStep; }

    /// Returns true if the last column is beside the first.
    bool isWholeTurn() const noexcept;

    /// Returns true if the centres of all cells lie on the Earth, the columns span at most one
    /// turn, and there are from 1 to `mostCells` cells.
    bool isValid() const noexcept;

    friend bool operator==(const GridFrame&, const GridFrame&) = default;
};

/// Values in cells of equal size in longitude and latitude, row by row. A value is finite or
/// `missing`.
///
/// Values never change, and copies share them.
///
/// Text form: columns and rows, the centre of the first cell, the steps, and the values, of
/// which missing ones are empty. The empty text is the grid without cells.
///
///     3x2 -180,87 1,-1: 392,392.5,,12,0,7
class Grid {
public:
    using Values = Orla::StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>;

    /// Makes the grid without cells.
    Grid() = default;

    /// Takes one value per cell. Values that are not finite become `missing`.
    /// \pre \p frame is valid, and \p values has `frame.cells()` elements.
    Grid(const GridFrame& frame, const std::vector<double>& values);

    const GridFrame& frame() const noexcept { return m_frame; }
    bool empty() const noexcept { return m_frame.cells() == 0; }

    /// Returns the array of the values, which must not be changed; null without cells.
    const Values& values() const noexcept { return m_values; }

    /// \pre The cell exists.
    double at(std::size_t column, std::size_t row) const noexcept
    {
        return (*m_values)[row * m_frame.columns + column];
    }

    friend bool operator==(const Grid& a, const Grid& b) noexcept;

private:
    GridFrame m_frame;
    Values m_values;
};

} // namespace Rain

template<>
struct Orla::VValueTrait<Rain::Grid> {
    static std::string Text(const Rain::Grid& grid);

    /// Returns false and leaves \p grid unchanged if the text is not of the form above, the
    /// frame is invalid, or there are not as many values as cells.
    static bool setValueFromText(Rain::Grid& grid, const std::string& text);
};
