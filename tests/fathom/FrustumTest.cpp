#include <fathom/Frustum.hpp> // first: the header must be self-contained

#include "SameNumbers.hpp"

#include <fathom/VCamera.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace FrustumTest {

using namespace Orla;

using Gyre::BoundingBox;
using Point = Gyre::PhysicalSpace::point;

namespace {

Frustum frustumOf(const VCamera& camera, double aspect, double nearDistance, double farDistance)
{
    Frustum frustum;
    frustum.compute(camera, aspect, nearDistance, farDistance);
    return frustum;
}

// The numbers come from the Python program that computed the look-at matrices in VCameraTest.
TEST(Frustum, hasBitExactPlanes)
{
    const struct {
        VCamera camera;
        double aspect, nearDistance, farDistance;
        struct {
            double normal[3], point[3];
        } planes[6];
    } cases[] = {
        {VCamera({0, 1, 0}, {0, 0, 0}, {0, 0, 1}, 45),
         1.5,
         0.1,
         100,
         {
             {{-0x0.0p+0, -0x1.49172b0b8ecb6p+2, -0x1.8d3f53f56e38cp+3},
              {0x1.fcfc51f2f8570p-5, 0x1.ccccccccccccdp-1, 0x1.5352e14ca58f5p-5}},
             {{-0x0.0p+0, -0x1.49172b0b8ecb6p+2, 0x1.8d3f53f56e38cp+3},
              {-0x1.fcfc51f2f8570p-5, 0x1.ccccccccccccdp-1, -0x1.5352e14ca58f5p-5}},
             {{-0x1.08d4e2a39ed07p+3, -0x1.49172b0b8ecb6p+2, 0x0.0p+0},
              {0x1.fcfc51f2f8570p-5, 0x1.ccccccccccccdp-1, -0x1.5352e14ca58f5p-5}},
             {{0x1.08d4e2a39ed07p+3, -0x1.49172b0b8ecb6p+2, -0x0.0p+0},
              {-0x1.fcfc51f2f8570p-5, 0x1.ccccccccccccdp-1, 0x1.5352e14ca58f5p-5}},
             {{0x0.0p+0, -0x1.515374a49364ap-7, -0x0.0p+0},
              {-0x1.fcfc51f2f8570p-5, 0x1.ccccccccccccdp-1, 0x1.5352e14ca58f5p-5}},
             {{0x0.0p+0, 0x1.41b2fae943a09p+13, 0x0.0p+0},
              {0x1.f10e68074684ep+5, -0x1.8c00000000000p+6, 0x1.4b5ef004d9adfp+5}},
         }},
        {VCamera({1, 2, 3}, {4, -5, 6}, {0, 1, 1}, 60),
         0.75,
         0.5,
         20,
         {
             {{0x1.4b595045ff006p-1, -0x1.f7d8d72bc6c9fp+2, -0x1.6dc8f5b94735fp+2},
              {0x1.6be8fc13f2c16p+0, 0x1.c241e67680a9dp+0, 0x1.b0a1ff756595ep+1}},
             {{0x1.7690af98aed8fp+1, -0x1.dca02701a3e5cp-2, 0x1.293e3bc72f416p+3},
              {0x1.e3d502c896a21p-1, 0x1.62d09f70ee80bp+0, 0x1.7e47bf46b9736p+1}},
             {{-0x1.127a19eeac53dp+3, -0x1.d1cf363d1b689p+2, 0x1.39578a59b68adp+2},
              {0x1.57f67faa6e70cp+0, 0x1.816dd21f92a3dp+0, 0x1.6ef925ef6761ep+1}},
             {{0x1.84d3dad937fa3p+3, -0x1.0f4e8d7b16805p+0, -0x1.529022127cf6cp+0},
              {0x1.05dcfdcdcfa1ap+0, 0x1.a3a4b3c7dc86bp+0, 0x1.bff098ccb7a76p+1}},
             {{0x1.774df5e0f8496p-4, -0x1.b5daf43121ab6p-3, 0x1.774df5e0f84a0p-4},
              {0x1.05dcfdcdcfa1ap+0, 0x1.a3a4b3c7dc86bp+0, 0x1.bff098ccb7a76p+1}},
             {{-0x1.2534e817c1f99p+7, 0x1.56130ec6624dcp+8, -0x1.2534e817c1f99p+7},
              {0x1.1dc67631dee36p+4, -0x1.e96cff5ef95e5p+2, 0x1.2329fd4afbed2p+4}},
         }},
        {VCamera({6400000, -1100000, 330000}, {10.5, 20.25, -30.125}, {0.1, 0.2, 3}, 30),
         1.7777777777777777,
         1e5,
         2e7,
         {
             {{-0x1.8ee99f32e3f55p+38, -0x1.d9f157c111c3ap+35, -0x1.bdbb7d9f3bbd4p+40},
              {0x1.800dd1c299af1p+22, -0x1.13556e44c3048p+20, 0x1.5ab0983c65888p+18}},
             {{-0x1.0a381bfdc5764p+39, 0x1.b6a4dc9496c86p+37, 0x1.b1b9bf3b3ebb1p+40},
              {0x1.812e4fd59db77p+22, -0x1.fb07bbf287ff8p+19, 0x1.1fed93e935f24p+18}},
             {{-0x1.265150232ef3ap+38, 0x1.07f1f7319b5efp+40, -0x1.7b198f151214cp+36},
              {0x1.802d7af8fd22fp+22, -0x1.145da37752a54p+20, 0x1.268e7e5e5c4b8p+18}},
             {{-0x1.3e8443859ff75p+39, -0x1.bfd9ccba22271p+39, 0x1.75fb51aa8370fp+35},
              {0x1.810ea69f3a439p+22, -0x1.f8f7518d68be0p+19, 0x1.540fadc73f2f4p+18}},
             {{-0x1.2b87aad50b383p+32, 0x1.9bdca80fd9d69p+29, -0x1.ee4535629392fp+27},
              {0x1.810ea69f3a439p+22, -0x1.f8f7518d68be0p+19, 0x1.540fadc73f2f4p+18}},
             {{0x1.6da31c091031dp+47, -0x1.f6c2db2759763p+44, 0x1.2dadbdd56a20bp+43},
              {-0x1.cdca0ffbf79dap+23, -0x1.9617096e16e0ep+22, 0x1.4571aef2f529dp+22}},
         }},
    };
    for (const auto& [camera, aspect, nearDistance, farDistance, planes] : cases) {
        SCOPED_TRACE(VValueTrait<VCamera>::Text(camera));
        const Frustum frustum = frustumOf(camera, aspect, nearDistance, farDistance);
        for (std::size_t i = 0; i < Frustum::PlaneCount; ++i) {
            SCOPED_TRACE(i);
            const auto plane = static_cast<Frustum::Plane>(i);
            expectSameNumbers(frustum.normal(plane).data(), planes[i].normal, 3);
            expectSameNumbers(frustum.point(plane).data(), planes[i].point, 3);
        }
    }
}

// The default camera looks along -y with a vertical field of view of 45 degrees.
class Visibility : public testing::Test {
protected:
    int isVisible(const Point& minimum, const Point& maximum) const
    {
        return frustum.isVisible(BoundingBox(minimum, maximum));
    }

    Frustum frustum = frustumOf(VCamera(), 1, 1, 11); // from y = 0 to y = -10
};

TEST_F(Visibility, distinguishesInsideStraddlingAndOutside)
{
    EXPECT_EQ(isVisible({-0.1, -5, -0.1}, {0.1, -4, 0.1}), 1);
    EXPECT_EQ(isVisible({-0.1, -5, -0.1}, {0.1, 0.5, 0.1}), -1) << "crosses the near plane";
    EXPECT_EQ(isVisible({-0.1, 2, -0.1}, {0.1, 3, 0.1}), 0) << "behind";
    EXPECT_EQ(isVisible({-0.1, -12, -0.1}, {0.1, -11, 0.1}), 0) << "too far";
    EXPECT_EQ(isVisible({-100, -5, -0.1}, {-99, -4, 0.1}), 0);
    EXPECT_EQ(isVisible({99, -5, -0.1}, {100, -4, 0.1}), 0);
    EXPECT_EQ(isVisible({-0.1, -5, 99}, {0.1, -4, 100}), 0) << "above";
    EXPECT_EQ(isVisible({-0.1, -5, -100}, {0.1, -4, -99}), 0) << "below";
}

TEST_F(Visibility, countsABoxAroundEverythingAsStraddling)
{
    EXPECT_EQ(isVisible({-1e6, -1e6, -1e6}, {1e6, 1e6, 1e6}), -1);
}

TEST_F(Visibility, countsTouchingAPlaneAsInside)
{
    // The near and the far plane are exactly at y = 0 and y = -10.
    EXPECT_EQ(isVisible({-0.1, -10, -0.1}, {0.1, -9, 0.1}), 1);
    EXPECT_EQ(isVisible({-0.1, std::nextafter(-10.0, -11.0), -0.1}, {0.1, -9, 0.1}), -1);
    EXPECT_EQ(isVisible({-0.1, -12, -0.1}, {0.1, -10, 0.1}), -1) << "touches from outside";
    EXPECT_EQ(isVisible({-0.1, -1, -0.1}, {0.1, 0, 0.1}), 1);
}

TEST_F(Visibility, doesNotNormalizeInvertedBoxes)
{
    EXPECT_EQ(isVisible({0.1, -4, 0.1}, {-0.1, -5, -0.1}), 1);
    EXPECT_EQ(isVisible({0.1, 5, 0.1}, {-0.1, -25, -0.1}), 0)
        << "the corner taken as the farthest along the normal is the nearest";
}

TEST_F(Visibility, isTheSameForTheTwoCornersOfABox)
{
    unsigned counts[3] = {};
    for (double y = -13; y < 3; y += 0.25) {
        const Point minimum{-0.1, y, -0.1};
        const Point maximum{0.1, y + 1, 0.1};
        EXPECT_EQ(frustum.isVisible(minimum, maximum), isVisible(minimum, maximum)) << y;
        ++counts[frustum.isVisible(minimum, maximum) + 1];
    }
    for (const unsigned count : counts)
        EXPECT_GT(count, 0u) << "the boxes lie inside, outside and across planes";
}

TEST(Frustum, ignoresPlanesWithoutADirection)
{
    const BoundingBox box({50, 50, 50}, {51, 51, 51});
    EXPECT_EQ(Frustum().isVisible(box), 1) << "before the first compute";
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(frustumOf(VCamera({0, 0, 0}, {0, 0, 0}, {0, 0, 1}, 45), 1, 1, 2).isVisible(box), 1);
    EXPECT_EQ(frustumOf(VCamera({0, 0, 1}, {0, 0, 0}, {0, 0, 1}, 45), 1, 1, 2).isVisible(box), 1);
    EXPECT_EQ(frustumOf(VCamera(), nan, 1, 2).isVisible(box), 1);
}

TEST(Frustum, hasNoInsideIfItsDistancesAreSwapped)
{
    const Frustum frustum = frustumOf(VCamera(), 1, 11, 1);
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> place(-15, 5);
    for (int i = 0; i < 1000; ++i) {
        const Point corner(place(random), place(random), place(random));
        EXPECT_NE(frustum.isVisible(BoundingBox(corner, Point(corner.x() + 1, corner.y() + 1, corner.z() + 1))), 1);
    }
}

// Reference implementation: handles one box and recomputes everything.
int isVisibleReference(const Frustum& frustum, const double* minimum, const double* maximum)
{
    int result = 1;
    for (int i = 0; i < 6; ++i) {
        const auto& n = frustum.normal(static_cast<Frustum::Plane>(i));
        const auto& p = frustum.point(static_cast<Frustum::Plane>(i));
        const double k = 1 / std::sqrt(n.x() * n.x() + n.y() * n.y() + n.z() * n.z());
        const double m[3] = {n.x() * k, n.y() * k, n.z() * k};
        double P[3];
        double N[3];
        for (std::size_t a = 0; a < 3; ++a) {
            P[a] = n[a] >= 0 ? maximum[a] : minimum[a];
            N[a] = n[a] >= 0 ? minimum[a] : maximum[a];
        }
        if (((P[1] - p[1]) * m[1] + (P[0] - p[0]) * m[0]) + (P[2] - p[2]) * m[2] < 0)
            return 0;
        const double distance = ((N[1] - p[1]) * m[1] + (N[0] - p[0]) * m[0]) + (N[2] - p[2]) * m[2];
        if (distance / std::sqrt(m[0] * m[0] + m[1] * m[1] + m[2] * m[2]) < 0)
            result = -1;
    }
    return result;
}

class BoxArrays {
public:
    void add(const double (&minimum)[3], const double (&maximum)[3])
    {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            m_corners[axis].push_back(minimum[axis]);
            m_corners[3 + axis].push_back(maximum[axis]);
        }
    }

    std::size_t size() const { return m_corners[0].size(); }

    void expectSingleBoxResults(const Frustum& frustum) const
    {
        const Frustum::Boxes boxes{{m_corners[0].data(), m_corners[1].data(), m_corners[2].data()},
                                   {m_corners[3].data(), m_corners[4].data(), m_corners[5].data()}};
        std::vector<std::int8_t> results(size() + 1, 99);
        frustum.classify(boxes, size(), results.data());
        EXPECT_EQ(results.back(), 99) << "wrote past the end";
        for (std::size_t i = 0; i < size(); ++i) {
            const double minimum[3] = {m_corners[0][i], m_corners[1][i], m_corners[2][i]};
            const double maximum[3] = {m_corners[3][i], m_corners[4][i], m_corners[5][i]};
            const int one = frustum.isVisible(
                BoundingBox(Point(minimum[0], minimum[1], minimum[2]), Point(maximum[0], maximum[1], maximum[2])));
            ASSERT_EQ(one, isVisibleReference(frustum, minimum, maximum)) << i;
            ASSERT_EQ(results[i], one) << i;
        }
    }

private:
    std::vector<double> m_corners[6];
};

std::vector<Frustum> frusta()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double inf = std::numeric_limits<double>::infinity();
    return {
        frustumOf(VCamera(), 1.5, 0.1, 100),
        frustumOf(VCamera({1, 2, 3}, {4, -5, 6}, {0, 1, 1}, 60), 0.75, 0.5, 20),
        frustumOf(VCamera({20, 30, -10}, {0, 0, 0}, {1, 2, 3}, 170), 2, 1, 60),
        frustumOf(VCamera(), 1, 11, 1),  // swapped
        frustumOf(VCamera(), 1, 0, 10),  // the near plane is only the apex and has no direction
        frustumOf(VCamera(), 0, 1, 10),  // no width
        frustumOf(VCamera(), -1, 1, 10), // mirrored
        frustumOf(VCamera(), nan, 1, 10),
        frustumOf(VCamera(), 1, 1, inf),
        frustumOf(VCamera({0, 0, 0}, {0, 0, 0}, {0, 0, 1}, 45), 1, 1, 2),
        frustumOf(VCamera({0, 1, 0}, {0, 0, 0}, {0, 0, 1}, 180), 1, 1, 2),
        frustumOf(VCamera({0, 1e-160, 0}, {0, 0, 0}, {0, 0, 1}, 45), 1, 1e-160, 1e-159), // squares underflow
        frustumOf(VCamera({0, 1e160, 0}, {0, 0, 0}, {0, 0, 1}, 45), 1, 1e100, 1e160),    // squares overflow
        Frustum(),
    };
}

TEST(Frustum, classifiesManyBoxesExactlyLikeSingleOnes)
{
    for (const Frustum& frustum : frusta()) {
        std::mt19937_64 random(4);
        std::uniform_real_distribution<double> place(-40, 40);
        std::uniform_real_distribution<double> size(-1, 20);
        BoxArrays boxes;
        for (int i = 0; i < 3001; ++i) { // not a multiple of any register's width
            const double minimum[3] = {place(random), place(random), place(random)};
            boxes.add(minimum, {minimum[0] + size(random), minimum[1] + size(random), minimum[2] + size(random)});
        }
        boxes.expectSingleBoxResults(frustum);
    }
}

TEST(Frustum, classifiesBoxesOnItsPlanesAndWithNaNExactlyLikeSingleOnes)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double inf = std::numeric_limits<double>::infinity();
    for (const Frustum& frustum : frusta()) {
        BoxArrays boxes;
        std::vector<double> numbers{nan, inf, -inf, 0.0, -0.0, 5e-324, 1e308, -1e308};
        for (int i = 0; i < 6; ++i) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const double on = frustum.point(static_cast<Frustum::Plane>(i))[axis];
                numbers.insert(numbers.end(), {on, std::nextafter(on, inf), std::nextafter(on, -inf)});
            }
        }
        std::mt19937_64 random(5);
        const auto any = [&] { return numbers[random() % numbers.size()]; };
        for (int i = 0; i < 5003; ++i)
            boxes.add({any(), any(), any()}, {any(), any(), any()});
        // Boxes that touch a plane with a corner.
        for (int i = 0; i < 6; ++i) {
            const Point& p = frustum.point(static_cast<Frustum::Plane>(i));
            for (const double size : {0.0, 1.0, -1.0, 1e-16})
                boxes.add({p.x(), p.y(), p.z()}, {p.x() + size, p.y() + size, p.z() + size});
        }
        boxes.expectSingleBoxResults(frustum);
    }
}

TEST(Frustum, classifiesAnyNumberOfBoxes)
{
    const Frustum frustum = frustumOf(VCamera(), 1, 1, 11);
    for (int count = 0; count < 40; ++count) {
        BoxArrays boxes;
        for (int i = 0; i < count; ++i)
            boxes.add({-0.1, -5.0 + i, -0.1}, {0.1, -4.0 + i, 0.1});
        boxes.expectSingleBoxResults(frustum);
    }
}

} // namespace

} // namespace FrustumTest
