#include <fathom/GyrePhysicalSpacePoint.hpp>

#include <fathom/TripleText.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

std::string VValueTrait<Gyre::PhysicalSpace::point>::Text(const Gyre::PhysicalSpace::point& point)
{
    return writeTriple('{', point, '}');
}

bool VValueTrait<Gyre::PhysicalSpace::point>::setValueFromText(Gyre::PhysicalSpace::point& point,
                                                               const std::string& text)
{
    return readTriple(point, text, '{');
}

namespace {

const VTypeLabel pointLabel{typeid(Gyre::PhysicalSpace::point), "point", "{1,2,3}"};

} // namespace

} // namespace Orla
