#include <gable/BoundingBox.hpp>

#include <loam/Numbers.hpp>

#include <cmath>
#include <cstdio>
#include <string>

namespace Gyre {

namespace {

std::string text(const PhysicalSpace::point& place)
{
    return "(" + Loam::numberText(place.x()) + ", " + Loam::numberText(place.y()) + ", " + Loam::numberText(place.z())
           + ")";
}

} // namespace

BoundingBox::BoundingBox(const PhysicalSpace::point& minimum, const PhysicalSpace::point& maximum)
    : m_minimum{minimum}, m_maximum{maximum}
{
    updateBall();
}

BoundingBox::~BoundingBox() = default;

void BoundingBox::setCorners(const PhysicalSpace::point& minimum, const PhysicalSpace::point& maximum) noexcept
{
    m_minimum = minimum;
    m_maximum = maximum;
    m_grown = false;
}

void BoundingBox::grow(const PhysicalSpace::point& place) noexcept
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (place[axis] < m_minimum[axis])
            m_minimum[axis] = place[axis];
        if (place[axis] > m_maximum[axis])
            m_maximum[axis] = place[axis];
    }
    m_grown = true;
    updateBall();
}

void BoundingBox::updateBall() noexcept
{
    const PhysicalSpace::vector half = (m_maximum - m_minimum) * 0.5;
    m_ball = BoundingBall{m_minimum + half, std::sqrt(dot(half, half))};
}

void BoundingBox::speak(const char* name) const
{
    std::printf("%s: BBox from %s to %s\n", name, text(m_minimum).c_str(), text(m_maximum).c_str());
}

} // namespace Gyre
