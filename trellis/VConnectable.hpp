#pragma once

#include <trellis/Export.hpp>
#include <trellis/VSlotContainer.hpp>

namespace Orla {

/// A slot container that finds providers for its slots.
class TRELLIS_API VConnectable : public VSlotContainer {
public:
    VConnectable();
    ~VConnectable() override;

    /// Connects the input \p slot to the one object of the network that provides values
    /// of its type to all others: the registered object whose preferences contain
    /// "unique" and that has such an output, the best one by weight against
    /// \p preferences if there are several. If no object qualifies and \p create is set,
    /// creates an object of the type that is registered as unique provider. Returns false
    /// if nothing was found or created; the slot stays as it was.
    bool attachUniqueObject(const StrongPtr<VSlot>& slot, const StrongPtr<VCreationPreferences>& preferences,
                            bool create);
};

} // namespace Orla
