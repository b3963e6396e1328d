#pragma once

#include <trellis/Export.hpp>
#include <trellis/VSlotContainer.hpp>

namespace Orla {

/// A slot container that finds providers for its slots.
class TRELLIS_API VConnectable : public VSlotContainer {
public:
    VConnectable();
    ~VConnectable() override;

    /// Connects the input \p slot to the network's unique provider of values of its type: a
    /// registered object that has an output of that type and whose preferences contain
    /// "unique". If several qualify, takes the one with the smallest weight against
    /// \p preferences. If none qualifies and \p create is set, creates an object of the type
    /// that is registered as unique provider. Returns false and leaves the slot unchanged if
    /// no provider is found or created.
    bool attachUniqueObject(const StrongPtr<VSlot>& slot, const StrongPtr<VCreationPreferences>& preferences,
                            bool create);
};

} // namespace Orla
