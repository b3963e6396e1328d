// Bytes allocated for a value, a connection, an idle pool and a whole object. The
// times are meaningless here; read the counters.

#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VScheduler.hpp>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <vector>

using namespace Orla;

namespace {

constexpr int Count = 10'000;

double allocated()
{
    return static_cast<double>(mallinfo2().uordblks);
}

class Adder : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }

    TypedSlot<double> in{this, "in", 0.0, 0};
    VOutput<double> out{this, "out", 0.0};
};

void bytesPerValue(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<StrongPtr<VValueBase>> values;
        values.reserve(Count);
        const double before = allocated();
        for (int i = 0; i < Count; ++i)
            values.emplace_back(new VValue<double>(i));
        state.counters["bytes"] = (allocated() - before) / Count;
    }
}

void bytesPerConnection(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<StrongPtr<Adder>> adders;
        for (int i = 0; i <= Count; ++i)
            adders.push_back(Loam::makeStrong<Adder>("adder", 0, nullptr));
        const double before = allocated();
        for (std::size_t i = 1; i < adders.size(); ++i)
            adders[i]->attachOutput(adders[i - 1]->findOutput("out"), adders[i]->in.slot(), {});
        state.counters["bytes"] = (allocated() - before) / Count;
    }
}

void bytesPerObject(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<StrongPtr<Adder>> adders;
        adders.reserve(Count);
        const double before = allocated();
        for (int i = 0; i < Count; ++i)
            adders.push_back(Loam::makeStrong<Adder>("adder", 0, nullptr));
        state.counters["bytes"] = (allocated() - before) / Count;
    }
}

/// The memory to evaluate an object in one more pool: its scope, its variables and
/// their entries in the pool's index.
void bytesPerObjectInPool(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<StrongPtr<Adder>> adders;
        for (int i = 0; i < Count; ++i) {
            adders.push_back(Loam::makeStrong<Adder>("adder", 0, nullptr));
            adders.back()->enableRequestProcessing();
        }
        const StrongPtr<ValuePool> pool(new ValuePool("pool"));
        const double before = allocated();
        for (const StrongPtr<Adder>& adder : adders)
            VScheduler::schedule(adder, 0, pool);
        VScheduler::run(pool);
        state.counters["bytes"] = (allocated() - before) / Count;
    }
}

void bytesPerIdlePool(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<StrongPtr<ValuePool>> pools;
        pools.reserve(Count);
        const double before = allocated();
        for (int i = 0; i < Count; ++i)
            pools.emplace_back(new ValuePool("pool"));
        state.counters["bytes"] = (allocated() - before) / Count;
    }
}

BENCHMARK(bytesPerValue)->Iterations(1);
BENCHMARK(bytesPerConnection)->Iterations(1);
BENCHMARK(bytesPerObject)->Iterations(1);
BENCHMARK(bytesPerObjectInPool)->Iterations(1);
BENCHMARK(bytesPerIdlePool)->Iterations(1);

} // namespace
