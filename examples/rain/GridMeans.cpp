#include "Grid.hpp"
#include "Means.hpp"

#include <fathom/Chunk.hpp>
#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace Rain {

using Orla::describe;
using Orla::StrongPtr;

/// Computes means of a grid in the area between the inputs `latitudes` and `longitudes`, in
/// degrees and both ends inclusive. `170:-170` crosses the date line. Missing values do not
/// count.
///
/// - `mean`: of all cells, weighted by the cosine of the latitude; `lowest` and `highest`
///   values, and the number `cells` of cells with a value;
/// - `zonal`: the mean of each row, NaN without values; `rows` has the latitudes of the rows.
///
/// Fails if no cell of the area has a value.
class GridMeans : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const Grid grid = m_grid.value(pool);
        const Area area{m_latitudes.value(pool), m_longitudes.value(pool)};
        const AreaSummary summary = summaryOf(grid, area);
        if (summary.cells == 0)
            throw std::runtime_error{"no cell with a value lies between the latitudes " + text(area.latitudes)
                                     + " and the longitudes " + text(area.longitudes)};
        m_mean(pool) <<= summary.mean;
        m_lowest(pool) <<= summary.lowest;
        m_highest(pool) <<= summary.highest;
        m_cells(pool) <<= static_cast<double>(summary.cells);
        m_zonal(pool) <<= array(zonalMeans(grid, area));
        std::vector<double> rows;
        for (std::size_t row = 0; row < grid.frame().rows; ++row)
            rows.push_back(grid.frame().latitudeAt(static_cast<double>(row)));
        m_rows(pool) <<= array(rows);
        return true;
    }

private:
    using Array = StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>;

    static std::string text(const Orla::Range& range) { return Orla::VValueTrait<Orla::Range>::Text(range); }

    static Array array(const std::vector<double>& numbers)
    {
        const Array result = Loam::TypedChunkBase<double>::createNewChunk(numbers.size(), false);
        std::copy(numbers.begin(), numbers.end(), result->begin());
        return result;
    }

    Orla::TypedSlot<Grid> m_grid{this, "grid", Grid{}, describe("The grid with the values.")};
    Orla::TypedSlot<Orla::Range> m_latitudes{
        this, "latitudes", Area{}.latitudes,
        describe("The latitudes of the area, both ends inclusive.").in("\u00b0").from(-90).to(90)};
    Orla::TypedSlot<Orla::Range> m_longitudes{
        this, "longitudes", Area{}.longitudes,
        describe("The longitudes of the area; 170:-170 crosses the date line.").in("\u00b0").from(-360).to(360)};
    Orla::VOutput<double> m_mean{this, "mean", 0.0, describe("The mean, weighted by the area of the cells.")};
    Orla::VOutput<double> m_lowest{this, "lowest", 0.0, describe("The lowest value.")};
    Orla::VOutput<double> m_highest{this, "highest", 0.0, describe("The highest value.")};
    Orla::VOutput<double> m_cells{this, "cells", 0.0, describe("How many cells of the area have a value.")};
    Orla::VOutput<Array> m_zonal{this, "zonal", Array{}, describe("The mean of each row; NaN without values.")};
    Orla::VOutput<Array> m_rows{this, "rows", Array{}, describe("The latitudes of the rows.").in("\u00b0")};
};

} // namespace Rain

namespace {

const Orla::VObjectType<Rain::GridMeans> gridMeansType{
    "GridMeans",
    Orla::describeType("Computes means of a grid in an area.").category("Grids").keywords("average", "zonal", "area")};

} // namespace
