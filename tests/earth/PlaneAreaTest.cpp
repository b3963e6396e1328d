#include <earth/PlaneArea.hpp>

#include "earth/Planar.hpp"
#include "earth/World.hpp"

#include <earth/DateLine.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace PlaneAreaTest {

using Earth::Line;
using Earth::LonLat;
using Earth::PlaneArea;
using Earth::Ring;

namespace {

const PlaneArea plane = PlaneArea::rectangle({-180, -90, 180, 90});
const PlaneArea pacific = PlaneArea::rectangle({100, -90, 460, 90});

// Returns the area that the rings enclose in the plane, without their order.
double area(const std::vector<Ring>& rings)
{
    double sum = 0;
    for (const Ring& ring : rings)
        sum += std::abs(signedArea(
            ring, [](const LonLat& p) { return p.longitude; }, [](const LonLat& p) { return p.latitude; }));
    return sum;
}

bool encloses(const std::vector<Ring>& rings, double longitude, double latitude)
{
    return evenOdd(
        rings, longitude, latitude, [](const LonLat& p) { return p.longitude; },
        [](const LonLat& p) { return p.latitude; });
}

} // namespace

TEST(PlaneArea, isTheUnionOfItsRings)
{
    const PlaneArea area{{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {{5, 0}, {20, 0}, {20, 10}, {5, 10}}}};
    EXPECT_DOUBLE_EQ(area.area(), 200);
    EXPECT_EQ(area.rings().size(), 1u);
    EXPECT_EQ(area.bounds().west, 0);
    EXPECT_EQ(area.bounds().east, 20);
    EXPECT_EQ(area.bounds().south, 0);
    EXPECT_EQ(area.bounds().north, 10);
}

TEST(PlaneArea, isEmptyWithoutRings)
{
    EXPECT_TRUE(PlaneArea{}.empty());
    EXPECT_TRUE(PlaneArea{std::vector<Ring>{}}.empty());
    EXPECT_EQ(PlaneArea{}.area(), 0);
    LonLat place{};
    EXPECT_FALSE(PlaneArea{}.contains(place));
    EXPECT_TRUE(PlaneArea{}.clipped({{0, 0}, {1, 0}, {1, 1}}).empty());
    EXPECT_TRUE(PlaneArea{}.clippedLine({{0, 0}, {1, 0}}).empty());
}

TEST(PlaneArea, findsPlacesAtTheirLongitudeInThePlane)
{
    LonLat place{-100, 20};
    EXPECT_TRUE(pacific.contains(place));
    EXPECT_EQ(place, (LonLat{260, 20}));
    LonLat turned{540, 20};
    EXPECT_TRUE(plane.contains(turned));
    EXPECT_EQ(std::abs(turned.longitude), 180);
    const PlaneArea small = PlaneArea::rectangle({0, 0, 10, 10});
    for (LonLat outside : {LonLat{11, 5}, {5, -1}, {5, std::numeric_limits<double>::quiet_NaN()}}) {
        const double longitude = outside.longitude;
        EXPECT_FALSE(small.contains(outside));
        EXPECT_EQ(outside.longitude, longitude);
    }
}

TEST(PlaneArea, keepsRingsInsideUnchanged)
{
    const Ring ring{{10, 0}, {20, 0}, {20, 10}};
    EXPECT_EQ(plane.clipped(ring), std::vector<Ring>{ring});
}

TEST(PlaneArea, cutsRingsAcrossTheSidesOfThePlane)
{
    const Ring ring{{170, 0}, {-170, 0}, {-170, 10}, {170, 10}};
    const std::vector<Ring> parts = plane.clipped(ring);
    EXPECT_EQ(parts.size(), 2u);
    EXPECT_NEAR(area(parts), 200, 1e-9);
    EXPECT_TRUE(encloses(parts, 175, 5));
    EXPECT_TRUE(encloses(parts, -175, 5));
    EXPECT_FALSE(encloses(parts, 0, 5));
    EXPECT_EQ(pacific.clipped(ring).size(), 1u) << "the date line is inside";
}

TEST(PlaneArea, extendsRingsAroundAPoleToThePole)
{
    for (const double sign : {1.0, -1.0}) {
        const Ring cap{{0, 60 * sign}, {90, 60 * sign}, {180, 60 * sign}, {-90, 60 * sign}};
        for (const PlaneArea& where : {plane, pacific}) {
            const std::vector<Ring> parts = where.clipped(cap);
            EXPECT_NEAR(area(parts), 360 * 30, 1e-6);
            EXPECT_TRUE(encloses(parts, 179, 89 * sign));
            EXPECT_FALSE(encloses(parts, 179, -89 * sign));
        }
    }
}

TEST(PlaneArea, clipsHolesByTheEvenOddRule)
{
    const PlaneArea half = PlaneArea::rectangle({0, -90, 5, 90});
    std::vector<Ring> parts = half.clipped({{-10, -10}, {10, -10}, {10, 10}, {-10, 10}});
    for (const Ring& hole : half.clipped({{-2, -2}, {2, -2}, {2, 2}, {-2, 2}}))
        parts.push_back(hole);
    EXPECT_TRUE(encloses(parts, 4, 0));
    EXPECT_FALSE(encloses(parts, 1, 0));
    EXPECT_FALSE(encloses(parts, -4, 0));
}

TEST(PlaneArea, acceptsRingsThatCrossThemselves)
{
    const Ring crossed{{0, 0}, {10, 10}, {10, 0}, {0, 10}};
    for (const PlaneArea& where : {plane, PlaneArea::rectangle({0.5, -90, 50, 90})}) {
        const std::vector<Ring> parts = where.clipped(crossed);
        EXPECT_TRUE(encloses(parts, 9, 5));
        EXPECT_TRUE(encloses(parts, 1, 5));
        EXPECT_FALSE(encloses(parts, 5, 9));
    }
    EXPECT_NEAR(area(plane.clipped({{0, 0}, {10, 0}, {10, 10}, {10, 0}})), 0, 1e-9) << "only a spike";
    EXPECT_TRUE(plane.clipped({{0, 0}, {1, 1}}).empty());
}

TEST(PlaneArea, cutsLinesWhereTheyLeaveIt)
{
    const PlaneArea half = PlaneArea::rectangle({0, -90, 5, 90});
    EXPECT_EQ(half.clippedLine({{-10, 1}, {10, 1}}), (std::vector<Line>{{{0, 1}, {5, 1}}}));
    EXPECT_EQ(plane.clippedLine({{170, 0}, {-170, 0}}).size(), 2u);
    EXPECT_EQ(pacific.clippedLine({{170, 0}, {-170, 0}}), (std::vector<Line>{{{170, 0}, {190, 0}}}));
    EXPECT_TRUE(half.clippedLine({{10, 0}, {20, 0}}).empty());
    EXPECT_TRUE(half.clippedLine({{1, 0}}).empty());
}

// The area of a ring on the sphere is computed without a plane.
TEST(PlaneArea, keepsTheAreaOfTheLand)
{
    double onSphere = 0;
    double clipped = 0;
    for (const Earth::Polygon& polygon : world()) {
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const double sign = i == 0 ? 1 : -1;
            const Ring ring = Earth::withInsideOnTheLeft(polygon[i]);
            onSphere += sign * Earth::areaOnTheLeft(ring);
            for (const Ring& part : pacific.clipped(ring)) {
                // Between two places, the sine of the latitude over the longitude.
                double sum = 0;
                for (std::size_t k = 0; k < part.size(); ++k) {
                    const LonLat& a = part[k];
                    const LonLat& b = part[(k + 1) % part.size()];
                    constexpr double degree = std::numbers::pi / 180;
                    const double half = (b.latitude - a.latitude) / 2 * degree;
                    sum += (b.longitude - a.longitude) * degree * std::sin((a.latitude + b.latitude) / 2 * degree)
                           * (half == 0 ? 1 : std::sin(half) / half);
                }
                clipped += sign * std::abs(sum);
            }
        }
    }
    EXPECT_NEAR(clipped, onSphere, 1e-9);
}

} // namespace PlaneAreaTest
