#include <rain/Means.hpp>

#include "Grids.hpp"

#include <loam/Numbers.hpp>

#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

namespace MeansTest {

using Rain::Area;
using Rain::summaryOf;
using Rain::zonalMeans;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

TEST(Area, includesItsBoundary)
{
    const Area area{{-10, 20}, {30, 40}};
    EXPECT_TRUE(area.containsLatitude(-10) && area.containsLatitude(20));
    EXPECT_FALSE(area.containsLatitude(-10.1) || area.containsLatitude(20.1));
    EXPECT_TRUE(area.containsLongitude(30) && area.containsLongitude(40));
    EXPECT_FALSE(area.containsLongitude(29.9) || area.containsLongitude(40.1));
}

TEST(Area, countsLongitudesByWholeTurns)
{
    for (const Area& area :
         {Area{{-90, 90}, {170, 190}}, Area{{-90, 90}, {170, -170}}, Area{{-90, 90}, {-190, -170}}}) {
        for (const double inside : {170.0, 180.0, -180.0, -170.0, 190.0, 530.0})
            EXPECT_TRUE(area.containsLongitude(inside)) << inside;
        for (const double outside : {0.0, 169.0, -169.0, 191.0})
            EXPECT_FALSE(area.containsLongitude(outside)) << outside;
    }
    EXPECT_TRUE(Area{}.containsLongitude(180) && Area{}.containsLongitude(-180) && Area{}.containsLongitude(359));
}

TEST(ZonalMeans, equalIndependentlyComputedOnes)
{
    std::ifstream file{ZONAL_MEANS};
    std::vector<double> expected;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#'))
            continue;
        double mean = 0;
        ASSERT_TRUE(Loam::readNumber(mean, line.substr(line.find(',') + 1))) << line;
        expected.push_back(mean);
    }
    const std::vector<double> means = zonalMeans(precipitation(), {});
    ASSERT_EQ(means.size(), 168u);
    ASSERT_EQ(expected.size(), means.size());
    for (std::size_t row = 0; row < means.size(); ++row)
        EXPECT_NEAR(means[row], expected[row], 1e-9);
}

TEST(ZonalMeans, ignoreMissingValuesAndCellsOutsideTheArea)
{
    const Rain::Grid grid = gridOf("4x3 -180,10 90,-10: 1,2,,6,,,,,1,1,1,5");
    const std::vector<double> means = zonalMeans(grid, {{-90, 90}, {90, -180}});
    ASSERT_EQ(means.size(), 3u);
    EXPECT_EQ(means[0], 3.5) << "of 1 and 6";
    EXPECT_TRUE(std::isnan(means[1]));
    EXPECT_EQ(means[2], 3);
    EXPECT_TRUE(std::isnan(zonalMeans(grid, {{0, 10}, {-180, 180}})[2]));
}

TEST(AreaSummary, equalsTheIndependentlyComputedOne)
{
    // numpy.average with weights of numpy.cos(numpy.radians(latitudes)), and min, max and size.
    const struct {
        Area area;
        double mean;
        double lowest;
        double highest;
        std::size_t cells;
    } cases[] = {
        {{}, 1198.2818589108897, 0, 20195, 60480},
        {{{-23.5, 23.5}, {-180, 180}}, 1521.3059403625127, 0, 20195, 16920},
        {{{0, infinity}, {-180, 180}}, 1220.6717458169853, 0, 16199, 31680},
        {{{-10, 10}, {170, -170}}, 2587.517066645156, 1147, 4382, 441},
        {{{15, 30}, {-15, 30}}, 45.40189626106038, 0, 712, 736},
    };
    for (const auto& [area, mean, lowest, highest, cells] : cases) {
        const Rain::AreaSummary summary = summaryOf(precipitation(), area);
        EXPECT_NEAR(summary.mean, mean, 1e-9);
        EXPECT_EQ(summary.lowest, lowest);
        EXPECT_EQ(summary.highest, highest);
        EXPECT_EQ(summary.cells, cells);
    }
}

TEST(AreaSummary, weighsRowsByTheCosineOfTheLatitude)
{
    // The cosines are 0.5 and 1.
    EXPECT_NEAR(summaryOf(gridOf("2x2 0,60 1,-60: 3,3,,9"), {}).mean, (0.5 * 3 * 2 + 9) / 2, 1e-12);
}

TEST(AreaSummary, isMissingWithoutValues)
{
    for (const Rain::Grid& grid : {Rain::Grid{}, gridOf("1x1 0,0 1,1: "), gridOf("1x1 0,80 1,1: 5")}) {
        const Rain::AreaSummary summary = summaryOf(grid, {{-10, 10}, {-180, 180}});
        EXPECT_EQ(summary.cells, 0u);
        EXPECT_TRUE(std::isnan(summary.mean) && std::isnan(summary.lowest) && std::isnan(summary.highest));
    }
}

} // namespace MeansTest
