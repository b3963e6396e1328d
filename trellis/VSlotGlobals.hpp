#pragma once

#include <trellis/Export.hpp>
#include <trellis/VSlot.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

class VSlotContainer;

/// Gives typed slots access to slot containers without including their header.
class TRELLIS_API VSlotGlobals {
public:
    /// Warns that the slot \p name of type \p type was declared without a container or cannot
    /// be used in \p that. This is a programming error, but the function returns and the
    /// program continues.
    static void assertionFail(VSlotContainer* that, const std::string& name, const std::type_info& type);

    /// As `VSlotContainer::addParameter`; returns null for a null container.
    static StrongPtr<VSlot> addParameter(VSlotContainer* that, const std::string& name, int expertLevel,
                                         const StrongPtr<VParameter>& parameter, bool triggers);
};

} // namespace Orla
