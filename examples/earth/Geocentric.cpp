#include <earth/Geocentric.hpp>

#include <cmath>
#include <numbers>

namespace Earth {

namespace {

constexpr double semiMajorAxis = 6378137; // metres
constexpr double flattening = 1 / 298.257223563;
constexpr double squaredEccentricity = flattening * (2 - flattening);
constexpr double degree = std::numbers::pi / 180;

} // namespace

Gyre::PhysicalSpace::point geocentric(double longitude, double latitude, double height) noexcept
{
    const double sine = std::sin(latitude * degree);
    // Radius of curvature in the prime vertical.
    const double normal = semiMajorAxis / std::sqrt(1 - squaredEccentricity * sine * sine);
    const double fromAxis = (normal + height) * std::cos(latitude * degree);
    return {fromAxis * std::cos(longitude * degree), fromAxis * std::sin(longitude * degree),
            (normal * (1 - squaredEccentricity) + height) * sine};
}

} // namespace Earth
