#include <earth/DateLine.hpp>

#include "earth/Planar.hpp"

#include <earth/PlaneArea.hpp>
#include <earth/TopoJson.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

namespace DateLineTest {

using Earth::areaOnTheLeft;
using Earth::cutLineAtDateLine;
using Earth::encloses;
using Earth::Line;
using Earth::LonLat;
using Earth::Polygon;
using Earth::Ring;
using Earth::unrolled;
using Earth::unrolledLine;
using Earth::withInsideOnTheLeft;

namespace {

// Rotates a ring to start at its least place: the start of a ring is arbitrary.
Ring fromItsLeast(Ring ring)
{
    std::rotate(ring.begin(),
                std::min_element(ring.begin(), ring.end(),
                                 [](const LonLat& a, const LonLat& b) {
                                     return a.longitude < b.longitude
                                            || (a.longitude == b.longitude && a.latitude < b.latitude);
                                 }),
                ring.end());
    return ring;
}

double signedArea(const Ring& ring)
{
    return ::signedArea(
        ring, [](const LonLat& p) { return p.longitude; }, [](const LonLat& p) { return p.latitude; });
}

// Cuts a ring at the sides of the plane: unrolled rings have the right place in it.
std::vector<Ring> cut(const Ring& ring)
{
    std::vector<Ring> rings;
    for (Ring found : Earth::PlaneArea::rectangle({-180, -90, 180, 90}).clipped(ring)) {
        if (signedArea(found) < 0)
            std::reverse(found.begin(), found.end());
        rings.push_back(fromItsLeast(std::move(found)));
    }
    std::sort(rings.begin(), rings.end(), [](const Ring& a, const Ring& b) {
        return a.front().longitude < b.front().longitude
               || (a.front().longitude == b.front().longitude && a.front().latitude < b.front().latitude);
    });
    return rings;
}

// Returns the area in square degrees of the plane.
double planarArea(const std::vector<Ring>& rings)
{
    double area = 0;
    for (const Ring& ring : rings)
        area += signedArea(ring);
    return area;
}

Ring reversed(Ring ring)
{
    std::reverse(ring.begin(), ring.end());
    return ring;
}

// Returns the area north of a latitude on the unit sphere. The area between two parallels
// is 2 pi times the difference of their sines.
double cap(double latitude)
{
    return 2 * std::numbers::pi * (1 - std::sin(latitude * std::numbers::pi / 180));
}

} // namespace

TEST(DateLine, leavesRingsThatDoNotCrossItUnchanged)
{
    const Ring ring{{10, 0}, {20, 0}, {20, 10}};
    EXPECT_EQ(cut(ring), std::vector<Ring>{ring});
    EXPECT_EQ(cut(reversed(ring)), std::vector<Ring>{ring}) << "the inside is on the left";
}

TEST(DateLine, cutsARingInTwo)
{
    const Ring ring{{170, -10}, {-170, -10}, {-170, 10}, {170, 10}};
    const std::vector<Ring> expected{{{-180, -10}, {-170, -10}, {-170, 10}, {-180, 10}},
                                     {{170, -10}, {180, -10}, {180, 10}, {170, 10}}};
    EXPECT_EQ(cut(ring), expected);
    EXPECT_EQ(cut(reversed(ring)), expected);
    EXPECT_EQ(cut({{170, -10}, {190, -10}, {190, 10}, {170, 10}}), expected) << "longitudes beyond 180";
}

// The date line is a third of the way from 178 to -176.
TEST(DateLine, cutsSlantingSegmentsWhereTheyCross)
{
    const std::vector<Ring> expected{{{-180, 2}, {-176, 6}, {-180, 6}}, {{178, 0}, {180, 2}, {180, 6}, {178, 6}}};
    EXPECT_EQ(cut({{178, 0}, {-176, 6}, {178, 6}}), expected);
}

// An E-shaped ring whose arms cross the date line.
TEST(DateLine, cutsARingIntoSeveralParts)
{
    const Ring ring{{170, 0}, {-170, 0}, {-170, 2}, {175, 2}, {175, 4}, {-170, 4}, {-170, 6}, {170, 6}};
    const std::vector<Ring> rings = cut(ring);
    ASSERT_EQ(rings.size(), 3u);
    EXPECT_EQ(rings[0], (Ring{{-180, 0}, {-170, 0}, {-170, 2}, {-180, 2}}));
    EXPECT_EQ(rings[1], (Ring{{-180, 4}, {-170, 4}, {-170, 6}, {-180, 6}}));
    EXPECT_EQ(rings[2], (Ring{{170, 0}, {180, 0}, {180, 2}, {175, 2}, {175, 4}, {180, 4}, {180, 6}, {170, 6}}));
}

TEST(DateLine, extendsARingAroundAPoleToThePole)
{
    const Ring south{{-135, -60}, {-45, -60}, {45, -60}, {135, -60}};
    for (const Ring& ring : {south, reversed(south)}) {
        EXPECT_EQ(unrolled(ring).size(), 7u);
        EXPECT_DOUBLE_EQ(std::abs(signedArea(unrolled(ring))), 360 * 30);
        EXPECT_NEAR(planarArea(cut(ring)), 360 * 30, 1e-9);
        EXPECT_EQ(cut(ring).front().front(), (LonLat{-180, -90}));
    }
    EXPECT_EQ(unrolled(reversed(south)),
              (Ring{{135, -60}, {45, -60}, {-45, -60}, {-135, -60}, {-225, -60}, {-225, -90}, {135, -90}}));
    const Ring north{{-135, 60}, {-45, 60}, {45, 60}, {135, 60}};
    EXPECT_EQ(unrolled(north), (Ring{{-135, 60}, {-45, 60}, {45, 60}, {135, 60}, {225, 60}, {225, 90}, {-135, 90}}));
    EXPECT_NEAR(planarArea(cut(north)), 360 * 30, 1e-9);
}

TEST(DateLine, unrollsAcrossItself)
{
    EXPECT_EQ(unrolled({{170, -10}, {-170, -10}, {-170, 10}, {170, 10}}),
              (Ring{{170, -10}, {190, -10}, {190, 10}, {170, 10}}));
    EXPECT_EQ(unrolledLine({{-170, 0}, {170, 0}, {-170, 5}}), (Line{{-170, 0}, {-190, 0}, {-170, 5}}));
    EXPECT_EQ(unrolledLine({{530, 0}, {190, 0}}), (Line{{170, 0}, {190, 0}}));
    EXPECT_TRUE(unrolled({}).empty());
}

TEST(DateLine, treatsSegmentsAlongItAsPartOfTheFrame)
{
    // Rings with a side on the date line, on either side of it, written as 180 or -180.
    const std::vector<Ring> expected{{{170, 0}, {180, 0}, {180, 10}, {170, 10}}};
    EXPECT_EQ(cut({{170, 0}, {180, 0}, {180, 10}, {170, 10}}), expected);
    EXPECT_EQ(cut({{170, 0}, {-180, 0}, {-180, 5}, {180, 10}, {170, 10}}),
              (std::vector<Ring>{{{170, 0}, {180, 0}, {180, 5}, {180, 10}, {170, 10}}}));
    EXPECT_EQ(cut({{-170, 0}, {-170, 10}, {180, 10}, {-180, 0}}),
              (std::vector<Ring>{{{-180, 0}, {-170, 0}, {-170, 10}, {-180, 10}}}));
    // A ring around the pole that follows the date line to the pole and back.
    EXPECT_NEAR(planarArea(cut({{-180, -90}, {-180, -80}, {-90, -80}, {0, -80}, {90, -80}, {180, -80}, {180, -90}})),
                360 * 10, 1e-9);
}

TEST(DateLine, cutsAtPlacesOnIt)
{
    const std::vector<Ring> expected{{{-180, -5}, {-170, 0}, {-180, 5}}, {{170, 0}, {180, -5}, {180, 5}}};
    for (const double east : {-180.0, 180.0}) {
        for (const double west : {-180.0, 180.0})
            EXPECT_EQ(cut({{170, 0}, {east, -5}, {-170, 0}, {west, 5}}), expected);
    }
    EXPECT_EQ(cut({{170, -5}, {180, 0}, {170, 5}}), (std::vector<Ring>{{{170, -5}, {180, 0}, {170, 5}}}))
        << "a corner that touches it";
}

TEST(DateLine, cutsHolesLikeOuterRings)
{
    const Polygon polygon{{{160, -20}, {-160, -20}, {-160, 20}, {160, 20}},
                          {{175, 5}, {-175, 5}, {-175, -5}, {175, -5}}};
    std::vector<Ring> found = cut(polygon[0]);
    for (const Ring& ring : cut(polygon[1]))
        found.push_back(ring);
    EXPECT_EQ(found.size(), 4u);
    const auto isInside = [&](double longitude, double latitude) {
        return evenOdd(
            found, longitude, latitude, [](const LonLat& p) { return p.longitude; },
            [](const LonLat& p) { return p.latitude; });
    };
    EXPECT_TRUE(isInside(170, 0));
    EXPECT_FALSE(isInside(178, 0));
    EXPECT_FALSE(isInside(-178, 0));
    EXPECT_TRUE(isInside(-170, 0));
    EXPECT_FALSE(isInside(0, 0));
}

TEST(DateLine, cutsLinesAndKeepsThoseAlongIt)
{
    const struct {
        Line line;
        std::vector<Line> expected;
    } cases[] = {
        {{}, {}},
        {{{1, 1}, {2, 2}}, {{{1, 1}, {2, 2}}}},
        {{{170, 0}, {-170, 20}}, {{{170, 0}, {180, 10}}, {{-180, 10}, {-170, 20}}}},
        {{{-170, 0}, {170, 20}}, {{{-170, 0}, {-180, 10}}, {{180, 10}, {170, 20}}}},
        {{{170, 0}, {180, 10}, {-170, 20}}, {{{170, 0}, {180, 10}}, {{-180, 10}, {-170, 20}}}},
        {{{170, 0}, {-180, 10}, {170, 20}}, {{{170, 0}, {180, 10}, {170, 20}}}},
        {{{180, 0}, {-170, 10}}, {{{-180, 0}, {-170, 10}}}},
        {{{-170, 0}, {180, 10}}, {{{-170, 0}, {-180, 10}}}},
        {{{180, -90}, {180, 0}, {180, 90}}, {{{180, -90}, {180, 0}, {180, 90}}}},
        {{{170, 0}, {-180, 0}, {180, 5}, {-170, 5}}, {{{170, 0}, {180, 0}, {180, 5}}, {{-180, 5}, {-170, 5}}}},
        {{{-180, 0}, {-60, 0}, {60, 0}, {180, 0}}, {{{-180, 0}, {-60, 0}, {60, 0}, {180, 0}}}},
    };
    for (const auto& [line, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(line.size()));
        EXPECT_EQ(cutLineAtDateLine(line), expected);
    }
}

TEST(DateLine, measuresTheAreaOnTheLeft)
{
    constexpr double pi = std::numbers::pi;
    // Between 0 and 90 degrees east, the equator and 30 degrees north: 90/360 of a zone.
    const Ring zone{{0, 0}, {90, 0}, {90, 30}, {0, 30}};
    EXPECT_NEAR(areaOnTheLeft(zone), pi / 2 * 0.5, 1e-12);
    EXPECT_NEAR(areaOnTheLeft(reversed(zone)), 4 * pi - pi / 2 * 0.5, 1e-12);
    const Ring eastwards{{-120, 60}, {0, 60}, {120, 60}};
    EXPECT_NEAR(areaOnTheLeft(eastwards), cap(60), 1e-12) << "the north pole is on the left";
    EXPECT_NEAR(areaOnTheLeft(reversed(eastwards)), 4 * pi - cap(60), 1e-12);
    const Ring across{{170, -30}, {-170, -30}, {-170, 30}, {170, 30}};
    EXPECT_NEAR(areaOnTheLeft(across), 20 * pi / 180, 1e-12);
    EXPECT_EQ(withInsideOnTheLeft(reversed(zone)), zone);
    EXPECT_EQ(withInsideOnTheLeft(zone), zone);
}

TEST(DateLine, determinesWhatARingEncloses)
{
    const Ring south{{-135, -60}, {-45, -60}, {45, -60}, {135, -60}};
    EXPECT_TRUE(encloses(south, {0, -89}));
    EXPECT_TRUE(encloses(south, {179, -61}));
    EXPECT_FALSE(encloses(south, {0, 0}));
    EXPECT_FALSE(encloses(south, {0, 89}));
    const Ring across{{170, -30}, {-170, -30}, {-170, 30}, {170, 30}};
    EXPECT_TRUE(encloses(across, {175, 0}));
    EXPECT_TRUE(encloses(across, {185, 0})) << "longitudes beyond 180";
    EXPECT_FALSE(encloses(across, {0, 0}));
}

class Land : public testing::Test {
protected:
    const std::vector<Polygon> land = Earth::readTopoJson(LAND_JSON).polygons;
};

TEST_F(Land, hasNoSegmentAcrossTheMapAfterCutting)
{
    std::size_t across = 0;
    for (const Polygon& polygon : land) {
        for (const Ring& ring : polygon) {
            for (std::size_t i = 0; i < ring.size(); ++i)
                across += std::abs(ring[(i + 1) % ring.size()].longitude - ring[i].longitude) > 180 ? 1u : 0u;
        }
        for (const Ring& given : polygon) {
            for (const Ring& ring : cut(given)) {
                ASSERT_GT(ring.size(), 2u);
                for (std::size_t i = 0; i < ring.size(); ++i) {
                    const LonLat& a = ring[i];
                    const LonLat& b = ring[(i + 1) % ring.size()];
                    EXPECT_TRUE(std::abs(b.longitude - a.longitude) <= 90 || (a.latitude == -90 && b.latitude == -90));
                    EXPECT_LE(std::abs(a.longitude), 180);
                }
            }
        }
    }
    EXPECT_EQ(across, 7u) << "the number in the file: Antarctica, Fiji, Wrangel Island and Chukotka";
}

// The expected area was computed independently, from spherical triangles of segments cut
// to 0.05 degrees. It is 28.9 percent of the Earth's surface.
TEST_F(Land, hasItsAreaOnTheLeft)
{
    double area = 0;
    for (const Polygon& polygon : land) {
        for (std::size_t i = 0; i < polygon.size(); ++i)
            area += (i == 0 ? 1 : -1) * areaOnTheLeft(withInsideOnTheLeft(polygon[i]));
    }
    EXPECT_NEAR(area, 3.6278985, 1e-6);
}

TEST_F(Land, coversKnownPlacesOnLandOnly)
{
    const auto isLand = [&](double longitude, double latitude) {
        bool isInside = false;
        for (const Polygon& polygon : land) {
            for (const Ring& ring : polygon)
                isInside ^= encloses(ring, {longitude, latitude});
        }
        return isInside;
    };
    const struct {
        const char* name;
        double longitude;
        double latitude;
        bool isLand;
    } cases[] = {
        {"south pole", 0, -90 + 1e-9, true},
        {"Antarctica at the date line", 180, -85.5, true},
        {"Antarctica", 179.9, -89, true},
        {"Antarctica, west", -179.9, -89, true},
        {"north pole", 0, 90, false},
        {"Chukotka east of the date line", -175, 67, true},
        {"Chukotka west of it", 175, 68, true},
        {"Wrangel Island", 179.9, 71.2, true},
        {"Wrangel Island, east", -179, 71.2, true},
        {"Brazil", -55, -10, true},
        {"Pacific", -140, 0, false},
        {"Pacific at the date line", 180, 0, false},
        {"Caspian Sea", 51, 42, false},
        {"Kazakhstan", 66, 48, true},
        {"Sahara", 10, 23, true},
        {"Indian Ocean", 80, -30, false},
    };
    for (const auto& [name, longitude, latitude, expected] : cases)
        EXPECT_EQ(isLand(longitude, latitude), expected) << name;
}

} // namespace DateLineTest
