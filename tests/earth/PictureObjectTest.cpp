#include <earth/PictureObject.hpp>

#include "earth/Evaluation.hpp"
#include "earth/Picture.hpp"
#include "support/TestFolder.hpp"

#include <earth/PictureFrame.hpp>

#include <fathom/VChart.hpp>
#include <fathom/VTime.hpp>

#include <trellis/VObjectCreator.hpp>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace PictureObjectTest {

using Earth::Land;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr double EndOfRun = 2;
constexpr double EndOfStep = 1;

class Sketch final : public Earth::PictureObject {
public:
    Sketch(const std::string& name, int level, const Orla::StrongPtr<Orla::VCreationPreferences>& preferences)
        : PictureObject{name, level, preferences, "Sketch"}
    {
    }

private:
    void draw(Earth::Canvas& canvas, const Earth::View& view, const Pool& pool) const override
    {
        drawPictureFrame(canvas, titleIn(pool), "");
        view.drawEarth(canvas, landIn(pool).polygons());
    }
};

const Orla::VObjectType<Sketch> sketchType{"Sketch"};

class PictureObjectTest : public testing::Test {
protected:
    PictureObjectTest()
    {
        writer.set("time", Orla::VTime{0.5, 0, 1, 0.25, "", "", {}});
        writer.set("width", 400.0);
        writer.set("height", 300.0);
    }

    ~PictureObjectTest() override { Orla::VManagedObject::remove(Orla::VChartSelector::getChartSelector()); }

    void act(double number)
    {
        Orla::VScheduler::schedule(writer.object, number, writer.pool);
        EXPECT_EQ(writer.run().failures, 0u);
    }

    std::string writeFile(const std::string& name)
    {
        writer.set("file", folder.file(name));
        act(EndOfRun);
        return contentOf(folder.file(name));
    }

    const TestFolder folder;
    Evaluation writer{"Sketch"};
};

} // namespace

TEST_F(PictureObjectTest, drawsOnlyOnActions)
{
    writer.set("file", folder.file("map.png"));
    writer.set("frames", folder.file("frame-#.png"));
    writer.run();
    EXPECT_THAT(folder.names(), IsEmpty());
    EXPECT_EQ(writer.text("status"), "");
    act(EndOfRun);
    EXPECT_THAT(folder.names(), ElementsAre("map.png"));
    EXPECT_EQ(writer.text("status"), "wrote " + folder.file("map.png"));
}

TEST_F(PictureObjectTest, writesNothingWithoutAFileName)
{
    act(EndOfRun);
    act(EndOfStep);
    EXPECT_THAT(folder.names(), IsEmpty());
    EXPECT_EQ(writer.text("status"), "");
}

TEST_F(PictureObjectTest, numbersThePicturesOfSteps)
{
    writer.set("frames", folder.file("frame-###.svg"));
    act(EndOfStep);
    writer.set("time", Orla::VTime{0.75, 0, 1, 0.25, "", "", {}});
    act(EndOfStep);
    EXPECT_THAT(folder.names(), ElementsAre("frame-002.svg", "frame-003.svg"));
    EXPECT_EQ(writer.text("status"), "wrote " + folder.file("frame-003.svg") + ", the last of 2 pictures");
}

TEST_F(PictureObjectTest, namesThePicturesOfEachCase)
{
    writer.pool = Loam::makeStrong<Orla::ValuePool>("seventh", "case7");
    writer.set("frames", folder.file("frame-#.svg"));
    writer.set("time", Orla::VTime{0.5, 0, 1, 0.25, "", "", {}});
    act(EndOfStep);
    EXPECT_THAT(folder.names(), ElementsAre("frame-2-case7.svg"));
    EXPECT_EQ(writer.text("status"), "wrote " + folder.file("frame-2-case7.svg"));
}

TEST_F(PictureObjectTest, drawsAMapOrAGlobeDependingOnTheChart)
{
    const std::string map = writeFile("map.png");
    writer.set("chart", Orla::VChart{"plate carree"});
    EXPECT_EQ(writeFile("same.png"), map);
    writer.set("chart", Orla::VChart{"geocentric"});
    writer.set("camera", Orla::VCamera{{3e7, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30});
    const std::string globe = writeFile("globe.png");
    EXPECT_NE(globe, map);
    const Picture picture{globe};
    EXPECT_EQ(picture.width, 400);
    EXPECT_EQ(picture.height, 300);
}

TEST_F(PictureObjectTest, drawsTheGivenLand)
{
    const std::string without = writeFile("without.svg");
    writer.set("land", Land{{{{{-10, -10}, {10, -10}, {10, 10}, {-10, 10}}}}});
    EXPECT_NE(writeFile("with.svg"), without);
}

TEST_F(PictureObjectTest, reportsFaultsAndLeavesTheFileUnchanged)
{
    const auto expectError = [this](const std::string& text) {
        EXPECT_THAT(writer.text("status"), StartsWith("<FONT COLOR=red>"));
        EXPECT_THAT(writer.text("status"), HasSubstr(text));
    };
    folder.write("old.png", "old");
    writer.set("file", folder.file("old.png"));

    writer.set("width", 0.0);
    act(EndOfRun);
    expectError("the input \"width\" is 0, expected a whole number of pixels from 1 to 16384");
    writer.set("width", 400.0);

    writer.set("chart", Orla::VChart{"<polar>"});
    act(EndOfRun);
    expectError("found the chart \"&lt;polar&gt;\", expected geographic, geocentric, plate carree or a text for PROJ");

    writer.set("chart", Orla::VChart{"geocentric"});
    writer.set("camera", Orla::VCamera{{0, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30});
    act(EndOfRun);
    expectError("camera");
    writer.set("chart", Orla::VChart{});
    EXPECT_EQ(contentOf(folder.file("old.png")), "old");

    writer.set("file", folder.file("picture.bmp"));
    act(EndOfRun);
    expectError(".bmp");
    writer.set("file", folder.file("picture"));
    act(EndOfRun);
    expectError(".png");
    writer.set("file", folder.file("none/picture.png"));
    act(EndOfRun);
    expectError("cannot write " + folder.file("none/picture.png"));
    writer.set("frames", folder.file("always.png"));
    act(EndOfStep);
    expectError("has no \"#\" for the number of the step");
    EXPECT_THAT(folder.names(), ElementsAre("old.png"));
}

TEST_F(PictureObjectTest, remembersMissingPicturesUntilTheNextSequence)
{
    const std::string reason = std::strerror(ENOENT); // in the language of the locale
    writer.set("file", folder.file("last.png"));
    writer.set("frames", folder.file("later/frame-#.png"));
    act(EndOfStep);
    act(EndOfStep);
    EXPECT_THAT(writer.text("status"),
                HasSubstr("later/frame-2.png: " + reason + "; pictures of steps that are missing: 2"));
    folder.write("later/x", "");
    act(EndOfStep);
    act(EndOfRun);
    EXPECT_THAT(folder.names(), ElementsAre("last.png", "later"));
    EXPECT_THAT(writer.text("status"), HasSubstr("are missing: 2"));

    writer.set("file", folder.file("none/last.png"));
    act(EndOfRun);
    EXPECT_THAT(writer.text("status"), HasSubstr(reason + "; pictures of steps that are missing: 2"));

    writer.set("time", Orla::VTime{0, 0, 1, 0.25, "", "", {}});
    act(EndOfStep);
    EXPECT_THAT(writer.text("status"), StartsWith("wrote "));
}

TEST_F(PictureObjectTest, countsThePicturesOfEachPoolSeparately)
{
    writer.set("frames", folder.file("frame-#.svg"));
    act(EndOfStep);
    act(EndOfStep);
    EXPECT_THAT(writer.text("status"), HasSubstr("the last of 2 pictures"));

    const Orla::StrongPtr<Orla::ValuePool> other{new Orla::ValuePool("other")};
    writeText(*writer.object, "file", other, folder.file("other.svg"));
    Orla::VScheduler::schedule(writer.object, EndOfRun, other);
    EXPECT_EQ(Orla::VScheduler::run(other).failures, 0u);
    EXPECT_EQ(readText(*writer.object, "status", other), "wrote " + folder.file("other.svg"));
}

TEST_F(PictureObjectTest, writesTheSameBytesEachTime)
{
    for (const char* ending : {"png", "svg"}) {
        const std::string first = writeFile(std::string("first.") + ending);
        EXPECT_EQ(writeFile(std::string("second.") + ending), first) << ending;
    }
}

TEST_F(PictureObjectTest, hasTheTitleOfItsInput)
{
    const std::string plain = writeFile("plain.svg");
    writer.setText("title", "Sketch");
    EXPECT_EQ(writeFile("same.svg"), plain);
    writer.setText("title", "Other");
    EXPECT_NE(writeFile("other.svg"), plain);
}

} // namespace PictureObjectTest
