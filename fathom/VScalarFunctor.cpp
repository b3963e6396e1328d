#include <fathom/VScalarFunctor.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

VScalarFunctor::Functor::Functor() = default;
VScalarFunctor::Functor::~Functor() = default;

VScalarFunctor::VScalarFunctor() = default;

VScalarFunctor::VScalarFunctor(const StrongPtr<Functor>& theFunctor) : functor{theFunctor}
{
}

VScalarFunctor::~VScalarFunctor() = default;

std::string VValueTrait<VScalarFunctor>::Text(const VScalarFunctor&)
{
    return {};
}

bool VValueTrait<VScalarFunctor>::setValueFromText(VScalarFunctor&, const std::string&)
{
    return false;
}

namespace {

const VTypeLabel scalarFunctorLabel{typeid(VScalarFunctor), "scalar function"};

} // namespace

} // namespace Orla
