#include <trellis/TypedSlotCreator.hpp>

#include <trellis/detail/CreatorRegistry.hpp>
#include <trellis/detail/RegistryReport.hpp>

#include <loam/TypeInfo.hpp>

namespace Orla {

namespace {

Detail::CreatorRegistry<TypedSlotCreator>& slotCreators()
{
    static Detail::CreatorRegistry<TypedSlotCreator> theRegistry;
    return theRegistry;
}

} // namespace

std::atomic<int> TypedSlotCreator::InternalTypeCreatorAccessory{0};

TypedSlotCreator::~TypedSlotCreator() = default;

bool TypedSlotCreator::registerTypedSlotCreator(const std::type_info& type,
                                                const WeakPtrImpl<TypedSlotCreator>& creator)
{
    const StrongPtr<TypedSlotCreator> alive = creator.lock();
    if (!alive)
        return false;
    const TypedSlotCreator& self = *alive;
    // The type is the key, so two types never have the same name here.
    const std::string key = Loam::typeKey(type);
    return slotCreators().add(creator, key, key, Detail::ownerOf(type, typeid(self))).empty();
}

StrongPtr<TypedSlotCreator> TypedSlotCreator::find(const std::type_info& type)
{
    return slotCreators().find(Loam::typeKey(type));
}

std::vector<std::string> TypedSlotCreator::typeKeys()
{
    return slotCreators().names();
}

} // namespace Orla
