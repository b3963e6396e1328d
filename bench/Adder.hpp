#pragma once

#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObject.hpp>

#include <benchmark/benchmark.h>

#include <cstddef>

// The cheap object that the evaluation benchmarks use, and their report.

namespace Orla {

class Adder : public VObject {
public:
    using VObject::VObject;

    bool update(VRequest& request, double) override
    {
        const StrongPtr<ValuePool>& pool = request.valuePool();
        sum(pool) << a.value(pool) + b.value(pool) + 1;
        return true;
    }

    TypedSlot<double> a{this, "a", 0.0, 0};
    TypedSlot<double> b{this, "b", 0.0, 0};
    VOutput<double> sum{this, "sum", 0.0};
};

/// Reports the time per object as "per_object".
inline void report(benchmark::State& state, std::size_t objects)
{
    state.counters["per_object"] =
        benchmark::Counter(static_cast<double>(objects) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

} // namespace Orla
