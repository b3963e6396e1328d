#pragma once

#include <gable/BoundingBall.hpp>
#include <gable/Export.hpp>
#include <gable/PhysicalSpace.hpp>

#include <loam/Interface.hpp>

namespace Gyre {

/// A box with edges along the axes, reference counted so that several holders see
/// the same one.
///
/// Nothing is enforced: a box whose maximum lies before its minimum stays as it is.
class GABLE_API BoundingBox : public Loam::InterfaceBase {
public:
    BoundingBox(const PhysicalSpace::point& minimum, const PhysicalSpace::point& maximum);
    ~BoundingBox() override;

    const PhysicalSpace::point& minimum() const noexcept { return m_minimum; }
    const PhysicalSpace::point& maximum() const noexcept { return m_maximum; }

    /// The ball around the box as of the last `updateBall`.
    const BoundingBall& ball() const noexcept { return m_ball; }

    /// True if the corners were grown around something; false if they were given.
    bool isGrown() const noexcept { return m_grown; }

    /// Gives the box new corners; the ball waits for `updateBall`.
    void setCorners(const PhysicalSpace::point& minimum, const PhysicalSpace::point& maximum) noexcept;

    /// Makes the box as large as it must be to hold \p place too; brings the ball
    /// up to date.
    void grow(const PhysicalSpace::point& place) noexcept;

    /// Makes the ball the smallest one that holds all corners: its center is the
    /// box's, its radius half the diagonal.
    void updateBall() noexcept;

    /// Prints one line with \p name and the corners to standard output.
    void speak(const char* name) const;

    /// Same corners; the ball and the rest follow from them or do not matter.
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
