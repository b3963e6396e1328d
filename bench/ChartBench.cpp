// One update of the chart selector with many atlases, compared with the plain union
// of the same lists.

#include <fathom/VChart.hpp>

#include <trellis/VScheduler.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

using namespace Orla;

namespace {

class Chartmaker : public VObject, public Atlas {
public:
    Chartmaker(const std::string& name, const VChartList& charts)
        : VObject{name, 0, nullptr}, Atlas{"charts"}, m_charts{charts}
    {
    }

    bool update(VRequest& request, double) override
    {
        publish(request.valuePool(), m_charts);
        return true;
    }

private:
    VChartList m_charts;
};

// Three charts common to all atlases and, optionally, one unique to this atlas.
VChartList chartsOf(std::int64_t number, bool withOwn)
{
    VChartList charts({"geocentric", "geographic", "plate carree"});
    if (withOwn)
        charts.insert("local " + std::to_string(number));
    return charts;
}

void selectorUpdate(benchmark::State& state)
{
    const bool withOwn = state.range(1) != 0;
    const auto pool = Loam::makeStrong<ValuePool>();
    const auto selector = VChartSelector::getChartSelector();
    std::vector<StrongPtr<Chartmaker>> makers;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        makers.push_back(Loam::makeStrong<Chartmaker>("maker " + std::to_string(i), chartsOf(i, withOwn)));
        VObject::finishCreation(makers.back());
    }
    VScheduler::scheduleAll(pool);
    VScheduler::run(pool);
    VRequest request{pool};
    for (auto _ : state)
        selector->update(request, 0);
    state.SetItemsProcessed(state.iterations() * state.range(0));
    for (const auto& maker : makers)
        VManagedObject::remove(maker);
    VManagedObject::remove(selector);
}

void plainUnion(benchmark::State& state)
{
    const bool withOwn = state.range(1) != 0;
    std::vector<std::vector<std::string>> lists;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        lists.emplace_back();
        for (const VChart& chart : chartsOf(i, withOwn))
            lists.back().push_back(chart.name());
    }
    std::set<std::string> known;
    for (auto _ : state) {
        for (const auto& list : lists)
            known.insert(list.begin(), list.end());
        benchmark::DoNotOptimize(known);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"atlases", "own"})->ArgsProduct({{10, 1'000, 100'000}, {0, 1}});
}

BENCHMARK(selectorUpdate)->Apply(sizes);
BENCHMARK(plainUnion)->Apply(sizes);

} // namespace
