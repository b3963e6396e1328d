#include <fathom/GyrePhysicalSpaceBiVector.hpp>

#include <fathom/TripleText.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

std::string VValueTrait<Gyre::PhysicalSpace::bivector>::Text(const Gyre::PhysicalSpace::bivector& bivector)
{
    return writeTriple('<', bivector, '>');
}

bool VValueTrait<Gyre::PhysicalSpace::bivector>::setValueFromText(Gyre::PhysicalSpace::bivector& bivector,
                                                                  const std::string& text)
{
    return readTriple(bivector, text, '<');
}

bool VInputValueTrait<Gyre::PhysicalSpace::bivector>::setValueFromText(Gyre::PhysicalSpace::bivector& bivector,
                                                                       const std::string& text)
{
    return VValueTrait<Gyre::PhysicalSpace::bivector>::setValueFromText(bivector, text);
}

namespace {

const VTypeLabel biVectorLabel{typeid(Gyre::PhysicalSpace::bivector), "bivector", "<0,0,1>"};

} // namespace

} // namespace Orla
