#include "Grid.hpp"
#include "Isolines.hpp"
#include "Levels.hpp"

#include <earth/ChartPlaces.hpp>

#include <fathom/Double.hpp>
#include <fathom/MultiRange.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace Rain {

using Orla::describe;
using Orla::StrongPtr;

/// Computes the isolines of a grid at each of its levels: their number `count`, and their
/// length in kilometres. `places` has their places in the chart of the network, cut at the
/// date line, with a place of NaN after each line.
class GridIsolines : public Orla::VObject, public Earth::ChartPlaces {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        publishCharts(pool);
        const Earth::Chart chart = chartIn(pool);
        if (request.hasChanged(m_grid) || request.hasChanged(m_levels)) {
            if (!compute(request))
                return false;
        }
        std::vector<Earth::Line> lines;
        const IsolineSet isolines = m_isolines.value(pool);
        for (const Isoline& isoline : isolines.lines())
            lines.push_back(isoline.places);
        give(pool, chart, placesOf(lines));
        return true;
    }

private:
    // Returns false if the evaluation was cancelled.
    bool compute(const Orla::VRequest& request) const
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const Grid grid = m_grid.value(pool);
        const std::vector<double> levels = levelsOf(m_levels.value(pool));
        std::vector<Isoline> all;
        double length = 0;
        for (std::size_t i = 0; i < levels.size(); ++i) {
            request.reportProgress(static_cast<double>(i) / static_cast<double>(levels.size()));
            if (request.isCancelled())
                return false;
            std::vector<Isoline> lines = isolinesOf(grid, levels[i]);
            for (const Isoline& line : lines)
                length += lengthOf(line.places);
            std::move(lines.begin(), lines.end(), std::back_inserter(all));
        }
        m_count(pool) <<= static_cast<double>(all.size());
        m_length(pool) <<= length;
        m_isolines(pool) <<= IsolineSet{std::move(all)};
        return true;
    }

    Orla::TypedSlot<Grid> m_grid{this, "grid", Grid{}, describe("The grid with the values.")};
    Orla::TypedSlot<Gyre::MultiRange> m_levels{this, "levels", Gyre::MultiRange{500, 1000, 2000},
                                               describe("The values of the isolines, finite and in increasing order.")};
    Orla::VOutput<IsolineSet> m_isolines{this, "isolines", IsolineSet{}, describe("The isolines.")};
    Orla::VOutput<double> m_count{this, "count", 0.0, describe("How many isolines there are.")};
    Orla::VOutput<double> m_length{this, "length", 0.0, describe("The length of all isolines.").in("km")};
};

} // namespace Rain

namespace {

const Orla::VObjectType<Rain::GridIsolines> gridIsolinesType{
    "GridIsolines",
    Orla::describeType("Computes the isolines of a grid.").category("Grids").keywords("contour", "level")};

} // namespace
