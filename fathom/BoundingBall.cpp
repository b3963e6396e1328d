#include <fathom/BoundingBall.hpp>

#include <fathom/GyrePhysicalSpacePoint.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/StringUtil.hpp>

namespace Orla {

using Point = VValueTrait<Gyre::PhysicalSpace::point>;

std::string VValueTrait<Gyre::BoundingBall>::Text(const Gyre::BoundingBall& ball)
{
    return Point::Text(ball.center()) + "@" + VValueTrait<double>::Text(ball.radius());
}

bool VValueTrait<Gyre::BoundingBall>::setValueFromText(Gyre::BoundingBall& ball, const std::string& text)
{
    double radius = ball.radius();
    if (!Loam::readNumber(radius, Loam::StringUtil::afterLast(text, '@')))
        return false;
    ball.setRadius(radius);
    Gyre::PhysicalSpace::point center = ball.center();
    const bool read = Point::setValueFromText(center, text.substr(0, text.find('@')));
    ball.setCenter(center);
    return read;
}

namespace {

const VTypeLabel boundingBallLabel{typeid(Gyre::BoundingBall), "bounding ball", "{0,0,0}@1"};

} // namespace

} // namespace Orla
