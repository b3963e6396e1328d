#include <quakes/GlobeView.hpp>

#include "earth/Picture.hpp"
#include "earth/Svg.hpp"
#include "World.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>

using Orla::VCamera;
using Earth::Canvas;
using Quakes::Catalogue;
using Quakes::ColorRule;
using Quakes::drawGlobe;
using Earth::GlobeProjection;
using Earth::LonLat;
using Earth::PictureFormat;
using Quakes::QuakePicture;

namespace {

namespace Palette = Earth::Palette;

const VCamera aboveAfrica{{2.4e7, 6e6, 0}, {0, 0, 0}, {0, 0, 1}, 32};
const VCamera aboveSouthPole{{0, 0, -3e7}, {0, 0, 0}, {1, 0, 0}, 28};

QuakePicture quakes(std::vector<Quakes::Quake> events, ColorRule rule = ColorRule::Depth)
{
    return {"Earthquakes", 1000, Catalogue{std::move(events)}, rule};
}

class Globe {
public:
    explicit Globe(const QuakePicture& picture, const VCamera& camera = aboveAfrica,
                   PictureFormat format = PictureFormat::Png, int width = 900, int height = 900)
        : m_canvas{format, width, height}
        , projection{drawGlobe(m_canvas, picture, world(), camera)}
        , bytes{m_canvas.finished()}
    {
    }

private:
    Canvas m_canvas;

public:
    GlobeProjection projection;
    std::string bytes;
};

class ColorsOfGlobe : public Globe, public Picture {
public:
    explicit ColorsOfGlobe(const QuakePicture& picture, const VCamera& camera = aboveAfrica)
        : Globe{picture, camera}, Picture{bytes}
    {
    }

    Rgb at(double longitude, double latitude) const
    {
        const auto pixel = projection.seen(LonLat{longitude, latitude});
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
    const ColorsOfGlobe africa{quakes({})};
    EXPECT_TRUE(isLand(africa.at(20, 10)));
    EXPECT_TRUE(isLand(africa.at(25, -20)));
    EXPECT_TRUE(isLand(africa.at(40, 22))) << "Arabia";
    EXPECT_TRUE(isLand(africa.at(55, 58))) << "Russia, near the horizon";
    EXPECT_FALSE(isLand(africa.at(-20, -20))) << "Atlantic";
    EXPECT_FALSE(isLand(africa.at(70, -20))) << "Indian Ocean";
    EXPECT_LE(difference(africa.at(22, 5), rgb(Palette::land)), 6) << "hardly shaded in the middle";

    const ColorsOfGlobe antarctica{quakes({}), aboveSouthPole};
    EXPECT_TRUE(isLand(antarctica.at(7, -89.5))) << "filled to the pole";
    EXPECT_TRUE(isLand(antarctica.at(179.7, -87.3)));
    EXPECT_TRUE(isLand(antarctica.at(-179.7, -87.3)));
    EXPECT_FALSE(isLand(antarctica.at(-140, -62)));
    EXPECT_FALSE(isLand(antarctica.at(100, -52)));
}

TEST(GlobeView, drawsVisibleEventsInTheirColours)
{
    const QuakePicture picture = quakes({quakeAt(-12, -15, 6, 600), quakeAt(22, 5, 6, 10), quakeAt(47, 57, 5, 80)});
    const ColorsOfGlobe globe{picture};
    for (std::size_t i = 0; i < picture.quakes.size(); ++i) {
        const Quakes::Quake& quake = picture.quakes[i];
        EXPECT_LE(difference(globe.at(quake.longitude, quake.latitude), rgb(quakeColor(quake, picture.colorRule, 0))),
                  1);
    }
}

TEST(GlobeView, omitsEventsOnTheFarSide)
{
    // Directly behind the Earth: without it, the picture would show them.
    QuakePicture none = quakes({});
    QuakePicture hidden = quakes({quakeAt(-166, 0, 7, 10), quakeAt(170, 20, 7, 600)});
    const ColorsOfGlobe empty{none};
    const ColorsOfGlobe behind{hidden};
    std::size_t different = 0;
    for (int y = 90; y < 900 - 102; ++y) {
        for (int x = 0; x < 900; ++x)
            different += empty.Picture::at(x, y) == behind.Picture::at(x, y) ? 0u : 1u;
    }
    EXPECT_EQ(different, 0u);
    EXPECT_GT(differentPixels(empty, ColorsOfGlobe{quakes({quakeAt(14, 0, 7, 10)})}), 500u) << "on the near side";
}

TEST(GlobeView, drawsNothingOutsideTheDisc)
{
    std::vector<Quakes::Quake> events;
    for (int longitude = -180; longitude < 180; longitude += 2)
        events.push_back(quakeAt(longitude, 30.0 * std::sin(longitude), 7, 10));
    const QuakePicture picture = quakes(std::move(events));
    const ColorsOfGlobe globe{picture};
    const auto circle = globe.projection.circleAroundDisc();
    ASSERT_TRUE(circle);
    const Earth::Rectangle space = Quakes::pictureSpace(Canvas{PictureFormat::Png, 900, 900});
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
    const ColorsOfGlobe globe{quakes({})};
    const auto circle = globe.projection.circleAroundDisc();
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
    const ColorsOfGlobe globe{quakes({quakeAt(0, 0, 7, 10), quakeAt(3, 3, 7, 10)}), near};
    const Earth::Rectangle space = Quakes::pictureSpace(Canvas{PictureFormat::Png, 900, 900});
    for (int y = 0; y < 900; ++y) {
        EXPECT_EQ(globe.Picture::at(space.left - 3, y), rgb(Palette::paper)) << y;
        EXPECT_EQ(globe.Picture::at(space.right() + 2, y), rgb(Palette::paper)) << y;
    }
    EXPECT_NE(globe.Picture::at(space.left + 3, 450), rgb(Palette::paper));
}

TEST(GlobeView, writesTheSameBytesEachTime)
{
    const QuakePicture picture = quakes({quakeAt(14, 5, 5.5, 33.3), quakeAt(40, -20, 6, 500)}, ColorRule::Age);
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg})
        EXPECT_EQ(Globe(picture, aboveAfrica, format).bytes, Globe(picture, aboveAfrica, format).bytes);
}

TEST(GlobeView, writesWellFormedSvgOfModestSize)
{
    std::vector<Quakes::Quake> events;
    for (int i = 0; i < 500; ++i)
        events.push_back(quakeAt(i % 40, i % 30, 2 + i % 4, i));
    const Globe globe{quakes(std::move(events)), aboveAfrica, PictureFormat::Svg};
    const Svg svg{globe.bytes};
    EXPECT_EQ(svg.fault, "");
    EXPECT_LT(globe.bytes.size(), 1000000u) << "the clip must not be repeated for each event";
    const std::ptrdiff_t clips = std::count_if(svg.elements.begin(), svg.elements.end(),
                                               [](const Svg::Element& element) { return element.name == "clipPath"; });
    EXPECT_LT(clips, 10);
}

TEST(GlobeView, refusesACameraInsideTheEarthBeforeItDraws)
{
    Canvas canvas{PictureFormat::Svg, 100, 100};
    EXPECT_THROW(drawGlobe(canvas, quakes({}), world(), VCamera{{1e6, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30}),
                 std::invalid_argument);
    EXPECT_EQ(canvas.finished(), Canvas(PictureFormat::Svg, 100, 100).finished());
}

TEST(GlobeView, drawsPicturesOfAnySize)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {16, 900}, {900, 16}, {300, 300}, {2000, 500}}) {
        SCOPED_TRACE(testing::Message() << width << ' ' << height);
        const Picture picture{
            Globe{quakes({quakeAt(10, 10, 5, 10)}), aboveAfrica, PictureFormat::Png, width, height}.bytes};
        EXPECT_EQ(picture.width, width);
        EXPECT_EQ(picture.height, height);
    }
}
