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

    /// Makes all objects follow the chart \p name in every new pool, from their first update on,
    /// and the selector select it as soon as an object offers it.
    void want(const std::string& name) const;

    /// The same in \p pool only.
    void want(const std::string& name, const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Returns true if the chart \p name is selected in \p pool and an object offers it.
    bool isSelected(const std::string& name, const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Returns the names of the charts available in \p pool.
    std::vector<std::string> names(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

private:
    Orla::StrongPtr<Orla::VChartSelector> m_selector;
};

} // namespace Tarn
