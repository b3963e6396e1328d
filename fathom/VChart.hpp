#pragma once

#include <fathom/Export.hpp>
#include <fathom/String.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VValue.hpp>

#include <trellis/VObject.hpp>
#include <fathom/VPolyOutput.hpp>
#include <trellis/VSkale.hpp>

#include <loam/Chunk.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Orla {

/// The name of a coordinate chart, i.e. of a coordinate system in which a field is given. The
/// empty name means that no chart is chosen.
///
/// Text form: the name itself.
class FATHOM_API VChart {
public:
    VChart() = default;

    /// Implicit, because a chart is its name.
    VChart(const std::string& name) : m_name{name} {}
    VChart(const char* name) : m_name{name} {}

    const std::string& name() const noexcept { return m_name; }

    /// Compares the names byte by byte.
    friend bool operator==(const VChart&, const VChart&) = default;
    friend bool operator<(const VChart& a, const VChart& b) noexcept { return a.m_name < b.m_name; }

private:
    std::string m_name;
};

/// A set of charts, ordered by name.
///
/// It has no text form: it is always collected again from the objects that know charts.
class FATHOM_API VChartList {
public:
    using const_iterator = std::vector<VChart>::const_iterator;

    VChartList() = default;

    /// Takes charts in any order and drops duplicates.
    explicit VChartList(std::vector<VChart> charts);

    /// Returns true if the list contains a chart of that name.
    bool find(const VChart& chart) const noexcept;

    /// Adds \p chart. Returns false if a chart of that name is already in the list.
    bool insert(const VChart& chart);

    /// Adds the missing charts and returns how many were added.
    std::size_t insert(const VChartList& others);

    std::size_t size() const noexcept { return m_charts.size(); }
    bool empty() const noexcept { return m_charts.empty(); }
    const_iterator begin() const noexcept { return m_charts.begin(); }
    const_iterator end() const noexcept { return m_charts.end(); }

    bool operator==(const VChartList&) const = default;

private:
    std::vector<VChart> m_charts; // sorted, with unique names
};

template<>
struct FATHOM_API VValueTrait<VChart> {
    static std::string Text(const VChart& chart) { return chart.name(); }

    /// Uses the whole text as the name, untrimmed. Always returns true.
    static bool setValueFromText(VChart& chart, const std::string& text);
};

template<>
struct FATHOM_API VValueTrait<VChartList> {
    /// Returns the same text for every list.
    static std::string Text(const VChartList&) { return "------CHART--------"; }

    /// Always returns false and leaves the list unchanged.
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

/// Collects the charts that the objects of a network know, and publishes the one that the user
/// picked. Each pool has its own pick.
///
/// | slot           | kind   | value                                      |
/// |----------------|--------|--------------------------------------------|
/// | `chartname`    | input  | name of the chart that the user wants      |
/// | `atlas`        | output | all charts that any object ever offered    |
/// | `CurrentChart` | output | the chart that was picked; empty until then |
///
/// Each `Atlas` adds an input.
class FATHOM_API VChartSelector : public VObject {
public:
    VChartSelector(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& prefs);
    ~VChartSelector() override;

    /// Returns the selector of the current network, named "ChartSelector". Creates and
    /// announces it on first use; the registry keeps it alive. Once it is destroyed, the next
    /// call creates another one.
    static StrongPtr<VChartSelector> getChartSelector();

    /// Makes \p name the current chart in \p pool and writes the name to `chartname`. Returns
    /// false and changes nothing for the empty name, for a chart that is not in the atlas in
    /// that pool, and without a pool.
    bool selectChart(const WeakPtrImpl<ValuePool>& pool, const std::string& name);

    const TypedSlot<std::string>& chartnameSlot() const noexcept { return m_chartname; }
    const VOutput<VChartList>& atlas() const noexcept { return m_atlas; }
    const VOutput<VChart>& currentChart() const noexcept { return m_currentChart; }

    /// Adds the charts of all inputs to `atlas`, announces it, and picks the chart that
    /// `chartname` names if the atlas contains it. An input that the pool holds no value of
    /// adds no charts, and no variable is created for it. Charts are never removed from the atlas,
    /// even when no object offers them any more: a picked chart stays selectable. Always
    /// returns true.
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
    /// Adds the input \p slotName and connects it to the selector, creating the selector if it
    /// is missing.
    VChartDependent(const std::string& slotName, int expertLevel);
    ~VChartDependent() override;

    /// Returns the chart in \p pool; its name is empty if no chart was picked.
    VChart getChart(const StrongPtr<ValuePool>& pool) const { return m_chart.value(pool); }

    const TypedSlot<VChart>& chartSlot() const noexcept { return m_chart; }

private:
    TypedSlot<VChart> m_chart;
};

/// Mix-in for objects that know charts. Adds an output with their names, which all chart
/// selectors read, including those created later.
class FATHOM_API Atlas : public VPolyOutput<VChartList, VChartSelector> {
public:
    explicit Atlas(const std::string& outputName);
    ~Atlas() override;

    /// Writes \p charts to the output if it holds others in \p pool. Returns true if it did.
    bool publish(const StrongPtr<ValuePool>& pool, const VChartList& charts) const;
};

} // namespace Orla
