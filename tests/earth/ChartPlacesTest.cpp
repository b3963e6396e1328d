#include <earth/ChartPlaces.hpp>

#include "earth/Evaluation.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace ChartPlacesTest {

using Orla::StrongPtr;
using Orla::VChartSelector;
using Earth::ChartPlaces;
using testing::ElementsAre;

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

class Places : public Orla::VObject, public ChartPlaces {
public:
    using ChartPlaces::placesOf;

    Places() : VObject{"places", 0, nullptr} {}

    bool update(Orla::VRequest& request, double) override
    {
        publishCharts(request.valuePool());
        give(request.valuePool(), chartIn(request.valuePool()), given);
        return true;
    }

    std::vector<ChartPlaces::point> given;
};

class ChartPlacesTest : public testing::Test {
protected:
    ChartPlacesTest()
    {
        Orla::VObject::finishCreation(places);
        Orla::VScheduler::schedule(places, 0, pool);
        Orla::VScheduler::schedule(VChartSelector::getChartSelector(), 0, pool);
    }

    ~ChartPlacesTest() override
    {
        Orla::VManagedObject::remove(places);
        Orla::VManagedObject::remove(VChartSelector::getChartSelector());
    }

    void run() { Orla::VScheduler::run(pool); }

    void pick(const std::string& chart)
    {
        EXPECT_TRUE(VChartSelector::getChartSelector()->selectChart(pool, chart));
        run();
    }

    // As a user who types the chart's name.
    void want(const std::string& chart)
    {
        write(*VChartSelector::getChartSelector(), "chartname", pool, chart);
        run();
    }

    std::vector<std::string> offered() const
    {
        std::vector<std::string> names;
        Orla::VChartList charts;
        const auto value = VChartSelector::getChartSelector()->findOutput("atlas")->getValueBase(pool);
        Orla::VTypedValueBase<Orla::VChartList>::cast(value.get())->getValue(charts);
        for (const Orla::VChart& chart : charts)
            names.push_back(chart.name());
        return names;
    }

    std::vector<double> coordinates() const
    {
        StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase> chunk;
        const auto value = places->findOutput("places")->getValueBase(pool);
        Orla::VTypedValueBase<decltype(chunk)>::cast(value.get())->getValue(chunk);
        return {chunk->begin(), chunk->end()};
    }

    std::string box() const { return readText(*places, "box", pool); }

    const Warnings warnings;
    const StrongPtr<Places> places{new Places};
    const StrongPtr<Orla::ValuePool> pool{new Orla::ValuePool("test")};
};

} // namespace

TEST_F(ChartPlacesTest, arePublishedInTheSelectedChart)
{
    places->given = {{90, 0, 1000}, {0, 90, 0}};
    run();
    EXPECT_THAT(coordinates(), ElementsAre(90, 0, 1000, 0, 90, 0)) << "geographic by default";
    EXPECT_EQ(box(), "[{0,0,0};{90,90,1000}]");

    pick("geocentric");
    // The axes of the ellipsoid in metres.
    const std::vector<double> inSpace = coordinates();
    ASSERT_EQ(inSpace.size(), 6u);
    EXPECT_NEAR(inSpace[0], 0, 1e-6);
    EXPECT_NEAR(inSpace[1], 6379137, 1e-6);
    EXPECT_NEAR(inSpace[2], 0, 1e-6);
    EXPECT_NEAR(inSpace[5], 6356752.314245179, 1e-6);

    pick("plate carree");
    const double quarter = 6378137 * std::acos(-1) / 2;
    const std::vector<double> flat = coordinates();
    EXPECT_NEAR(flat[0], quarter, 1e-6);
    EXPECT_NEAR(flat[4], quarter, 1e-6);
    EXPECT_EQ(flat[2], 1000);

    pick("geographic");
    EXPECT_THAT(coordinates(), ElementsAre(90, 0, 1000, 0, 90, 0));
}

TEST_F(ChartPlacesTest, offerThreeChartsAndTheWantedOneIfProjKnowsIt)
{
    run();
    EXPECT_THAT(offered(), ElementsAre("geocentric", "geographic", "plate carree"));

    want("+proj=robin");
    EXPECT_THAT(offered(), ElementsAre("+proj=robin", "geocentric", "geographic", "plate carree"));
    want("mercator");
    EXPECT_EQ(offered().size(), 4u) << "the selector forgets none, and learns none that does not exist";
    EXPECT_TRUE(warnings.all().empty()) << "another object may offer it";
}

TEST_F(ChartPlacesTest, followAChartOfProj)
{
    places->given = {{10, 50, -700}, {none, none, none}};
    want("+proj=utm +zone=32");
    // proj -f %.4f +proj=utm +zone=32 +ellps=WGS84
    const std::vector<double> all = coordinates();
    ASSERT_EQ(all.size(), 6u);
    EXPECT_NEAR(all[0], 571666.4475, 1e-3);
    EXPECT_NEAR(all[1], 5539109.8153, 1e-3);
    EXPECT_EQ(all[2], -700);
    EXPECT_TRUE(std::isnan(all[3]));
    pick("geographic");
    EXPECT_EQ(coordinates()[0], 10);
}

TEST_F(ChartPlacesTest, failForParametersThatProjRefuses)
{
    want("+proj=nonsense");
    ASSERT_EQ(warnings.all().size(), 1u);
    EXPECT_THAT(warnings.all()[0], testing::HasSubstr("\"+proj=nonsense\", which PROJ refuses: Unknown projection"));
    EXPECT_THAT(offered(), ElementsAre("geocentric", "geographic", "plate carree"));
    want("+proj=robin");
    EXPECT_EQ(warnings.all().size(), 1u);
}

TEST_F(ChartPlacesTest, excludeSeparatorsFromTheirBox)
{
    places->given = {{1, 2, 3}, {none, none, none}, {-1, -2, 0}, {none, 0, 0}};
    run();
    const std::vector<double> all = coordinates();
    ASSERT_EQ(all.size(), 12u);
    EXPECT_TRUE(std::isnan(all[3]) && std::isnan(all[4]) && std::isnan(all[5]));
    EXPECT_EQ(all[6], -1);
    EXPECT_EQ(box(), "[{-1,-2,0};{1,2,3}]");
}

TEST_F(ChartPlacesTest, haveABoxWithoutExtentIfThereAreNoPlaces)
{
    run();
    EXPECT_TRUE(coordinates().empty());
    EXPECT_EQ(box(), "[{0,0,0};{0,0,0}]");
}

TEST_F(ChartPlacesTest, failInAnUnknownChart)
{
    // A chart that only another object supports.
    write(*places, "chart", pool, Orla::VChart{"polar"});
    run();
    ASSERT_EQ(warnings.all().size(), 1u);
    EXPECT_THAT(warnings.all()[0], testing::HasSubstr("found the chart \"polar\", expected geographic, "
                                                      "geocentric, plate carree or a text for PROJ"));
}

TEST_F(ChartPlacesTest, separatesLinesAndTheirPartsBesideTheDateLine)
{
    const std::vector<ChartPlaces::point> found = Places::placesOf({{{170, 0}, {-170, 10}}, {{1, 2}, {3, 4}}});
    std::vector<double> numbers;
    for (const ChartPlaces::point& place : found)
        numbers.insert(numbers.end(), {place.x(), place.y(), place.z()});
    using testing::IsNan;
    EXPECT_THAT(numbers, ElementsAre(170, 0, 0, 180, 5, 0, IsNan(), IsNan(), IsNan(), -180, 5, 0, -170, 10, 0, IsNan(),
                                     IsNan(), IsNan(), 1, 2, 0, 3, 4, 0, IsNan(), IsNan(), IsNan()));
}

} // namespace ChartPlacesTest
