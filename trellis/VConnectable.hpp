#pragma once

#include <trellis/Export.hpp>
#include <trellis/VSlotContainer.hpp>

namespace Orla {

/// A slot container that finds partners for its slots by itself.
class TRELLIS_API VConnectable : public VSlotContainer {
public:
    VConnectable();
    ~VConnectable() override;

    /// Connects the input \p slot to the one object of the process that provides
    /// values of its type to everybody: the registered object whose preferences
    /// contain "unique" and that has such an output, the best one by weight
    /// against \p preferences if there are several. Without one, and with
    /// \p create set, makes an object of the type that is registered as unique
    /// provider. False if nothing was found or made; the slot stays as it was.
    bool attachUniqueObject(const StrongPtr<VSlot>& slot, const StrongPtr<VCreationPreferences>& preferences,
                            bool create);
};

} // namespace Orla
