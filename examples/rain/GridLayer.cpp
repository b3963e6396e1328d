#include "ColorMap.hpp"
#include "Grid.hpp"
#include "Isolines.hpp"
#include "LevelAreas.hpp"

#include <earth/Layer.hpp>
#include <earth/Palette.hpp>

#include <fathom/MultiRange.hpp>
#include <fathom/String.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>

namespace Rain {

using Orla::describe;
using Orla::StrongPtr;

/// Colours a grid by classes of values between levels, as a layer of a map. Between the centres
/// of cells, values are interpolated linearly. `title` is the title of the legend. The layer
/// shows isolines if the input of that name is connected.
class GridLayer : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const Grid grid = m_grid.value(pool);
        const ColorMap colors{m_levels.value(pool)};
        Earth::Layer::Content content;
        content.legend = {m_title.value(pool), colors.colors(), colors.levels(), ColorMap::unknown, hasGaps(grid)};
        double level = -std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < colors.colors().size(); ++i) {
            request.reportProgress(static_cast<double>(i) / static_cast<double>(colors.colors().size()));
            if (request.isCancelled())
                return false;
            // Each area overlaps those of the lower classes, which closes gaps between neighbours.
            content.areas.push_back({areaAbove(grid, level), colors.colors()[i]});
            if (i < colors.levels().size())
                level = colors.levels()[i];
        }
        if (const IsolineSet isolines = m_isolines.value(pool); !isolines.lines().empty()) {
            constexpr auto color = Earth::Palette::color(0x1c2936, 0.45f);
            Earth::Layer::Lines lines{{}, color, 0.45};
            for (const Isoline& isoline : isolines.lines())
                lines.lines.push_back(isoline.places);
            content.lines.push_back(std::move(lines));
        }
        m_layer(pool) <<= Earth::Layer{std::move(content)};
        return true;
    }

private:
    // Returns true if some places on the Earth have no value.
    static bool hasGaps(const Grid& grid)
    {
        const GridFrame& frame = grid.frame();
        if (!frame.isWholeTurn())
            return true;
        constexpr double pole = 90;
        const double first = frame.latitudeAt(0);
        const double last = frame.latitudeAt(static_cast<double>(frame.rows - 1));
        return std::max(first, last) < pole || std::min(first, last) > -pole
               || std::any_of(grid.values()->begin(), grid.values()->end(),
                              [](double value) { return std::isnan(value); });
    }

    Orla::TypedSlot<Grid> m_grid{this, "grid", Grid{}, describe("The grid with the values.")};
    Orla::TypedSlot<Gyre::MultiRange> m_levels{this, "levels", Gyre::MultiRange{500, 1000, 2000},
                                               describe("The levels between classes, finite and in increasing order.")};
    Orla::TypedSlot<IsolineSet> m_isolines{this, "isolines", IsolineSet{}, describe("Isolines to draw, if connected.")};
    Orla::TypedSlot<std::string> m_title{this, "title", "", describe("The title of the legend.")};
    Orla::VOutput<Earth::Layer> m_layer{this, "layer", Earth::Layer{}, describe("The layer for a map.")};
};

} // namespace Rain

namespace {

const Orla::VObjectType<Rain::GridLayer> gridLayerType{
    "GridLayer", Orla::describeType("Colours a grid by classes, as a layer of a map.")
                     .category("Grids")
                     .keywords("map", "legend", "class")};

} // namespace
