#pragma once

#include <gable/Export.hpp>
#include <gable/PhysicalSpace.hpp>

namespace Gyre {

/// A ball that encloses an object.
class BoundingBall {
public:
    /// Creates a ball with radius 0 at the origin.
    constexpr BoundingBall() noexcept = default;

    constexpr BoundingBall(const PhysicalSpace::point& center, double radius) noexcept
        : m_center{center}, m_radius{radius}, m_squaredRadius{radius * radius}
    {
    }

    constexpr const PhysicalSpace::point& center() const noexcept { return m_center; }
    constexpr double radius() const noexcept { return m_radius; }

    /// Returns the square of the radius, stored for comparisons.
    constexpr double squaredRadius() const noexcept { return m_squaredRadius; }

    constexpr void setCenter(const PhysicalSpace::point& center) noexcept { m_center = center; }

    constexpr void setRadius(double radius) noexcept
    {
        m_radius = radius;
        m_squaredRadius = radius * radius;
    }

    /// Returns true if \p place is inside the ball or on its surface.
    constexpr bool contains(const PhysicalSpace::point& place) const noexcept
    {
        const PhysicalSpace::vector distance = place - m_center;
        return dot(distance, distance) <= m_squaredRadius;
    }

    friend constexpr bool operator==(const BoundingBall&, const BoundingBall&) = default;

private:
    PhysicalSpace::point m_center;
    double m_radius = 0;
    double m_squaredRadius = 0;
};

} // namespace Gyre
