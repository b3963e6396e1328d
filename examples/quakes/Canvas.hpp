#pragma once

#include "Pixels.hpp"

#include <gable/ColorTypes.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Quakes {

enum class PictureFormat { Png, Svg };

/// The format that a file's ending asks for: ".png" or ".svg", in any case.
/// \throw std::runtime_error with the ending found for any other.
PictureFormat pictureFormat(const std::string& file);

/// A picture to draw on, in memory: the same calls give a PNG or an SVG, and the
/// same calls in the same order give the same bytes. No display is needed.
///
/// Coordinates are pixels from the top left corner, y downwards. A drawing call
/// for which there is no memory makes `finished` throw.
class Canvas {
public:
    using Color = Gyre::rgba_float_t;
    using Path = std::vector<Pixel>;

    /// The longest side that a picture can have, in pixels.
    static constexpr int largestSize = 16384;

    enum class Align { Left, Center, Right };

    /// \throw std::runtime_error for a size that is not between 1 and
    /// `largestSize`, or for which there is no memory.
    Canvas(PictureFormat format, int width, int height);
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas();

    int width() const noexcept { return m_width; }
    int height() const noexcept { return m_height; }

    /// Fills the whole picture.
    void clear(const Color& color);

    /// Fills what an odd number of the closed paths encloses.
    void fill(const std::vector<Path>& paths, const Color& color);

    /// Colours that change from \p inner, inside of the inner circle, to \p outer,
    /// outside of the outer one.
    struct RadialColors {
        Pixel innerCenter;
        double innerRadius = 0;
        Color inner;
        Pixel outerCenter;
        double outerRadius = 1;
        Color outer;
    };

    /// The same with colours that change.
    void fill(const std::vector<Path>& paths, const RadialColors& colors);

    /// Fills a rectangle with colours from its left to its right side, equally
    /// spaced.
    void fill(const Rectangle& rectangle, const std::vector<Color>& leftToRight);
    void fill(const Rectangle& rectangle, const Color& color);

    /// Draws open or closed paths; the joins are round.
    void stroke(const std::vector<Path>& paths, const Color& color, double lineWidth, bool isClosed = false);
    void stroke(const Rectangle& rectangle, const Color& color, double lineWidth);

    /// A filled circle with an outline around it. The outline stands outside of
    /// \p radius.
    void circle(const Pixel& center, double radius, const Color& color, const Color& outline, double lineWidth);

    /// The part of a circle inside of a convex path, with an outline around it.
    void circle(const Pixel& center, double radius, const Color& color, const Color& outline, double lineWidth,
                const Path& within);

    /// What is drawn from `beginClip` to `endClip` appears inside of the rectangle
    /// alone.
    void beginClip(const Rectangle& rectangle);
    void endClip();

    /// Writes a line of text, whose baseline is at the height of \p place. Bytes
    /// that are no UTF-8 are drawn as replacement characters and control characters
    /// as blanks.
    /// \p size is the height of the font in pixels.
    void text(const Pixel& place, std::string_view text, double size, const Color& color, Align align = Align::Left,
              bool isBold = false);

    /// The width that `text` takes.
    double textWidth(std::string_view text, double size, bool isBold = false);

    /// Ends the picture and returns the bytes of its file. To be called once; nothing
    /// is drawn thereafter.
    /// \throw std::runtime_error if there was no memory.
    std::string finished();

private:
    struct Drawing;

    void setFont(double size, bool isBold);

    PictureFormat m_format;
    int m_width;
    int m_height;
    std::unique_ptr<Drawing> m_drawing;
};

} // namespace Quakes
