#include "QuakeStyle.hpp"

#include <earth/ColorScale.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace Quakes {

namespace {

constexpr double largestMagnitude = 7;
constexpr double largestDepth = 700; // kilometres; there are hardly any deeper earthquakes
constexpr double largestAge = 168;   // hours

struct Rule {
    const char* name;
    ColorLegend legend;
};

constexpr double magnitudes[] = {0, 1, 2, 3, 4, 5, 6, 7};
constexpr double depths[] = {0, 10, 35, 70, 150, 300, 500, 700};
constexpr double ages[] = {168, 144, 120, 96, 72, 48, 24, 0};

constexpr Rule rules[] = {
    {"magnitude", {"Magnitude", magnitudes}}, {"depth", {"Depth (km)", depths}}, {"age", {"Age (hours)", ages}}};

} // namespace

const char* colorRuleName(ColorRule rule) noexcept
{
    return rules[static_cast<std::size_t>(rule)].name;
}

std::optional<ColorRule> colorRuleOfName(std::string_view name) noexcept
{
    const auto found =
        std::find_if(std::begin(rules), std::end(rules), [name](const Rule& rule) { return rule.name == name; });
    if (found == std::end(rules))
        return std::nullopt;
    return static_cast<ColorRule>(found - std::begin(rules));
}

ColorLegend colorLegend(ColorRule rule) noexcept
{
    return rules[static_cast<std::size_t>(rule)].legend;
}

double scalePosition(ColorRule rule, double value) noexcept
{
    const auto part = [](double number) { return number > 0 ? std::min(number, 1.0) : 0; };
    switch (rule) {
    case ColorRule::Magnitude:
        return part(value / largestMagnitude);
    case ColorRule::Depth:
        return std::sqrt(part(value / largestDepth));
    case ColorRule::Age:
        break;
    }
    return 1 - part(value / largestAge);
}

Gyre::rgba_float_t colorAt(ColorRule rule, double position) noexcept
{
    Gyre::rgba_float_t color = Earth::scaleColor(position);
    if (rule == ColorRule::Age)
        color.a = static_cast<float>(0.35 + 0.65 * position);
    return color;
}

std::optional<double> coloredValue(const Quake& quake, ColorRule rule, double instant) noexcept
{
    switch (rule) {
    case ColorRule::Magnitude:
        return quake.magnitude;
    case ColorRule::Depth:
        return quake.depth;
    case ColorRule::Age:
        break;
    }
    constexpr double hour = 3600;
    return (instant - quake.time) / hour;
}

Gyre::rgba_float_t quakeColor(const Quake& quake, ColorRule rule, double instant) noexcept
{
    const std::optional<double> value = coloredValue(quake, rule, instant);
    return value ? colorAt(rule, scalePosition(rule, *value)) : unknownColor;
}

double quakeRadius(std::optional<double> magnitude) noexcept
{
    constexpr double doubling = 1.75;
    return std::exp2(std::clamp(magnitude.value_or(0), -1.0, 9.5) / doubling);
}

} // namespace Quakes
