#pragma once

#include <trellis/Export.hpp>
#include <trellis/VSlot.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

class VSlotContainer;

/// What typed slots need of the framework without knowing slot containers.
class TRELLIS_API VSlotGlobals {
public:
    /// Reports that a slot \p name of type \p type was declared without a
    /// container, a mistake in the program; returns, so that the program can go on.
    static void assertionFail(VSlotContainer* that, const std::string& name, const std::type_info& type);

    /// As `VSlotContainer::addParameter`; null for a null container.
    static StrongPtr<VSlot> addParameter(VSlotContainer* that, const std::string& name, int expertLevel,
                                         const StrongPtr<VParameter>& parameter, bool triggers);
};

} // namespace Orla
