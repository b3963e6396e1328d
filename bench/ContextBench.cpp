// Contexts: setting an input, reading an output, and one step of a cheap network. bench/python does
// the same from Python.

#include <tarn/network/Session.hpp>
#include <tarn/run/Context.hpp>

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

Tarn::Session loadSteps()
{
    setenv("TARN_LIBRARIES", BENCH_LIBRARIES, 1);
    Tarn::Session session = Tarn::Session::load(BENCH_FOLDER "/steps.toml");
    if (!session.faults().empty())
        std::abort();
    return session;
}

void setInput(benchmark::State& state)
{
    const Tarn::Session session = loadSteps();
    Tarn::Context context{session};
    for (auto _ : state) {
        if (!context.set("first.b", 2.5))
            state.SkipWithError("the input was refused");
    }
}

void readOutput(benchmark::State& state)
{
    const Tarn::Session session = loadSteps();
    Tarn::Context context{session};
    context.evaluate();
    for (auto _ : state)
        benchmark::DoNotOptimize(context.get<double>("second.sum"));
}

// The time per step, with the value of the column.
void evaluateSteps(benchmark::State& state)
{
    const Tarn::Session session = loadSteps();
    Tarn::Context context{session};
    double sum = 0;
    for (auto _ : state) {
        if (!context.evaluateStep()) {
            context.startOver();
            context.evaluateStep();
        }
        Orla::VTypedValueBase<double>::cast(context.values().front().get())->getValue(sum);
        benchmark::DoNotOptimize(sum);
    }
}

} // namespace

BENCHMARK(setInput);
BENCHMARK(readOutput);
BENCHMARK(evaluateSteps);
