// Finding a parameter's variable in a pool, compared with a plain array access and a
// standard hash table. The parameters are accessed in random order.

#include <fathom/VValueParameter.hpp>
#include <fathom/Double.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <unordered_map>
#include <vector>

using namespace Orla;

namespace {

std::vector<std::size_t> shuffled(std::size_t count)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::shuffle(order, std::mt19937_64(1));
    return order;
}

class Variables {
public:
    explicit Variables(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            parameters.emplace_back(new VValueParameter<double>(0.0, "parameter " + std::to_string(i), nullptr));
            for (const StrongPtr<ValuePool>& pool : pools)
                parameters.back()->createLocalVariable(pool);
        }
    }

    StrongPtr<ValuePool> pools[2] = {StrongPtr<ValuePool>(new ValuePool("one")),
                                     StrongPtr<ValuePool>(new ValuePool("two"))};
    std::vector<StrongPtr<VParameter>> parameters;
};

void lookUp(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const Variables variables(count);
    const std::vector<std::size_t> order = shuffled(count);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(variables.pools[0]->lookUp(*variables.parameters[order[i]]));
        i = i + 1 == count ? 0 : i + 1;
    }
}

/// Alternates between pools: what a parameter remembers of the last pool never helps.
void lookUpInTwoPools(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const Variables variables(count);
    const std::vector<std::size_t> order = shuffled(count);
    std::size_t i = 0;
    std::size_t pool = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(variables.pools[pool]->lookUp(*variables.parameters[order[i]]));
        pool ^= 1;
        if (pool == 0)
            i = i + 1 == count ? 0 : i + 1;
    }
}

void lookUpByName(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const Variables variables(count);
    const std::vector<std::size_t> order = shuffled(count);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(variables.pools[0]->retrieveValue(variables.parameters[order[i]]->Name()));
        i = i + 1 == count ? 0 : i + 1;
    }
}

/// An array of parameters, each with its index in an array of values.
void arrayPlain(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    struct Parameter {
        explicit Parameter(std::size_t thePlace) : place{thePlace} {}
        std::size_t place;
    };
    std::vector<std::unique_ptr<Parameter>> parameters;
    std::vector<std::unique_ptr<double>> values;
    for (std::size_t i = 0; i < count; ++i) {
        parameters.push_back(std::make_unique<Parameter>(i));
        values.push_back(std::make_unique<double>());
    }
    const std::vector<std::size_t> order = shuffled(count);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(values[parameters[order[i]]->place].get());
        i = i + 1 == count ? 0 : i + 1;
    }
}

void hashTablePlain(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<std::unique_ptr<int>> parameters;
    std::unordered_map<const int*, std::unique_ptr<double>> values;
    for (std::size_t i = 0; i < count; ++i) {
        parameters.push_back(std::make_unique<int>());
        values.emplace(parameters.back().get(), std::make_unique<double>());
    }
    const std::vector<std::size_t> order = shuffled(count);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(values.find(parameters[order[i]].get())->second.get());
        i = i + 1 == count ? 0 : i + 1;
    }
}

BENCHMARK(lookUp)->RangeMultiplier(10)->Range(10, 100'000);
BENCHMARK(lookUpInTwoPools)->RangeMultiplier(10)->Range(10, 100'000);
BENCHMARK(lookUpByName)->RangeMultiplier(10)->Range(10, 100'000);
BENCHMARK(arrayPlain)->RangeMultiplier(10)->Range(10, 100'000);
BENCHMARK(hashTablePlain)->RangeMultiplier(10)->Range(10, 100'000);

} // namespace
