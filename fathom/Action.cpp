#include <fathom/Action.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/VTypeLabel.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace Orla {

VAction::VAction(double theNumber) noexcept : number{theNumber}
{
}

VAction::~VAction() = default;

bool VAction::emitAction(const StrongPtr<ValuePool>& pool, const StrongPtr<VParameter>& parameter)
{
    if (WeakPtrImpl<VParameter>(parameter).expired())
        return false;

    // The announced objects among the readers, in traversal order; each once, even if several
    // of its inputs read the parameter.
    std::vector<StrongPtr<VObject>> objects;
    for (const VSlot* reader : parameter->readers()) {
        VSlotContainer* const container = reader->container();
        VObject* const object = container ? container->object() : nullptr;
        if (!object || !object->isRegistered() || object->network() != &VNetwork::current())
            continue;
        if (StrongPtr<VObject> living = WeakPtrImpl<VObject>(object).lock())
            objects.push_back(std::move(living));
    }
    std::ranges::sort(
        objects, [](const StrongPtr<VObject>& a, const StrongPtr<VObject>& b) { return a->isTraversedBefore(*b); });
    objects.erase(std::unique(objects.begin(), objects.end()), objects.end());
    const double precision = number;
    for (const StrongPtr<VObject>& object : objects)
        VScheduler::schedule(object, precision, pool);
    return true;
}

std::string VValueTrait<StrongPtr<VAction>>::Text(const StrongPtr<VAction>&)
{
    return {};
}

bool VValueTrait<StrongPtr<VAction>>::setValueFromText(StrongPtr<VAction>&, const std::string&)
{
    return false;
}

namespace {

const VTypeLabel actionLabel{typeid(StrongPtr<VAction>), "action"};

} // namespace

} // namespace Orla
