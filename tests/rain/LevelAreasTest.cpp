#include <rain/LevelAreas.hpp>

#include "Grids.hpp"
#include "earth/Planar.hpp"

#include <cmath>
#include <cstddef>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace LevelAreasTest {

using Earth::LonLat;
using Earth::Ring;
using Rain::areaAbove;
using Rain::Grid;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

double longitudeOf(const LonLat& place)
{
    return place.longitude;
}

double latitudeOf(const LonLat& place)
{
    return place.latitude;
}

double areaOf(const std::vector<Ring>& rings)
{
    double sum = 0;
    for (const Ring& ring : rings)
        sum += signedArea(ring, longitudeOf, latitudeOf);
    return std::abs(sum);
}

bool contains(const std::vector<Ring>& rings, double longitude, double latitude)
{
    return evenOdd(rings, longitude, latitude, longitudeOf, latitudeOf);
}

} // namespace

TEST(LevelAreas, containAPlaceBetweenTwoCellsIfItsInterpolatedValueReachesTheLevel)
{
    const Grid& grid = precipitation();
    for (const double level : {250.0, 1500.0}) {
        const std::vector<Ring> rings = areaAbove(grid, level);
        int inside = 0;
        int checked = 0;
        for (std::size_t row = 3; row < 167; row += 5) {
            for (std::size_t column = 0; column < 360; column += 7) {
                // Almost on the side, so a vertex at this latitude does not matter.
                const double part = 0.05 + 0.9 * static_cast<double>((row * 31 + column * 17) % 100) / 100;
                const double value = grid.at(column, row) * (1 - part) + grid.at((column + 1) % 360, row) * part;
                if (std::abs(value - level) < 1)
                    continue;
                const double longitude = -180 + static_cast<double>(column) + part;
                const double latitude = 87 - static_cast<double>(row) + 1e-7;
                EXPECT_EQ(contains(rings, longitude, latitude), value >= level) << longitude << ' ' << latitude;
                inside += value >= level ? 1 : 0;
                ++checked;
            }
        }
        EXPECT_GT(checked, 1600);
        EXPECT_GT(inside, 100);
        EXPECT_LT(inside, checked - 100);
    }
}

TEST(LevelAreas, coverAllSquaresBelowAnyLevelExceptAtMissingValues)
{
    EXPECT_NEAR(areaOf(areaAbove(precipitation(), -infinity)), 360 * 167, 1e-6);
    EXPECT_NEAR(areaOf(areaAbove(precipitation(), 1e9)), 0, 1e-9);
    // A missing value at the corner of one, and one with four squares around it.
    EXPECT_NEAR(areaOf(areaAbove(gridOf("4x4 0,3 1,-1: 1,1,1,1,1,,1,1,1,1,1,1,1,1,1,"), 0)), 9 - 5, 1e-12);
}

TEST(LevelAreas, haveTheAreaThatLinearInterpolationGives)
{
    // A plane that rises to the east: the area begins at the level.
    const Grid slope = gridOf("5x3 0,1 1,-1: 0,10,20,30,40,0,10,20,30,40,0,10,20,30,40");
    EXPECT_NEAR(areaOf(areaAbove(slope, 12.5)), 2 * (4 - 1.25), 1e-12);
    // A single high cell: a square on its corner, of half the height.
    EXPECT_NEAR(areaOf(areaAbove(gridOf("3x3 0,1 1,-1: 0,0,0,0,10,0,0,0,0"), 5)), 0.5, 1e-12);
}

TEST(LevelAreas, continueAcrossTheDateLine)
{
    const std::vector<Ring> rings = areaAbove(gridOf("4x2 -180,1 90,-1: 9,1,1,9,9,1,1,9"), 5);
    // From 45 degrees before the last column, at 90, to 45 degrees after the first.
    EXPECT_NEAR(areaOf(rings), 45 + 90 + 45, 1e-12);
    EXPECT_TRUE(contains(rings, 135, 0.5) && contains(rings, -150, 0.5));
    EXPECT_FALSE(contains(rings, 0, 0.5));
}

TEST(LevelAreas, consistOfRingsOfAtMostThirtyDegrees)
{
    for (const Ring& ring : areaAbove(precipitation(), 500)) {
        for (const LonLat& place : ring) {
            EXPECT_LE(std::abs(place.longitude - ring[0].longitude), 30 + 1e-9);
            EXPECT_LE(std::abs(place.latitude - ring[0].latitude), 30 + 1e-9);
        }
        EXPECT_GE(ring.size(), 3u);
    }
}

TEST(LevelAreas, haveRingsThatNeverTouchThemselves)
{
    // Many values equal the level; and two areas touch at a corner, around which one of them winds.
    const Grid many = gridOf("6x5 0,4 1,-1: 5,5,5,0,5,5,5,,5,5,,5,5,5,,5,5,9,0,5,5,,5,5,5,5,0,5,5,5");
    const Grid corner = gridOf("5x4 0,3 1,-1: 9,9,,,,9,9,,9,9,9,9,9,9,9,9,9,9,9,");
    EXPECT_EQ(areaAbove(corner, 5).size(), 2u);
    for (const Grid& grid : {many, corner}) {
        for (const Ring& ring : areaAbove(grid, 5)) {
            std::set<std::pair<double, double>> places;
            for (const LonLat& place : ring)
                EXPECT_TRUE(places.emplace(place.longitude, place.latitude).second)
                    << place.longitude << ' ' << place.latitude;
        }
    }
}

} // namespace LevelAreasTest
