#include <fathom/frustum/FrustumKernel.hpp> // first: the header must be self-contained

#include <fathom/VCamera.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <iterator>
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

using Numbers = std::array<double, 3>;

// Boxes next to each other, and a frustum to classify them against.
class Scene {
public:
    explicit Scene(const Frustum& frustum) : m_frustum{frustum}
    {
        for (std::size_t i = 0; i < 6; ++i) {
            const auto& n = normal(i);
            const double k = 1 / std::sqrt(n.x() * n.x() + n.y() * n.y() + n.z() * n.z());
            for (std::size_t axis = 0; axis < 3; ++axis) {
                m_planes[i].point[axis] = frustum.point(static_cast<Frustum::Plane>(i))[axis];
                m_planes[i].unit[axis] = n[axis] * k;
            }
        }
    }

    const FrustumPlane& plane(std::size_t i) const { return m_planes[i]; }

    void add(const Numbers& minimum, const Numbers& maximum)
    {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            m_corners[axis].push_back(minimum[axis]);
            m_corners[3 + axis].push_back(maximum[axis]);
        }
    }

    /// Adds a whole group of the same box, so that no other box makes the kernel test it exactly.
    void addGroup(const Numbers& minimum, const Numbers& maximum)
    {
        for (int i = 0; i < 16; ++i)
            add(minimum, maximum);
    }

    /// Adds a group of the box with this corner furthest along the normal of a plane, or furthest against it.
    void addGroupAtCorner(std::size_t i, bool along, const Numbers& corner, const Numbers& size)
    {
        Numbers minimum = corner;
        Numbers maximum = corner;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (along == (normal(i)[axis] >= 0))
                minimum[axis] -= size[axis];
            else
                maximum[axis] += size[axis];
        }
        addGroup(minimum, maximum);
    }

    /// Classifies the first \p count boxes with each kernel. Returns how often -1, 0 and 1 occurred.
    std::array<int, 3> expectSingleBoxResults(std::size_t count)
    {
        for (std::size_t i = 0; i < 6; ++i) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const bool forwards = normal(i)[axis] >= 0;
                m_planes[i].along[axis] = m_corners[forwards ? 3 + axis : axis].data();
                m_planes[i].against[axis] = m_corners[forwards ? axis : 3 + axis].data();
            }
        }
        std::array<int, 3> seen{};
        for (const FrustumKernel kernel : kernels()) {
            std::vector<std::int8_t> results(count + 16, 99);
            const std::size_t done = kernel(m_planes, count, results.data());
            EXPECT_LE(done, count);
            EXPECT_LE(count - done, 7u) << "leaves less than one full register";
            for (std::size_t i = 0; i < done; ++i) {
                const int expected =
                    m_frustum.isVisible(Gyre::PhysicalSpace::point(m_corners[0][i], m_corners[1][i], m_corners[2][i]),
                                        Gyre::PhysicalSpace::point(m_corners[3][i], m_corners[4][i], m_corners[5][i]));
                EXPECT_EQ(results[i], expected) << "box " << i;
                if (results[i] != expected)
                    break;
                ++seen[static_cast<std::size_t>(expected + 1)];
            }
            for (std::size_t i = done; i < results.size(); ++i)
                EXPECT_EQ(results[i], 99) << "box " << i;
        }
        return seen;
    }

    void expectSingleBoxResults()
    {
        for (const int count : expectSingleBoxResults(m_corners[0].size()))
            EXPECT_GT(count, 10) << "all three results must occur";
    }

private:
    const Gyre::PhysicalSpace::vector& normal(std::size_t i) const
    {
        return m_frustum.normal(static_cast<Frustum::Plane>(i));
    }

    Frustum m_frustum;
    FrustumPlane m_planes[6];
    std::vector<double> m_corners[6];
};

// A frustum about 20 times as long as the scale, near a place.
Scene sceneOf(double scale, const Numbers& place = {})
{
    const auto at = [&](double x, double y, double z) {
        return Gyre::PhysicalSpace::point(place[0] + x * scale, place[1] + y * scale, place[2] + z * scale);
    };
    Frustum frustum;
    frustum.compute(VCamera(at(1, 2, 3), at(4, -5, 6), {0, 1, 1}, 60), 0.75, 0.5 * scale, 20 * scale);
    return Scene(frustum);
}

// Most are small; some are much larger than a frustum, and some smaller than its rounding errors.
double anyMagnitude(std::mt19937_64& random)
{
    return std::pow(10, std::uniform_real_distribution<double>(-20, 6)(random));
}

TEST(FrustumKernel, givesTheResultsOfTheSingleBoxQueryAtEveryWidth)
{
    Scene scene = sceneOf(1);
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> place(-15, 15);
    std::uniform_real_distribution<double> size(-0.5, 3);
    const auto coordinate = [&] { return random() % 50 == 0 ? nan : place(random); };
    for (int i = 0; i < 8009; ++i) {
        const Numbers minimum{coordinate(), coordinate(), coordinate()};
        scene.add(minimum, {minimum[0] + size(random), minimum[1] + size(random), minimum[2] + size(random)});
    }
    scene.expectSingleBoxResults();
}

TEST(FrustumKernel, leavesTheBoxesThatDoNotFillARegister)
{
    Scene scene = sceneOf(1);
    for (int i = 0; i < 300; ++i)
        scene.add({1.0 + i % 10, 1.0 - i % 7, 3}, {2.0 + i % 10, 2.0 - i % 7, 4});
    for (std::size_t count = 0; count < 300; ++count)
        scene.expectSingleBoxResults(count);
}

// The kernels first round the corners to float. The boxes here lie so close to a plane that
// the rounding changes the sign of many distances.
TEST(FrustumKernel, classifiesBoxesNextToAPlaneExactly)
{
    const FrustumPlane top = sceneOf(1).plane(Frustum::Top);
    const struct {
        double scale;
        Numbers place;
    } cases[] = {
        {1, {}},
        {1, {-top.point[0], -top.point[1], -top.point[2]}}, // a corner near zero, where boxes can lie closer to it
        {1, {1e3, -2e3, 3e3}},
        {1e4, {6.4e6, 1e6, -2e6}},
        {1, {6.4e6, 1e6, -2e6}},
        {1, {1e15, -2e15, 3e15}},
        {1e-30, {}},
        {1e-37, {}}, // near the smallest float
        {1e-39, {}},
        {1e-43, {}},
        {1e-60, {}},
        {1e30, {}},
        {2e36, {}}, // near the largest float
        {1e37, {}},
        {1e38, {}},
        {1e60, {}},
    };
    for (const auto& [scale, place] : cases) {
        SCOPED_TRACE(testing::Message() << "scale " << scale << ", near " << place[0]);
        Scene scene = sceneOf(scale, place);
        std::mt19937_64 random(2);
        std::uniform_real_distribution<double> direction(-1, 1);
        for (int n = 0; n < 5'000; ++n) {
            const std::size_t i = random() % 6;
            const FrustumPlane& plane = scene.plane(i);
            // From a corner of the frustum, some way along the plane and a very little beside it.
            Numbers corner{};
            double beside = (random() % 2 == 0 ? 1 : -1) * (random() % 8 == 0 ? 0 : anyMagnitude(random)) * scale;
            const double reach = anyMagnitude(random) * scale;
            const std::size_t from = random() % 6;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                corner[axis] = scene.plane(from).point[axis] + direction(random) * reach;
                beside -= (corner[axis] - plane.point[axis]) * plane.unit[axis];
            }
            const double extent = random() % 2 == 0 ? 4 * reach : anyMagnitude(random) * scale;
            Numbers size{};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                corner[axis] += beside * plane.unit[axis];
                size[axis] = direction(random) * extent;
            }
            scene.addGroupAtCorner(i, random() % 2 == 0, corner, size);
        }
        scene.expectSingleBoxResults();
    }
}

TEST(FrustumKernel, classifiesBoxesWithNumbersOutsideTheRangeOfFloatExactly)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    const double numbers[] = {0.0,    -0.0,  5e-324, -1e-310, 1e-46, -1e-40, 1e-38, -2e-38, 1,     -20,    3e37, -1e38,
                              1.7e38, -3e38, 3.4e38, -3.5e38, 6e38,  -1e39,  1e154, -1e200, 1e308, -1e308, inf,  -inf};
    for (const double scale : {1e-39, 1.0, 1e38}) {
        SCOPED_TRACE(scale);
        Scene scene = sceneOf(scale);
        std::mt19937_64 random(3);
        for (int n = 0; n < 10'000; ++n) {
            const auto number = [&] { return numbers[random() % std::size(numbers)]; };
            const Numbers one{number(), number(), number()};
            const Numbers other{number(), number(), number()};
            scene.addGroup(one, other);
        }
        scene.expectSingleBoxResults();
    }
}

} // namespace

} // namespace FrustumKernelTest
