#include "earth/Picture.hpp"

#include <gtest/gtest.h>

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

cairo_status_t take(void* closure, unsigned char* data, unsigned int length)
{
    auto& rest = *static_cast<std::string_view*>(closure);
    if (length > rest.size())
        return CAIRO_STATUS_READ_ERROR;
    std::copy_n(rest.begin(), length, data);
    rest.remove_prefix(length);
    return CAIRO_STATUS_SUCCESS;
}

} // namespace

Rgb rgb(const Gyre::rgba_float_t& color)
{
    const auto part = [](float channel) { return static_cast<int>(std::lround(channel * 255)); };
    return {part(color.r), part(color.g), part(color.b)};
}

int difference(const Rgb& a, const Rgb& b)
{
    return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
}

Picture::Picture(std::string_view png)
{
    cairo_surface_t* const surface = cairo_image_surface_create_from_png_stream(take, &png);
    EXPECT_EQ(cairo_surface_status(surface), CAIRO_STATUS_SUCCESS);
    width = cairo_image_surface_get_width(surface);
    height = cairo_image_surface_get_height(surface);
    const unsigned char* const data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    m_pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            // Native words of four bytes: alpha or unused, red, green, blue.
            std::uint32_t word = 0;
            std::memcpy(&word, data + y * stride + 4 * x, sizeof word);
            m_pixels.push_back(
                {static_cast<int>(word >> 16 & 255), static_cast<int>(word >> 8 & 255), static_cast<int>(word & 255)});
        }
    }
    cairo_surface_destroy(surface);
}

Rgb Picture::at(double x, double y) const
{
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    if (column < 0 || column >= width || row < 0 || row >= height) {
        ADD_FAILURE() << x << ' ' << y << " is outside the picture";
        return {};
    }
    return m_pixels[static_cast<std::size_t>(row * width + column)];
}

Extent ink(const Picture& picture, double top, double bottom)
{
    const Rgb paper = rgb(Earth::Palette::paper);
    Extent extent;
    for (int y = static_cast<int>(top); y < bottom; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.at(x, y) != paper) {
                extent.left = std::min(extent.left, x);
                extent.right = std::max(extent.right, x);
                ++extent.count;
            }
        }
    }
    return extent;
}
