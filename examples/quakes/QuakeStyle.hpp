#pragma once

#include "Catalogue.hpp"

#include <gable/ColorTypes.hpp>

#include <optional>
#include <span>
#include <string_view>

namespace Quakes {

/// What the colour of an event tells.
enum class ColorRule {
    Magnitude, ///< from 0 to 7
    Depth,     ///< from 0 to 700 km, the shallow ones spread: by the square root
    Age        ///< from 168 to 0 hours before the picture's instant; older ones fade
};

/// "magnitude", "depth" or "age".
const char* colorRuleName(ColorRule rule) noexcept;

/// The rule of that name; nothing if there is none.
std::optional<ColorRule> colorRuleOfName(std::string_view name) noexcept;

/// What a picture's legend says of a rule.
struct ColorLegend {
    const char* title;              ///< with the unit: "Depth (km)"
    std::span<const double> values; ///< to be marked, in the order of their positions
};
ColorLegend colorLegend(ColorRule rule) noexcept;

/// Where a value is on the colour scale, from 0 to 1.
/// \p value is a magnitude, a depth in kilometres or an age in hours.
double scalePosition(ColorRule rule, double value) noexcept;

/// The colour of a position on a rule's scale. The old ones are translucent too.
Gyre::rgba_float_t colorAt(ColorRule rule, double position) noexcept;

/// What a rule colours an event by; nothing if that is unknown.
/// \p instant is the picture's, in seconds since 1970 UTC.
std::optional<double> coloredValue(const Quake& quake, ColorRule rule, double instant) noexcept;

/// The colour of an event.
Gyre::rgba_float_t quakeColor(const Quake& quake, ColorRule rule, double instant) noexcept;

/// The radius of an event in points, 1 for magnitude 0 and doubled by each 1.75 of
/// magnitude; an unknown one counts as 0.
double quakeRadius(std::optional<double> magnitude) noexcept;

} // namespace Quakes
