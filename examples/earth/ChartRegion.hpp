#pragma once

#include <earth/Chart.hpp>
#include <earth/Export.hpp>
#include <earth/PlaneArea.hpp>

#include <cstddef>
#include <memory>
#include <optional>

namespace Earth {

/// The part of the Earth that a flat chart shows on a map: where it is defined and continuous
/// and its scale is bounded. It ends where the scale, relative to the least enlarged place, is
/// over 12 in one direction and over 3.3 in all: Mercator's map at 85 degrees. If the chart has
/// an area of use, the region lies in it.
///
/// A cut through the chart from pole to pole, as at the ends of most world maps, is also the
/// boundary of the plane. Other cuts leave a gap of at most 0.05 degrees in a world map.
class EARTH_API ChartRegion {
public:
    /// Returns the region of a chart. The regions used last are kept, because finding one takes
    /// from 0.1 to some seconds.
    /// \throw std::invalid_argument if the chart is not flat, shows no part of the Earth or is
    /// cut almost everywhere.
    static std::shared_ptr<const ChartRegion> of(const Chart& chart);

    /// Charts for which the search examines more than \p mostCells cells of the plane count as
    /// cut almost everywhere. The interrupted map +proj=igh needs 44,980.
    explicit ChartRegion(const Chart& chart, std::size_t mostCells = 300'000);

    /// The shown part, in the plane of longitude and latitude.
    const PlaneArea& area() const noexcept { return m_area; }

    /// Returns the place at its longitude in the plane, or nothing if it is not in the region.
    std::optional<LonLat> find(const LonLat& place) const;

    /// The rectangle in that plane in which the region was sought. Its sides are the plane's
    /// boundary, but not necessarily the map's: they may meet on the map.
    const PlaneArea::Bounds& frame() const noexcept { return m_frame; }

private:
    PlaneArea::Bounds m_frame;
    PlaneArea m_area;
};

} // namespace Earth
