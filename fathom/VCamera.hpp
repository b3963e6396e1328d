#pragma once

#include <fathom/Export.hpp>
#include <fathom/Frustum.hpp>

#include <gable/PhysicalSpace.hpp>

#include <trellis/VValueTrait.hpp>

#include <array>
#include <string>

namespace Orla {

/// The viewer's position, the point to look at, the up direction and the opening angle.
///
/// Nothing is checked: if the position equals the focus, or the up direction is parallel to
/// the view, the matrices contain infinities or NaN.
///
/// Text form: three triples and the angle, `{0,1,0}{0,0,0}{0,0,1}45`.
class FATHOM_API VCamera {
public:
    /// Looks from one unit along +y towards the origin, with +z up and an angle of 45 degrees.
    VCamera() noexcept { reset(); }

    VCamera(const Gyre::PhysicalSpace::point& thePosition, const Gyre::PhysicalSpace::point& theFocus,
            const Gyre::PhysicalSpace::bivector& theUp, double theFieldOfView) noexcept
        : position{thePosition}, focus{theFocus}, up{theUp}, fieldOfView{theFieldOfView}
    {
    }

    /// Restores the default camera.
    void reset() noexcept;

    /// Writes the rotation of the viewing matrix: 16 numbers, column by column; `M[4 * c + r]`
    /// is row r of column c. The rows are the camera's right, up and backward axes; the
    /// translation is zero.
    void untranslatedLookAt(double* M) const noexcept;
    std::array<double, 16> untranslatedLookAt() const noexcept;

    /// Turns a rotation into the full viewing matrix: right-multiplies it by the translation
    /// by minus the position.
    void translate(std::array<double, 16>& M) const noexcept;

    friend bool operator==(const VCamera&, const VCamera&) = default;

    Gyre::PhysicalSpace::point position;
    Gyre::PhysicalSpace::point focus;
    Gyre::PhysicalSpace::bivector up; ///< any length; need not be orthogonal to the view
    double fieldOfView;               ///< full vertical opening angle in degrees
};

template<>
struct FATHOM_API VValueTrait<VCamera> {
    static std::string Text(const VCamera& camera);

    /// Accepts a text with all ten numbers, and ignores any text after the last one. Blanks are
    /// allowed only before a number. If the text is refused, the numbers read before the fault
    /// stay in the camera.
    static bool setValueFromText(VCamera& camera, const std::string& text);
};

} // namespace Orla
