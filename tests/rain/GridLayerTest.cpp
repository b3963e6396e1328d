#include "Grids.hpp"
#include "earth/Evaluation.hpp"

#include <rain/ColorMap.hpp>
#include <rain/LevelAreas.hpp>

#include <earth/Layer.hpp>

#include <gmock/gmock.h>

#include <limits>
#include <string>

namespace GridLayerTest {

using Earth::Layer;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Layer layerOf(const std::string& grid)
{
    Evaluation layer{"GridLayer"};
    layer.setText("grid", grid);
    layer.setText("levels", "[5]");
    EXPECT_EQ(layer.run().failures, 0u);
    return layer.value<Layer>("layer");
}

} // namespace

TEST(GridLayer, hasOneAreaPerClassEachCoveringTheLowerOnes)
{
    Evaluation layer{"GridLayer"};
    layer.set("grid", precipitation());
    layer.setText("levels", "[500;1500]");
    layer.setText("title", "Rain (mm)");
    EXPECT_EQ(layer.run().failures, 0u);
    EXPECT_EQ(layer.text("layer"), "3 areas, 0 groups of lines");
    const Layer value = layer.value<Layer>("layer");
    const Layer::Content& content = *value.content();
    const Rain::ColorMap colors{{500, 1500}};
    const double levels[] = {-std::numeric_limits<double>::infinity(), 500, 1500};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(content.areas[i].rings, Rain::areaAbove(precipitation(), levels[i]));
        EXPECT_EQ(content.areas[i].color, colors.colors()[i]);
    }
    EXPECT_EQ(content.legend.title, "Rain (mm)");
    EXPECT_EQ(content.legend.colors, colors.colors());
    EXPECT_THAT(content.legend.bounds, ElementsAre(500, 1500));
    EXPECT_EQ(content.legend.unknown, Rain::ColorMap::unknown);
}

TEST(GridLayer, explainsPlacesWithoutDataIfThereAreSome)
{
    EXPECT_FALSE(layerOf("2x2 0,90 180,-180: 1,2,3,4").content()->legend.hasUnknown);
    EXPECT_TRUE(layerOf("2x2 0,90 180,-180: 1,2,3,").content()->legend.hasUnknown) << "a missing value";
    EXPECT_TRUE(layerOf("2x2 0,90 180,-100: 1,2,3,4").content()->legend.hasUnknown) << "a missing pole";
    EXPECT_TRUE(layerOf("2x2 0,90 100,-180: 1,2,3,4").content()->legend.hasUnknown) << "part of a turn";
    EXPECT_TRUE(layerOf("").content()->legend.hasUnknown);
}

TEST(GridLayer, failsWithInvalidLevels)
{
    const Warnings warnings;
    Evaluation layer{"GridLayer"};
    layer.setText("levels", "[5;1]");
    EXPECT_EQ(layer.run().failures, 1u);
    EXPECT_THAT(warnings.all(), ElementsAre(HasSubstr("found the level 1 after 5")));
}

TEST(GridLayer, canBeCancelled)
{
    Evaluation layer{"GridLayer"};
    layer.set("grid", precipitation());
    int reports = 0;
    Orla::VCancellation cancellation;
    const auto cancelAtOnce = [&](double) {
        ++reports;
        cancellation.cancel();
    };
    Orla::VRequest request{layer.pool, cancelAtOnce, cancellation};
    EXPECT_EQ(Orla::VScheduler::run(request).outcome, Orla::VScheduler::Outcome::Cancelled);
    EXPECT_EQ(reports, 1) << "the work continued";
    EXPECT_EQ(layer.text("layer"), "");
}

} // namespace GridLayerTest
