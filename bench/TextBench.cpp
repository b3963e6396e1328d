// Text forms of the value types, each compared with plain calls that produce the
// same characters.

#include <fathom/BoundingBall.hpp>
#include <fathom/BoundingBox.hpp>
#include <fathom/ColorTypes.hpp>
#include <fathom/Double.hpp>
#include <fathom/GyreFixedArray.hpp>
#include <fathom/GyrePhysicalSpaceBiVector.hpp>
#include <fathom/GyrePhysicalSpacePoint.hpp>
#include <fathom/MultiRange.hpp>
#include <fathom/Position2D.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VCamera.hpp>
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

// Nearly all numbers have 17 significant digits.
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

using Gyre::PhysicalSpace;
using Box = Loam::StrongPtr<Gyre::BoundingBox, Loam::InterfaceBase>;

// Makes each value from three consecutive numbers.
template<class T, class Make>
std::vector<T> madeOfThree(Make&& make)
{
    const std::vector<double> all = numbers();
    std::vector<T> made;
    for (std::size_t i = 0; i < Count; ++i)
        made.push_back(make(all[i], all[(i + 1) % Count], all[(i + 2) % Count]));
    return made;
}

template<class T>
std::vector<T> geometry();

template<>
std::vector<PhysicalSpace::point> geometry()
{
    return madeOfThree<PhysicalSpace::point>(
        [](double a, double b, double c) { return PhysicalSpace::point(a, b, c); });
}

template<>
std::vector<PhysicalSpace::bivector> geometry()
{
    return madeOfThree<PhysicalSpace::bivector>(
        [](double a, double b, double c) { return PhysicalSpace::bivector(a, b, c); });
}

template<>
std::vector<Gyre::FixedArray<int, 3>> geometry()
{
    using Triple = Gyre::FixedArray<int, 3>;
    return madeOfThree<Triple>([](double a, double b, double c) {
        return Triple{{static_cast<int>(a), static_cast<int>(b), static_cast<int>(c)}};
    });
}

template<>
std::vector<Gyre::FixedArray<double, 2>> geometry()
{
    using Pair = Gyre::FixedArray<double, 2>;
    return madeOfThree<Pair>([](double a, double b, double) { return Pair{{a, b}}; });
}

template<>
std::vector<Gyre::rgba_float_t> geometry()
{
    return madeOfThree<Gyre::rgba_float_t>([](double a, double b, double c) {
        return Gyre::rgba_float_t{static_cast<float>(a), static_cast<float>(b), static_cast<float>(c), 1};
    });
}

template<>
std::vector<Gyre::BoundingBall> geometry()
{
    return madeOfThree<Gyre::BoundingBall>([](double a, double b, double c) {
        return Gyre::BoundingBall({a, b, c}, a);
    });
}

template<>
std::vector<Box> geometry()
{
    return madeOfThree<Box>([](double a, double b, double c) {
        return Loam::makeStrong<Gyre::BoundingBox>(PhysicalSpace::point(a, b, c), PhysicalSpace::point(b, c, a));
    });
}

template<>
std::vector<Gyre::MultiRange> geometry()
{
    return madeOfThree<Gyre::MultiRange>([](double a, double b, double c) {
        return Gyre::MultiRange(std::vector<double>{a, b, c});
    });
}

template<>
std::vector<VCamera> geometry()
{
    return madeOfThree<VCamera>([](double a, double b, double c) {
        return VCamera({a, b, c}, {b, c, a}, {0, 0, 1}, 45);
    });
}

template<class T>
void writeGeometry(benchmark::State& state)
{
    write(state, geometry<T>());
}

template<class T>
void readGeometry(benchmark::State& state)
{
    read(state, geometry<T>());
}

#define FOR_GEOMETRY(Type)          \
    BENCHMARK(writeGeometry<Type>); \
    BENCHMARK(readGeometry<Type>)

using Point = PhysicalSpace::point;
using BiVector = PhysicalSpace::bivector;
using IntegerTriple = Gyre::FixedArray<int, 3>;
using Pair = Gyre::FixedArray<double, 2>;
using Colour = Gyre::rgba_float_t;
using Ball = Gyre::BoundingBall;
using MultiRange = Gyre::MultiRange;

FOR_GEOMETRY(Point);
FOR_GEOMETRY(BiVector);
FOR_GEOMETRY(IntegerTriple);
FOR_GEOMETRY(Pair);
FOR_GEOMETRY(Colour);
FOR_GEOMETRY(Ball);
FOR_GEOMETRY(Box);
FOR_GEOMETRY(MultiRange);
FOR_GEOMETRY(VCamera);

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
