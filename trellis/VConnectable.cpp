#include <trellis/VConnectable.hpp>

#include <trellis/detail/Provision.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VObjectCreator.hpp>

namespace Orla {

using Detail::Provision;

VConnectable::VConnectable() = default;
VConnectable::~VConnectable() = default;

bool VConnectable::attachUniqueObject(const StrongPtr<VSlot>& slot, const StrongPtr<VCreationPreferences>& preferences,
                                      bool create)
{
    if (!slot)
        return false;

    Detail::NetworkCore& network = *wiring().network;
    const Detail::ChangeScope change{network};
    const Detail::CurrentScope current{network};
    StrongPtr<VSlot> best;
    double weight = 0;
    VObject::forEachOutput(
        slot->type(),
        [&](const StrongPtr<VObject>& object, const StrongPtr<VSlot>& offered) {
            if (offered->container() == this || offered->parameter() == slot->ownParameter())
                return;
            const VCreationPreferences& has = *object->creationPreferences();
            const double candidate = preferences ? has.weight(*preferences) : has.handicap();
            // Skips NaN, for which both comparisons are false.
            if (best ? candidate < weight : candidate == candidate) {
                best = offered;
                weight = candidate;
            }
        },
        "unique");

    if (!best && create) {
        const StrongPtr<VObjectCreator> creator = VObjectCreator::findUnique(slot->type());
        if (!creator || Provision::isRunning(network, creator->typeName()))
            return false;
        const Provision provision{network, creator->typeName()};
        if (const StrongPtr<VObject> provider = creator->create(creator->typeName(), 0, preferences)) {
            VObject::finishCreation(provider, {}, creator);
            best = Provision::outputFor(*slot, *provider);
        }
    }
    return best && attachOutput(best, slot, {});
}

} // namespace Orla
