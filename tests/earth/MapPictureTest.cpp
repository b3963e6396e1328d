#include "earth/Evaluation.hpp"
#include "earth/Picture.hpp"
#include "support/TestFolder.hpp"

#include <earth/Layer.hpp>
#include <earth/Palette.hpp>

#include <fathom/VChart.hpp>

#include <gmock/gmock.h>

#include <string>

namespace MapPictureTest {

using Earth::Layer;

namespace {

namespace Palette = Earth::Palette;

constexpr auto red = Palette::color(0xc03020);
constexpr auto green = Palette::color(0x20a040);

class MapPictureTest : public testing::Test {
protected:
    ~MapPictureTest() override { Orla::VManagedObject::remove(Orla::VChartSelector::getChartSelector()); }

    std::string written()
    {
        map.set("file", folder.file("map.png"));
        Orla::VScheduler::schedule(map.object, 2, map.pool);
        EXPECT_EQ(map.run().failures, 0u);
        return contentOf(folder.file("map.png"));
    }

    const TestFolder folder;
    Evaluation map{"MapPicture"};
};

} // namespace

TEST_F(MapPictureTest, drawsItsLayerWithALegend)
{
    const Layer::Area area{{{{-20, -20}, {20, -20}, {20, 20}, {-20, 20}}}, red};
    map.set("layer", Layer{{{area}, {}, {"Rain (mm)", {red, green}, {5}, Palette::paper, false}}});
    const Picture picture{written()};
    EXPECT_EQ(picture.at(460, 430), rgb(red)) << "the middle of the map";
    // The boxes of the legend are 520 points wide and centred.
    EXPECT_EQ(picture.at(450 - 200, 848), rgb(red));
    EXPECT_EQ(picture.at(450 + 200, 848), rgb(green));
}

TEST_F(MapPictureTest, showsItsTitles)
{
    const std::string plain = written();
    map.setText("subtitle", "mm per year");
    const std::string below = written();
    EXPECT_NE(below, plain);
    map.setText("title", "Rain");
    EXPECT_NE(written(), below);
}

TEST_F(MapPictureTest, drawsThePlainEarthWithoutALayer)
{
    const Picture picture{written()};
    EXPECT_EQ(picture.at(460, 430), rgb(Palette::sea));
    EXPECT_EQ(ink(picture, 812, 900).count, 0) << "no legend";
}

} // namespace MapPictureTest
