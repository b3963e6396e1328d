#include <earth/PictureFrame.hpp>

#include <earth/Palette.hpp>

#include <loam/Numbers.hpp>
#include <loam/Utf8.hpp>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Earth {

namespace {

constexpr double margin = 26; // points
constexpr double headerHeight = 90;
constexpr double footerHeight = 88;

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
            while (!text.empty() && Loam::isContinuation(text.back()))
                text.pop_back();
            if (!text.empty())
                text.pop_back();
        } while (!text.empty() && canvas.textWidth(text + std::string(ellipsis), size, isBold) > width);
        text += ellipsis;
    }
    canvas.text(place, text, size, color, Canvas::Align::Left, isBold);
}

} // namespace

double pixelsOfPoint(const Canvas& canvas) noexcept
{
    return std::min(canvas.width() / 900.0, canvas.height() / 720.0);
}

Rectangle pictureSpace(const Canvas& canvas) noexcept
{
    const double pt = pixelsOfPoint(canvas);
    return {margin * pt, headerHeight * pt, canvas.width() - 2 * margin * pt,
            canvas.height() - (headerHeight + footerHeight + 14) * pt};
}

Rectangle legendSpace(const Canvas& canvas) noexcept
{
    const double pt = pixelsOfPoint(canvas);
    return {margin * pt, canvas.height() - footerHeight * pt, canvas.width() - 2 * margin * pt, footerHeight * pt};
}

Rectangle upperLegendSpace(const Canvas& canvas) noexcept
{
    constexpr double width = 350;
    const double pt = pixelsOfPoint(canvas);
    return {canvas.width() - (margin + width) * pt, 0, width * pt, headerHeight * pt};
}

void drawPictureFrame(Canvas& canvas, const std::string& title, const std::string& subtitle, double right)
{
    canvas.clear(Palette::paper);
    const double pt = pixelsOfPoint(canvas);
    const double width = canvas.width() - 2 * margin * pt - right;
    writeFitted(canvas, {margin * pt, 44 * pt}, title, 25 * pt, Palette::ink, width, true);
    writeFitted(canvas, {margin * pt, 68 * pt}, subtitle, 15 * pt, Palette::faintInk, width, false);
}

namespace {

constexpr double legendFontSize = 12;

void drawLegendTitle(Canvas& canvas, const Rectangle& bar, const std::string& title)
{
    const double pt = pixelsOfPoint(canvas);
    canvas.text({bar.left, bar.top - 14 * pt}, title, legendFontSize * pt, Palette::ink, Canvas::Align::Left, true);
}

void drawLegendValue(Canvas& canvas, const Rectangle& bar, double x, const std::string& text)
{
    const double pt = pixelsOfPoint(canvas);
    canvas.stroke({{{x, bar.bottom()}, {x, bar.bottom() + 5 * pt}}}, Palette::faintInk, 0.7 * pt);
    canvas.text({x, bar.bottom() + 22 * pt}, text, legendFontSize * pt, Palette::faintInk, Canvas::Align::Center);
}

} // namespace

void drawColorBar(Canvas& canvas, const Rectangle& bar, const ColorBar& content)
{
    drawLegendTitle(canvas, bar, content.title);
    canvas.fill(bar, content.colors);
    canvas.stroke(bar, Palette::faintInk, 0.7 * pixelsOfPoint(canvas));
    for (const ColorBar::Value& value : content.values)
        drawLegendValue(canvas, bar, bar.left + value.position * bar.width, Loam::numberText(value.value));
}

void drawColorClasses(Canvas& canvas, const Rectangle& bar, const ColorClasses& content)
{
    const double pt = pixelsOfPoint(canvas);
    drawLegendTitle(canvas, bar, content.title);
    const double width = bar.width / static_cast<double>(std::max<std::size_t>(content.colors.size(), 1));
    for (std::size_t i = 0; i < content.colors.size(); ++i)
        canvas.fill({bar.left + static_cast<double>(i) * width, bar.top, width, bar.height}, content.colors[i]);
    canvas.stroke(bar, Palette::faintInk, 0.7 * pt);
    double end = bar.left - bar.width;
    for (std::size_t i = 0; i < content.bounds.size(); ++i) {
        const std::string text = Loam::numberText(content.bounds[i]);
        const double x = bar.left + static_cast<double>(i + 1) * width;
        const double half = canvas.textWidth(text, legendFontSize * pt) / 2;
        if (x - half < end + 4 * pt)
            continue;
        end = x + half;
        drawLegendValue(canvas, bar, x, text);
    }
    if (content.hasUnknown) {
        constexpr std::string_view label = "no data";
        const double left = bar.right() - canvas.textWidth(label, legendFontSize * pt) - 22 * pt;
        const Rectangle box{left, bar.top - 24 * pt, 16 * pt, 10 * pt};
        canvas.fill(box, content.unknown);
        canvas.stroke(box, Palette::faintInk, 0.7 * pt);
        canvas.text({bar.right(), bar.top - 15 * pt}, label, legendFontSize * pt, Palette::faintInk,
                    Canvas::Align::Right);
    }
}

} // namespace Earth
