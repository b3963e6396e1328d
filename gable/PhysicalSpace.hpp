#pragma once

#include <gable/Export.hpp>
#include <gable/FixedArray.hpp>

namespace Gyre {

/// Three-dimensional space with right-handed Cartesian coordinates.
///
/// Points, vectors and bivectors are distinct types over three doubles: adding a
/// vector to a point gives a point; adding two points does not compile.
struct PhysicalSpace {
    /// The common base of points, vectors and bivectors.
    struct Coordinates : FixedArray<double, 3> {
        constexpr Coordinates() noexcept : FixedArray<double, 3>{{0, 0, 0}} {}
        constexpr Coordinates(double x, double y, double z) noexcept : FixedArray<double, 3>{{x, y, z}} {}
        constexpr explicit Coordinates(const FixedArray<double, 3>& array) noexcept : FixedArray<double, 3>{array} {}

        constexpr double x() const noexcept { return elements[0]; }
        constexpr double y() const noexcept { return elements[1]; }
        constexpr double z() const noexcept { return elements[2]; }
        constexpr double& x() noexcept { return elements[0]; }
        constexpr double& y() noexcept { return elements[1]; }
        constexpr double& z() noexcept { return elements[2]; }

        friend constexpr bool operator==(const Coordinates&, const Coordinates&) = default;
    };

    /// The difference of two points.
    struct vector : Coordinates {
        using Coordinates::Coordinates;

        friend constexpr bool operator==(const vector&, const vector&) = default;

        friend constexpr vector operator+(const vector& a, const vector& b) noexcept
        {
            return {a.x() + b.x(), a.y() + b.y(), a.z() + b.z()};
        }
        friend constexpr vector operator-(const vector& a, const vector& b) noexcept
        {
            return {a.x() - b.x(), a.y() - b.y(), a.z() - b.z()};
        }
        friend constexpr vector operator-(const vector& a) noexcept { return {-a.x(), -a.y(), -a.z()}; }
        friend constexpr vector operator*(const vector& a, double factor) noexcept
        {
            return {a.x() * factor, a.y() * factor, a.z() * factor};
        }
        friend constexpr vector operator*(double factor, const vector& a) noexcept { return a * factor; }
        friend constexpr vector operator/(const vector& a, double divisor) noexcept
        {
            return {a.x() / divisor, a.y() / divisor, a.z() / divisor};
        }
    };

    /// A position.
    struct point : Coordinates {
        using Coordinates::Coordinates;

        friend constexpr bool operator==(const point&, const point&) = default;

        friend constexpr vector operator-(const point& a, const point& b) noexcept
        {
            return {a.x() - b.x(), a.y() - b.y(), a.z() - b.z()};
        }
        friend constexpr point operator+(const point& a, const vector& b) noexcept
        {
            return {a.x() + b.x(), a.y() + b.y(), a.z() + b.z()};
        }
        friend constexpr point operator-(const point& a, const vector& b) noexcept
        {
            return {a.x() - b.x(), a.y() - b.y(), a.z() - b.z()};
        }
    };

    /// An oriented plane element, given by the components of its normal vector; used for
    /// rotations and up directions.
    struct bivector : Coordinates {
        using Coordinates::Coordinates;

        friend constexpr bool operator==(const bivector&, const bivector&) = default;

        friend constexpr bivector operator+(const bivector& a, const bivector& b) noexcept
        {
            return {a.x() + b.x(), a.y() + b.y(), a.z() + b.z()};
        }
        friend constexpr bivector operator-(const bivector& a, const bivector& b) noexcept
        {
            return {a.x() - b.x(), a.y() - b.y(), a.z() - b.z()};
        }
        friend constexpr bivector operator*(const bivector& a, double factor) noexcept
        {
            return {a.x() * factor, a.y() * factor, a.z() * factor};
        }
        friend constexpr bivector operator*(double factor, const bivector& a) noexcept { return a * factor; }
    };
};

/// Returns the sum of the products of the components, added from first to last.
constexpr double dot(const PhysicalSpace::vector& a, const PhysicalSpace::vector& b) noexcept
{
    return a.x() * b.x() + a.y() * b.y() + a.z() * b.z();
}

/// Returns the plane element spanned by two vectors.
constexpr PhysicalSpace::bivector wedge(const PhysicalSpace::vector& a, const PhysicalSpace::vector& b) noexcept
{
    return {a.y() * b.z() - a.z() * b.y(), a.z() * b.x() - a.x() * b.z(), a.x() * b.y() - a.y() * b.x()};
}

/// Returns the right-handed cross product: perpendicular to both vectors, with the
/// area of their parallelogram as its length.
constexpr PhysicalSpace::vector cross(const PhysicalSpace::vector& a, const PhysicalSpace::vector& b) noexcept
{
    return {a.y() * b.z() - a.z() * b.y(), a.z() * b.x() - a.x() * b.z(), a.x() * b.y() - a.y() * b.x()};
}

} // namespace Gyre
