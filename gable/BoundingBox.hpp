#pragma once

#include <gable/BoundingBall.hpp>
#include <gable/Export.hpp>
#include <gable/PhysicalSpace.hpp>

#include <loam/Interface.hpp>

namespace Gyre {

/// An axis-aligned box, reference-counted so several owners can share it.
///
/// The corners are not checked: the maximum may be less than the minimum.
class GABLE_API BoundingBox : public Loam::InterfaceBase {
public:
    BoundingBox(const PhysicalSpace::point& minimum, const PhysicalSpace::point& maximum);
    ~BoundingBox() override;

    const PhysicalSpace::point& minimum() const noexcept { return m_minimum; }
    const PhysicalSpace::point& maximum() const noexcept { return m_maximum; }

    /// Returns the ball around the box as of the last `updateBall`.
    const BoundingBall& ball() const noexcept { return m_ball; }

    /// Returns true if `grow` was called since the corners were last set.
    bool isGrown() const noexcept { return m_grown; }

    /// Sets the corners; the ball is unchanged until `updateBall`.
    void setCorners(const PhysicalSpace::point& minimum, const PhysicalSpace::point& maximum) noexcept;

    /// Extends the box to contain \p place and updates the ball.
    void grow(const PhysicalSpace::point& place) noexcept;

    /// Sets the ball to the smallest one that contains all corners: its center is the
    /// box's center, its radius half the diagonal.
    void updateBall() noexcept;

    /// Prints one line with \p name and the corners to standard output.
    void speak(const char* name) const;

    /// Compares only the corners.
    friend bool operator==(const BoundingBox& a, const BoundingBox& b) noexcept
    {
        return a.m_minimum == b.m_minimum && a.m_maximum == b.m_maximum;
    }

private:
    PhysicalSpace::point m_minimum;
    PhysicalSpace::point m_maximum;
    BoundingBall m_ball;
    bool m_grown = false;
};

} // namespace Gyre
