#include "Grids.hpp"
#include "earth/Evaluation.hpp"

#include <rain/Isolines.hpp>

#include <earth/Layer.hpp>

#include <fathom/VChart.hpp>

#include <loam/Chunk.hpp>

#include <gmock/gmock.h>

#include <vector>

namespace GridIsolinesTest {

using Orla::StrongPtr;
using Rain::IsolineSet;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsNan;
using testing::SizeIs;

namespace {

class GridIsolinesTest : public testing::Test {
protected:
    ~GridIsolinesTest() override { Orla::VManagedObject::remove(Orla::VChartSelector::getChartSelector()); }

    std::vector<double> coordinates() const
    {
        const auto chunk = isolines.value<StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>>("places");
        return {chunk->begin(), chunk->end()};
    }

    Evaluation isolines{"GridIsolines"};
};

} // namespace

TEST_F(GridIsolinesTest, computeTheIsolinesOfAllLevels)
{
    isolines.setText("grid", "2x3 0,1 1,-1: 0,0,10,10,20,20");
    isolines.setText("levels", "[5;15;25]");
    EXPECT_EQ(isolines.run().failures, 0u);
    const IsolineSet value = isolines.value<IsolineSet>("isolines");
    ASSERT_THAT(value.lines(), SizeIs(2));
    EXPECT_EQ(value.lines()[0].level, 5);
    EXPECT_EQ(value.lines()[1].level, 15);
    EXPECT_EQ(isolines.text("count"), "2");
    const double length = Rain::lengthOf({{0, 0.5}, {1, 0.5}}) + Rain::lengthOf({{0, -0.5}, {1, -0.5}});
    EXPECT_DOUBLE_EQ(isolines.value<double>("length"), length);
    isolines.setText("levels", "[5]");
    EXPECT_EQ(isolines.run().failures, 0u);
    EXPECT_EQ(isolines.text("count"), "1");
}

TEST_F(GridIsolinesTest, publishTheirPlacesInTheChartOfTheNetwork)
{
    isolines.setText("grid", "2x2 0,1 90,-1: 0,0,10,10");
    isolines.setText("levels", "[5]");
    isolines.run();
    EXPECT_THAT(coordinates(), ElementsAre(0, 0.5, 0, 90, 0.5, 0, IsNan(), IsNan(), IsNan()));
    isolines.set("chart", Orla::VChart{"plate carree"});
    EXPECT_EQ(isolines.run().failures, 0u);
    EXPECT_NEAR(coordinates()[3], 10018754.171, 1e-3) << "a quarter of the equator in metres";
    EXPECT_THAT(isolines.value<IsolineSet>("isolines").lines(), SizeIs(1));
}

TEST_F(GridIsolinesTest, failWithInvalidLevels)
{
    const Warnings warnings;
    isolines.setText("levels", "[5;1]");
    EXPECT_EQ(isolines.run().failures, 1u);
    EXPECT_THAT(warnings.all(), ElementsAre(HasSubstr("found the level 1 after 5")));
}

TEST_F(GridIsolinesTest, canBeCancelledAndRestarted)
{
    isolines.set("grid", precipitation());
    int reports = 0;
    Orla::VCancellation cancellation;
    const auto cancelAtOnce = [&](double) {
        ++reports;
        cancellation.cancel();
    };
    Orla::VRequest request{isolines.pool, cancelAtOnce, cancellation};
    EXPECT_EQ(Orla::VScheduler::run(request).outcome, Orla::VScheduler::Outcome::Cancelled);
    EXPECT_EQ(reports, 1) << "the work continued";
    EXPECT_EQ(isolines.text("count"), "0");
    EXPECT_EQ(isolines.run().outcome, Orla::VScheduler::Outcome::Done);
    EXPECT_GT(isolines.value<double>("count"), 100);
}

TEST_F(GridIsolinesTest, areShownInALayer)
{
    isolines.setText("grid", "2x3 0,1 1,-1: 0,0,10,10,20,20");
    isolines.setText("levels", "[5]");
    Evaluation layer{"GridLayer"};
    connect(*layer.object, "isolines", *isolines.object, "isolines");
    Orla::VScheduler::schedule(layer.object, 0, isolines.pool);
    EXPECT_EQ(isolines.run().failures, 0u);
    EXPECT_EQ(readText(*layer.object, "layer", isolines.pool), "4 areas, 1 group of lines");
}

} // namespace GridIsolinesTest
