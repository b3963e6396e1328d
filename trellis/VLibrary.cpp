#include <trellis/VLibrary.hpp>

#include <trellis/detail/NetworkCore.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueCreator.hpp>

#include <algorithm>
#include <typeinfo>
#include <vector>

namespace Orla {

namespace {

// Returns the registered creators, once each: every pointer counts as a reference.
template<class Creator>
std::vector<StrongPtr<Creator>> distinctCreators()
{
    std::vector<StrongPtr<Creator>> creators = Creator::creators();
    std::ranges::sort(creators, {}, [](const auto& creator) { return creator.get(); });
    creators.erase(std::unique(creators.begin(), creators.end()), creators.end());
    return creators;
}

// A creator that only the registry knows has one reference, the caller's.
template<class Creator>
bool isHeld(const StrongPtr<Creator>& creator)
{
    return creator.referenceBlock()->strongCount() > 1;
}

// A reference, because Clang warns about calls in the operand of `typeid`.
template<class T>
bool hasCodeOf(const VLibrary& library, const T& object)
{
    return library.contains(&typeid(object));
}

template<class Creator>
bool registers(const VLibrary& library)
{
    return std::ranges::any_of(Creator::creators(), [&](const auto& creator) { return hasCodeOf(library, *creator); });
}

} // namespace

VLibrary::VLibrary(void* handle) : m_library{handle}
{
}

bool VLibrary::registersTypes() const
{
    return registers<VObjectCreator>(*this) || registers<VValueCreator>(*this);
}

std::optional<std::string> VLibrary::use() const
{
    for (const auto& network : Detail::NetworkCore::all()) {
        for (const StrongPtr<VSlotContainer>& container : network->containers()) {
            if (hasCodeOf(*this, *container))
                return container->typeAndName();
        }
    }
    for (const StrongPtr<VValueCreator>& creator : VValueCreator::creators()) {
        if (creator->existingValues() > 0 && hasCodeOf(*this, *creator))
            return "a value of type " + VTypeLabel::of(creator->valueType());
    }
    for (const StrongPtr<VObjectCreator>& creator : distinctCreators<VObjectCreator>()) {
        if (isHeld(creator) && hasCodeOf(*this, *creator))
            return "the creator of \"" + creator->typeName() + '"';
    }
    for (const StrongPtr<VValueCreator>& creator : distinctCreators<VValueCreator>()) {
        if (isHeld(creator) && hasCodeOf(*this, *creator))
            return "the creator of values of type " + VTypeLabel::of(creator->valueType());
    }
    return std::nullopt;
}

Loam::Result<void> VLibrary::unload()
{
    if (const std::optional<std::string> inUse = use())
        return Loam::Failure{*inUse + " is still in use"};
    m_library.close();
    return {};
}

} // namespace Orla
