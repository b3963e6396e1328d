// Loading saved networks of many objects: reading the file, creating and connecting the objects,
// removing them; adding and removing single objects of a session; and the text of their drawing.

#include "Adder.hpp"

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/network/NetworkBuilder.hpp>
#include <tarn/network/NetworkGraph.hpp>
#include <tarn/network/NetworkParser.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace {

constexpr char Type[] = "BenchAdder";

// Returns a tree in which each object reads one other.
std::string treeOf(std::int64_t count)
{
    std::string text = "format = 1\n";
    for (std::int64_t i = 0; i < count; ++i) {
        text += "\n[[object]]\nname = \"adder" + std::to_string(i) + "\"\ntype = \"" + Type
                + "\"\nset.a = " + std::to_string(i % 100) + '\n';
        if (i > 0)
            text += "connect.b = \"adder" + std::to_string((i - 1) / 2) + ".sum\"\n";
    }
    return text;
}

Tarn::NetworkFile fileOf(std::int64_t count)
{
    Tarn::Faults faults{"tree"};
    return Tarn::parseNetwork(treeOf(count), faults);
}

void readNetwork(benchmark::State& state)
{
    const std::string text = treeOf(state.range(0));
    for (auto _ : state) {
        Tarn::Faults faults{"tree"};
        const Tarn::NetworkFile file = Tarn::parseNetwork(text, faults);
        if (!faults.empty())
            state.SkipWithError("the network has faults");
        benchmark::DoNotOptimize(file.objects.data());
    }
    Orla::report(state, static_cast<std::size_t>(state.range(0)));
}

void buildAndRemoveNetwork(benchmark::State& state)
{
    const Orla::VObjectType<Orla::Adder> type{Type};
    const Tarn::NetworkFile file = fileOf(state.range(0));
    for (auto _ : state) {
        Orla::VNetwork objects;
        const Orla::VNetwork::Scope scope{objects};
        Tarn::Faults faults{"tree"};
        const Tarn::Network network = Tarn::buildNetwork(file, {}, {}, faults);
        if (!faults.empty())
            state.SkipWithError("the network has faults");
        Tarn::removeAnnouncedObjects();
    }
    Orla::report(state, static_cast<std::size_t>(state.range(0)));
}

void describeDrawing(benchmark::State& state)
{
    const Orla::VObjectType<Orla::Adder> type{Type};
    const Tarn::NetworkFile file = fileOf(state.range(0));
    Orla::VNetwork objects;
    const Orla::VNetwork::Scope scope{objects};
    Tarn::Faults faults{"tree"};
    {
        const Tarn::Network network = Tarn::buildNetwork(file, {}, {}, faults);
        for (auto _ : state)
            benchmark::DoNotOptimize(Tarn::dotText(Tarn::NetworkGraph::of(network)));
    }
    Tarn::removeAnnouncedObjects();
    Orla::report(state, static_cast<std::size_t>(state.range(0)));
}

// Adds objects one by one, then removes 100 of them.
void addObjectsToSession(benchmark::State& state)
{
    const Orla::VObjectType<Orla::Adder> type{Type};
    for (auto _ : state) {
        Tarn::Session session;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            if (!session.create(Type, "adder" + std::to_string(i)))
                state.SkipWithError("an object cannot be created");
        }
        for (std::int64_t i = 0; i < 100; ++i) {
            if (!session.remove("adder" + std::to_string(i)))
                state.SkipWithError("an object cannot be removed");
        }
    }
    Orla::report(state, static_cast<std::size_t>(state.range(0)));
}

BENCHMARK(readNetwork)->Arg(100)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(buildAndRemoveNetwork)->Arg(100)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(addObjectsToSession)->Arg(100)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(describeDrawing)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
