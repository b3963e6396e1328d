#include "earth/Evaluation.hpp"
#include "earth/TemporaryFile.hpp"

#include <earth/Land.hpp>

#include <fathom/VChart.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Chunk.hpp>

#include <gmock/gmock.h>

#include <cmath>

namespace CoastLinesTest {

using Orla::StrongPtr;
using Earth::Land;
using testing::HasSubstr;

namespace {

class CoastLinesTest : public testing::Test {
protected:
    ~CoastLinesTest() override { Orla::VManagedObject::remove(Orla::VChartSelector::getChartSelector()); }

    std::vector<double> coordinates() const
    {
        const auto chunk = coast.value<StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>>("places");
        return {chunk->begin(), chunk->end()};
    }

    const Warnings warnings;
    Evaluation coast{"CoastLines"};
};

// Returns a square of 10 degrees with its western side at the given longitude.
std::string square(int longitude)
{
    const std::string west = std::to_string(longitude);
    const std::string east = std::to_string(longitude + 10 > 180 ? longitude - 350 : longitude + 10);
    return R"({"type":"Topology","objects":{"land":{"type":"Polygon","arcs":[[0]]}},"arcs":[[[)" + west + ",0],[" + east
           + ",0],[" + east + ",10],[" + west + ",10],[" + west + ",0]]]}";
}

} // namespace

TEST_F(CoastLinesTest, areClosedAndSeparatedByNaN)
{
    const TemporaryFile file{square(20)};
    coast.set("file", file.name());
    EXPECT_EQ(coast.run().failures, 0u);
    const std::vector<double> all = coordinates();
    ASSERT_EQ(all.size(), 3 * 6u);
    EXPECT_EQ(all[0], all[12]);
    EXPECT_EQ(all[1], all[13]);
    EXPECT_TRUE(std::isnan(all[15]));
    EXPECT_EQ(coast.text("box"), "[{20,0,0};{30,10,0}]");
    EXPECT_EQ(coast.value<Land>("land").polygons().size(), 1u);
}

TEST_F(CoastLinesTest, doNotCrossTheDateLine)
{
    const TemporaryFile file{square(175)};
    coast.set("file", file.name());
    coast.run();
    const std::vector<double> all = coordinates();
    std::size_t ends = 0;
    for (std::size_t i = 0; i + 3 < all.size(); i += 3) {
        ends += std::isnan(all[i]);
        if (!std::isnan(all[i]) && !std::isnan(all[i + 3])) {
            EXPECT_LE(std::abs(all[i] - all[i + 3]), 180);
        }
    }
    EXPECT_GE(ends, 1u);
    EXPECT_EQ(coast.text("box"), "[{-180,0,0};{180,10,0}]");
}

TEST_F(CoastLinesTest, followTheChart)
{
    coast.set("file", std::string(LAND_JSON));
    const auto selector = Orla::VChartSelector::getChartSelector();
    Orla::VScheduler::schedule(selector, 0, coast.pool);
    EXPECT_EQ(coast.run().failures, 0u);
    EXPECT_EQ(coast.text("box").substr(0, 10), "[{-180,-85");
    EXPECT_TRUE(selector->selectChart(coast.pool, "geocentric"));
    coast.run();
    for (std::size_t i = 0; i < coordinates().size(); i += 3000) {
        const std::vector<double> all = coordinates();
        const double radius = std::hypot(all[i], all[i + 1], all[i + 2]);
        if (!std::isnan(radius)) {
            EXPECT_GT(radius, 6356752);
            EXPECT_LT(radius, 6378138);
        }
    }
}

TEST_F(CoastLinesTest, failIfTheFileCannotBeRead)
{
    EXPECT_EQ(coast.run().failures, 1u);
    coast.set("file", std::string("none.json"));
    EXPECT_EQ(coast.run().failures, 1u);
    ASSERT_EQ(warnings.all().size(), 2u);
    EXPECT_THAT(warnings.all()[0], HasSubstr("the input \"file\" is empty, expected the name of a TopoJSON file"));
    EXPECT_THAT(warnings.all()[1], HasSubstr("none.json"));
}

TEST_F(CoastLinesTest, remainIfTheNextFileIsBroken)
{
    const TemporaryFile good{square(20)};
    const TemporaryFile bad{"{", "bad"};
    coast.set("file", good.name());
    coast.run();
    coast.set("file", bad.name());
    EXPECT_EQ(coast.run().failures, 1u);
    EXPECT_EQ(coast.value<Land>("land").polygons().size(), 1u);
    coast.set("file", good.name());
    EXPECT_EQ(coast.run().failures, 0u);
    EXPECT_EQ(coordinates().size(), 18u);
}

TEST_F(CoastLinesTest, canBeCancelledAndRestarted)
{
    const TemporaryFile file{square(20)};
    coast.set("file", file.name());
    Orla::VCancellation cancellation;
    Orla::VRequest request{coast.pool, [&](double) { cancellation.cancel(); }, cancellation};
    EXPECT_EQ(Orla::VScheduler::run(request).outcome, Orla::VScheduler::Outcome::Cancelled);
    EXPECT_EQ(coast.value<Land>("land").polygons().size(), 0u);
    EXPECT_EQ(coast.run().outcome, Orla::VScheduler::Outcome::Done);
    EXPECT_EQ(coast.value<Land>("land").polygons().size(), 1u);
}

TEST(LandValue, isCalledLand)
{
    EXPECT_EQ(Orla::VTypeLabel::of(typeid(Land)), "land");
}

TEST(LandValue, cannotBeReadFromText)
{
    Land land{{{{{0, 0}, {1, 0}, {0, 1}}}}};
    EXPECT_EQ(Orla::VValueTrait<Land>::Text(land), "1 polygon of land");
    EXPECT_FALSE(Orla::VValueTrait<Land>::setValueFromText(land, "0 polygons of land"));
    EXPECT_EQ(land.polygons().size(), 1u);
    EXPECT_NE(land, Land{});
    EXPECT_EQ(Land{}, Land{std::vector<Earth::Polygon>{}});
}

} // namespace CoastLinesTest
