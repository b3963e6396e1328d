#pragma once

#include <earth/Chart.hpp>
#include <earth/Export.hpp>

#include <fathom/String.hpp>
#include <fathom/VChart.hpp>

namespace Earth {

/// Mix-in for objects that publish or draw places in the chart of the network, "geographic"
/// by default. Adds
///
/// - the inputs `chart` and `wanted`, which read the chart selector's choice and the chart
///   that it waits for;
/// - the output `atlas`: "geographic", "geocentric", "plate carree", and the wanted chart
///   if PROJ knows it.
class EARTH_API ChartFollower : public Orla::VChartDependent, public Orla::Atlas {
public:
    ChartFollower();

protected:
    /// Publishes the charts.
    /// \throw std::invalid_argument, afterwards, for a wanted chart with parameters that PROJ
    /// refuses.
    void publishCharts(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Returns the chart to use in \p pool.
    /// \throw std::invalid_argument if `Chart` does not know it; another object may offer it.
    Chart chartIn(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

private:
    Orla::TypedSlot<std::string> m_wanted;
};

} // namespace Earth
