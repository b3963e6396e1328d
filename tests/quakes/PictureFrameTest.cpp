#include <quakes/PictureFrame.hpp>

#include "earth/Picture.hpp"
#include "earth/Svg.hpp"
#include "World.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

using Earth::Canvas;
using Quakes::Catalogue;
using Quakes::ColorRule;
using Earth::PictureFormat;
using Quakes::QuakePicture;

namespace {

namespace Palette = Earth::Palette;

std::string frame(const QuakePicture& picture, PictureFormat format = PictureFormat::Png, int width = 900,
                  int height = 900)
{
    Canvas canvas{format, width, height};
    drawFrame(canvas, picture);
    return canvas.finished();
}

// The horizontal extent and the number of the coloured pixels in a range of rows.
struct Extent {
    int left = 1000000;
    int right = -1;
    int count = 0;
};

Extent ink(const Picture& picture, double top, double bottom)
{
    Extent extent;
    for (int y = static_cast<int>(top); y < bottom; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.at(x, y) != rgb(Palette::paper)) {
                extent.left = std::min(extent.left, x);
                extent.right = std::max(extent.right, x);
                ++extent.count;
            }
        }
    }
    return extent;
}

QuakePicture titled(const std::string& title)
{
    return {title, 0, Catalogue{}, ColorRule::Depth};
}

} // namespace

TEST(PictureFrame, leavesTheSpaceOfTheMapEmpty)
{
    for (const auto& [width, height] : {std::pair{900, 900}, {1280, 720}, {300, 700}}) {
        Canvas canvas{PictureFormat::Png, width, height};
        const Earth::Rectangle space = Quakes::pictureSpace(canvas);
        drawFrame(canvas, titled("A title"));
        const Picture picture{canvas.finished()};
        EXPECT_EQ(ink(picture, space.top, space.bottom()).count, 0);
        EXPECT_GT(ink(picture, 0, space.top).count, 100);
        EXPECT_GT(ink(picture, space.bottom(), height).count, 100);
    }
}

TEST(PictureFrame, keepsItsMarginsForAnyTitle)
{
    std::string tall;
    for (int i = 0; i < 400; ++i)
        tall += "\u00e4\u4e16 ";
    for (const std::string& title : {std::string(), std::string("Earthquakes"), std::string(60, 'W'),
                                     std::string(100000, 'W'), tall, std::string(5000, '\x80')}) {
        SCOPED_TRACE(title.substr(0, 20));
        const Picture picture{frame(titled(title))};
        const Extent all = ink(picture, 0, 900);
        EXPECT_GE(all.left, 25);
        EXPECT_LE(all.right, 900 - 26);
        EXPECT_EQ(ink(picture, 896, 900).count, 0) << "nothing is cut off below";
        EXPECT_EQ(ink(picture, 0, 4).count, 0) << "nor above";
    }
    EXPECT_GT(ink(Picture{frame(titled(std::string(1000, 'W')))}, 0, 50).right, 800) << "the text uses the width";
}

TEST(PictureFrame, showsTheTitleTheInstantAndTheNumberOfEvents)
{
    const QuakePicture picture{"Title", 1517356800, Catalogue{}, ColorRule::Depth};
    const std::string plain = frame(picture);
    QuakePicture other = picture;
    other.title = "Titel";
    EXPECT_NE(frame(other), plain);
    other = picture;
    other.instant += 3600;
    EXPECT_NE(frame(other), plain);
    other = picture;
    other.quakes = Catalogue{{quakeAt(0, 0, 5, 10, 1517356800)}};
    EXPECT_NE(frame(other), plain);
    other.quakes = Catalogue{{quakeAt(0, 0, 5, 10, 1517356801)}};
    EXPECT_EQ(frame(other), plain) << "later events are ignored";
    other.instant = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Svg{frame(other, PictureFormat::Svg)}.fault, "");
}

TEST(PictureFrame, hasALegendForItsRule)
{
    QuakePicture picture = titled("Title");
    std::vector<std::string> pictures;
    for (const ColorRule rule : {ColorRule::Magnitude, ColorRule::Depth, ColorRule::Age}) {
        picture.colorRule = rule;
        pictures.push_back(frame(picture));
    }
    EXPECT_NE(pictures[0], pictures[1]);
    EXPECT_NE(pictures[1], pictures[2]);

    // The bar of colours extends from 396 to 46 points from the right.
    const Picture depth{pictures[1]};
    EXPECT_LE(difference(depth.at(900 - 396 + 2, 900 - 52), rgb(Quakes::colorAt(ColorRule::Depth, 0))), 4);
    EXPECT_LE(difference(depth.at(900 - 46 - 2, 900 - 52), rgb(Quakes::colorAt(ColorRule::Depth, 1))), 4);
    EXPECT_LE(difference(depth.at(900 - 221, 900 - 52), rgb(Quakes::colorAt(ColorRule::Depth, 0.5))), 4);
}

TEST(PictureFrame, explainsGreyIfAValueIsUnknown)
{
    const auto greys = [](const std::string& bytes) {
        const Picture picture{bytes};
        int count = 0;
        for (int y = 800; y < 900; ++y) {
            for (int x = 0; x < 900; ++x)
                count += difference(picture.at(x, y), rgb(Palette::unknown)) <= 1 ? 1 : 0;
        }
        return count;
    };
    QuakePicture picture{"Title", 10, Catalogue{{quakeAt(0, 0, 5, 10)}}, ColorRule::Depth};
    EXPECT_LT(greys(frame(picture)), 20);
    picture.quakes = Catalogue{{quakeAt(0, 0, 5, std::nullopt)}};
    EXPECT_GT(greys(frame(picture)), 50);
    picture.colorRule = ColorRule::Magnitude;
    EXPECT_LT(greys(frame(picture)), 20) << "the magnitude is known";
}

TEST(PictureFrame, scalesWithThePicture)
{
    EXPECT_DOUBLE_EQ(Quakes::pixelsOfPoint(Canvas{PictureFormat::Svg, 900, 720}), 1);
    EXPECT_DOUBLE_EQ(Quakes::pixelsOfPoint(Canvas{PictureFormat::Svg, 1800, 1440}), 2);
    EXPECT_DOUBLE_EQ(Quakes::pixelsOfPoint(Canvas{PictureFormat::Svg, 450, 9000}), 0.5);
}

TEST(PictureFrame, drawsLargeEventsFirst)
{
    const Catalogue catalogue{
        {quakeAt(0, 0, 2, 1, 1), quakeAt(0, 0, 6, 1, 2), quakeAt(0, 0, std::nullopt, 1, 3), quakeAt(0, 0, 6, 1, 4)}};
    const auto drawn = Quakes::drawnQuakes(catalogue);
    ASSERT_EQ(drawn.size(), 4u);
    EXPECT_EQ(drawn[0]->time, 2);
    EXPECT_EQ(drawn[1]->time, 4);
    EXPECT_EQ(drawn[2]->time, 1);
    EXPECT_EQ(drawn[3]->time, 3);
}
