#include "QuakePicture.hpp"

#include <earth/Palette.hpp>
#include <earth/PictureFrame.hpp>
#include <earth/UtcText.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cstddef>

namespace Quakes {

using Earth::Canvas;
using Earth::Pixel;
using Earth::Rectangle;

namespace Palette = Earth::Palette;

namespace {

constexpr auto outlineColor = Palette::color(0x1a122e, 0.75f);

std::string withThousands(std::size_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3)
        text.insert(i - 3, 1, ',');
    return text;
}

void drawSizes(Canvas& canvas, ColorRule rule, double left, double top, double point)
{
    constexpr double fontSize = 12;
    constexpr double step = 40;
    canvas.text({left, top + 14 * point}, "Magnitude", fontSize * point, Palette::ink, Canvas::Align::Left, true);
    for (int magnitude = 2; magnitude <= 7; ++magnitude) {
        const bool isColored = rule == ColorRule::Magnitude;
        const Canvas::Color color = isColored ? colorAt(rule, scalePosition(rule, magnitude)) : Palette::paper;
        const Pixel center{left + (14 + step * (magnitude - 2)) * point, top + 37 * point};
        canvas.circle(center, quakeRadius(magnitude) * point, color, Palette::ink, 0.8 * point);
        canvas.text({center.x, top + 66 * point}, Loam::numberText(magnitude), fontSize * point, Palette::faintInk,
                    Canvas::Align::Center);
    }
}

void drawColors(Canvas& canvas, ColorRule rule, bool hasUnknown, double right, double top, double point)
{
    const ColorLegend legend = colorLegend(rule);
    Earth::ColorBar content{legend.title, {}, {}};
    constexpr int count = 33;
    for (int i = 0; i < count; ++i)
        content.colors.push_back(colorAt(rule, static_cast<double>(i) / (count - 1)));
    for (const double value : legend.values)
        content.values.push_back({value, scalePosition(rule, value)});
    const Rectangle bar{right - 370 * point, top + 28 * point, 350 * point, 16 * point};
    drawColorBar(canvas, bar, content);
    if (hasUnknown) {
        canvas.circle({bar.right() - 66 * point, top + 10 * point}, 5 * point, unknownColor, outlineColor, 0.8 * point);
        canvas.text({bar.right(), top + 14 * point}, "unknown", 12 * point, Palette::faintInk, Canvas::Align::Right);
    }
}

} // namespace

void drawFrame(Canvas& canvas, const QuakePicture& picture)
{
    const double point = Earth::pixelsOfPoint(canvas);
    const Earth::Layer::Content* const under = picture.under.content();
    const Rectangle upper = Earth::upperLegendSpace(canvas);
    const Catalogue happened = picture.quakes.until(picture.instant);
    bool hasUnknown = false;
    for (std::size_t i = 0; i < happened.size() && !hasUnknown; ++i)
        hasUnknown = !coloredValue(happened[i], picture.colorRule, picture.instant);

    drawPictureFrame(canvas, picture.title,
                     Earth::utcText(picture.instant) + "  \u00b7  " + withThousands(happened.size())
                         + (happened.size() == 1 ? " event" : " events"),
                     under ? upper.width + 20 * point : 0);
    if (under)
        drawColorClasses(canvas, {upper.left, upper.top + 42 * point, upper.width, 12 * point}, under->legend);
    const Rectangle legend = Earth::legendSpace(canvas);
    drawSizes(canvas, picture.colorRule, legend.left, legend.top, point);
    drawColors(canvas, picture.colorRule, hasUnknown, legend.right(), legend.top, point);
}

void drawQuakes(Canvas& canvas, const QuakePicture& picture, const Earth::View& view)
{
    const double point = Earth::pixelsOfPoint(canvas);
    for (const Quake* const quake : drawnQuakes(picture.quakes.until(picture.instant))) {
        Earth::View::Mark mark;
        mark.color = quakeColor(*quake, picture.colorRule, picture.instant);
        // Dark marks must stand out from dark places of a layer.
        mark.outline = picture.under.content() ? Palette::paper : outlineColor;
        mark.outline.a *= mark.color.a;
        mark.radius = quakeRadius(quake->magnitude) * point;
        // Thin outlines around small events, so crowds of them do not turn black.
        mark.lineWidth = std::clamp(0.16 * mark.radius, 0.2 * point, 0.8 * point);
        view.drawMark(canvas, {quake->longitude, quake->latitude}, mark);
    }
}

void draw(Canvas& canvas, const QuakePicture& picture, const std::vector<Earth::Polygon>& land, const Earth::View& view)
{
    drawFrame(canvas, picture);
    view.beginClip(canvas);
    drawEarth(canvas, view, land, picture.under);
    drawQuakes(canvas, picture, view);
    canvas.endClip();
    view.drawFrame(canvas);
}

std::vector<const Quake*> drawnQuakes(const Catalogue& happened)
{
    std::vector<const Quake*> quakes;
    quakes.reserve(happened.size());
    for (std::size_t i = 0; i < happened.size(); ++i)
        quakes.push_back(&happened[i]);
    std::stable_sort(quakes.begin(), quakes.end(), [](const Quake* a, const Quake* b) {
        return quakeRadius(a->magnitude) > quakeRadius(b->magnitude);
    });
    return quakes;
}

} // namespace Quakes
