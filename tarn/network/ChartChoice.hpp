#pragma once

#include <trellis/ValuePool.hpp>

#include <string>
#include <vector>

namespace Orla {
class VChartSelector;
}

namespace Tarn {

/// Picks the chart that a whole network follows.
class ChartChoice {
public:
    /// For the network's chart selector; a network whose objects do not depend on
    /// charts has none.
    static ChartChoice find();

    explicit operator bool() const noexcept { return bool(m_selector); }

    /// From now on the selector wants the chart \p name in every new pool and picks
    /// it as soon as an object offers it.
    void want(const std::string& name) const;

    /// The chart that was picked in \p pool; empty if none was.
    std::string current(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// The names of the charts that there are in \p pool.
    std::vector<std::string> names(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

private:
    Orla::StrongPtr<Orla::VChartSelector> m_selector;
};

} // namespace Tarn
