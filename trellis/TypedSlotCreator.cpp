#include <trellis/TypedSlotCreator.hpp>

#include <trellis/detail/CreatorRegistry.hpp>
#include <trellis/detail/RegistryReport.hpp>

#include <loam/TypeInfo.hpp>

namespace Orla {

namespace {

Detail::CreatorRegistry<TypedSlotCreator>* slotCreators()
{
    return Detail::creatorRegistry<TypedSlotCreator>();
}

} // namespace

std::atomic<int> TypedSlotCreator::InternalTypeCreatorAccessory{0};

TypedSlotCreator::~TypedSlotCreator() = default;

bool TypedSlotCreator::registerTypedSlotCreator(const std::type_info& type,
                                                const WeakPtrImpl<TypedSlotCreator>& creator)
{
    const StrongPtr<TypedSlotCreator> alive = creator.lock();
    auto* const registry = slotCreators();
    if (!alive || !registry)
        return false;
    const TypedSlotCreator& self = *alive;
    // The type is the key, so two types never have the same name here.
    const std::string key = Loam::typeKey(type);
    return registry->add(creator, key, key, {Detail::ownerOf(type, typeid(self)), {}}).empty();
}

StrongPtr<TypedSlotCreator> TypedSlotCreator::find(const std::type_info& type)
{
    const auto* const registry = slotCreators();
    return registry ? registry->find(Loam::typeKey(type)) : nullptr;
}

std::vector<std::string> TypedSlotCreator::typeKeys()
{
    const auto* const registry = slotCreators();
    return registry ? registry->names() : std::vector<std::string>{};
}

} // namespace Orla
