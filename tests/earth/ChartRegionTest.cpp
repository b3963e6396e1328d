#include <earth/ChartRegion.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ChartRegionTest {

using Earth::Chart;
using Earth::ChartRegion;
using Earth::LonLat;
using Earth::PlaneArea;

namespace {

const PlaneArea& area(const char* chart)
{
    return ChartRegion::of(Chart{chart})->area();
}

bool shows(const char* chart, const LonLat& place)
{
    return ChartRegion::of(Chart{chart})->find(place).has_value();
}

constexpr double wholePlane = 360 * 180;

} // namespace

TEST(ChartRegion, isTheWholePlaneForMapsOfTheWorld)
{
    for (const char* chart : {"plate carree", "geographic", "+proj=robin", "+proj=moll", "+proj=eqearth", "+proj=sinu",
                              "+proj=mill", "+proj=gall", "+proj=robin +lon_0=150", "EPSG:4326"}) {
        SCOPED_TRACE(chart);
        EXPECT_NEAR(area(chart).area(), wholePlane, 1e-4);
        EXPECT_EQ(area(chart).rings().size(), 1u);
        EXPECT_TRUE(shows(chart, {12, 90}));
        EXPECT_TRUE(shows(chart, {12, -90}));
    }
}

TEST(ChartRegion, beginsWhereTheChartIsCut)
{
    EXPECT_EQ(ChartRegion::of(Chart{"+proj=robin"})->frame().west, -180);
    const PlaneArea::Bounds frame = ChartRegion::of(Chart{"+proj=robin +lon_0=150"})->frame();
    EXPECT_NEAR(frame.west, -30, 1e-6);
    EXPECT_NEAR(frame.east, 330, 1e-6);
    EXPECT_NEAR(ChartRegion::of(Chart{"+proj=moll +lon_0=-90"})->frame().west, 90, 1e-6);
    EXPECT_TRUE(shows("+proj=robin +lon_0=150", {-30, 40})) << "on the cut";
    EXPECT_TRUE(shows("+proj=robin +lon_0=150", {330, 40}));
}

TEST(ChartRegion, endsWhereTheScaleIsTwelve)
{
    // Mercator's scale is the secant of the latitude, nearly so on the ellipsoid.
    EXPECT_NEAR(area("+proj=merc").bounds().north, std::acos(1 / 12.0) * 180 / std::numbers::pi, 0.05);
    EXPECT_NEAR(area("+proj=merc").bounds().south, -area("+proj=merc").bounds().north, 1e-3);
    // The least enlarged place is sampled, so limits are known to some tenths of a degree.
    constexpr double sampled = 0.4;
    // The stereographic scale is 1/cos^2 of half the distance: 146.4 degrees.
    EXPECT_NEAR(area("+proj=stere +lat_0=90").bounds().south, 90 - 146.44, sampled);
    // The gnomonic scale is 1/cos^2 of the distance, outwards: 73.2 degrees.
    EXPECT_NEAR(area("+proj=gnom +lat_0=90").bounds().south, 90 - 73.22, sampled);
}

TEST(ChartRegion, isAHemisphereIfTheOtherIsInvisible)
{
    EXPECT_NEAR(area("+proj=ortho +lat_0=90").bounds().south, 0, 1e-3);
    EXPECT_NEAR(area("+proj=ortho +lat_0=90").area(), wholePlane / 2, 0.1);
    // By symmetry, also half of the plane.
    EXPECT_NEAR(area("+proj=ortho +lat_0=40 +lon_0=170").area(), wholePlane / 2, 5);
    EXPECT_TRUE(shows("+proj=ortho +lat_0=40 +lon_0=170", {-150, 80}));
    EXPECT_FALSE(shows("+proj=ortho +lat_0=40 +lon_0=170", {0, -30}));
}

TEST(ChartRegion, containsTheWholeEarthButTheAntipodeIfTheChartDoes)
{
    for (const char* chart : {"+proj=laea", "+proj=aeqd +lat_0=40 +lon_0=10", "+proj=laea +lat_0=90"}) {
        SCOPED_TRACE(chart);
        EXPECT_NEAR(area(chart).area(), wholePlane, 0.5);
        EXPECT_TRUE(shows(chart, {-170, -38}));
    }
}

TEST(ChartRegion, hasGapsWhereTheChartIsInterrupted)
{
    const PlaneArea& lobes = area("+proj=igh");
    EXPECT_NEAR(lobes.area(), wholePlane, 0.05 * (3 * 90 + 90)) << "narrow gaps only";
    EXPECT_LT(lobes.area(), wholePlane - 1);
    for (const double longitude : {-100.0, -20.0, 80.0}) {
        // A line through a gap.
        EXPECT_EQ(lobes.clippedLine({{longitude - 5, -45}, {longitude + 5, -45}}).size(), 2u) << longitude;
        EXPECT_EQ(lobes.clippedLine({{longitude - 5, 45}, {longitude + 5, 45}}).size(), 1u) << longitude;
    }
    EXPECT_EQ(lobes.clippedLine({{-45, 45}, {-35, 45}}).size(), 2u);
}

TEST(ChartRegion, isTheAreaOfUseOfASystem)
{
    const PlaneArea::Bounds zone = area("EPSG:32632").bounds();
    EXPECT_EQ(zone.west, 6);
    EXPECT_EQ(zone.south, 0);
    EXPECT_EQ(zone.east, 12);
    EXPECT_EQ(zone.north, 84);
    EXPECT_NEAR(area("EPSG:3857").bounds().north, 85.06, 0.01);
}

TEST(ChartRegion, containsTheZoneOfATransverseChart)
{
    for (const LonLat place : {LonLat{9, 0}, {6, 84}, {12, -80}, {9, 90}})
        EXPECT_TRUE(shows("+proj=utm +zone=32", place)) << place.longitude << ' ' << place.latitude;
    EXPECT_FALSE(shows("+proj=utm +zone=32", {99, 0})) << "infinitely far";
}

TEST(ChartRegion, isKept)
{
    EXPECT_EQ(ChartRegion::of(Chart{"+proj=robin"}), ChartRegion::of(Chart{"+proj=robin"}));
    EXPECT_NE(ChartRegion::of(Chart{"+proj=robin"}), ChartRegion::of(Chart{"+proj=moll"}));
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([] {
            LonLat place{10, 20};
            EXPECT_TRUE(ChartRegion::of(Chart{"+proj=sinu"})->area().contains(place));
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(ChartRegion, refusesChartsWithTooManyCuts)
{
    EXPECT_NO_THROW((ChartRegion{Chart{"+proj=igh"}, 50'000}));
    try {
        ChartRegion{Chart{"+proj=igh"}, 20'000};
        ADD_FAILURE() << "the search examined all cells";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(),
                     "found the chart \"+proj=igh\", which has too many cuts, expected one that is mostly continuous");
    }
}

TEST(ChartRegion, refusesChartsThatAreNotFlat)
{
    for (const char* chart : {"geocentric", "+proj=cart", "EPSG:4978"})
        EXPECT_THROW(ChartRegion{Chart{chart}}, std::invalid_argument) << chart;
}

} // namespace ChartRegionTest
