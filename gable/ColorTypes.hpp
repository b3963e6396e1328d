#pragma once

namespace Gyre {

/// A colour: red, green, blue and opacity, each usually between 0 and 1.
struct rgba_float_t {
    float r = 0;
    float g = 0;
    float b = 0;
    float a = 1;

    friend constexpr bool operator==(const rgba_float_t&, const rgba_float_t&) = default;
};

} // namespace Gyre
