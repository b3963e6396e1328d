// Arrays of a million numbers as text, in characters per second, compared with a plain
// loop of to_chars and from_chars over the same digits.

#include <fathom/Chunk.hpp>

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <random>
#include <string>

using namespace Orla;

namespace {

constexpr std::size_t Count = 1'000'000;

enum Digits { Integers, Six, Seventeen };

StrongPtr<TypedChunk<double>> numbers(benchmark::State& state)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> unit(-1, 1);
    auto array = Loam::TypedChunkBase<double>::createNewChunk(Count);
    for (double& number : *array) {
        const auto whole = static_cast<double>(random() % 1'000'000);
        number = state.range(0) == Integers ? whole : state.range(0) == Six ? whole / 1000 : unit(random);
    }
    return array;
}

void report(benchmark::State& state, std::size_t characters)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(characters) * static_cast<std::int64_t>(state.iterations()));
}

void writeArray(benchmark::State& state)
{
    const auto array = numbers(state);
    std::size_t characters = 0;
    for (auto _ : state)
        characters = Stringify<double>(array).size();
    report(state, characters);
}

void writeArrayPlain(benchmark::State& state)
{
    const auto array = numbers(state);
    std::size_t characters = 0;
    for (auto _ : state) {
        std::string text(Count * 25, '\0');
        char* place = text.data();
        for (const double number : *array) {
            place = std::to_chars(place, text.data() + text.size(), number).ptr;
            *place++ = ',';
        }
        characters = static_cast<std::size_t>(place - text.data());
        benchmark::DoNotOptimize(text);
    }
    report(state, characters);
}

void readArray(benchmark::State& state)
{
    const std::string text = Stringify<double>(numbers(state));
    StrongPtr<TypedChunk<double>> array;
    for (auto _ : state)
        benchmark::DoNotOptimize(ParseString<double>(array, text));
    report(state, text.size());
}

void readArrayPlain(benchmark::State& state)
{
    const std::string text = Stringify<double>(numbers(state));
    for (auto _ : state) {
        auto array = Loam::TypedChunkBase<double>::createNewChunk(Count);
        const char* place = text.data();
        for (double& number : *array)
            place = std::from_chars(place, text.data() + text.size(), number).ptr + 1;
        benchmark::DoNotOptimize(array);
    }
    report(state, text.size());
}

#define FOR_ALL_DIGITS ArgName("digits")->Arg(Integers)->Arg(Six)->Arg(Seventeen)->Unit(benchmark::kMillisecond)

BENCHMARK(writeArray)->FOR_ALL_DIGITS;
BENCHMARK(writeArrayPlain)->FOR_ALL_DIGITS;
BENCHMARK(readArray)->FOR_ALL_DIGITS;
BENCHMARK(readArrayPlain)->FOR_ALL_DIGITS;

} // namespace
