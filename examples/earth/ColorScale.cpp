#include <earth/ColorScale.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace Earth {

namespace {

using Triple = std::array<double, 3>;

double linear(double encoded)
{
    return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

double encoded(double linear)
{
    return linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

Triple product(const Triple (&matrix)[3], const Triple& v)
{
    Triple result{};
    for (std::size_t row = 0; row < 3; ++row)
        result[row] = matrix[row][0] * v[0] + matrix[row][1] * v[1] + matrix[row][2] * v[2];
    return result;
}

// Converts sRGB to Oklab: lightness and two perceptually uniform opponent colours.
Triple oklab(std::uint32_t color)
{
    constexpr Triple conesOfRgb[] = {{0.4122214708, 0.5363325363, 0.0514459929},
                                     {0.2119034982, 0.6806995451, 0.1073969566},
                                     {0.0883024619, 0.2817188376, 0.6299787005}};
    constexpr Triple labOfCones[] = {{0.2104542553, 0.7936177850, -0.0040720468},
                                     {1.9779984951, -2.4285922050, 0.4505937099},
                                     {0.0259040371, 0.7827717662, -0.8086757660}};
    const auto channel = [color](int shift) { return linear(static_cast<double>(color >> shift & 0xff) / 255); };
    Triple cones = product(conesOfRgb, {channel(16), channel(8), channel(0)});
    for (double& cone : cones)
        cone = std::cbrt(cone);
    return product(labOfCones, cones);
}

Gyre::rgba_float_t color(const Triple& lab)
{
    constexpr Triple conesOfLab[] = {
        {1, 0.3963377774, 0.2158037573}, {1, -0.1055613458, -0.0638541728}, {1, -0.0894841775, -1.2914855480}};
    constexpr Triple rgbOfCones[] = {{4.0767416621, -3.3077115913, 0.2309699292},
                                     {-1.2684380046, 2.6097574011, -0.3413193965},
                                     {-0.0041960863, -0.7034186147, 1.7076147010}};
    Triple cones = product(conesOfLab, lab);
    for (double& cone : cones)
        cone = cone * cone * cone;
    const Triple rgb = product(rgbOfCones, cones);
    const auto channel = [&](std::size_t i) { return static_cast<float>(encoded(std::clamp(rgb[i], 0.0, 1.0))); };
    return {channel(0), channel(1), channel(2), 1};
}

} // namespace

Gyre::rgba_float_t mixedColor(std::span<const std::uint32_t> table, double position) noexcept
{
    const std::size_t last = table.size() - 1;
    const double place = (position > 0 ? std::min(position, 1.0) : 0) * static_cast<double>(last);
    const std::size_t index = std::min(static_cast<std::size_t>(place), last - 1);
    const double part = place - static_cast<double>(index);
    const Triple from = oklab(table[index]);
    const Triple to = oklab(table[index + 1]);
    Triple between{};
    for (std::size_t i = 0; i < 3; ++i)
        between[i] = from[i] + (to[i] - from[i]) * part;
    return color(between);
}

Gyre::rgba_float_t scaleColor(double position) noexcept
{
    // Seven colours whose lightness in Oklab decreases from 0.88 to 0.27 in equal steps,
    // while the hue changes from yellow through red to violet.
    static constexpr std::uint32_t table[] = {0xf6d56b, 0xf8a03e, 0xec6a41, 0xcd395d, 0x9b1d74, 0x601476, 0x29135b};
    return mixedColor(table, position);
}

} // namespace Earth
