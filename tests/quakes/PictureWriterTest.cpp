#include "earth/Evaluation.hpp"

#include <quakes/Catalogue.hpp>
#include <earth/Land.hpp>
#include <earth/Layer.hpp>
#include <quakes/QuakeStyle.hpp>

#include "support/TestFolder.hpp"

#include <fathom/VChart.hpp>
#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

#include <string>

namespace PictureWriterTest {

using Quakes::Catalogue;
using Quakes::ColorRule;
using Earth::Land;
using Quakes::Quake;
using testing::HasSubstr;

namespace {

constexpr double EndOfRun = 2;

Quake quake(double time, double longitude, double latitude)
{
    Quake result;
    result.time = time;
    result.longitude = longitude;
    result.latitude = latitude;
    result.depth = 10;
    result.magnitude = 6;
    return result;
}

class PictureWriterTest : public testing::Test {
protected:
    PictureWriterTest()
    {
        writer.set("range", Orla::Range{1000, 2000});
        writer.set("time", Orla::VTime{0.5, 0, 1, 0.25, "", "", {}});
        writer.set("catalog", Catalogue{{quake(1500, 0, 0), quake(1501, 90, 0)}});
        writer.set("width", 400.0);
        writer.set("height", 300.0);
    }

    ~PictureWriterTest() override { Orla::VManagedObject::remove(Orla::VChartSelector::getChartSelector()); }

    std::string writeFile(const std::string& name)
    {
        writer.set("file", folder.file(name));
        Orla::VScheduler::schedule(writer.object, EndOfRun, writer.pool);
        EXPECT_EQ(writer.run().failures, 0u);
        return contentOf(folder.file(name));
    }

    const TestFolder folder;
    Evaluation writer{"PictureWriter"};
};

} // namespace

TEST_F(PictureWriterTest, drawsEventsUpToTheCurrentInstant)
{
    const std::string early = writeFile("early.svg");
    writer.set("range", Orla::Range{1000, 2002});
    const std::string late = writeFile("late.svg");
    EXPECT_THAT(early, HasSubstr("svg"));
    EXPECT_NE(early, late) << "the second event has happened by then";
}

TEST_F(PictureWriterTest, coloursByTheSelectedRule)
{
    const std::string byDepth = writeFile("a.svg");
    EXPECT_EQ(writer.object->findSlot("color")->getValueBase(writer.pool)->Text(), "depth{depth}{magnitude}{age}");
    writer.setText("color", "age");
    const std::string byAge = writeFile("b.svg");
    EXPECT_NE(byDepth, byAge);
    writer.setText("color", "depth");
    EXPECT_EQ(writeFile("c.svg"), byDepth);
}

TEST_F(PictureWriterTest, drawsTheGivenLand)
{
    const std::string without = writeFile("without.svg");
    writer.set("land", Land{{{{{-10, -10}, {10, -10}, {10, 10}, {-10, 10}}}}});
    EXPECT_NE(writeFile("with.svg"), without);
}

TEST_F(PictureWriterTest, drawsTheGivenLayer)
{
    const std::string without = writeFile("without.svg");
    writer.set("under", Earth::Layer{Earth::Layer::Content{}});
    EXPECT_NE(writeFile("with.svg"), without);
}

TEST_F(PictureWriterTest, writesTheSameBytesEachTime)
{
    for (const char* ending : {"png", "svg"}) {
        const std::string first = writeFile(std::string("first.") + ending);
        EXPECT_EQ(writeFile(std::string("second.") + ending), first) << ending;
    }
}

} // namespace PictureWriterTest
