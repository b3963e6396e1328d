#pragma once

#include <fathom/Export.hpp>

#include <gable/BoundingBox.hpp>
#include <gable/PhysicalSpace.hpp>

#include <cstddef>
#include <cstdint>

namespace Orla {

class VCamera;

/// The part of space that a camera sees between two distances, bounded by six planes.
class FATHOM_API Frustum {
public:
    enum Plane { Top, Bottom, Left, Right, Near, Far };

    /// The number of planes.
    static constexpr std::size_t PlaneCount = 6;

    /// Corners of boxes, one array per coordinate.
    struct Boxes {
        const double* minimum[3];
        const double* maximum[3];
    };

    /// Creates a frustum without planes, which hides nothing.
    Frustum() noexcept;

    /// \p aspect is width divided by height; the distances are measured from the camera along
    /// its view. Nothing is checked: a plane whose normal has no direction hides nothing.
    void compute(const VCamera& camera, double aspect, double nearDistance, double farDistance) noexcept;

    /// Returns 1 if the box is entirely inside, -1 if it straddles a plane, 0 if it is
    /// entirely outside a plane. A box that touches a plane counts as inside it.
    int isVisible(const Gyre::BoundingBox& box) const noexcept;

    /// The same for the box between two corners, without creating a `BoundingBox`.
    int isVisible(const Gyre::PhysicalSpace::point& minimum, const Gyre::PhysicalSpace::point& maximum) const noexcept
    {
        return isVisible(minimum.data(), maximum.data());
    }

    /// Writes the result of `isVisible` for each of \p count boxes.
    /// \pre Each array has \p count elements.
    void classify(const Boxes& boxes, std::size_t count, std::int8_t* results) const noexcept;

    /// Returns the normal, which points into the frustum and is not of unit length.
    const Gyre::PhysicalSpace::vector& normal(Plane plane) const noexcept { return m_normals[plane]; }

    /// Returns a corner of the frustum that lies on the plane.
    const Gyre::PhysicalSpace::point& point(Plane plane) const noexcept { return m_points[plane]; }

private:
    int isVisible(const double* minimum, const double* maximum) const noexcept;
    void normalise() noexcept;

    Gyre::PhysicalSpace::vector m_normals[PlaneCount];
    Gyre::PhysicalSpace::point m_points[PlaneCount];

    // Derived from the normals once, for the queries.
    Gyre::PhysicalSpace::vector m_units[PlaneCount];
    double m_unitLengths[PlaneCount]; // 1 except for rounding, or NaN
    bool m_isRegular = false;         // all unit lengths are close to 1
};

} // namespace Orla
