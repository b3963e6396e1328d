#include <tarn/network/ChartChoice.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

namespace ChartChoiceTest {

using testing::HasSubstr;

namespace {

const std::string charted = object("land", "Chartmaker", "set = { charts = 'geographic,plate carree' }\n")
                            + object("sea", "Chartmaker", "set = { charts = 'geocentric' }\n")
                            + object("map", "Follower") + column("chart", "map.out");

} // namespace

TEST(ChartChoice, isLeftToTheObjectsUnlessAChartIsNamed)
{
    EXPECT_FALSE(Tarn::ChartChoice::find());
    const ProcessResult result = evaluate(charted);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,chart\n0,\n");
}

TEST(ChartChoice, appliesToTheWholeNetwork)
{
    const ProcessResult result =
        evaluate(charted + object("second", "Follower") + column("also", "second.out"), {"--chart=plate carree"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,chart,also\n0,plate carree,plate carree\n");
}

TEST(ChartChoice, reachesObjectsThatOfferChartsInTheirFirstUpdate)
{
    const std::string network = object("map", "Cartographer") + column("seen", "map.seen");
    EXPECT_EQ(evaluate(network, {"--chart=geographic"}).out, "step,seen\n0,[geographic]\n");
}

TEST(ChartChoice, isReadFromTheNetworkUnlessTheCommandLineOverridesIt)
{
    const std::string network = "chart = 'geocentric'\n" + charted;
    EXPECT_EQ(evaluate(network).out, "step,chart\n0,geocentric\n");
    EXPECT_EQ(evaluate(network, {"--chart=geographic"}).out, "step,chart\n0,geographic\n");
}

TEST(ChartChoice, listsTheAvailableChartsWhenTheNameIsUnknown)
{
    const ProcessResult result = evaluate(charted, {"--chart=mercator"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "--chart: no object offers the chart \"mercator\"; available: geocentric, geographic, "
                          "plate carree\nnet.toml: 1 fault; nothing was evaluated beyond the first step\n");
    const ProcessResult placed = evaluate("chart = 'x'\n" + object("map", "Follower"));
    EXPECT_EQ(placed.status, 2);
    EXPECT_THAT(placed.err, HasSubstr("net.toml:3:9: chart: no object offers the chart \"x\"; available: none\n"));
}

TEST(ChartChoice, isAFaultIfNoObjectDependsOnCharts)
{
    const ProcessResult result = evaluate("chart = 'x'\n" + object("a", "Adder"));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("net.toml:3:9: chart: found \"x\", but no object depends on a chart\n"));
    EXPECT_THAT(evaluate(object("a", "Adder"), {"--chart=y"}).err,
                HasSubstr("--chart: found \"y\", but no object depends on a chart\n"));
}

} // namespace ChartChoiceTest
