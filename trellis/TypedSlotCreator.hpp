#pragma once

#include <trellis/Export.hpp>
#include <trellis/VCreationPreferences.hpp>
#include <trellis/VSlot.hpp>

#include <atomic>
#include <string>
#include <typeinfo>
#include <vector>

namespace Orla {

class VSlotContainer;

/// Creates inputs of one type from text. Creators are found by the type.
class TRELLIS_API TypedSlotCreator : public Loam::ReferenceBase<TypedSlotCreator> {
public:
    ~TypedSlotCreator() override;

    /// Adds an input to \p that, with an initial value read from \p initialText; \p ok reports
    /// whether the text was accepted. The input is created in either case; returns null only
    /// if the container refuses it.
    virtual StrongPtr<VSlot> newSlot(VSlotContainer* that, const std::string& name, const std::string& initialText,
                                     bool& ok, const StrongPtr<VCreationPreferences>& preferences,
                                     int expertLevel) const = 0;

    /// Registers \p creator for \p type. A second creator of the same type is used once the
    /// first is destroyed.
    static bool registerTypedSlotCreator(const std::type_info& type, const WeakPtrImpl<TypedSlotCreator>& creator);

    /// Returns null if no loaded library creates inputs of that type.
    static StrongPtr<TypedSlotCreator> find(const std::type_info& type);

    /// Returns the keys (`Loam::typeKey`) of the types that have a creator.
    static std::vector<std::string> typeKeys();

    /// The number of typed slots that were destroyed while their creator was registered.
    static std::atomic<int> InternalTypeCreatorAccessory;

protected:
    TypedSlotCreator() = default;
};

} // namespace Orla
