#pragma once

#include <earth/Export.hpp>
#include <earth/Projection.hpp>

#include <fathom/BoundingBox.hpp>
#include <fathom/Chunk.hpp>
#include <fathom/VChart.hpp>
#include <fathom/VOutput.hpp>

#include <gable/PhysicalSpace.hpp>

#include <string>
#include <vector>

namespace Earth {

/// Mix-in for objects that publish places in the chart of the network: "geographic"
/// (the default), "geocentric" or "plate carree". Adds the input `chart` and the outputs
///
/// - `atlas`: these three charts;
/// - `places`: the coordinates of all places in sequence, three per place;
/// - `box`: the smallest box around them, of size 0 without places.
class EARTH_API ChartPlaces : public Orla::VChartDependent, public Orla::Atlas {
public:
    /// Longitude and latitude in degrees, and height in metres.
    using point = Gyre::PhysicalSpace::point;

    ChartPlaces();

protected:
    /// Returns the chart to use in \p pool.
    /// \throw std::runtime_error if it is not one of the three.
    Chart chartIn(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Publishes the charts, and \p places converted to the chart of \p pool. Places that
    /// are not finite separate groups of places; they are kept.
    /// \throw std::runtime_error as `chartIn`, after publishing the charts.
    void give(const Orla::StrongPtr<Orla::ValuePool>& pool, const std::vector<point>& places) const;

private:
    using Array = Orla::StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>;
    using Box = Orla::StrongPtr<Gyre::BoundingBox, Loam::InterfaceBase>;

    Orla::VOutput<Array> m_places;
    Orla::VOutput<Box> m_box;
};

} // namespace Earth
