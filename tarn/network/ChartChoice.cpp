#include <tarn/network/ChartChoice.hpp>

#include <fathom/VChart.hpp>

namespace Tarn {

namespace {

using Orla::StrongPtr;

template<class T>
T read(const Orla::VChartSelector& selector, const char* output, const StrongPtr<Orla::ValuePool>& pool)
{
    T result{};
    const StrongPtr<Orla::VValueBase> value = selector.findOutput(output)->getValueBase(pool);
    if (const auto* typed = Orla::VTypedValueBase<T>::cast(value.get()))
        typed->getValue(result);
    return result;
}

} // namespace

ChartChoice ChartChoice::find()
{
    // Asking for the network's selector would create one.
    ChartChoice choice;
    Orla::VManagedObject::forEachObject<Orla::VChartSelector>([&](const StrongPtr<Orla::VChartSelector>& selector) {
        choice.m_selector = selector;
        return false;
    });
    return choice;
}

void ChartChoice::want(const std::string& name) const
{
    m_selector->findSlot("chartname")->setInitialText(name);
    // Objects that offer charts and also follow the chart would otherwise run twice: first
    // without a chart, and again when the selector has found theirs.
    m_selector->findOutput("CurrentChart")->setInitialText(name);
}

void ChartChoice::want(const std::string& name, const StrongPtr<Orla::ValuePool>& pool) const
{
    m_selector->findSlot("chartname")->set(pool, name);
    m_selector->findOutput("CurrentChart")->set(pool, name);
}

bool ChartChoice::isSelected(const std::string& name, const StrongPtr<Orla::ValuePool>& pool) const
{
    return read<Orla::VChart>(*m_selector, "CurrentChart", pool).name() == name
           && read<Orla::VChartList>(*m_selector, "atlas", pool).find(name);
}

std::vector<std::string> ChartChoice::names(const StrongPtr<Orla::ValuePool>& pool) const
{
    std::vector<std::string> names;
    for (const Orla::VChart& chart : read<Orla::VChartList>(*m_selector, "atlas", pool))
        names.push_back(chart.name());
    return names;
}

} // namespace Tarn
