#include <fathom/frustum/FrustumKernel.hpp> // first: the header must be self-contained

#include <fathom/VCamera.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace FrustumKernelTest {

using namespace Orla;

namespace {

// The kernels that this machine can run. The others are the same code compiled for
// another width.
std::vector<FrustumKernel> kernels()
{
    std::vector<FrustumKernel> all{classifyFrustumBaseline};
#if defined(FATHOM_WIDE_KERNELS)
    if (__builtin_cpu_supports("avx2"))
        all.push_back(classifyFrustumAvx2);
    if (__builtin_cpu_supports("avx512f"))
        all.push_back(classifyFrustumAvx512);
#endif
    return all;
}

TEST(FrustumKernel, isTheWidestThatThisMachineSupports)
{
    EXPECT_EQ(bestFrustumKernel(), kernels().back());
}

TEST(FrustumKernel, givesTheResultsOfTheSingleBoxQueryAtEveryWidth)
{
    Frustum frustum;
    frustum.compute(VCamera({1, 2, 3}, {4, -5, 6}, {0, 1, 1}, 60), 0.75, 0.5, 20);
    constexpr std::size_t Count = 8009;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> place(-15, 15);
    std::uniform_real_distribution<double> size(-0.5, 3);
    std::vector<double> corners[6];
    for (std::size_t i = 0; i < Count; ++i) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            corners[axis].push_back(random() % 50 == 0 ? nan : place(random));
            corners[3 + axis].push_back(corners[axis].back() + size(random));
        }
    }

    FrustumPlane planes[6];
    for (std::size_t i = 0; i < 6; ++i) {
        const auto& normal = frustum.normal(static_cast<Frustum::Plane>(i));
        const double k = 1 / std::sqrt(normal.x() * normal.x() + normal.y() * normal.y() + normal.z() * normal.z());
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const bool forwards = normal[axis] >= 0;
            planes[i].point[axis] = frustum.point(static_cast<Frustum::Plane>(i))[axis];
            planes[i].unit[axis] = normal[axis] * k;
            planes[i].along[axis] = corners[forwards ? 3 + axis : axis].data();
            planes[i].against[axis] = corners[forwards ? axis : 3 + axis].data();
        }
    }

    for (const FrustumKernel kernel : kernels()) {
        std::vector<std::int8_t> results(Count, 99);
        const std::size_t done = kernel(planes, Count, results.data());
        EXPECT_LE(Count - done, 7u) << "leaves less than one full register";
        int seen[3] = {};
        for (std::size_t i = 0; i < done; ++i) {
            const Gyre::BoundingBox box({corners[0][i], corners[1][i], corners[2][i]},
                                        {corners[3][i], corners[4][i], corners[5][i]});
            ASSERT_EQ(results[i], frustum.isVisible(box)) << i;
            ++seen[results[i] + 1];
        }
        for (std::size_t i = done; i < Count; ++i)
            EXPECT_EQ(results[i], 99);
        EXPECT_TRUE(seen[0] > 10 && seen[1] > 10 && seen[2] > 10) << "all three results must occur";
    }
}

} // namespace

} // namespace FrustumKernelTest
