#include "earth/Evaluation.hpp"

#include <quakes/Catalogue.hpp>

#include <fathom/VChart.hpp>

#include <gtest/gtest.h>

namespace QuakePlacesTest {

using Quakes::Catalogue;
using Quakes::Quake;

namespace {

Quake quake(double longitude, double latitude, std::optional<double> depth, std::optional<double> magnitude)
{
    Quake result;
    result.longitude = longitude;
    result.latitude = latitude;
    result.depth = depth;
    result.magnitude = magnitude;
    return result;
}

class QuakePlacesTest : public testing::Test {
protected:
    ~QuakePlacesTest() override { Orla::VManagedObject::remove(Orla::VChartSelector::getChartSelector()); }

    Evaluation places{"QuakePlaces"};
};

} // namespace

TEST_F(QuakePlacesTest, areHypocentres)
{
    places.set("catalog", Catalogue{{quake(10, 20, 30, 1), quake(-40, -50, std::nullopt, 2)}});
    places.run();
    EXPECT_EQ(places.text("places"), "10,20,-30000,-40,-50,0,");
    EXPECT_EQ(places.text("box"), "[{-40,-50,-30000};{10,20,0}]");
}

TEST_F(QuakePlacesTest, includeTheLatestOfTheStrongestEvents)
{
    places.set("catalog",
               Catalogue{{quake(1, 1, 0, 5), quake(2, 2, 0, 6), quake(3, 3, 10, 6), quake(4, 4, 0, std::nullopt)}});
    places.run();
    EXPECT_EQ(places.text("strongest"), "{3,3,-10000}");
}

TEST_F(QuakePlacesTest, areEmptyWithoutEvents)
{
    places.run();
    EXPECT_EQ(places.text("places"), "");
    EXPECT_EQ(places.text("strongest"), "{0,0,0}");
}

TEST_F(QuakePlacesTest, followTheSelectedChart)
{
    places.set("catalog", Catalogue{{quake(180, 0, 0, 5)}});
    const auto selector = Orla::VChartSelector::getChartSelector();
    Orla::VScheduler::schedule(selector, 0, places.pool);
    places.run();
    EXPECT_TRUE(selector->selectChart(places.pool, "plate carree"));
    places.run();
    EXPECT_EQ(places.text("strongest").substr(0, 13), "{20037508.342");
}

} // namespace QuakePlacesTest
