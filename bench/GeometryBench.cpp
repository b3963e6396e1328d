// The camera's matrices and the view frustum: boxes one by one and in bulk, compared
// with the plain look-at formula and the time to read the boxes.

#include <fathom/VCamera.hpp>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

using namespace Orla;

namespace {

const VCamera theCamera({1, 2, 3}, {4, -5, 6}, {0, 1, 1}, 60);

void lookAt(benchmark::State& state)
{
    VCamera camera = theCamera;
    for (auto _ : state) {
        benchmark::DoNotOptimize(camera);
        auto matrix = camera.untranslatedLookAt();
        camera.translate(matrix);
        benchmark::DoNotOptimize(matrix);
    }
}

void lookAtPlain(benchmark::State& state)
{
    double numbers[9] = {1, 2, 3, 4, -5, 6, 0, 1, 1};
    for (auto _ : state) {
        benchmark::DoNotOptimize(numbers);
        const double* const e = numbers;
        const double dx = numbers[3] - e[0], dy = numbers[4] - e[1], dz = numbers[5] - e[2];
        const double l = std::sqrt(numbers[6] * numbers[6] + numbers[7] * numbers[7] + numbers[8] * numbers[8]);
        const double ux = numbers[6] / l, uy = numbers[7] / l, uz = numbers[8] / l;
        const double sx = dy * uz - dz * uy, sy = dz * ux - dx * uz, sz = dx * uy - dy * ux;
        const double vx = sy * dz - sz * dy, vy = sz * dx - sx * dz, vz = sx * dy - sy * dx;
        const double kd = 1 / std::sqrt(dx * dx + dy * dy + dz * dz);
        const double ks = 1 / std::sqrt(sx * sx + sy * sy + sz * sz);
        const double kv = 1 / std::sqrt(vx * vx + vy * vy + vz * vz);
        double M[16] = {sx * ks, vx * kv, -dx * kd, 0, sy * ks, vy * kv, -dy * kd, 0,
                        sz * ks, vz * kv, -dz * kd, 0, 0,       0,       0,        1};
        for (int r = 0; r < 4; ++r)
            M[12 + r] = (M[12 + r] - M[8 + r] * e[2]) - (M[r] * e[0] + M[4 + r] * e[1]);
        benchmark::DoNotOptimize(M);
    }
}

void compute(benchmark::State& state)
{
    Frustum frustum;
    VCamera camera = theCamera;
    for (auto _ : state) {
        benchmark::DoNotOptimize(camera);
        frustum.compute(camera, 1.5, 0.1, 100);
        benchmark::DoNotOptimize(frustum);
    }
}

// Boxes all around the camera; about 5% of them are visible.
struct Scene {
    explicit Scene(std::size_t count)
    {
        frustum.compute(VCamera(), 1.5, 0.1, 100);
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> place(-60, 60);
        std::uniform_real_distribution<double> size(0, 5);
        for (std::size_t i = 0; i < count; ++i) {
            Gyre::PhysicalSpace::point minimum(place(random), place(random), place(random));
            Gyre::PhysicalSpace::point maximum(minimum.x() + size(random), minimum.y() + size(random),
                                               minimum.z() + size(random));
            for (std::size_t axis = 0; axis < 3; ++axis) {
                corners[axis].push_back(minimum[axis]);
                corners[3 + axis].push_back(maximum[axis]);
            }
            boxes.push_back(Loam::makeStrong<Gyre::BoundingBox>(minimum, maximum));
        }
        results.resize(count);
    }

    Frustum::Boxes arrays() const
    {
        return {{corners[0].data(), corners[1].data(), corners[2].data()},
                {corners[3].data(), corners[4].data(), corners[5].data()}};
    }

    Frustum frustum;
    std::vector<double> corners[6];
    std::vector<Loam::StrongPtr<Gyre::BoundingBox>> boxes;
    std::vector<std::int8_t> results;
};

void report(benchmark::State& state)
{
    state.counters["per_box"] =
        benchmark::Counter(static_cast<double>(state.range(0)) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void isVisible(benchmark::State& state)
{
    Scene scene(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        for (std::size_t i = 0; i < scene.boxes.size(); ++i)
            scene.results[i] = static_cast<std::int8_t>(scene.frustum.isVisible(*scene.boxes[i]));
        benchmark::ClobberMemory();
    }
    report(state);
}

void classify(benchmark::State& state)
{
    Scene scene(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        scene.frustum.classify(scene.arrays(), scene.results.size(), scene.results.data());
        benchmark::ClobberMemory();
    }
    report(state);
}

/// Only reads the corners and writes one byte per box.
void streamPlain(benchmark::State& state)
{
    Scene scene(static_cast<std::size_t>(state.range(0)));
    const Frustum::Boxes boxes = scene.arrays();
    for (auto _ : state) {
        for (std::size_t i = 0; i < scene.results.size(); ++i) {
            const bool odd = (boxes.minimum[0][i] < boxes.minimum[1][i]) ^ (boxes.minimum[2][i] < boxes.maximum[0][i])
                             ^ (boxes.maximum[1][i] < boxes.maximum[2][i]);
            scene.results[i] = odd;
        }
        benchmark::ClobberMemory();
    }
    report(state);
}

BENCHMARK(lookAt);
BENCHMARK(lookAtPlain);
BENCHMARK(compute);
BENCHMARK(isVisible)->Arg(1000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(classify)->Arg(1000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(streamPlain)->Arg(1000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

} // namespace
