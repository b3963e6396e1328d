// Text forms of the value types, each beside the plain calls that produce the
// same characters.

#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VTime.hpp>

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

using namespace Orla;

namespace {

constexpr std::size_t Count = 1024;

// 17 significant digits nearly always.
std::vector<double> numbers()
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> distribution(-1000, 1000);
    std::vector<double> numbers(Count);
    for (double& number : numbers)
        number = distribution(random);
    return numbers;
}

template<class T>
std::vector<std::string> texts(const std::vector<T>& values)
{
    std::vector<std::string> texts;
    for (const T& value : values)
        texts.push_back(VValueTrait<T>::Text(value));
    return texts;
}

template<class T>
void write(benchmark::State& state, const std::vector<T>& values)
{
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(VValueTrait<T>::Text(values[i]));
        i = (i + 1) % Count;
    }
}

template<class T>
void read(benchmark::State& state, const std::vector<T>& values)
{
    const std::vector<std::string> all = texts(values);
    T value{};
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(VValueTrait<T>::setValueFromText(value, all[i]));
        i = (i + 1) % Count;
    }
    benchmark::DoNotOptimize(value);
}

void writeDouble(benchmark::State& state)
{
    write(state, numbers());
}

void writeDoublePlain(benchmark::State& state)
{
    const std::vector<double> values = numbers();
    std::size_t i = 0;
    for (auto _ : state) {
        char text[32];
        const auto result = std::to_chars(text, text + sizeof text, values[i]);
        benchmark::DoNotOptimize(std::string(text, result.ptr));
        i = (i + 1) % Count;
    }
}

void readDouble(benchmark::State& state)
{
    read(state, numbers());
}

void readDoublePlain(benchmark::State& state)
{
    const std::vector<std::string> all = texts(numbers());
    double value = 0;
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::from_chars(all[i].data(), all[i].data() + all[i].size(), value).ec);
        i = (i + 1) % Count;
    }
    benchmark::DoNotOptimize(value);
}

std::vector<Range> ranges()
{
    std::vector<Range> ranges;
    for (double number : numbers())
        ranges.emplace_back(number, number + 1);
    return ranges;
}

std::vector<VTime> times()
{
    std::vector<VTime> times;
    for (double number : numbers())
        times.emplace_back(number, -1000, 1000);
    return times;
}

void writeRange(benchmark::State& state)
{
    write(state, ranges());
}

void readRange(benchmark::State& state)
{
    read(state, ranges());
}

void writeTime(benchmark::State& state)
{
    write(state, times());
}

void readTime(benchmark::State& state)
{
    read(state, times());
}

std::vector<int> integers()
{
    std::vector<int> integers;
    for (double number : numbers())
        integers.push_back(static_cast<int>(number * 1000));
    return integers;
}

void writeInt(benchmark::State& state)
{
    write(state, integers());
}

void readInt(benchmark::State& state)
{
    read(state, integers());
}

BENCHMARK(writeDouble);
BENCHMARK(writeDoublePlain);
BENCHMARK(readDouble);
BENCHMARK(readDoublePlain);
BENCHMARK(writeInt);
BENCHMARK(readInt);
BENCHMARK(writeRange);
BENCHMARK(readRange);
BENCHMARK(writeTime);
BENCHMARK(readTime);

} // namespace
