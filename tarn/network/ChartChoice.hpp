#pragma once

#include <trellis/ValuePool.hpp>

#include <string>
#include <vector>

namespace Orla {
class VChartSelector;
}

namespace Tarn {

/// Selects the chart that a whole network follows.
class ChartChoice {
public:
    /// Finds the network's chart selector. The result is empty if no object depends on charts.
    static ChartChoice find();

    explicit operator bool() const noexcept { return bool(m_selector); }

    /// Makes the selector request the chart \p name in every new pool and select it as soon as
    /// an object offers it.
    void want(const std::string& name) const;

    /// Returns the name of the chart selected in \p pool; empty if none is.
    std::string current(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Returns the names of the charts available in \p pool.
    std::vector<std::string> names(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

private:
    Orla::StrongPtr<Orla::VChartSelector> m_selector;
};

} // namespace Tarn
