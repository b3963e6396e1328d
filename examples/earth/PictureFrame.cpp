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
    const double point = pixelsOfPoint(canvas);
    return {margin * point, headerHeight * point, canvas.width() - 2 * margin * point,
            canvas.height() - (headerHeight + footerHeight + 14) * point};
}

Rectangle legendSpace(const Canvas& canvas) noexcept
{
    const double point = pixelsOfPoint(canvas);
    return {margin * point, canvas.height() - footerHeight * point, canvas.width() - 2 * margin * point,
            footerHeight * point};
}

void drawPictureFrame(Canvas& canvas, const std::string& title, const std::string& subtitle)
{
    canvas.clear(Palette::paper);
    const double point = pixelsOfPoint(canvas);
    const double width = canvas.width() - 2 * margin * point;
    writeFitted(canvas, {margin * point, 44 * point}, title, 25 * point, Palette::ink, width, true);
    writeFitted(canvas, {margin * point, 68 * point}, subtitle, 15 * point, Palette::faintInk, width, false);
}

void drawColorBar(Canvas& canvas, const Rectangle& bar, const ColorBar& content)
{
    constexpr double fontSize = 12;
    const double point = pixelsOfPoint(canvas);
    canvas.text({bar.left, bar.top - 14 * point}, content.title, fontSize * point, Palette::ink, Canvas::Align::Left,
                true);
    canvas.fill(bar, content.colors);
    canvas.stroke(bar, Palette::faintInk, 0.7 * point);
    for (const ColorBar::Value& value : content.values) {
        const double x = bar.left + value.position * bar.width;
        canvas.stroke({{{x, bar.bottom()}, {x, bar.bottom() + 5 * point}}}, Palette::faintInk, 0.7 * point);
        canvas.text({x, bar.bottom() + 22 * point}, Loam::numberText(value.value), fontSize * point, Palette::faintInk,
                    Canvas::Align::Center);
    }
}

} // namespace Earth
