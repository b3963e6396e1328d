#include <earth/Layer.hpp>

#include "earth/Picture.hpp"

#include <earth/Palette.hpp>

#include <fathom/VCamera.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace LayerTest {

using Earth::Canvas;
using Earth::Layer;
using Earth::PictureFormat;
using Earth::Ring;

namespace {

namespace Palette = Earth::Palette;

constexpr auto red = Palette::color(0xc03020);
constexpr auto green = Palette::color(0x20a040);
constexpr auto grey = Palette::color(0xd8d8d8);

Ring box(double west, double south, double east, double north)
{
    return {{west, south}, {east, south}, {east, north}, {west, north}};
}

// Draws a layer without land, and returns the colours of places.
class Drawn {
public:
    explicit Drawn(const Layer& layer, const std::string& chart = "plate carree")
        : m_canvas{PictureFormat::Png, 1280, 720}
        , m_view{makeView(m_canvas, Earth::Chart{chart}, Orla::VCamera{{4e7, 0, 0}, {}, {0, 0, 1}, 25})}
    {
        m_canvas.clear(Palette::paper);
        drawEarth(m_canvas, *m_view, {}, layer);
        m_picture = std::make_unique<Picture>(m_canvas.finished());
    }

    Rgb at(double longitude, double latitude) const
    {
        const Earth::Pixel pixel = m_view->seen(Earth::LonLat{longitude, latitude}).value();
        return m_picture->at(pixel.x, pixel.y);
    }

private:
    Canvas m_canvas;
    std::unique_ptr<Earth::View> m_view;
    std::unique_ptr<Picture> m_picture;
};

Layer layerOf(std::vector<Layer::Area> areas, std::vector<Layer::Lines> lines = {})
{
    Layer::Content content{std::move(areas), std::move(lines), {}};
    content.legend.unknown = grey;
    return Layer{content};
}

} // namespace

TEST(Layer, coversTheEarthWithItsAreasInTheirOrder)
{
    for (const char* chart : {"plate carree", "geocentric"}) {
        SCOPED_TRACE(chart);
        const Drawn drawn{layerOf({{{box(-20, -20, 20, 20)}, red}, {{box(0, -20, 40, 20)}, green}}, {}), chart};
        EXPECT_LE(difference(drawn.at(-10, 5), rgb(red)), 2);
        EXPECT_LE(difference(drawn.at(10, 5), rgb(green)), 2);
        EXPECT_LE(difference(drawn.at(35, 5), rgb(green)), 30) << "slightly shaded on the globe";
        EXPECT_LE(difference(drawn.at(-10, 25), rgb(grey)), 30) << "no data";
    }
}

TEST(Layer, fillsItsAreasByTheEvenOddRule)
{
    const Drawn drawn{layerOf({{{box(-20, -20, 20, 20), box(-10, -10, 10, 10)}, red}})};
    EXPECT_EQ(drawn.at(15, 5), rgb(red));
    EXPECT_EQ(drawn.at(5, 5), rgb(grey));
}

TEST(Layer, hasNoSeamsBetweenTheRingsOfAnArea)
{
    // The borders lie between the centres of pixels.
    const Drawn drawn{layerOf({{{box(-20, -20, 1.1, 1.3), box(1.1, -20, 20, 1.3), box(-20, 1.3, 20, 20)}, red}})};
    for (double longitude = -15.2; longitude < 15; longitude += 0.17) {
        if (std::abs(longitude) < 1)
            continue; // a line of the graticule
        EXPECT_EQ(drawn.at(longitude, 1.3), rgb(red)) << longitude;
        EXPECT_EQ(drawn.at(1.1, longitude), rgb(red)) << longitude;
    }
}

TEST(Layer, drawsItsLinesOverItsAreas)
{
    const Drawn drawn{layerOf({{{box(-20, -20, 20, 20)}, red}}, {{{{{-40, 5}, {40, 5}}}, green, 4}})};
    EXPECT_EQ(drawn.at(10, 5), rgb(green));
    EXPECT_EQ(drawn.at(10, 8), rgb(red));
    EXPECT_EQ(drawn.at(35, 5), rgb(green));
}

TEST(Layer, isDrawnAsThePlainEarthIfItIsEmpty)
{
    const auto drawn = [](auto draw) {
        Canvas canvas{PictureFormat::Png, 400, 300};
        const auto view = makeView(canvas, Earth::Chart{}, {});
        draw(canvas, *view);
        return canvas.finished();
    };
    const std::vector<Earth::Polygon> land{{box(-20, -20, 20, 20)}};
    EXPECT_EQ(drawn([&](Canvas& canvas, const Earth::View& view) { drawEarth(canvas, view, land, Layer{}); }),
              drawn([&](Canvas& canvas, const Earth::View& view) { view.drawEarth(canvas, land); }));
}

TEST(Layer, isEqualIfItsContentIs)
{
    const Layer one = layerOf({{{box(0, 0, 1, 1)}, red}});
    EXPECT_EQ(one, layerOf({{{box(0, 0, 1, 1)}, red}}));
    EXPECT_NE(one, layerOf({{{box(0, 0, 1, 2)}, red}}));
    EXPECT_NE(one, layerOf({{{box(0, 0, 1, 1)}, green}}));
    EXPECT_NE(one, layerOf({{{box(0, 0, 1, 1)}, red}}, {{{}, red, 1}}));
    EXPECT_NE(one, Layer{});
    EXPECT_EQ(Layer{}, Layer{});
}

TEST(Layer, isDescribedByATextThatCannotBeRead)
{
    using Trait = Orla::VValueTrait<Layer>;
    EXPECT_EQ(Trait::Text(layerOf({{{}, red}, {{}, green}}, {{{}, red, 1}})), "2 areas, 1 group of lines");
    EXPECT_EQ(Trait::Text(Layer{}), "");
    Layer layer;
    EXPECT_FALSE(Trait::setValueFromText(layer, "2 areas, 1 group of lines"));
}

} // namespace LayerTest
