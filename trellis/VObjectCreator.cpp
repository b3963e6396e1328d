#include <trellis/VObjectCreator.hpp>

#include <trellis/detail/CreatorRegistry.hpp>
#include <trellis/detail/RegistryReport.hpp>

#include <loam/TypeInfo.hpp>

namespace Orla {

namespace {

Detail::CreatorRegistry<VObjectCreator>& objectCreators()
{
    static Detail::CreatorRegistry<VObjectCreator> theRegistry;
    return theRegistry;
}

} // namespace

VObjectCreator::~VObjectCreator() = default;

bool VObjectCreator::registerCreator(const WeakPtrImpl<VObjectCreator>& creator, const std::string& name)
{
    const StrongPtr<VObjectCreator> alive = creator.lock();
    if (!alive)
        return false;
    const VObjectCreator& self = *alive;
    const std::string owner = Detail::ownerOf(alive->objectType(), typeid(self));
    if (!Detail::acceptedOrReported("object type", name, owner,
                                    objectCreators().add(creator, name, Loam::typeKey(alive->objectType()), owner)))
        return false;
    alive->m_name = name;
    return true;
}

StrongPtr<VObjectCreator> VObjectCreator::find(std::string_view typeName)
{
    return objectCreators().find(typeName);
}

StrongPtr<VObjectCreator> VObjectCreator::findUnique(const std::type_info& outputType)
{
    for (const std::string& name : names()) {
        StrongPtr<VObjectCreator> creator = find(name);
        if (creator && creator->m_uniqueOutput && *creator->m_uniqueOutput == outputType)
            return creator;
    }
    return nullptr;
}

std::vector<std::string> VObjectCreator::names()
{
    return objectCreators().names();
}

} // namespace Orla
