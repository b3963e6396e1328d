#include <trellis/VValueCreator.hpp>

#include <trellis/detail/CreatorRegistry.hpp>
#include <trellis/detail/RegistryReport.hpp>

#include <loam/TypeInfo.hpp>
#include <loam/Typename.hpp>

namespace Orla {

namespace {

Detail::CreatorRegistry<VValueCreator>* valueCreators()
{
    return Detail::creatorRegistry<VValueCreator>();
}

} // namespace

VValueCreator::~VValueCreator()
{
    Loam::releaseTypename(valueType());
}

bool VValueCreator::registerCreator(const WeakPtrImpl<VValueCreator>& creator, const std::string& name)
{
    const StrongPtr<VValueCreator> alive = creator.lock();
    auto* const registry = valueCreators();
    if (!alive || !registry)
        return false;
    const VValueCreator& self = *alive;
    const std::string owner = Detail::ownerOf(alive->valueType(), typeid(self));
    return Detail::acceptedOrReported(
        "value type", name, owner,
        registry->add(creator, name, Loam::typeKey(alive->valueType()), {owner, Detail::libraryOf(typeid(self))}));
}

StrongPtr<VValueCreator> VValueCreator::find(std::string_view typeName)
{
    const auto* const registry = valueCreators();
    return registry ? registry->find(typeName) : nullptr;
}

StrongPtr<VValueBase> VValueCreator::createValue(std::string_view typeName, const std::string& text, bool& ok)
{
    ok = false;
    const StrongPtr<VValueCreator> creator = find(typeName);
    return creator ? creator->create(text, ok) : nullptr;
}

std::vector<std::string> VValueCreator::names()
{
    const auto* const registry = valueCreators();
    return registry ? registry->names() : std::vector<std::string>{};
}

std::vector<std::string> VValueCreator::libraries(std::string_view typeName)
{
    const auto* const registry = valueCreators();
    return registry ? registry->libraries(typeName) : std::vector<std::string>{};
}

std::vector<StrongPtr<VValueCreator>> VValueCreator::creators()
{
    const auto* const registry = valueCreators();
    return registry ? registry->creators() : std::vector<StrongPtr<VValueCreator>>{};
}

} // namespace Orla
