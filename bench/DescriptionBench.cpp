// What descriptions cost: creating an object with four inputs that are described, or not, and reading
// the description of an input.

#include <fathom/Double.hpp>
#include <fathom/TypedSlot.hpp>

#include <trellis/VObject.hpp>

#include <benchmark/benchmark.h>

using namespace Orla;

namespace {

struct Undescribed final : VObject {
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }

    TypedSlot<double> a{this, "a", 0.0, 0};
    TypedSlot<double> b{this, "b", 0.0, 0};
    TypedSlot<double> c{this, "c", 0.0, 0};
    TypedSlot<double> d{this, "d", 0.0, 0};
};

struct Described final : VObject {
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }

    TypedSlot<double> a{this, "a", 0.0, describe("The width of the room.").in("m").from(0)};
    TypedSlot<double> b{this, "b", 0.0, describe("The depth of the room.").in("m").from(0)};
    TypedSlot<double> c{this, "c", 0.0, describe("The height of the room.").in("m").from(0).to(10)};
    TypedSlot<double> d{this, "d", 0.0, describe("The temperature of the air.").in("K").softLimits(280, 300)};
};

template<class Object>
void create(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(Loam::makeStrong<Object>("room", 0, nullptr));
}

void createUndescribed(benchmark::State& state)
{
    create<Undescribed>(state);
}

void createDescribed(benchmark::State& state)
{
    create<Described>(state);
}

void readDescription(benchmark::State& state)
{
    const auto object = Loam::makeStrong<Described>("room", 0, nullptr);
    const StrongPtr<VSlot> slot = object->findSlot("c");
    for (auto _ : state)
        benchmark::DoNotOptimize(slot->description());
}

} // namespace

BENCHMARK(createUndescribed);
BENCHMARK(createDescribed);
BENCHMARK(readDescription);
