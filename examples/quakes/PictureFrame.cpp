#include "PictureFrame.hpp"

#include <earth/UtcText.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Quakes {

namespace {

constexpr double margin = 26; // points
constexpr double headerHeight = 90;
constexpr double footerHeight = 88;

std::string withThousands(std::size_t number)
{
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3)
        text.insert(i - 3, 1, ',');
    return text;
}

bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xc0) == 0x80;
}

// Draws a text in at most the given width: reduces its size if necessary, and shortens it
// if it would become too small to read.
void writeFitted(Canvas& canvas, const Pixel& place, std::string text, double size, const Canvas::Color& color,
                 double width, bool isBold)
{
    constexpr double smallest = 0.6;
    const double found = canvas.textWidth(text, size, isBold);
    size *= std::clamp(width / found, smallest, 1.0);
    if (found * smallest > width) {
        constexpr std::string_view ellipsis = "\u2026";
        // Cut roughly first: measuring a very long text repeatedly is slow.
        text.resize(std::min(text.size(), static_cast<std::size_t>(4 * width / size) + 4));
        do {
            while (!text.empty() && isContinuation(text.back()))
                text.pop_back();
            if (!text.empty())
                text.pop_back();
        } while (!text.empty() && canvas.textWidth(text + std::string(ellipsis), size, isBold) > width);
        text += ellipsis;
    }
    canvas.text(place, text, size, color, Canvas::Align::Left, isBold);
}

void drawHeader(Canvas& canvas, const QuakePicture& picture, std::size_t count, double point)
{
    const double width = canvas.width() - 2 * margin * point;
    writeFitted(canvas, {margin * point, 44 * point}, picture.title, 25 * point, Palette::ink, width, true);
    const std::string line =
        utcText(picture.instant) + "  \u00b7  " + withThousands(count) + (count == 1 ? " event" : " events");
    writeFitted(canvas, {margin * point, 68 * point}, line, 15 * point, Palette::faintInk, width, false);
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
    constexpr double fontSize = 12;
    const ColorLegend legend = colorLegend(rule);
    const Rectangle bar{right - 370 * point, top + 28 * point, 350 * point, 16 * point};
    canvas.text({bar.left, top + 14 * point}, legend.title, fontSize * point, Palette::ink, Canvas::Align::Left, true);
    constexpr int count = 33;
    std::vector<Canvas::Color> colors;
    colors.reserve(count);
    for (int i = 0; i < count; ++i)
        colors.push_back(colorAt(rule, static_cast<double>(i) / (count - 1)));
    canvas.fill(bar, colors);
    canvas.stroke(bar, Palette::faintInk, 0.7 * point);
    for (const double value : legend.values) {
        const double x = bar.left + scalePosition(rule, value) * bar.width;
        canvas.stroke({{{x, bar.bottom()}, {x, bar.bottom() + 5 * point}}}, Palette::faintInk, 0.7 * point);
        canvas.text({x, top + 66 * point}, Loam::numberText(value), fontSize * point, Palette::faintInk,
                    Canvas::Align::Center);
    }
    if (hasUnknown) {
        canvas.circle({bar.right() - 66 * point, top + 10 * point}, 5 * point, Palette::unknown, Palette::outline,
                      0.8 * point);
        canvas.text({bar.right(), top + 14 * point}, "unknown", fontSize * point, Palette::faintInk,
                    Canvas::Align::Right);
    }
}

} // namespace

double pixelsOfPoint(const Canvas& canvas) noexcept
{
    return std::min(canvas.width() / 900.0, canvas.height() / 720.0);
}

Rectangle pictureSpace(const Canvas& canvas) noexcept
{
    const double point = pixelsOfPoint(canvas);
    return {margin * point, headerHeight * point, canvas.width() - 2 * margin * point,
            canvas.height() - (headerHeight + footerHeight + 14) * point};
}

void drawFrame(Canvas& canvas, const QuakePicture& picture)
{
    const double point = pixelsOfPoint(canvas);
    const Catalogue happened = picture.quakes.until(picture.instant);
    bool hasUnknown = false;
    for (std::size_t i = 0; i < happened.size() && !hasUnknown; ++i)
        hasUnknown = !coloredValue(happened[i], picture.colorRule, picture.instant);

    canvas.clear(Palette::paper);
    drawHeader(canvas, picture, happened.size(), point);
    const double footer = canvas.height() - footerHeight * point;
    drawSizes(canvas, picture.colorRule, margin * point, footer, point);
    drawColors(canvas, picture.colorRule, hasUnknown, canvas.width() - margin * point, footer, point);
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

void drawQuake(Canvas& canvas, const QuakePicture& picture, const Quake& quake, const Pixel& place,
               const Canvas::Path& within)
{
    const double point = pixelsOfPoint(canvas);
    const Canvas::Color color = quakeColor(quake, picture.colorRule, picture.instant);
    Canvas::Color outline = Palette::outline;
    outline.a *= color.a;
    const double radius = quakeRadius(quake.magnitude) * point;
    // Thin outlines around small events, so crowds of them do not turn black.
    const double lineWidth = std::clamp(0.16 * radius, 0.2 * point, 0.8 * point);
    if (within.empty())
        canvas.circle(place, radius, color, outline, lineWidth);
    else
        canvas.circle(place, radius, color, outline, lineWidth, within);
}

} // namespace Quakes
