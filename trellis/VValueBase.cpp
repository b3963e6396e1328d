#include <trellis/VValueBase.hpp>

#include <trellis/VValueComponents.hpp>
#include <trellis/VValueCreator.hpp>

namespace Orla {

VValueBase::~VValueBase() = default;

void VValueBase::setSource(const WeakPtrImpl<VManagedObject, VManagedObjectBase>&)
{
}

StrongPtr<InterfaceBase> VValueBase::getInterface() const
{
    return nullptr;
}

void VValueBase::setContainerValue(const WeakPtrImpl<VValueBase>&)
{
}

StrongPtr<VValueBase> VValueBase::component(const std::string& member)
{
    if (member.empty())
        return WeakPtrImpl<VValueBase>(this).lock();
    return VValueComponents::make(*this, member);
}

} // namespace Orla
