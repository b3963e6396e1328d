#include <fathom/Position2D.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

std::string VValueTrait<Gyre::FixedArray<double, 2>>::Text(const Gyre::FixedArray<double, 2>& pair)
{
    return VValueTrait<double>::Text(pair[0]) + "x" + VValueTrait<double>::Text(pair[1]);
}

bool VValueTrait<Gyre::FixedArray<double, 2>>::setValueFromText(Gyre::FixedArray<double, 2>&, const std::string&)
{
    return false;
}

void VInputValueTrait<Gyre::FixedArray<double, 2>>::init(Gyre::FixedArray<double, 2>& pair)
{
    pair = {{0.0, 0.0}};
}

bool VInputValueTrait<Gyre::FixedArray<double, 2>>::setValueFromText(Gyre::FixedArray<double, 2>&, const std::string&)
{
    return false;
}

namespace {

const VTypeLabel position2DLabel{typeid(Gyre::FixedArray<double, 2>), "number pair"};

} // namespace

} // namespace Orla
