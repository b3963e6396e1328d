#include <quakes/QuakePicture.hpp>

#include "earth/Picture.hpp"
#include "earth/Svg.hpp"
#include "World.hpp"

#include <earth/Layer.hpp>
#include <earth/PictureFrame.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace QuakePictureTest {

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

QuakePicture titled(const std::string& title)
{
    return {title, 0, Catalogue{}, ColorRule::Depth, {}};
}

} // namespace

TEST(QuakePicture, leavesTheSpaceOfTheMapEmpty)
{
    for (const auto& [width, height] : {std::pair{900, 900}, {1280, 720}, {300, 700}}) {
        Canvas canvas{PictureFormat::Png, width, height};
        const Earth::Rectangle space = Earth::pictureSpace(canvas);
        drawFrame(canvas, titled("A title"));
        const Picture picture{canvas.finished()};
        EXPECT_EQ(ink(picture, space.top, space.bottom()).count, 0);
        EXPECT_GT(ink(picture, 0, space.top).count, 100);
        EXPECT_GT(ink(picture, space.bottom(), height).count, 100);
    }
}

TEST(QuakePicture, showsTheTitleTheInstantAndTheNumberOfEvents)
{
    const QuakePicture picture{"Title", 1517356800, Catalogue{}, ColorRule::Depth, {}};
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

TEST(QuakePicture, hasALegendForItsRule)
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

TEST(QuakePicture, explainsGreyIfAValueIsUnknown)
{
    const auto greys = [](const std::string& bytes) {
        const Picture picture{bytes};
        int count = 0;
        for (int y = 800; y < 900; ++y) {
            for (int x = 0; x < 900; ++x)
                count += difference(picture.at(x, y), rgb(Quakes::unknownColor)) <= 1 ? 1 : 0;
        }
        return count;
    };
    QuakePicture picture{"Title", 10, Catalogue{{quakeAt(0, 0, 5, 10)}}, ColorRule::Depth, {}};
    EXPECT_LT(greys(frame(picture)), 20);
    picture.quakes = Catalogue{{quakeAt(0, 0, 5, std::nullopt)}};
    EXPECT_GT(greys(frame(picture)), 50);
    picture.colorRule = ColorRule::Magnitude;
    EXPECT_LT(greys(frame(picture)), 20) << "the magnitude is known";
}

TEST(QuakePicture, drawsLargeEventsFirst)
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

namespace {

// A whole picture as plate carree, and the colours of its places.
class Drawn {
public:
    explicit Drawn(const QuakePicture& picture)
        : m_canvas{PictureFormat::Png, 1280, 720}, m_view{makeView(m_canvas, Earth::Chart{}, {})}
    {
        draw(m_canvas, picture, world(), *m_view);
        m_picture.emplace(m_canvas.finished());
    }

    Rgb at(double longitude, double latitude) const
    {
        const Earth::Pixel pixel = m_view->seen(Earth::LonLat{longitude, latitude}).value();
        return m_picture->at(pixel.x, pixel.y);
    }

private:
    Canvas m_canvas;
    std::unique_ptr<Earth::View> m_view;
    std::optional<Picture> m_picture;
};

QuakePicture quakes(std::vector<Quakes::Quake> events, ColorRule rule = ColorRule::Depth)
{
    return {"Earthquakes", 1000, Catalogue{std::move(events)}, rule, {}};
}

} // namespace

TEST(QuakePicture, drawsEventsAtTheirPlacesInTheirColours)
{
    for (const ColorRule rule : {ColorRule::Magnitude, ColorRule::Depth}) {
        const QuakePicture picture =
            quakes({quakeAt(-120, 10, 5, 600), quakeAt(100, -30, 6, 10), quakeAt(-40, 30, 7, 80)}, rule);
        const Drawn map{picture};
        for (std::size_t i = 0; i < picture.quakes.size(); ++i) {
            const Quakes::Quake& quake = picture.quakes[i];
            EXPECT_LE(difference(map.at(quake.longitude, quake.latitude), rgb(quakeColor(quake, rule, 0))), 1);
        }
        // A degree is 2.8 pixels. The radius of the strongest event is 16 points, of the weakest 7.2.
        EXPECT_LE(difference(map.at(-40 + 12 / 2.8, 30), rgb(quakeColor(picture.quakes[2], rule, 0))), 1);
        EXPECT_EQ(map.at(-120 + 12 / 2.8, 10), rgb(Palette::sea));
    }
}

TEST(QuakePicture, drawsUnknownEventsSmallAndGrey)
{
    const Drawn map{quakes({quakeAt(-140.3, 5.2, std::nullopt, std::nullopt)})};
    EXPECT_GT(difference(map.at(-140.3, 5.2), rgb(Palette::sea)), 20);
    EXPECT_EQ(map.at(-138.5, 5.2), rgb(Palette::sea));
}

TEST(QuakePicture, drawsNoEventAfterItsInstant)
{
    const Drawn map{quakes({quakeAt(-140, 5, 6, 10, 1000), quakeAt(-35, 5, 6, 10, 1000.5)})};
    EXPECT_NE(map.at(-140, 5), rgb(Palette::sea));
    EXPECT_EQ(map.at(-35, 5), rgb(Palette::sea));
}

TEST(QuakePicture, drawsSmallEventsOverLargeOnes)
{
    const QuakePicture picture = quakes({quakeAt(-140, 5, 3, 600), quakeAt(-140, 5, 7, 0)});
    const Drawn map{picture};
    EXPECT_LE(difference(map.at(-140, 5), rgb(quakeColor(quakeAt(0, 0, 3, 600), ColorRule::Depth, 0))), 1);
}

TEST(QuakePicture, drawsEventsOverALayerWithItsLegendBesideTheTitles)
{
    constexpr auto green = Palette::color(0x20a040);
    constexpr auto grey = Palette::color(0xd8d8d8);
    QuakePicture picture = quakes({quakeAt(-140, 5, 6, 10)});
    picture.title = std::string(1000, 'W');
    picture.under = Earth::Layer{{{{{{{-170, -20}, {-110, -20}, {-110, 20}, {-170, 20}}}, green}},
                                  {},
                                  {"Rain (mm)", {grey, green}, {5}, grey, false}}};
    const Drawn map{picture};
    EXPECT_LE(difference(map.at(-140, 5), rgb(quakeColor(picture.quakes[0], picture.colorRule, 0))), 1);
    // The radius is 10.8 points; a degree is 2.8 pixels.
    int nearest = 255;
    for (double pixels = 9; pixels < 13; pixels += 0.25)
        nearest = std::min(nearest, difference(map.at(-140 + pixels / 2.8, 5), rgb(Palette::paper)));
    // Both the green and a dark outline differ by more than 200.
    EXPECT_LT(nearest, 150) << "a light outline";
    EXPECT_EQ(map.at(-125, 5), rgb(green));
    EXPECT_EQ(map.at(-35, 5), rgb(grey)) << "outside the layer";

    Canvas canvas{PictureFormat::Png, 900, 720};
    drawFrame(canvas, picture);
    const Picture frame{canvas.finished()};
    EXPECT_EQ(frame.at(900 - 26 - 340, 48), rgb(grey));
    EXPECT_EQ(frame.at(900 - 26 - 10, 48), rgb(green));
    int blank = 0;
    for (int x = 900 - 26 - 360; x < 900 - 26 - 352; ++x)
        blank += frame.at(x, 40) == rgb(Palette::paper) ? 1 : 0;
    EXPECT_EQ(blank, 8) << "the title ends before the legend";
}

} // namespace QuakePictureTest
