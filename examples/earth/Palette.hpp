#pragma once

#include <gable/ColorTypes.hpp>

#include <cstdint>

/// Colours of the parts of a picture.
namespace Earth::Palette {

/// Returns the colour of three bytes: 0xff0000 is red.
constexpr Gyre::rgba_float_t color(std::uint32_t bytes, float opacity = 1)
{
    const auto part = [bytes](int shift) { return static_cast<float>(bytes >> shift & 0xff) / 255; };
    return {part(16), part(8), part(0), opacity};
}

inline constexpr auto paper = color(0xfcfbf8);
inline constexpr auto ink = color(0x1c2936);
inline constexpr auto faintInk = color(0x5c6b78);
inline constexpr auto sea = color(0xd1e2ea);
inline constexpr auto land = color(0xefe9dc);
inline constexpr auto coast = color(0x738791);
inline constexpr auto graticule = color(0x406178, 0.22f);

inline constexpr auto brightSea = color(0xe3eff4); ///< of the globe, in the light
inline constexpr auto farSea = color(0xa9cbde);    ///< at the horizon
inline constexpr auto noShade = color(0x0a294c, 0);
inline constexpr auto shade = color(0x0a294c, 0.22f); ///< over everything at the horizon

} // namespace Earth::Palette
