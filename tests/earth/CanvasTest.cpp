#include <earth/Canvas.hpp>

#include "earth/Picture.hpp"
#include "earth/Svg.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace CanvasTest {

using Earth::Canvas;
using Earth::Pixel;
using Earth::PictureFormat;
using Earth::pictureFormat;

namespace {

constexpr Canvas::Color white{1, 1, 1, 1};
constexpr Canvas::Color red{1, 0, 0, 1};
constexpr Canvas::Color blue{0, 0, 1, 1};

const Canvas::Path square{{10, 10}, {50, 10}, {50, 50}, {10, 50}};
const Canvas::Path hole{{20, 20}, {40, 20}, {40, 40}, {20, 40}};

// A drawing with a shape of every kind.
std::string drawing(PictureFormat format)
{
    Canvas canvas{format, 120, 80};
    canvas.clear(white);
    canvas.fill({square, hole}, red);
    canvas.beginClip({60, 10, 20, 20});
    canvas.fill({50, 0, 70, 80}, blue);
    canvas.endClip();
    canvas.fill({{{60, 40}, {80, 40}, {80, 60}, {60, 60}}}, Canvas::RadialColors{{70, 50}, 0, red, {70, 50}, 8, blue});
    canvas.fill({90, 10, 20, 10}, std::vector<Canvas::Color>{red, white, blue});
    canvas.stroke({{{90, 30}, {110, 30}}}, blue, 2);
    canvas.circle({100, 50}, 6, red, blue, 2);
    canvas.text({10, 75}, "Gr\u00fc\u00dfe 1,5", 14, blue);
    return canvas.finished();
}

std::string message(const std::string& file)
{
    try {
        pictureFormat(file);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}

// Returns the number of pixels that a text colours.
int inkOf(std::string_view text)
{
    Canvas canvas{PictureFormat::Png, 200, 40};
    canvas.clear(white);
    canvas.text({10, 30}, text, 20, blue);
    const Picture picture{canvas.finished()};
    int ink = 0;
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 200; ++x)
            ink += picture.at(x, y) == Rgb{255, 255, 255} ? 0 : 1;
    }
    return ink;
}

} // namespace

TEST(Canvas, takesItsFormatFromTheExtension)
{
    EXPECT_EQ(pictureFormat("map.png"), PictureFormat::Png);
    EXPECT_EQ(pictureFormat("a.svg/map.PNG"), PictureFormat::Png);
    EXPECT_EQ(pictureFormat("map.0.svg"), PictureFormat::Svg);
    EXPECT_EQ(message("map.jpg"), "map.jpg: found the extension \".jpg\", expected \".png\" or \".svg\"");
    EXPECT_EQ(message("folder.png/map"), "folder.png/map: found no extension, expected \".png\" or \".svg\"");
    EXPECT_EQ(message(""), ": found no extension, expected \".png\" or \".svg\"");
}

TEST(Canvas, refusesInvalidSizes)
{
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
        EXPECT_THROW((Canvas{format, 0, 10}), std::runtime_error);
        EXPECT_THROW((Canvas{format, 10, -1}), std::runtime_error);
        EXPECT_NO_THROW((Canvas{format, 1, 1}));
    }
    try {
        const Canvas canvas{PictureFormat::Svg, Canvas::largestSize + 1, 10};
        FAIL() << "too large a picture was created";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "found a picture of 16385 x 10 pixels, expected sides from 1 to 16384");
    }
}

TEST(Canvas, drawsShapesGradientsAndClips)
{
    const Picture picture{drawing(PictureFormat::Png)};
    EXPECT_EQ(picture.width, 120);
    EXPECT_EQ(picture.height, 80);
    EXPECT_EQ(picture.at(5, 5), rgb(white));
    EXPECT_EQ(picture.at(15, 15), rgb(red));
    EXPECT_EQ(picture.at(30, 30), rgb(white)) << "the hole";
    EXPECT_EQ(picture.at(75, 15), rgb(blue)) << "inside the clip";
    EXPECT_EQ(picture.at(75, 35), rgb(white)) << "outside it";
    EXPECT_EQ(picture.at(85, 15), rgb(white)) << "outside it";
    EXPECT_EQ(picture.at(61, 41), rgb(blue)) << "outside the outer circle of the gradient";
    EXPECT_GT(picture.at(70, 50).red, 200);
    EXPECT_GT(picture.at(90, 15).red, picture.at(90, 15).blue);
    EXPECT_LT(picture.at(109, 15).red, picture.at(109, 15).blue);
    EXPECT_EQ(picture.at(100, 29.5), rgb(blue));
    EXPECT_EQ(picture.at(100, 50), rgb(red));
    EXPECT_EQ(picture.at(100, 56.9), rgb(blue)) << "the outline is outside the radius";
    EXPECT_EQ(picture.at(100, 60), rgb(white));
}

TEST(Canvas, drawsThePartOfACircleInsideAConvexPath)
{
    Canvas::Path triangle{{10, 10}, {90, 10}, {90, 90}};
    for (int turned = 0; turned < 2; ++turned) {
        Canvas canvas{PictureFormat::Png, 100, 100};
        canvas.clear(white);
        canvas.circle({50, 50}, 20, red, blue, 1, triangle);
        canvas.circle({75, 30}, 5, red, blue, 1, triangle);
        canvas.circle({15, 90}, 5, red, blue, 1, triangle);
        const Picture picture{canvas.finished()};
        EXPECT_EQ(picture.at(58, 46), rgb(red));
        EXPECT_EQ(picture.at(42, 54), rgb(white)) << "beyond the long side";
        EXPECT_EQ(picture.at(75, 30), rgb(red)) << "entirely inside";
        EXPECT_EQ(picture.at(15, 90), rgb(white)) << "entirely outside";
        std::reverse(triangle.begin(), triangle.end());
    }
}

TEST(Canvas, writesWellFormedSvgInPixels)
{
    const Svg svg{drawing(PictureFormat::Svg)};
    EXPECT_EQ(svg.fault, "");
    ASSERT_FALSE(svg.elements.empty());
    EXPECT_EQ(svg.elements[0].name, "svg");
    EXPECT_EQ(svg.elements[0].attribute("width"), "120px");
    EXPECT_EQ(svg.elements[0].attribute("height"), "80px");
    EXPECT_EQ(svg.elements[0].attribute("viewBox"), "0 0 120 80");
    for (const Svg::Element& element : svg.elements)
        EXPECT_NE(element.name, "image") << "shapes, not pixels";
}

// The tests run under several locales; one writes numbers with a comma.
TEST(Canvas, writesTheSameBytesEachTime)
{
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
        const std::string first = drawing(format);
        EXPECT_EQ(drawing(format), first);
        EXPECT_EQ(drawing(format), first);
    }
    const std::string svg = drawing(PictureFormat::Svg);
    EXPECT_NE(svg.find("M 10 10 L 50 10 L 50 50 L 10 50 Z"), std::string::npos);
}

TEST(Canvas, alignsTextLeftCenteredAndRight)
{
    Canvas canvas{PictureFormat::Png, 300, 40};
    const double width = canvas.textWidth("MMMM", 20);
    EXPECT_GT(width, 40);
    EXPECT_LT(width, 100);
    EXPECT_GT(canvas.textWidth("MMMM", 20, true), width);
    EXPECT_NEAR(canvas.textWidth("MMMM", 40), 2 * width, 1e-6) << "no hinting";
    EXPECT_EQ(canvas.textWidth("", 20), 0);

    const auto inkBetween = [&](Canvas::Align align) {
        Canvas text{PictureFormat::Png, 300, 40};
        text.clear(white);
        text.text({150, 30}, "MMMM", 20, blue, align);
        const Picture picture{text.finished()};
        std::pair<double, double> ends{300, 0};
        for (int x = 0; x < 300; ++x) {
            if (picture.at(x, 25) != Rgb{255, 255, 255})
                ends = {std::min<double>(ends.first, x), std::max<double>(ends.second, x + 1)};
        }
        return ends;
    };
    const auto [left, leftEnd] = inkBetween(Canvas::Align::Left);
    const auto [middle, middleEnd] = inkBetween(Canvas::Align::Center);
    const auto [right, rightEnd] = inkBetween(Canvas::Align::Right);
    EXPECT_NEAR(left, 150, 4);
    EXPECT_NEAR(leftEnd, 150 + width, 4);
    EXPECT_NEAR((middle + middleEnd) / 2, 150, 2);
    EXPECT_NEAR(rightEnd, 150, 4);
    EXPECT_NEAR(right, 150 - width, 4);
}

TEST(Canvas, drawsAnyBytesAsText)
{
    EXPECT_EQ(inkOf(""), 0);
    EXPECT_EQ(inkOf("\n\t\x7f"), 0) << "control characters are blanks";
    EXPECT_EQ(inkOf(std::string_view{"\0", 1}), 0);
    EXPECT_GT(inkOf(std::string_view{"\0a", 2}), 0);
    EXPECT_GT(inkOf("\u00e9"), 0);
    const int replacement = inkOf("\ufffd");
    EXPECT_GT(replacement, 0);
    // Stray continuation bytes, overlong forms, surrogates, codes beyond the last
    // character, and truncated characters.
    for (const std::string_view text : {"\x80", "\xff", "\xc3"})
        EXPECT_EQ(inkOf(text), replacement);
    EXPECT_EQ(inkOf("\xc0\xaf"), inkOf("\ufffd\ufffd"));
    EXPECT_EQ(inkOf("\xe2\x82"), inkOf("\ufffd\ufffd"));
    EXPECT_EQ(inkOf("\xe0\x80\xaf"), inkOf("\ufffd\ufffd\ufffd"));
    EXPECT_EQ(inkOf("\xed\xa0\x80"), inkOf("\ufffd\ufffd\ufffd"));
    EXPECT_EQ(inkOf("\xf4\x90\x80\x80"), inkOf("\ufffd\ufffd\ufffd\ufffd"));
}

TEST(Canvas, staysWellFormedIfTextMentionsSurfaces)
{
    Canvas canvas{PictureFormat::Svg, 100, 40};
    canvas.text({10, 30}, "<surface12> & \"surface3\"", 10, blue);
    EXPECT_EQ(Svg{canvas.finished()}.fault, "");
}

} // namespace CanvasTest
