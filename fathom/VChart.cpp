#include <fathom/VChart.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VNetwork.hpp>
#include <trellis/VTypeLabel.hpp>

#include <algorithm>
#include <iterator>

namespace Orla {

VChartList::VChartList(std::vector<VChart> charts) : m_charts{std::move(charts)}
{
    std::sort(m_charts.begin(), m_charts.end());
    m_charts.erase(std::unique(m_charts.begin(), m_charts.end()), m_charts.end());
}

bool VChartList::find(const VChart& chart) const noexcept
{
    return std::binary_search(m_charts.begin(), m_charts.end(), chart);
}

bool VChartList::insert(const VChart& chart)
{
    const auto place = std::lower_bound(m_charts.begin(), m_charts.end(), chart);
    if (place != m_charts.end() && *place == chart)
        return false;
    m_charts.insert(place, chart);
    return true;
}

std::size_t VChartList::insert(const VChartList& others)
{
    const std::size_t before = size();
    if (this == &others || others.empty())
        return 0;
    std::vector<VChart> all;
    all.reserve(before + others.size());
    std::set_union(std::make_move_iterator(m_charts.begin()), std::make_move_iterator(m_charts.end()), others.begin(),
                   others.end(), std::back_inserter(all));
    m_charts = std::move(all);
    return size() - before;
}

bool VValueTrait<VChart>::setValueFromText(VChart& chart, const std::string& text)
{
    chart = VChart{text};
    return true;
}

VChartSelector::VChartSelector(const std::string& name, int level,
                               const StrongPtr<VCreationPreferences, InterfaceBase>& prefs)
    : VObject{name, level, prefs}
    , m_chartname{this, "chartname", "", 0}
    , m_atlas{this, "atlas", VChartList{}}
    , m_currentChart{this, "CurrentChart", VChart{}}
{
    m_chartname.slot()->describe(describe("The name of the chart to show."));
    findOutput("atlas")->describe(describe("All charts that objects of the network offer."));
    findOutput("CurrentChart")->describe(describe("The chart that is chosen."));
    // A failing object must not keep the others from following the chart.
    acceptsFailedInputs();
}

VChartSelector::~VChartSelector() = default;

StrongPtr<VChartSelector> VChartSelector::getChartSelector()
{
    VNetwork& network = VNetwork::current();
    const VNetwork::Change change{network};
    if (const StrongPtr<VChartSelector> living{network.uniqueObject(typeid(VChartSelector))})
        return living;
    const auto selector = Loam::makeStrong<VChartSelector>("ChartSelector", 0, StrongPtr<VCreationPreferences>{});
    network.setUniqueObject(typeid(VChartSelector), selector);
    selector->enableRequestProcessing();
    VActionNotifier::VObjectCreation(selector, {}, nullptr);
    return selector;
}

bool VChartSelector::selectChart(const WeakPtrImpl<ValuePool>& pool, const std::string& name)
{
    const StrongPtr<ValuePool> living{pool};
    if (!living || name.empty())
        return false;
    // Read only: a refused pick must not leave variables behind.
    StrongPtr<VValueBase> atlas = m_atlas.parameter()->getValueBase(living);
    if (!atlas)
        atlas = m_atlas.parameter()->DefaultValue();
    VChartList charts;
    if (const auto* typed = VTypedValueBase<VChartList>::cast(atlas.get()); !typed || !typed->getValue(charts))
        return false;
    if (!charts.find(name))
        return false;

    // The assignments write only to existing variables, so create them for the first pick in a
    // pool.
    m_currentChart.parameter()->getLocalValue(living);
    m_currentChart(living) <<= VChart{name};
    if (const StrongPtr<VSlot>& slot = m_chartname.slot()) {
        slot->getLocalValue(living);
        m_chartname(living) <<= name;
    }
    return true;
}

bool VChartSelector::update(VRequest& request, double)
{
    const StrongPtr<ValuePool>& pool = request.valuePool();
    const StrongPtr<VValueBase> atlas = m_atlas.parameter()->getLocalValue(pool);
    auto* const typed = VTypedValueBase<VChartList>::cast(atlas.get());
    VChartList known;
    if (typed)
        typed->getValue(known);
    std::vector<VChart> fresh; // merged once, at the end
    forEachInput(
        [&](const StrongPtr<VSlot>& slot) {
            const StrongPtr<VValueBase> value = slot->getValueBase(pool);
            const auto* const offered = VTypedValueBase<VChartList>::cast(value.get());
            VChartList charts;
            if (!offered || !offered->getValue(charts))
                return;
            for (const VChart& chart : charts) {
                if (!known.find(chart))
                    fresh.push_back(chart);
            }
        },
        0);
    known.insert(VChartList{std::move(fresh)});

    // The initial name may have been read from text, which only a variable takes into account.
    if (const StrongPtr<VSlot>& slot = m_chartname.slot())
        slot->getLocalValue(pool);
    const std::string name = m_chartname.value(pool);
    if (typed && typed->setValue(known))
        m_atlas.parameter()->notifyValueChange(atlas, pool, "");
    selectChart(pool, name);
    return true;
}

VChartDependent::VChartDependent(const std::string& slotName, int expertLevel)
    : m_chart{this, slotName, VChart{}, expertLevel}
{
    if (m_chart.slot())
        m_chart.slot()->describe(describe("The chart that the network shows."));
    const StrongPtr<VChartSelector> selector = VChartSelector::getChartSelector();
    const StrongPtr<VSlot> current = selector->findOutput("CurrentChart");
    if (m_chart.slot() && current && current->parameter())
        attachParameter(current->parameter(), m_chart.slot(), "");
}

VChartDependent::~VChartDependent() = default;

Atlas::Atlas(const std::string& outputName) : VPolyOutput{outputName}
{
    if (const StrongPtr<VSlot> output = findOutput(outputName))
        output->describe(describe("The charts that the object offers."));
}

Atlas::~Atlas() = default;

bool Atlas::publish(const StrongPtr<ValuePool>& pool, const VChartList& charts) const
{
    const VOutputAssignmentContext<VChartList> out{output(), pool};
    output()->getLocalValue(pool); // the assignment writes only to an existing variable
    return out <<= charts;
}

template class FATHOM_TEMPLATE VTypedValueBase<VChart>;
template class FATHOM_TEMPLATE VValue<VChart>;
template class FATHOM_TEMPLATE TypedValueCreator<VChart>;
template class FATHOM_TEMPLATE VValueParameter<VChart>;
template class FATHOM_TEMPLATE TypedSlot<VChart>;
template class FATHOM_TEMPLATE VOutput<VChart>;

template class FATHOM_TEMPLATE VTypedValueBase<VChartList>;
template class FATHOM_TEMPLATE VValue<VChartList>;
template class FATHOM_TEMPLATE TypedValueCreator<VChartList>;
template class FATHOM_TEMPLATE VValueParameter<VChartList>;
template class FATHOM_TEMPLATE VOutput<VChartList>;

namespace {

const VTypeLabel chartLabel{typeid(VChart), "chart"};
const VTypeLabel listLabel{typeid(VChartList), "list of charts"};

} // namespace

} // namespace Orla

namespace Loam {

template class FATHOM_TEMPLATE TypedChunk<Orla::VChart>;
template class FATHOM_TEMPLATE TypedChunk<Orla::VChartList>;

} // namespace Loam
