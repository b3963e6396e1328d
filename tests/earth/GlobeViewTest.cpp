#include <earth/GlobeView.hpp>

#include "earth/Marks.hpp"
#include "earth/Picture.hpp"
#include "earth/Svg.hpp"
#include "earth/World.hpp"

#include <earth/Palette.hpp>
#include <earth/PictureFrame.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace GlobeViewTest {

using Earth::Canvas;
using Earth::GlobeView;
using Earth::LonLat;
using Earth::PictureFormat;
using Orla::VCamera;

namespace {

namespace Palette = Earth::Palette;

const VCamera aboveAfrica{{2.4e7, 6e6, 0}, {0, 0, 0}, {0, 0, 1}, 32};
const VCamera aboveSouthPole{{0, 0, -3e7}, {0, 0, 0}, {1, 0, 0}, 28};

class Globe {
public:
    explicit Globe(const std::vector<Dot>& dots, const VCamera& camera = aboveAfrica,
                   PictureFormat format = PictureFormat::Png, int width = 900, int height = 900)
        : m_canvas{format, width, height}, view{camera, pictureSpace(m_canvas)}, bytes{drawnWith(m_canvas, view, dots)}
    {
    }

private:
    Canvas m_canvas;

public:
    GlobeView view;
    std::string bytes;
};

class ColorsOfGlobe : public Globe, public Picture {
public:
    explicit ColorsOfGlobe(const std::vector<Dot>& dots, const VCamera& camera = aboveAfrica)
        : Globe{dots, camera}, Picture{bytes}
    {
    }

    Rgb at(double longitude, double latitude) const
    {
        const auto pixel = view.seen(LonLat{longitude, latitude});
        if (!pixel) {
            ADD_FAILURE() << longitude << ' ' << latitude << " is not visible";
            return {};
        }
        return Picture::at(pixel->x, pixel->y);
    }
};

bool isLand(const Rgb& color)
{
    return color.red > color.blue;
}

std::size_t differentPixels(const Picture& a, const Picture& b)
{
    std::size_t count = 0;
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < a.width; ++x)
            count += a.at(x, y) == b.at(x, y) ? 0u : 1u;
    }
    return count;
}

} // namespace

TEST(GlobeView, coloursLandAndSea)
{
    const ColorsOfGlobe africa{{}};
    EXPECT_TRUE(isLand(africa.at(20, 10)));
    EXPECT_TRUE(isLand(africa.at(25, -20)));
    EXPECT_TRUE(isLand(africa.at(40, 22))) << "Arabia";
    EXPECT_TRUE(isLand(africa.at(55, 58))) << "Russia, near the horizon";
    EXPECT_FALSE(isLand(africa.at(-20, -20))) << "Atlantic";
    EXPECT_FALSE(isLand(africa.at(70, -20))) << "Indian Ocean";
    EXPECT_LE(difference(africa.at(22, 5), rgb(Palette::land)), 6) << "hardly shaded in the middle";

    const ColorsOfGlobe antarctica{{}, aboveSouthPole};
    EXPECT_TRUE(isLand(antarctica.at(7, -89.5))) << "filled to the pole";
    EXPECT_TRUE(isLand(antarctica.at(179.7, -87.3)));
    EXPECT_TRUE(isLand(antarctica.at(-179.7, -87.3)));
    EXPECT_FALSE(isLand(antarctica.at(-140, -62)));
    EXPECT_FALSE(isLand(antarctica.at(100, -52)));
}

TEST(GlobeView, drawsVisibleMarks)
{
    const std::vector<Dot> dots{{{-12, -15}, 10}, {{22, 5}, 10}, {{47, 57}, 6}};
    const ColorsOfGlobe globe{dots};
    for (const Dot& dot : dots)
        EXPECT_LE(difference(globe.at(dot.place.longitude, dot.place.latitude), rgb(dotColor)), 1);
}

TEST(GlobeView, omitsMarksOnTheFarSide)
{
    // Directly behind the Earth: without it, the picture would show them.
    EXPECT_EQ(Globe({{{-166, 0}, 16}, {{170, 20}, 16}}).bytes, Globe{{}}.bytes);
    EXPECT_GT(differentPixels(ColorsOfGlobe{{}}, ColorsOfGlobe{{{{14, 0}, 16}}}), 500u) << "on the near side";
}

TEST(GlobeView, drawsNothingOutsideTheDisc)
{
    std::vector<Dot> dots;
    for (int longitude = -180; longitude < 180; longitude += 2)
        dots.push_back({{static_cast<double>(longitude), 30.0 * std::sin(longitude)}, 16});
    const ColorsOfGlobe globe{dots};
    const auto circle = globe.view.projection().circleAroundDisc();
    ASSERT_TRUE(circle);
    const Earth::Rectangle space = Earth::pictureSpace(Canvas{PictureFormat::Png, 900, 900});
    std::size_t outside = 0;
    for (int y = static_cast<int>(space.top) + 1; y < space.bottom() - 1; ++y) {
        for (int x = 0; x < 900; ++x) {
            if (std::hypot(x + 0.5 - circle->center.x, y + 0.5 - circle->center.y) > circle->radius + 1.5) {
                EXPECT_EQ(globe.Picture::at(x, y), rgb(Palette::paper)) << x << ' ' << y;
                ++outside;
            }
        }
    }
    EXPECT_GT(outside, 100000u);
}

TEST(GlobeView, drawsTheWholeDisc)
{
    const ColorsOfGlobe globe{{}};
    const auto circle = globe.view.projection().circleAroundDisc();
    ASSERT_TRUE(circle);
    for (int angle = 0; angle < 360; angle += 5) {
        const double x = circle->center.x + (circle->radius - 3) * std::cos(angle * 0.017453292519943295);
        const double y = circle->center.y + (circle->radius - 3) * std::sin(angle * 0.017453292519943295);
        EXPECT_NE(globe.Picture::at(x, y), rgb(Palette::paper)) << angle;
    }
}

TEST(GlobeView, staysInItsSpaceWhenTheCameraIsNear)
{
    const VCamera near{{6.9e6, 0, 0}, {0, 0, 0}, {0, 0, 1}, 60};
    const ColorsOfGlobe globe{{{{0, 0}, 16}, {{3, 3}, 16}}, near};
    const Earth::Rectangle space = Earth::pictureSpace(Canvas{PictureFormat::Png, 900, 900});
    for (int y = 0; y < 900; ++y) {
        EXPECT_EQ(globe.Picture::at(space.left - 3, y), rgb(Palette::paper)) << y;
        EXPECT_EQ(globe.Picture::at(space.right() + 2, y), rgb(Palette::paper)) << y;
    }
    EXPECT_NE(globe.Picture::at(space.left + 3, 450), rgb(Palette::paper));
}

TEST(GlobeView, writesTheSameBytesEachTime)
{
    const std::vector<Dot> dots{{{14, 5}, 8}, {{40, -20}, 11}};
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg})
        EXPECT_EQ(Globe(dots, aboveAfrica, format).bytes, Globe(dots, aboveAfrica, format).bytes);
}

TEST(GlobeView, writesWellFormedSvgOfModestSize)
{
    std::vector<Dot> dots;
    for (int i = 0; i < 500; ++i)
        dots.push_back({{static_cast<double>(i % 40), static_cast<double>(i % 30)}, 2.0 + i % 4});
    const Globe globe{dots, aboveAfrica, PictureFormat::Svg};
    const Svg svg{globe.bytes};
    EXPECT_EQ(svg.fault, "");
    EXPECT_LT(globe.bytes.size(), 1000000u) << "the clip must not be repeated for each mark";
    const std::ptrdiff_t clips = std::count_if(svg.elements.begin(), svg.elements.end(),
                                               [](const Svg::Element& element) { return element.name == "clipPath"; });
    EXPECT_LT(clips, 10);
}

TEST(GlobeView, refusesACameraInsideTheEarth)
{
    EXPECT_THROW(GlobeView(VCamera{{1e6, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30}, {0, 0, 100, 100}), std::invalid_argument);
}

TEST(GlobeView, drawsPicturesOfAnySize)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {16, 900}, {900, 16}, {300, 300}, {2000, 500}}) {
        SCOPED_TRACE(testing::Message() << width << ' ' << height);
        const Picture picture{Globe{{{{10, 10}, 7}}, aboveAfrica, PictureFormat::Png, width, height}.bytes};
        EXPECT_EQ(picture.width, width);
        EXPECT_EQ(picture.height, height);
    }
}

} // namespace GlobeViewTest
