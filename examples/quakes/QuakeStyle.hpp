#pragma once

#include "Catalogue.hpp"

#include <earth/Palette.hpp>

#include <gable/ColorTypes.hpp>

#include <optional>
#include <span>
#include <string_view>

namespace Quakes {

/// The property of an event that determines its colour.
enum class ColorRule {
    Magnitude, ///< from 0 to 7
    Depth,     ///< from 0 to 700 km, by the square root, which spreads shallow events
    Age        ///< from 168 to 0 hours before the picture's instant; older ones fade
};

/// Returns "magnitude", "depth" or "age".
const char* colorRuleName(ColorRule rule) noexcept;

/// Returns the rule with that name, or nothing if the name is unknown.
std::optional<ColorRule> colorRuleOfName(std::string_view name) noexcept;

/// The legend of a rule in a picture.
struct ColorLegend {
    const char* title;              ///< with the unit: "Depth (km)"
    std::span<const double> values; ///< values to mark, ordered by position
};
ColorLegend colorLegend(ColorRule rule) noexcept;

/// Returns the position of a value on the colour scale, from 0 to 1.
/// \p value is a magnitude, a depth in kilometres or an age in hours.
double scalePosition(ColorRule rule, double value) noexcept;

/// Returns the colour at a position on a rule's scale. With `Age`, old events are also
/// translucent.
Gyre::rgba_float_t colorAt(ColorRule rule, double position) noexcept;

/// Returns the value by which a rule colours an event, or nothing if it is unknown.
/// \p instant is the picture's instant, in seconds since 1970 UTC.
std::optional<double> coloredValue(const Quake& quake, ColorRule rule, double instant) noexcept;

/// The colour of events whose coloured value is unknown.
inline constexpr Gyre::rgba_float_t unknownColor = Earth::Palette::color(0x999ea3);

/// Returns the colour of an event.
Gyre::rgba_float_t quakeColor(const Quake& quake, ColorRule rule, double instant) noexcept;

/// Returns the radius of an event in points: 1 for magnitude 0, doubled with every 1.75
/// of magnitude. An unknown magnitude counts as 0.
double quakeRadius(std::optional<double> magnitude) noexcept;

} // namespace Quakes
