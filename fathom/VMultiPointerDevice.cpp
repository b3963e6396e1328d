#include <fathom/VMultiPointerDevice.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

std::string VValueTrait<VMultiPointerDevice>::Text(const VMultiPointerDevice&)
{
    return {};
}

bool VValueTrait<VMultiPointerDevice>::setValueFromText(VMultiPointerDevice&, const std::string&)
{
    return false;
}

void VInputValueTrait<VMultiPointerDevice>::init(VMultiPointerDevice& device)
{
    device.pointers.clear();
}

bool VInputValueTrait<VMultiPointerDevice>::setValueFromText(VMultiPointerDevice&, const std::string&)
{
    return false;
}

namespace {

const VTypeLabel multiPointerDeviceLabel{typeid(VMultiPointerDevice), "touch points"};

} // namespace

} // namespace Orla
