// Running due objects: chains, fans and ladders of diamonds, each compared with a
// minimal plain version. Times are for one pass; compare the counter "per_object".

#include "Adder.hpp"

#include <fathom/Double.hpp>

#include <trellis/VScheduler.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

using namespace Orla;

namespace {

class Network {
public:
    StrongPtr<Adder> add()
    {
        auto object = Loam::makeStrong<Adder>("adder", 0, nullptr);
        VObject::finishCreation(object); // as `createObject` does
        objects.push_back(object);
        return object;
    }

    Network() = default;
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;
    ~Network()
    {
        pool.reset();
        while (!objects.empty()) {
            VManagedObject::remove(objects.back());
            objects.pop_back();
        }
    }

    static void connect(const StrongPtr<Adder>& from, const StrongPtr<Adder>& to, const TypedSlot<double>& input)
    {
        to->attachOutput(from->findOutput("sum"), input.slot(), {});
    }

    void evaluateAll()
    {
        for (const StrongPtr<Adder>& object : objects)
            VScheduler::schedule(object, 0, pool);
        VScheduler::run(pool);
    }

    /// Changes the first object's unconnected input and runs the affected objects.
    void change(double value)
    {
        const TypedSlot<double>& input = objects.front()->b;
        const StrongPtr<VValueBase> found = input.slot()->getValueBase(pool);
        VTypedValueBase<double>::cast(found.get())->setValue(value);
        input.slot()->parameter()->notifyValueChange(found, pool);
        VScheduler::run(pool);
    }

    StrongPtr<ValuePool> pool{new ValuePool("bench")};
    std::vector<StrongPtr<Adder>> objects;
};

void runNetwork(benchmark::State& state, Network& network)
{
    network.evaluateAll();
    double value = 0;
    for (auto _ : state)
        network.change(value += 1);
    report(state, network.objects.size());
}

// The plain version: nodes with levels, marked when an input changes and run level
// by level.
class PlainNode {
public:
    virtual ~PlainNode() = default;
    virtual void update() = 0;

    std::vector<PlainNode*> readers;
    std::uint32_t level = 0;
    bool due = false;
};

class PlainNetwork {
public:
    class Adder final : public PlainNode {
    public:
        explicit Adder(PlainNetwork& theNetwork) : network{theNetwork} {}

        void update() override
        {
            sum = *a + *b + 1;
            network.changed(*this);
        }

        PlainNetwork& network;
        double own = 0;
        const double* a = &own;
        const double* b = &own;
        double sum = 0;
    };

    Adder& add()
    {
        objects.push_back(std::make_unique<Adder>(*this));
        return *objects.back();
    }

    static void connect(Adder& from, Adder& to, const double*& input)
    {
        input = &from.sum;
        from.readers.push_back(&to);
        to.level = std::max(to.level, from.level + 1);
    }

    void changed(PlainNode& node)
    {
        for (PlainNode* reader : node.readers)
            mark(*reader);
    }

    void mark(PlainNode& node)
    {
        if (node.due)
            return;
        node.due = true;
        if (node.level >= levels.size())
            levels.resize(node.level + 1);
        levels[node.level].push_back(&node);
    }

    void run(std::uint32_t from)
    {
        for (std::size_t level = from; level < levels.size(); ++level) {
            for (std::size_t i = 0; i < levels[level].size(); ++i) {
                levels[level][i]->due = false;
                levels[level][i]->update();
            }
            levels[level].clear();
        }
    }

    void change(double value)
    {
        objects.front()->own = value;
        mark(*objects.front());
        run(0);
    }

    std::vector<std::unique_ptr<Adder>> objects;
    std::vector<std::vector<PlainNode*>> levels;
};

void runPlain(benchmark::State& state, PlainNetwork& network)
{
    network.change(0);
    double value = 0;
    for (auto _ : state)
        network.change(value += 1);
    report(state, network.objects.size());
}

void chain(benchmark::State& state)
{
    Network network;
    auto last = network.add();
    for (std::int64_t i = 1; i < state.range(0); ++i) {
        auto next = network.add();
        Network::connect(last, next, next->a);
        last = next;
    }
    runNetwork(state, network);
}

void chainPlain(benchmark::State& state)
{
    PlainNetwork network;
    auto* last = &network.add();
    for (std::int64_t i = 1; i < state.range(0); ++i) {
        auto& next = network.add();
        PlainNetwork::connect(*last, next, next.a);
        last = &next;
    }
    runPlain(state, network);
}

void fan(benchmark::State& state)
{
    Network network;
    auto first = network.add();
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        auto reader = network.add();
        Network::connect(first, reader, reader->a);
    }
    runNetwork(state, network);
}

void fanPlain(benchmark::State& state)
{
    PlainNetwork network;
    auto& first = network.add();
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        auto& reader = network.add();
        PlainNetwork::connect(first, reader, reader.a);
    }
    runPlain(state, network);
}

// In each step, two objects read the top object and a third adds their results.
void ladder(benchmark::State& state)
{
    Network network;
    auto top = network.add();
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        auto left = network.add();
        auto right = network.add();
        auto bottom = network.add();
        Network::connect(top, left, left->a);
        Network::connect(top, right, right->a);
        Network::connect(left, bottom, bottom->a);
        Network::connect(right, bottom, bottom->b);
        top = bottom;
    }
    runNetwork(state, network);
}

void ladderPlain(benchmark::State& state)
{
    PlainNetwork network;
    auto* top = &network.add();
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        auto& left = network.add();
        auto& right = network.add();
        auto& bottom = network.add();
        PlainNetwork::connect(*top, left, left.a);
        PlainNetwork::connect(*top, right, right.a);
        PlainNetwork::connect(left, bottom, bottom.a);
        PlainNetwork::connect(right, bottom, bottom.b);
        top = &bottom;
    }
    runPlain(state, network);
}

/// Requests a result that is still valid.
void stillValid(benchmark::State& state)
{
    Network network;
    auto object = network.add();
    network.evaluateAll();
    for (auto _ : state) {
        VScheduler::run(network.pool);
        benchmark::DoNotOptimize(network.pool->lookUp(*object->sum.parameter()));
    }
}

/// Builds a chain, connected from its start (0) or from its end (1), and evaluates it
/// for the first time.
void buildChain(benchmark::State& state)
{
    for (auto _ : state) {
        Network network;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            network.add();
        for (std::size_t i = 1; i < network.objects.size(); ++i) {
            const std::size_t to = state.range(1) == 0 ? i : network.objects.size() - i;
            Network::connect(network.objects[to - 1], network.objects[to], network.objects[to]->a);
        }
        network.evaluateAll();
    }
    report(state, static_cast<std::size_t>(state.range(0)));
}

BENCHMARK(chain)->Arg(10)->Arg(1000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(chainPlain)->Arg(10)->Arg(1000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(fan)->Arg(10)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(fanPlain)->Arg(10)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ladder)->Arg(12)->Arg(1000)->Arg(33'333)->Unit(benchmark::kMicrosecond);
BENCHMARK(ladderPlain)->Arg(12)->Arg(1000)->Arg(33'333)->Unit(benchmark::kMicrosecond);
BENCHMARK(stillValid);
BENCHMARK(buildChain)->Args({1000, 0})->Args({100'000, 0})->Args({100'000, 1})->Unit(benchmark::kMillisecond);

} // namespace
