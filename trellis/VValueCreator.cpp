#include <trellis/VValueCreator.hpp>

#include <trellis/detail/CreatorRegistry.hpp>
#include <trellis/detail/RegistryReport.hpp>

#include <loam/TypeInfo.hpp>

namespace Orla {

namespace {

Detail::CreatorRegistry<VValueCreator>& valueCreators()
{
    static Detail::CreatorRegistry<VValueCreator> theRegistry;
    return theRegistry;
}

} // namespace

VValueCreator::~VValueCreator() = default;

bool VValueCreator::registerCreator(const WeakPtrImpl<VValueCreator>& creator, const std::string& name)
{
    const StrongPtr<VValueCreator> alive = creator.lock();
    if (!alive)
        return false;
    const VValueCreator& self = *alive;
    const std::string owner = Detail::ownerOf(alive->valueType(), typeid(self));
    return Detail::acceptedOrReported("value type", name, owner,
                                      valueCreators().add(creator, name, Loam::typeKey(alive->valueType()), owner));
}

StrongPtr<VValueCreator> VValueCreator::find(std::string_view typeName)
{
    return valueCreators().find(typeName);
}

StrongPtr<VValueBase> VValueCreator::createValue(std::string_view typeName, const std::string& text, bool& ok)
{
    ok = false;
    const StrongPtr<VValueCreator> creator = find(typeName);
    return creator ? creator->create(text, ok) : nullptr;
}

std::vector<std::string> VValueCreator::names()
{
    return valueCreators().names();
}

} // namespace Orla
