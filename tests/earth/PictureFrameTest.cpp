#include <earth/PictureFrame.hpp>

#include "earth/Picture.hpp"

#include <earth/Palette.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace PictureFrameTest {

using Earth::Canvas;
using Earth::PictureFormat;

namespace {

namespace Palette = Earth::Palette;

std::string frame(const std::string& title)
{
    Canvas canvas{PictureFormat::Png, 900, 900};
    drawPictureFrame(canvas, title, title);
    return canvas.finished();
}

} // namespace

TEST(PictureFrame, leavesTheSpacesOfTheMapAndTheLegendEmpty)
{
    for (const auto& [width, height] : {std::pair{900, 900}, {1280, 720}, {300, 700}}) {
        Canvas canvas{PictureFormat::Png, width, height};
        const Earth::Rectangle space = pictureSpace(canvas);
        EXPECT_LT(space.bottom(), legendSpace(canvas).top);
        EXPECT_NEAR(legendSpace(canvas).bottom(), height, 1e-9);
        drawPictureFrame(canvas, "A title", "and more");
        const Picture picture{canvas.finished()};
        EXPECT_EQ(ink(picture, space.top, height).count, 0);
        EXPECT_GT(ink(picture, 0, space.top).count, 100);
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
        const Picture picture{frame(title)};
        const Extent all = ink(picture, 0, 900);
        EXPECT_GE(all.left, 25);
        EXPECT_LE(all.right, 900 - 26);
        EXPECT_EQ(ink(picture, 896, 900).count, 0) << "nothing is cut off below";
        EXPECT_EQ(ink(picture, 0, 4).count, 0) << "nor above";
    }
    EXPECT_GT(ink(Picture{frame(std::string(1000, 'W'))}, 0, 50).right, 800) << "the text uses the width";
}

TEST(PictureFrame, scalesWithThePicture)
{
    EXPECT_DOUBLE_EQ(Earth::pixelsOfPoint(Canvas{PictureFormat::Svg, 900, 720}), 1);
    EXPECT_DOUBLE_EQ(Earth::pixelsOfPoint(Canvas{PictureFormat::Svg, 1800, 1440}), 2);
    EXPECT_DOUBLE_EQ(Earth::pixelsOfPoint(Canvas{PictureFormat::Svg, 450, 9000}), 0.5);
}

TEST(PictureFrame, drawsAScaleOfColours)
{
    Canvas canvas{PictureFormat::Png, 900, 720};
    canvas.clear(Palette::paper);
    drawColorBar(canvas, {100, 100, 400, 20}, {"Rain (mm)", {Palette::sea, Palette::ink}, {{0, 0}, {5, 0.5}}});
    const Picture picture{canvas.finished()};
    EXPECT_LE(difference(picture.at(102, 110), rgb(Palette::sea)), 3);
    EXPECT_LE(difference(picture.at(497, 110), rgb(Palette::ink)), 3);
    EXPECT_GT(ink(picture, 74, 90).count, 50) << "the title";
    EXPECT_GT(ink(picture, 130, 145).count, 10) << "the values";
    EXPECT_LT(ink(picture, 130, 145).right, 310) << "at their positions";
}

TEST(PictureFrame, drawsClassesOfColoursWithTheBoundsBetweenThem)
{
    Canvas canvas{PictureFormat::Png, 900, 720};
    canvas.clear(Palette::paper);
    constexpr auto grey = Palette::color(0x808080);
    drawColorClasses(canvas, {100, 100, 300, 20},
                     {"Rain (mm)", {Palette::sea, Palette::ink, Palette::land}, {5, 10}, grey, false});
    const Picture picture{canvas.finished()};
    for (const auto& [x, color] : {std::pair{103, Palette::sea},
                                   {197, Palette::sea},
                                   {203, Palette::ink},
                                   {297, Palette::ink},
                                   {303, Palette::land}})
        EXPECT_EQ(picture.at(x, 110), rgb(color)) << x;
    EXPECT_GT(ink(picture, 74, 90).count, 50) << "the title";
    EXPECT_LT(ink(picture, 74, 90).right, 200) << "no explanation of the unknown";
    const Extent bounds = ink(picture, 130, 145);
    EXPECT_GT(bounds.left, 190);
    EXPECT_LT(bounds.right, 310);
}

TEST(PictureFrame, explainsTheColourOfPlacesWithoutData)
{
    Canvas canvas{PictureFormat::Png, 900, 720};
    canvas.clear(Palette::paper);
    constexpr auto grey = Palette::color(0x808080);
    drawColorClasses(canvas, {100, 100, 300, 20}, {"", {Palette::sea, Palette::ink}, {5}, grey, true});
    const Picture picture{canvas.finished()};
    int greys = 0;
    for (int x = 300; x < 400; ++x)
        greys += picture.at(x, 80) == rgb(grey) ? 1 : 0;
    EXPECT_GT(greys, 12);
}

TEST(PictureFrame, omitsBoundsThatWouldOverlap)
{
    Canvas canvas{PictureFormat::Png, 900, 720};
    canvas.clear(Palette::paper);
    Earth::ColorClasses classes{"", std::vector<Canvas::Color>(51, Palette::sea), {}, Palette::paper, false};
    for (int i = 0; i < 50; ++i)
        classes.bounds.push_back(1000 + i);
    drawColorClasses(canvas, {100, 100, 300, 20}, classes);
    const Picture picture{canvas.finished()};
    // Between the numbers there are gaps of some pixels without ink.
    int gaps = 0;
    int clear = 0;
    for (int x = 100; x < 400; ++x) {
        bool isClear = true;
        for (int y = 132; y < 143; ++y)
            isClear = isClear && picture.at(x, y) == rgb(Palette::paper);
        clear = isClear ? clear + 1 : 0;
        gaps += clear == 4 ? 1 : 0;
    }
    EXPECT_GE(gaps, 6);
}

TEST(PictureFrame, leavesSpaceForALegendBesideItsTitles)
{
    Canvas canvas{PictureFormat::Png, 900, 720};
    const Earth::Rectangle space = upperLegendSpace(canvas);
    drawPictureFrame(canvas, std::string(1000, 'W'), std::string(1000, 'W'), space.width);
    const Picture picture{canvas.finished()};
    EXPECT_LE(ink(picture, 0, 90).right, space.left);
    EXPECT_GT(ink(picture, 0, 90).right, space.left - 60);
    EXPECT_NEAR(space.right(), 900 - 26, 1e-9);
}

} // namespace PictureFrameTest
