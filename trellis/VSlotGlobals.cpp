#include <trellis/VSlotGlobals.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VSlotContainer.hpp>
#include <trellis/VTypeLabel.hpp>

namespace Orla {

void VSlotGlobals::assertionFail(VSlotContainer* that, const std::string& name, const std::type_info& type)
{
    VActionNotifier::Warning(
        "The slot \"" + name + "\" of type " + VTypeLabel::of(type)
        + (that ? " is not usable in " + that->typeAndName() : " was declared without a container"));
}

StrongPtr<VSlot> VSlotGlobals::addParameter(VSlotContainer* that, const std::string& name, int expertLevel,
                                            const StrongPtr<VParameter>& parameter, bool triggers)
{
    return that ? that->addParameter(name, expertLevel, parameter, triggers) : nullptr;
}

} // namespace Orla
