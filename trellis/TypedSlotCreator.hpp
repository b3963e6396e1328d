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

/// Makes inputs of one type from text. The framework finds creators by the type.
class TRELLIS_API TypedSlotCreator : public Loam::ReferenceBase<TypedSlotCreator> {
public:
    ~TypedSlotCreator() override;

    /// A new input of \p that, whose initial value is read from \p initialText;
    /// \p ok reports whether the text was accepted. The input is made in either
    /// case; null only if the container refuses it.
    virtual StrongPtr<VSlot> newSlot(VSlotContainer* that, const std::string& name, const std::string& initialText,
                                     bool& ok, const StrongPtr<VCreationPreferences>& preferences,
                                     int expertLevel) const = 0;

    /// Makes \p creator known for \p type. A second creator of the same type
    /// waits behind the first.
    static bool registerTypedSlotCreator(const std::type_info& type, const WeakPtrImpl<TypedSlotCreator>& creator);

    /// Null if no loaded library makes inputs of that type.
    static StrongPtr<TypedSlotCreator> find(const std::type_info& type);

    /// Keys (`Loam::typeKey`) of the types that have a creator.
    static std::vector<std::string> typeKeys();

    /// How many typed slots were destroyed while their creator was registered.
    static std::atomic<int> InternalTypeCreatorAccessory;

protected:
    TypedSlotCreator() = default;
};

} // namespace Orla
