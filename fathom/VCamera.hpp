#pragma once

#include <fathom/Export.hpp>

#include <gable/BoundingBox.hpp>
#include <gable/PhysicalSpace.hpp>

#include <trellis/VValueTrait.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Orla {

/// Where the viewer stands, what it looks at, which way is up and how wide the
/// view opens.
///
/// Nothing is checked: a camera that stands in its focus, or whose up direction
/// lies along its view, gives matrices with infinities or NaN.
///
/// Text form: three triples and the angle, `{0,1,0}{0,0,0}{0,0,1}45`.
class FATHOM_API VCamera {
public:
    /// Looks from one unit along +y towards the origin, with +z up and 45 degrees.
    VCamera() noexcept { reset(); }

    VCamera(const Gyre::PhysicalSpace::point& thePosition, const Gyre::PhysicalSpace::point& theFocus,
            const Gyre::PhysicalSpace::bivector& theUp, double theFieldOfView) noexcept
        : position{thePosition}, focus{theFocus}, up{theUp}, fieldOfView{theFieldOfView}
    {
    }

    /// Back to the default camera.
    void reset() noexcept;

    /// Writes the rotation of the viewing matrix: 16 numbers, column by column, so
    /// that `M[4 * c + r]` is row r of column c. Rows are the camera's right, up
    /// and backward axes; the translation is zero.
    void untranslatedLookAt(double* M) const noexcept;
    std::array<double, 16> untranslatedLookAt() const noexcept;

    /// Makes a rotation the full viewing matrix: applies the translation by minus
    /// the position on the right.
    void translate(std::array<double, 16>& M) const noexcept;

    friend bool operator==(const VCamera&, const VCamera&) = default;

    Gyre::PhysicalSpace::point position;
    Gyre::PhysicalSpace::point focus;
    Gyre::PhysicalSpace::bivector up; ///< of any length, need not be orthogonal to the view
    double fieldOfView;               ///< full vertical opening angle in degrees
};

template<>
struct FATHOM_API VValueTrait<VCamera> {
    static std::string Text(const VCamera& camera);

    /// Accepts a text with all ten numbers. Blanks may stand before a number, and
    /// nowhere else. A refused text leaves the numbers that were read before its
    /// fault in the camera.
    static bool setValueFromText(VCamera& camera, const std::string& text);
};

/// The part of space that a camera sees between two distances, as six planes.
class FATHOM_API Frustum {
public:
    enum Plane { Top, Bottom, Left, Right, Near, Far };

    /// Corners of boxes, one array for each coordinate.
    struct Boxes {
        const double* minimum[3];
        const double* maximum[3];
    };

    /// A frustum without planes, which hides nothing.
    Frustum() noexcept;

    /// \p aspect is width divided by height; the distances are measured from the
    /// camera along its view. Nothing is checked: a plane that comes out without a
    /// direction hides nothing.
    void compute(const VCamera& camera, double aspect, double nearDistance, double farDistance) noexcept;

    /// 1 if the box lies wholly inside, -1 if it straddles a plane, 0 if it lies
    /// wholly outside of one. Touching a plane counts as inside of it.
    int isVisible(const Gyre::BoundingBox& box) const noexcept;

    /// What `isVisible` says of each of \p count boxes.
    /// \pre Each array has \p count elements.
    void classify(const Boxes& boxes, std::size_t count, std::int8_t* results) const noexcept;

    /// Points into the frustum; not of unit length.
    const Gyre::PhysicalSpace::vector& normal(Plane plane) const noexcept { return m_normals[plane]; }

    /// A corner of the frustum that lies on the plane.
    const Gyre::PhysicalSpace::point& point(Plane plane) const noexcept { return m_points[plane]; }

private:
    int isVisible(const double* minimum, const double* maximum) const noexcept;
    void normalise() noexcept;

    static constexpr std::size_t PlaneCount = 6;

    Gyre::PhysicalSpace::vector m_normals[PlaneCount];
    Gyre::PhysicalSpace::point m_points[PlaneCount];

    // What each query needs of the normals, computed once.
    Gyre::PhysicalSpace::vector m_units[PlaneCount];
    double m_unitLengths[PlaneCount]; // 1 but for rounding, or NaN
    bool m_isRegular = false;         // all of these lengths are close to 1
};

} // namespace Orla
