#pragma once

#include "Projection.hpp"

#include <fathom/BoundingBox.hpp>
#include <fathom/Chunk.hpp>
#include <fathom/VChart.hpp>
#include <fathom/VOutput.hpp>

#include <gable/PhysicalSpace.hpp>

#include <string>
#include <vector>

namespace Quakes {

/// Mix-in for objects that give places in whichever chart the network follows:
/// "geographic", "geocentric" or "plate carree", and the first of them as long as
/// none was picked. It adds the input `chart` and the outputs
///
/// - `atlas`: these three charts;
/// - `places`: the coordinates of all places one after the other, three each;
/// - `box`: the smallest box around them, empty of extent where there are none.
class ChartPlaces : public Orla::VChartDependent, public Orla::Atlas {
public:
    /// The longitude and latitude in degrees, and the height in metres.
    using point = Gyre::PhysicalSpace::point;

    ChartPlaces();

protected:
    /// The chart to use in \p pool.
    /// \throw std::runtime_error if it is none of the three.
    Chart chartIn(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Publishes the charts, and \p places in the chart of \p pool. A place that is
    /// not finite separates those before it from those behind and is kept.
    void give(const Orla::StrongPtr<Orla::ValuePool>& pool, const std::vector<point>& places) const;

private:
    using Array = Orla::StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>;
    using Box = Orla::StrongPtr<Gyre::BoundingBox, Loam::InterfaceBase>;

    Orla::VOutput<Array> m_places;
    Orla::VOutput<Box> m_box;
};

} // namespace Quakes
