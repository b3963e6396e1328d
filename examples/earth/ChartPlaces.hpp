#pragma once

#include <earth/ChartFollower.hpp>
#include <earth/Export.hpp>
#include <earth/Shapes.hpp>

#include <fathom/BoundingBox.hpp>
#include <fathom/Chunk.hpp>
#include <fathom/VOutput.hpp>

#include <vector>

namespace Earth {

/// Mix-in for objects that publish places in the chart of the network. Adds the outputs
///
/// - `places`: the coordinates of all places in sequence, three per place;
/// - `box`: the smallest box around them, of size 0 without places.
class EARTH_API ChartPlaces : public ChartFollower {
public:
    /// Longitude and latitude in degrees, and height in metres.
    using point = Chart::point;

    ChartPlaces();

protected:
    /// Returns the places of lines, cut at the date line, with a place of NaN after each part.
    static std::vector<point> placesOf(const std::vector<Line>& lines);

    /// Publishes \p places converted to \p chart. Places that are not finite separate groups
    /// of places; they are kept, like places outside the chart's domain.
    void give(const Orla::StrongPtr<Orla::ValuePool>& pool, const Chart& chart, std::vector<point> places) const;

private:
    using Array = Orla::StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>;
    using Box = Orla::StrongPtr<Gyre::BoundingBox, Loam::InterfaceBase>;

    Orla::VOutput<Array> m_places;
    Orla::VOutput<Box> m_box;
};

} // namespace Earth
