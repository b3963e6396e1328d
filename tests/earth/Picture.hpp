#pragma once

#include <earth/Palette.hpp>

#include <gable/ColorTypes.hpp>

#include <cstddef>
#include <ostream>
#include <string_view>
#include <vector>

/// The colour of a pixel. Channels are from 0 to 255.
struct Rgb {
    int red = 0;
    int green = 0;
    int blue = 0;

    friend bool operator==(const Rgb&, const Rgb&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Rgb& color)
    {
        return stream << '(' << color.red << ' ' << color.green << ' ' << color.blue << ')';
    }
};

Rgb rgb(const Gyre::rgba_float_t& color);

/// Returns the largest difference between channels of two colours.
int difference(const Rgb& a, const Rgb& b);

/// The pixels of a PNG file.
class Picture {
public:
    explicit Picture(std::string_view png);

    /// Returns the colour of the pixel at a place.
    Rgb at(double x, double y) const;

    int width = 0;
    int height = 0;

private:
    std::vector<Rgb> m_pixels;
};

/// The horizontal extent and the number of the coloured pixels in a range of rows.
struct Extent {
    int left = 1000000;
    int right = -1;
    int count = 0;
};

Extent ink(const Picture& picture, double top, double bottom);
