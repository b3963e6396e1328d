#pragma once

namespace Earth {

/// A place in a picture, in pixels from the top left corner.
struct Pixel {
    double x = 0;
    double y = 0;

    friend bool operator==(const Pixel&, const Pixel&) = default;
};

/// A rectangle of a picture, in pixels.
struct Rectangle {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;

    double right() const noexcept { return left + width; }
    double bottom() const noexcept { return top + height; }
};

} // namespace Earth
