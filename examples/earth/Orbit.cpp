#include <earth/Orbit.hpp>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Earth {

namespace {

constexpr double Degree = std::numbers::pi / 180;
constexpr double HighestLatitude = 89 * Degree;

} // namespace

Orla::VCamera orbited(const Orla::VCamera& camera, double east, double north)
{
    const auto offset = camera.position - camera.focus;
    const double distance = std::sqrt(Gyre::dot(offset, offset));
    if (!(distance > 0))
        return camera;
    const double longitude = std::atan2(offset.y(), offset.x()) + east * Degree;
    const double before = std::asin(std::clamp(offset.z() / distance, -1.0, 1.0));
    const double latitude = std::clamp(before + north * Degree, -HighestLatitude, HighestLatitude);
    Orla::VCamera moved = camera;
    const Gyre::PhysicalSpace::vector direction{std::cos(latitude) * std::cos(longitude),
                                                std::cos(latitude) * std::sin(longitude), std::sin(latitude)};
    moved.position = camera.focus + distance * direction;
    return moved;
}

Orla::VCamera zoomed(const Orla::VCamera& camera, double factor)
{
    Orla::VCamera moved = camera;
    moved.position = camera.focus + (camera.position - camera.focus) * factor;
    return moved;
}

} // namespace Earth
