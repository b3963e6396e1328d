#include <earth/ChartFollower.hpp>

#include <exception>
#include <stdexcept>
#include <string>

namespace Earth {

using Orla::describe;

ChartFollower::ChartFollower()
    : VChartDependent{"chart", 0}
    , Atlas{"atlas"}
    , m_wanted{this, "wanted", "", describe("The name of the chart that the network waits for.").hidden(), 2}
{
    const auto wanted = Orla::VChartSelector::getChartSelector()->findSlot("chartname");
    attachParameter(wanted->parameter(), m_wanted.slot(), "");
}

void ChartFollower::publishCharts(const Orla::StrongPtr<Orla::ValuePool>& pool) const
{
    Orla::VChartList charts{{"geographic", "geocentric", "plate carree"}};
    // The selector picks a chart once an object offers it.
    const std::string wanted = m_wanted.value(pool);
    std::exception_ptr refusal;
    if (Chart::isProjText(wanted)) {
        try {
            charts.insert(Chart{wanted}.name());
        } catch (const std::invalid_argument&) {
            refusal = std::current_exception();
        }
    }
    // Published in any case, so another chart can be picked.
    publish(pool, charts);
    if (refusal)
        std::rethrow_exception(refusal);
}

Chart ChartFollower::chartIn(const Orla::StrongPtr<Orla::ValuePool>& pool) const
{
    const std::string name = getChart(pool).name();
    return name.empty() ? Chart{} : Chart{name};
}

} // namespace Earth
