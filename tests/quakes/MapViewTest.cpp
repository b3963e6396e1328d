#include <quakes/MapView.hpp>

#include "earth/Picture.hpp"
#include "earth/Svg.hpp"
#include "World.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>

using Earth::Canvas;
using Quakes::Catalogue;
using Quakes::ColorRule;
using Quakes::drawMap;
using Earth::LonLat;
using Quakes::MapFrame;
using Earth::PictureFormat;
using Earth::Pixel;
using Quakes::QuakePicture;

namespace {

namespace Palette = Earth::Palette;

QuakePicture quakes(std::vector<Quakes::Quake> events, ColorRule rule = ColorRule::Depth)
{
    return {"Earthquakes", 1000, Catalogue{std::move(events)}, rule};
}

class Map {
public:
    explicit Map(const QuakePicture& picture, PictureFormat format = PictureFormat::Png, int width = 1280,
                 int height = 720)
        : m_canvas{format, width, height}, frame{drawMap(m_canvas, picture, world())}, bytes{m_canvas.finished()}
    {
    }

private:
    Canvas m_canvas;

public:
    MapFrame frame;
    std::string bytes;
};

class ColorsOfMap : public Map, public Picture {
public:
    explicit ColorsOfMap(const QuakePicture& picture) : Map{picture}, Picture{bytes} {}

    Rgb at(double longitude, double latitude) const
    {
        const Pixel pixel = frame.pixel({longitude, latitude});
        return Picture::at(pixel.x, pixel.y);
    }
};

} // namespace

TEST(MapView, centresAFrameTwiceAsWideAsHigh)
{
    const MapFrame frame{{100, 50, 720, 400}};
    EXPECT_NEAR(frame.rectangle().left, 100, 1e-9);
    EXPECT_NEAR(frame.rectangle().top, 70, 1e-9);
    EXPECT_NEAR(frame.rectangle().width, 720, 1e-9);
    EXPECT_NEAR(frame.rectangle().height, 360, 1e-9);
    const MapFrame high{{0, 0, 800, 90}};
    EXPECT_NEAR(high.rectangle().left, 310, 1e-9);
    EXPECT_NEAR(high.rectangle().width, 180, 1e-9);

    const Pixel pixel = frame.pixel({-90, 45});
    EXPECT_NEAR(pixel.x, 100 + 180, 1e-9);
    EXPECT_NEAR(pixel.y, 70 + 90, 1e-9);
}

TEST(MapView, coloursLandAndSea)
{
    const ColorsOfMap map{quakes({})};
    const struct {
        const char* name;
        double longitude;
        double latitude;
        bool isLand;
    } places[] = {
        {"Brazil", -55, -10, true},
        {"Kazakhstan", 66, 48, true},
        {"Sahara", 10, 23, true},
        {"Australia", 134, -24, true},
        {"Greenland", -40, 75, true},
        {"Antarctica", 70, -80, true},
        {"the south pole", 10, -89.5, true},
        {"Antarctica in the west", -179.5, -88, true},
        {"Antarctica in the east", 179.5, -88, true},
        {"Chukotka", -178, 68, true},
        {"west of the date line", 175, 68, true},
        {"the Pacific", -140, 5, false},
        {"the Atlantic", -35, 10, false},
        {"the Indian Ocean", 80, -20, false},
        {"the Caspian Sea", 51, 42, false},
        {"the Arctic", 10, 87, false},
        {"the Pacific in the east", 179, 40, false},
        {"the Pacific in the west", -179, 40, false},
        {"the Bering Sea", -175, 58, false},
    };
    for (const auto& [name, longitude, latitude, isLand] : places)
        EXPECT_EQ(map.at(longitude, latitude), rgb(isLand ? Palette::land : Palette::sea)) << name;
}

TEST(MapView, drawsNoStreaksAlongTheDateLine)
{
    const ColorsOfMap map{quakes({})};
    // Places at sea near both edges and in the middle of an ocean.
    for (double latitude = -60.5; latitude < 60; latitude += 1.7) {
        for (const double longitude : {-179.3, -170.7, -140.5}) {
            const Rgb color = map.at(longitude, latitude);
            EXPECT_TRUE(color == rgb(Palette::sea) || std::abs(std::remainder(latitude, 30)) < 1
                        || (latitude > -22 && latitude < -13)) // Fiji
                << color << " at " << longitude << ' ' << latitude;
        }
    }
}

TEST(MapView, drawsEventsAtTheirPlacesInTheirColours)
{
    for (const ColorRule rule : {ColorRule::Magnitude, ColorRule::Depth}) {
        const QuakePicture picture =
            quakes({quakeAt(-120, 10, 5, 600), quakeAt(100, -30, 6, 10), quakeAt(-40, 30, 7, 80)}, rule);
        const ColorsOfMap map{picture};
        for (std::size_t i = 0; i < picture.quakes.size(); ++i) {
            const Quakes::Quake& quake = picture.quakes[i];
            EXPECT_LE(difference(map.at(quake.longitude, quake.latitude), rgb(quakeColor(quake, rule, 0))), 1);
        }
        // The radius of the strongest event is 16 points, of the weakest 6.7.
        const Pixel strong = map.frame.pixel({-40, 30});
        EXPECT_LE(difference(map.Picture::at(strong.x + 12, strong.y), rgb(quakeColor(picture.quakes[2], rule, 0))), 1);
        const Pixel weak = map.frame.pixel({-120, 10});
        EXPECT_EQ(map.Picture::at(weak.x + 12, weak.y), rgb(Palette::sea));
    }
}

TEST(MapView, drawsUnknownEventsSmallAndGrey)
{
    const ColorsOfMap map{quakes({quakeAt(-140.3, 5.2, std::nullopt, std::nullopt)})};
    EXPECT_GT(difference(map.at(-140.3, 5.2), rgb(Palette::sea)), 20);
    EXPECT_EQ(map.at(-138.5, 5.2), rgb(Palette::sea));
}

TEST(MapView, drawsNoEventAfterItsInstant)
{
    const ColorsOfMap map{quakes({quakeAt(-140, 5, 6, 10, 1000), quakeAt(-35, 5, 6, 10, 1000.5)})};
    EXPECT_NE(map.at(-140, 5), rgb(Palette::sea));
    EXPECT_EQ(map.at(-35, 5), rgb(Palette::sea));
}

TEST(MapView, drawsEventsOnTheDateLineOnBothSides)
{
    for (const double longitude : {-180.0, 180.0, 540.0}) {
        const ColorsOfMap map{quakes({quakeAt(longitude, 40, 7, 10)})};
        const Rgb color = rgb(quakeColor(quakeAt(0, 0, 7, 10), ColorRule::Depth, 0));
        EXPECT_LE(difference(map.at(-178, 40), color), 1);
        EXPECT_LE(difference(map.at(178, 40), color), 1);
        EXPECT_EQ(map.at(-170, 40), rgb(Palette::sea));
    }
}

TEST(MapView, drawsNothingOutsideItsFrame)
{
    const QuakePicture none = quakes({});
    const ColorsOfMap empty{none};
    QuakePicture many = quakes({quakeAt(-180, 89, 9, 10), quakeAt(180, -89, 9, 10), quakeAt(0, 90, 9, 10)});
    const ColorsOfMap full{many};
    const Earth::Rectangle& map = full.frame.rectangle();
    for (int y = static_cast<int>(map.top) - 3; y < map.bottom() + 3; ++y) {
        for (const double x : {map.left - 3, map.right() + 3})
            EXPECT_EQ(full.Picture::at(x, y), empty.Picture::at(x, y));
    }
    for (int x = static_cast<int>(map.left); x < map.right(); ++x)
        EXPECT_EQ(full.Picture::at(x, map.top - 3), empty.Picture::at(x, map.top - 3));
}

TEST(MapView, drawsSmallEventsOverLargeOnes)
{
    const QuakePicture picture = quakes({quakeAt(-140, 5, 3, 600), quakeAt(-140, 5, 7, 0)});
    const ColorsOfMap map{picture};
    EXPECT_LE(difference(map.at(-140, 5), rgb(quakeColor(quakeAt(0, 0, 3, 600), ColorRule::Depth, 0))), 1);
}

TEST(MapView, writesTheSameBytesEachTime)
{
    const QuakePicture picture = quakes({quakeAt(-140, 5, 5.5, 33.3), quakeAt(179.9, -20, 6, 500)}, ColorRule::Age);
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg})
        EXPECT_EQ(Map(picture, format).bytes, Map(picture, format).bytes);
}

TEST(MapView, hasNoSegmentLongerThanHalfTheMapInItsSvg)
{
    const Map map{quakes({quakeAt(180, 0, 5, 10)}), PictureFormat::Svg};
    const Svg svg{map.bytes};
    ASSERT_EQ(svg.fault, "");
    std::size_t segments = 0;
    for (const Svg::Element& element : svg.elements) {
        if (element.name != "path")
            continue;
        for (const auto& part : pathParts(element.attribute("d"))) {
            // Rectangles: the paper, the sea, the frame, the legend.
            const bool isRectangle = part.size() >= 5 && part.size() <= 6 && part[0].y == part[1].y
                                     && part[1].x == part[2].x && part[2].y == part[3].y;
            if (isRectangle)
                continue;
            for (std::size_t i = 1; i < part.size(); ++i) {
                // A line of the graticule, or a pole.
                const double latitude =
                    90 - (part[i].y - map.frame.rectangle().top) / map.frame.rectangle().height * 180;
                if (part[i].y == part[i - 1].y && std::abs(std::remainder(latitude, 30)) < 1e-3)
                    continue;
                EXPECT_LE(std::abs(part[i].x - part[i - 1].x), map.frame.rectangle().width / 2 + 1e-3)
                    << element.attribute("style");
                ++segments;
            }
        }
    }
    EXPECT_GT(segments, 10000u) << "the land and its coasts";
}

TEST(MapView, drawsPicturesOfAnySize)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {16, 900}, {900, 16}, {300, 200}, {2000, 500}}) {
        SCOPED_TRACE(testing::Message() << width << ' ' << height);
        const Map map{quakes({quakeAt(10, 10, 5, 10)}), PictureFormat::Png, width, height};
        const Picture picture{map.bytes};
        EXPECT_EQ(picture.width, width);
        EXPECT_EQ(picture.height, height);
        EXPECT_EQ(Svg(Map(quakes({}), PictureFormat::Svg, width, height).bytes).fault, "");
    }
}
