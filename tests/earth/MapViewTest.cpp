#include <earth/MapView.hpp>

#include "earth/Marks.hpp"
#include "earth/Picture.hpp"
#include "earth/Planar.hpp"
#include "earth/Svg.hpp"
#include "earth/World.hpp"
#include "support/Sanitizers.hpp"

#include <earth/DateLine.hpp>
#include <earth/Palette.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace MapViewTest {

using Earth::Canvas;
using Earth::Chart;
using Earth::LonLat;
using Earth::MapView;
using Earth::PictureFormat;
using Earth::Pixel;
using Earth::Rectangle;

namespace {

namespace Palette = Earth::Palette;

class Map {
public:
    explicit Map(const std::vector<Dot>& dots, PictureFormat format = PictureFormat::Png, int width = 1280,
                 int height = 720, const char* chart = "plate carree")
        : m_canvas{format, width, height}
        , m_view{makeView(m_canvas, Chart{chart}, {})}
        , view{dynamic_cast<const MapView&>(*m_view)}
        , bytes{drawnWith(m_canvas, view, dots)}
    {
    }

private:
    Canvas m_canvas;
    std::unique_ptr<Earth::View> m_view;

public:
    const MapView& view;
    std::string bytes;
};

class ColorsOfMap : public Map, public Picture {
public:
    explicit ColorsOfMap(const std::vector<Dot>& dots, const char* chart = "plate carree")
        : Map{dots, PictureFormat::Png, 1280, 720, chart}, Picture{bytes}
    {
    }

    // Returns true if the map around a place is neither too small nor flattened.
    bool isLegible(const LonLat& place) const
    {
        const auto center = view.seen(place);
        const auto east = view.seen(LonLat{place.longitude + 3, place.latitude});
        const auto north = view.seen(LonLat{place.longitude, place.latitude - std::copysign(3, place.latitude)});
        if (!east || !north)
            return false;
        const Pixel a{east->x - center->x, east->y - center->y};
        const Pixel b{north->x - center->x, north->y - center->y};
        const double longer = std::max(std::hypot(a.x, a.y), std::hypot(b.x, b.y));
        return std::abs(a.x * b.y - a.y * b.x) > std::max(3 * longer, longer * longer / 8)
               && std::abs(place.latitude) < 86;
    }

    // Returns true if a pixel within two pixels of a place has that colour.
    bool has(const Rgb& color, const Pixel& place) const
    {
        for (int y = -2; y <= 2; ++y) {
            for (int x = -2; x <= 2; ++x) {
                if (Picture::at(place.x + x, place.y + y) == color)
                    return true;
            }
        }
        return false;
    }

    Rgb at(double longitude, double latitude) const
    {
        const auto pixel = view.seen(LonLat{longitude, latitude});
        if (!pixel) {
            ADD_FAILURE() << longitude << ' ' << latitude << " is not on the map";
            return {};
        }
        return Picture::at(pixel->x, pixel->y);
    }
};

// Returns the area of paths in square pixels, by the even-odd rule if none crosses another.
double area(const std::vector<Canvas::Path>& paths)
{
    double sum = 0;
    for (const Canvas::Path& path : paths)
        sum += signedArea(
            path, [](const Pixel& p) { return p.x; }, [](const Pixel& p) { return p.y; });
    return std::abs(sum);
}

const char* const charts[] = {
    "plate carree",
    "+proj=robin +lon_0=150",
    "+proj=igh",
    "+proj=ortho +lat_0=40 +lon_0=170",
    "+proj=utm +zone=32",
// Sanitizers make each chart ten times slower, and others find nothing new in memory.
#if !defined(SANITIZED)
    "+proj=robin",
    "+proj=moll",
    "+proj=merc",
    "+proj=eqearth",
    "EPSG:3857",
    "+proj=laea",
    "+proj=gnom +lat_0=-60",
    "+proj=stere +lat_0=-90",
    "+proj=aeqd +lat_0=40 +lon_0=10",
#endif
};

} // namespace

TEST(MapView, centresAFrameTwiceAsWideAsHigh)
{
    const MapView frame{Chart{}, {100, 50, 720, 400}};
    EXPECT_NEAR(frame.rectangle().left, 100, 1e-9);
    EXPECT_NEAR(frame.rectangle().top, 70, 1e-9);
    EXPECT_NEAR(frame.rectangle().width, 720, 1e-9);
    EXPECT_NEAR(frame.rectangle().height, 360, 1e-9);
    const MapView high{Chart{}, {0, 0, 800, 90}};
    EXPECT_NEAR(high.rectangle().left, 310, 1e-9);
    EXPECT_NEAR(high.rectangle().width, 180, 1e-9);

    const Pixel pixel = frame.seen(LonLat{-90, 45}).value();
    EXPECT_NEAR(pixel.x, 100 + 180, 1e-9);
    EXPECT_NEAR(pixel.y, 70 + 90, 1e-9);
}

TEST(MapView, coloursLandAndSea)
{
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
        {"Antarctica, south of the Pacific", -114, -79, true},
        {"Antarctica, south of Australia", 140, -75, true},
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
    for (const char* chart : charts) {
        SCOPED_TRACE(chart);
        const ColorsOfMap map{{}, chart};
        int checked = 0;
        for (const auto& [name, longitude, latitude, isLand] : places) {
            if (std::string(chart) == "plate carree")
                EXPECT_EQ(map.at(longitude, latitude), rgb(isLand ? Palette::land : Palette::sea)) << name;
            else if (const auto pixel = map.view.seen(LonLat{longitude, latitude});
                     pixel && map.isLegible({longitude, latitude})) {
                ++checked;
                // The graticule may be next to it.
                EXPECT_TRUE(map.has(rgb(isLand ? Palette::land : Palette::sea), *pixel)) << name;
            }
        }
        EXPECT_TRUE(checked > 1 || std::string(chart) == "plate carree") << checked;
    }
}

TEST(MapView, drawsNoStreaksAlongTheDateLine)
{
    const ColorsOfMap map{{}};
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

TEST(MapView, drawsMarksAtTheirPlaces)
{
    const ColorsOfMap map{{{{-120, 10}, 6}, {{-40, 30}, 16}}};
    for (const auto& [longitude, latitude] : {std::pair{-120, 10}, {-40, 30}})
        EXPECT_LE(difference(map.at(longitude, latitude), rgb(dotColor)), 1);
    const Pixel large = map.view.seen(LonLat{-40, 30}).value();
    EXPECT_LE(difference(map.Picture::at(large.x + 12, large.y), rgb(dotColor)), 1);
    const Pixel small = map.view.seen(LonLat{-120, 10}).value();
    EXPECT_EQ(map.Picture::at(small.x + 12, small.y), rgb(Palette::sea));
}

TEST(MapView, drawsMarksAtTheCutOnBothSides)
{
    for (const double longitude : {-180.0, 180.0, 540.0}) {
        const ColorsOfMap map{{{{longitude, 40}, 16}}};
        EXPECT_LE(difference(map.at(-178, 40), rgb(dotColor)), 1);
        EXPECT_LE(difference(map.at(178, 40), rgb(dotColor)), 1);
        EXPECT_EQ(map.at(-170, 40), rgb(Palette::sea));
    }
    const ColorsOfMap map{{{{-30, 40}, 16}}, "+proj=robin +lon_0=150"};
    EXPECT_LE(difference(map.at(-31.5, 40), rgb(dotColor)), 1);
    EXPECT_LE(difference(map.at(-28.5, 40), rgb(dotColor)), 1);
}

TEST(MapView, drawsNothingOutsideItsOutline)
{
    const std::vector<Dot> dots{{{-180, 89}, 20}, {{180, -89}, 20}, {{0, 90}, 20}, {{-100, -45}, 20}, {{0, 0}, 20}};
    const Rgb paper = rgb(Palette::paper);
    for (const char* chart : charts) {
        SCOPED_TRACE(chart);
        const ColorsOfMap empty{{}, chart};
        const ColorsOfMap full{dots, chart};
        const Rectangle& map = full.view.rectangle();
        int outside = 0;
        int drawn = 0;
        for (int y = 0; y < empty.height; ++y) {
            for (int x = 0; x < empty.width; ++x) {
                if (empty.Picture::at(x, y) != paper)
                    continue;
                ++outside;
                drawn += full.Picture::at(x, y) == paper ? 0 : 1;
            }
        }
        EXPECT_GT(outside, 300000);
        EXPECT_EQ(drawn, 0);
        EXPECT_EQ(empty.Picture::at(map.left - 4, 3), rgb(Palette::paper));
    }
}

TEST(MapView, writesTheSameBytesEachTime)
{
    const std::vector<Dot> dots{{{-140, 5}, 8}, {{179.9, -20}, 11}};
    for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg})
        EXPECT_EQ(Map(dots, format).bytes, Map(dots, format).bytes);
}

TEST(MapView, hasNoSegmentLongerThanHalfTheMapInItsSvg)
{
    const Map map{{{{180, 0}, 7}}, PictureFormat::Svg};
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
                const double latitude = 90 - (part[i].y - map.view.rectangle().top) / map.view.rectangle().height * 180;
                if (part[i].y == part[i - 1].y && std::abs(std::remainder(latitude, 30)) < 1e-3)
                    continue;
                EXPECT_LE(std::abs(part[i].x - part[i - 1].x), map.view.rectangle().width / 2 + 1e-3)
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
        const Map map{{{{10, 10}, 7}}, PictureFormat::Png, width, height};
        const Picture picture{map.bytes};
        EXPECT_EQ(picture.width, width);
        EXPECT_EQ(picture.height, height);
        EXPECT_EQ(Svg(Map({}, PictureFormat::Svg, width, height).bytes).fault, "");
    }
}

// Mollweide, Equal Earth and Lambert's azimuthal map keep areas.
TEST(MapView, keepsTheShareOfTheLandOnEqualAreaMaps)
{
    double expected = 0; // of the sphere
    for (const Earth::Polygon& polygon : world()) {
        for (std::size_t i = 0; i < polygon.size(); ++i)
            expected += (i == 0 ? 1 : -1) * Earth::areaOnTheLeft(Earth::withInsideOnTheLeft(polygon[i]));
    }
    expected /= 4 * std::numbers::pi;
    for (const char* chart : {"+proj=moll +R=6371000", "+proj=eqearth +R=6371000", "+proj=moll +lon_0=-90 +R=6371000",
                              "+proj=laea +lat_0=90 +R=6371000", "+proj=laea +lat_0=-35 +lon_0=60 +R=6371000"}) {
        SCOPED_TRACE(chart);
        const MapView map{Chart{chart}, {0, 0, 1000, 1000}};
        double land = 0;
        for (const Earth::Polygon& polygon : world()) {
            for (std::size_t i = 0; i < polygon.size(); ++i)
                land += (i == 0 ? 1 : -1) * area(map.seen(polygon[i]));
        }
        // A cap around any place but the cut.
        const double whole = land / expected;
        const double cap = area(map.seen(Earth::Ring{{0, 60}, {90, 60}, {180, 60}, {-90, 60}}));
        EXPECT_NEAR(cap / whole, (1 - std::sin(std::numbers::pi / 3)) / 2, 1e-3);
    }
}

TEST(MapView, drawsCurvesToATenthOfAPixel)
{
    const MapView map{Chart{"+proj=robin"}, {0, 0, 1000, 1000}};
    const auto path = map.seenLine({{60, -80}, {60, 80}}).at(0);
    EXPECT_LT(path.size(), 100u);
    for (double latitude = -79.9; latitude < 80; latitude += 0.37) {
        const Pixel place = map.seen(LonLat{60, latitude}).value();
        double nearest = 1000;
        for (std::size_t i = 0; i + 1 < path.size(); ++i) {
            const Pixel& a = path[i];
            const Pixel& b = path[i + 1];
            const double length = std::hypot(b.x - a.x, b.y - a.y);
            const double along = ((place.x - a.x) * (b.x - a.x) + (place.y - a.y) * (b.y - a.y)) / length;
            if (along >= 0 && along <= length)
                nearest =
                    std::min(nearest, std::abs((b.x - a.x) * (place.y - a.y) - (b.y - a.y) * (place.x - a.x)) / length);
        }
        EXPECT_LT(nearest, 0.15) << latitude;
    }
}

TEST(MapView, fillsItsSpaceInEachChart)
{
    for (const char* chart : charts) {
        SCOPED_TRACE(chart);
        const MapView map{Chart{chart}, {10, 20, 600, 500}};
        const Rectangle& found = map.rectangle();
        EXPECT_NEAR(std::max(found.width / 600, found.height / 500), 1, 1e-9);
        EXPECT_NEAR(found.left + found.width / 2, 310, 1e-6) << "centred";
        EXPECT_NEAR(found.top + found.height / 2, 270, 1e-6);
    }
    // A Mollweide map is twice as wide as high, Mercator's is pi to twice the latitude's function.
    const Rectangle moll = MapView{Chart{"+proj=moll"}, {0, 0, 1000, 1000}}.rectangle();
    EXPECT_NEAR(moll.width / moll.height, 2, 1e-3);
    const Rectangle azimuthal = MapView{Chart{"+proj=laea"}, {0, 0, 1000, 1000}}.rectangle();
    EXPECT_NEAR(azimuthal.width / azimuthal.height, 1, 5e-3);
}

TEST(MapView, drawsTheWholeDiscOfAnAzimuthalChart)
{
    for (const char* chart : {"+proj=laea", "+proj=laea +lat_0=90", "+proj=aeqd +lat_0=40 +lon_0=10", "+proj=ortho"}) {
        SCOPED_TRACE(chart);
        const ColorsOfMap map{{}, chart};
        const Rectangle& disc = map.view.rectangle();
        for (int angle = 0; angle < 360; angle += 5) {
            const auto at = [&](double radius) {
                return map.Picture::at(disc.left + disc.width / 2 + radius * std::cos(angle * 0.017453292519943295),
                                       disc.top + disc.height / 2 + radius * std::sin(angle * 0.017453292519943295));
            };
            EXPECT_NE(at(disc.width / 2 - 3), rgb(Palette::paper)) << angle;
            // The degrees are further away.
            EXPECT_EQ(at(disc.width / 2 + 3), rgb(Palette::paper)) << angle;
        }
    }
}

TEST(MapView, hidesPlacesOutsideItsRegion)
{
    const MapView map{Chart{"+proj=ortho"}, {0, 0, 100, 100}};
    EXPECT_TRUE(map.seen(LonLat{80, 10}));
    EXPECT_FALSE(map.seen(LonLat{100, 10}));
    EXPECT_TRUE(map.seen(Earth::Ring{{100, 0}, {110, 0}, {110, 10}}).empty());
    EXPECT_TRUE(map.seenLine({{100, 0}, {110, 0}}).empty());
}

TEST(MapView, refusesChartsThatAreNotFlat)
{
    EXPECT_THROW(MapView(Chart{"geocentric"}, {0, 0, 100, 100}), std::invalid_argument);
}

} // namespace MapViewTest
