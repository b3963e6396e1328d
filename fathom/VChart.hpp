#pragma once

#include <fathom/Export.hpp>
#include <fathom/String.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VValue.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VPolyOutput.hpp>
#include <trellis/VSkale.hpp>

#include <loam/Chunk.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Orla {

/// The name of a coordinate chart, that is, of a coordinate system in which a
/// field is given. The empty name means that no chart was chosen.
///
/// Text form: the name as it stands.
class FATHOM_API VChart {
public:
    VChart() = default;

    /// Converts implicitly, because a chart is its name.
    VChart(const std::string& name) : m_name{name} {}
    VChart(const char* name) : m_name{name} {}

    const std::string& name() const noexcept { return m_name; }

    /// By the bytes of the names.
    friend bool operator==(const VChart&, const VChart&) = default;
    friend bool operator<(const VChart& a, const VChart& b) noexcept { return a.m_name < b.m_name; }

private:
    std::string m_name;
};

/// A set of charts, ordered by their names.
///
/// Has no text form: it is always gathered anew from the objects that know charts.
class FATHOM_API VChartList {
public:
    using const_iterator = std::vector<VChart>::const_iterator;

    VChartList() = default;

    /// The charts in any order, each as often as one likes.
    explicit VChartList(std::vector<VChart> charts);

    /// Whether there is a chart of that name.
    bool find(const VChart& chart) const noexcept;

    /// False if a chart of that name was there already.
    bool insert(const VChart& chart);

    /// Adds what is not there yet; returns how many charts that were.
    std::size_t insert(const VChartList& others);

    std::size_t size() const noexcept { return m_charts.size(); }
    bool empty() const noexcept { return m_charts.empty(); }
    const_iterator begin() const noexcept { return m_charts.begin(); }
    const_iterator end() const noexcept { return m_charts.end(); }

    bool operator==(const VChartList&) const = default;

private:
    std::vector<VChart> m_charts; // sorted, no two of a name
};

template<>
struct FATHOM_API VValueTrait<VChart> {
    static std::string Text(const VChart& chart) { return chart.name(); }

    /// Takes the whole text as the name, nothing trimmed; always true.
    static bool setValueFromText(VChart& chart, const std::string& text);
};

template<>
struct FATHOM_API VValueTrait<VChartList> {
    /// Always the same mark, whatever the list holds.
    static std::string Text(const VChartList&) { return "------CHART--------"; }

    /// Always false; the list stays as it is.
    static bool setValueFromText(VChartList&, const std::string&) { return false; }
};

} // namespace Orla

namespace Loam {

extern template class FATHOM_EXTERN_TEMPLATE TypedChunk<Orla::VChart>;
extern template class FATHOM_EXTERN_TEMPLATE TypedChunk<Orla::VChartList>;

} // namespace Loam

namespace Orla {

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<VChart>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<VChart>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<VChart>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<VChart>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<VChart>;
extern template class FATHOM_EXTERN_TEMPLATE VOutput<VChart>;

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<VChartList>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<VChartList>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<VChartList>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<VChartList>;
extern template class FATHOM_EXTERN_TEMPLATE VOutput<VChartList>;

/// Gathers the charts that the objects of a network know, and publishes the one
/// that the user picked. Which one that is belongs to each pool.
///
/// | slot           | kind   | value                                      |
/// |----------------|--------|--------------------------------------------|
/// | `chartname`    | input  | name of the chart that the user wants      |
/// | `atlas`        | output | all charts that any object ever offered    |
/// | `CurrentChart` | output | the chart that was picked; empty until then |
///
/// Every `Atlas` adds an input of its own.
class FATHOM_API VChartSelector : public VObject {
public:
    VChartSelector(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& prefs);
    ~VChartSelector() override;

    /// The selector of the current network, named "ChartSelector". Made and announced on
    /// first use; the registry keeps it alive, and once it is destroyed, the next call
    /// makes another one.
    static StrongPtr<VChartSelector> getChartSelector();

    /// Makes the chart \p name the current one in \p pool and writes the name into
    /// `chartname`. False, and nothing changed, for the empty name, for a chart
    /// that the atlas does not have in that pool, and without a pool.
    bool selectChart(const WeakPtrImpl<ValuePool>& pool, const std::string& name);

    /// Adds the charts of all inputs to `atlas`, announces it, and picks the chart
    /// that `chartname` names, if it is there. Charts are never taken out of the
    /// atlas, also when nobody offers them any more: what was picked stays
    /// selectable. Always true.
    bool update(VRequest& request, double precision) override;

private:
    TypedSlot<std::string> m_chartname;
    VOutput<VChartList> m_atlas;
    VOutput<VChart> m_currentChart;
};

/// Mix-in for objects whose results depend on the chosen chart. Their chart input
/// reads the selector's current chart, unless the user connects it elsewhere.
class FATHOM_API VChartDependent : public virtual VSkale {
public:
    /// Adds the input \p slotName and connects it to the selector, which is made
    /// if there is none.
    VChartDependent(const std::string& slotName, int expertLevel);
    ~VChartDependent() override;

    /// The chart in \p pool; the one with the empty name if none was picked.
    VChart getChart(const StrongPtr<ValuePool>& pool) const { return m_chart.value(pool); }

    const TypedSlot<VChart>& chartSlot() const noexcept { return m_chart; }

private:
    TypedSlot<VChart> m_chart;
};

/// Mix-in for objects that know charts: an output with their names, which every
/// chart selector reads, those that exist and those that come later.
class FATHOM_API Atlas : public VPolyOutput<VChartList, VChartSelector> {
public:
    explicit Atlas(const std::string& outputName);
    ~Atlas() override;

    /// Writes \p charts into the output, if it holds others in \p pool, and
    /// returns whether that was so.
    bool publish(const StrongPtr<ValuePool>& pool, const VChartList& charts) const;
};

} // namespace Orla
