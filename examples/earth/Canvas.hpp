#pragma once

#include <earth/Export.hpp>
#include <earth/Pixels.hpp>

#include <gable/ColorTypes.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Earth {

enum class PictureFormat { Png, Svg };

/// Returns the format for the extension of \p file, ".png" or ".svg" in any case.
/// \throw std::runtime_error with the extension for any other.
EARTH_API PictureFormat pictureFormat(const std::string& file);

/// Draws a picture in memory, as PNG or SVG, without a display. The same calls in the
/// same order produce the same bytes.
///
/// Coordinates are pixels from the top left corner, y downwards. If a drawing call
/// runs out of memory, `finished` throws.
class EARTH_API Canvas {
public:
    using Color = Gyre::rgba_float_t;
    using Path = std::vector<Pixel>;

    /// The largest width and height in pixels.
    static constexpr int largestSize = 16384;

    enum class Align { Left, Center, Right };

    /// \throw std::runtime_error if a side is not between 1 and `largestSize`, or if
    /// memory runs out.
    Canvas(PictureFormat format, int width, int height);
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas();

    int width() const noexcept { return m_width; }
    int height() const noexcept { return m_height; }

    /// Fills the whole picture.
    void clear(const Color& color);

    /// Fills the area that an odd number of the closed paths encloses.
    void fill(const std::vector<Path>& paths, const Color& color);

    /// A gradient from `inner`, inside the inner circle, to `outer`, outside the outer
    /// circle.
    struct RadialColors {
        Pixel innerCenter;
        double innerRadius = 0;
        Color inner;
        Pixel outerCenter;
        double outerRadius = 1;
        Color outer;
    };

    /// As above, with a gradient.
    void fill(const std::vector<Path>& paths, const RadialColors& colors);

    /// Fills a rectangle with a gradient of equally spaced colours from left to right.
    void fill(const Rectangle& rectangle, const std::vector<Color>& leftToRight);
    void fill(const Rectangle& rectangle, const Color& color);

    /// Draws open or closed paths with round joins.
    void stroke(const std::vector<Path>& paths, const Color& color, double lineWidth, bool isClosed = false);
    void stroke(const Rectangle& rectangle, const Color& color, double lineWidth);

    /// Draws a filled circle with an outline. The outline lies outside \p radius.
    void circle(const Pixel& center, double radius, const Color& color, const Color& outline, double lineWidth);

    /// Draws the part of a circle inside a convex path, with an outline.
    void circle(const Pixel& center, double radius, const Color& color, const Color& outline, double lineWidth,
                const Path& within);

    /// Restricts all drawing until `endClip` to the rectangle, or to the area that an odd
    /// number of the closed paths encloses.
    void beginClip(const Rectangle& rectangle);
    void beginClip(const std::vector<Path>& paths);
    void endClip();

    /// Draws a line of text with its baseline at \p place. \p size is the height of the
    /// font in pixels. Invalid UTF-8 is drawn as replacement characters, control
    /// characters as blanks.
    void text(const Pixel& place, std::string_view text, double size, const Color& color, Align align = Align::Left,
              bool isBold = false);

    /// Returns the width of \p text in pixels.
    double textWidth(std::string_view text, double size, bool isBold = false);

    /// Finishes the picture and returns the bytes of its file. Call it once; draw nothing
    /// afterwards.
    /// \throw std::runtime_error if memory ran out.
    std::string finished();

private:
    struct Drawing;

    void setFont(double size, bool isBold);

    PictureFormat m_format;
    int m_width;
    int m_height;
    std::unique_ptr<Drawing> m_drawing;
};

} // namespace Earth
