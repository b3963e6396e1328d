#include <trellis/VObjectCreator.hpp>

#include <trellis/detail/CreatorRegistry.hpp>
#include <trellis/detail/RegistryReport.hpp>

#include <loam/TypeInfo.hpp>

namespace Orla {

namespace {

Detail::CreatorRegistry<VObjectCreator>* objectCreators()
{
    return Detail::creatorRegistry<VObjectCreator>();
}

} // namespace

VObjectCreator::~VObjectCreator() = default;

bool VObjectCreator::registerCreator(const WeakPtrImpl<VObjectCreator>& creator, const std::string& name)
{
    const StrongPtr<VObjectCreator> alive = creator.lock();
    auto* const registry = objectCreators();
    if (!alive || !registry)
        return false;
    const VObjectCreator& self = *alive;
    const std::string owner = Detail::ownerOf(alive->objectType(), typeid(self));
    const std::string library = Detail::libraryOf(typeid(self));
    alive->m_name = name;
    const std::string holder = registry->add(creator, name, Loam::typeKey(alive->objectType()), {owner, library});
    // Whether the rivals matter depends on the names that are used; VObject::createObject reports.
    if (!holder.empty() && registry->find(library + ':' + name) == alive)
        return false;
    return Detail::acceptedOrReported("object type", name, owner, holder);
}

StrongPtr<VObjectCreator> VObjectCreator::find(std::string_view typeName)
{
    const auto* const registry = objectCreators();
    return registry ? registry->find(typeName) : nullptr;
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
    const auto* const registry = objectCreators();
    return registry ? registry->names() : std::vector<std::string>{};
}

std::vector<std::string> VObjectCreator::libraries(std::string_view typeName)
{
    const auto* const registry = objectCreators();
    return registry ? registry->libraries(typeName) : std::vector<std::string>{};
}

std::vector<StrongPtr<VObjectCreator>> VObjectCreator::creators()
{
    const auto* const registry = objectCreators();
    return registry ? registry->creators() : std::vector<StrongPtr<VObjectCreator>>{};
}

} // namespace Orla
