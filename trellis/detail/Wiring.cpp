#include <trellis/detail/Wiring.hpp>

#include <trellis/detail/FrameHooks.hpp>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace Orla::Detail {

std::uint32_t Wiring::takeCell(VSlotContainer& container)
{
    ContainerWiring& wiring = container.wiring();
    if (!wiring.freeCells || wiring.freeCells->empty())
        return wiring.cells++;
    const std::uint32_t cell = wiring.freeCells->back();
    wiring.freeCells->pop_back();
    return cell;
}

void Wiring::giveCellBack(VSlot& slot)
{
    if (slot.m_keepsCell)
        return;
    ContainerWiring& wiring = slot.m_container->wiring();
    if (!wiring.freeCells)
        wiring.freeCells = std::make_unique<std::vector<std::uint32_t>>();
    wiring.freeCells->push_back(slot.m_cell);
}

// Strong guarantee: the list grows before the slot's index is set.
void Wiring::join(VSlot& slot)
{
    VParameter& parameter = *slot.m_parameter;
    parameter.m_readers.push_back(&slot);
    slot.m_readerIndex = static_cast<std::uint32_t>(parameter.m_readers.size() - 1);
    // An object that reads its own output is a loop like any other.
    const StrongPtr<VSlotContainer> owner = parameter.owner();
    slot.m_readsOthers = owner && (owner.get() != slot.m_container || !parameter.source().expired());
}

void Wiring::leave(VSlot& slot) noexcept
{
    if (slot.m_readerIndex == VSlot::NotReading)
        return;
    PointerList<VSlot>& readers = slot.m_parameter->m_readers;
    readers.back()->m_readerIndex = slot.m_readerIndex;
    readers.removeAt(slot.m_readerIndex);
    slot.m_readerIndex = VSlot::NotReading;
}

void Wiring::follow(VSlot& slot, VSlot* leader)
{
    if (!leader)
        return;
    if (!leader->m_link)
        leader->m_link = std::make_unique<VSlot::Link>();
    leader->m_link->followers.push_back(&slot);
    slot.m_link->leader = leader;
    slot.m_link->followerIndex = leader->m_link->followers.size() - 1;
}

void Wiring::unfollow(VSlot& slot) noexcept
{
    if (!slot.m_link || !slot.m_link->leader)
        return;
    std::vector<VSlot*>& followers = slot.m_link->leader->m_link->followers;
    followers[slot.m_link->followerIndex] = followers.back();
    followers[slot.m_link->followerIndex]->m_link->followerIndex = slot.m_link->followerIndex;
    followers.pop_back();
    slot.m_link->leader = nullptr;
}

StrongPtr<VSlot> Wiring::addInput(VSlotContainer& container, const std::string& name, int expertLevel,
                                  const StrongPtr<VParameter>& parameter, std::uint8_t flags)
{
    const ChangeScope change{*container.wiring().network};
    StrongPtr<VSlot> slot(new VSlot(container, name, expertLevel, parameter, flags));
    join(*slot);
    if (!container.m_inputs.add(slot))
        return nullptr;
    slot->m_cell = takeCell(container);
    if (!parameter->m_slot && slot->m_ownsParameter)
        parameter->m_slot = slot.get();
    FrameHooks::slotsAdded(container);
    FrameHooks::readersChanged(*parameter);
    container.wiring().network->order.inputChanged(container, slot.get());
    FrameHooks::becomeDue(container);
    return slot;
}

StrongPtr<VSlot> Wiring::addOutput(VSlotContainer& container, const std::string& name,
                                   const StrongPtr<VParameter>& parameter)
{
    const ChangeScope change{*container.wiring().network};
    StrongPtr<VSlot> slot(new VSlot(container, name, 0, parameter, VSlot::Output));
    slot->m_keepsCell = true;
    if (!container.m_outputs.add(slot))
        return nullptr;
    slot->m_cell = takeCell(container);
    if (parameter->source().expired()) {
        parameter->setSource(WeakPtrImpl<VSlotContainer>(&container));
        // From now on its readers read this container.
        for (VSlot* reader : parameter->m_readers) {
            reader->m_readsOthers = true;
            if (reader->m_container)
                container.wiring().network->order.inputChanged(*reader->m_container, reader);
        }
    }
    if (!parameter->m_slot && parameter->owner().get() == &container) {
        parameter->m_slot = slot.get();
        for (VSlot* reader : parameter->m_readers)
            FrameHooks::rewired(*reader);
    }
    FrameHooks::slotsAdded(container);
    return slot;
}

void Wiring::removeInput(VSlotContainer& container, const StrongPtr<VSlot>& slot)
{
    const ChangeScope change{*container.wiring().network};
    FrameHooks::keepOwnValues(*slot);
    giveCellBack(*slot);
    container.m_inputs.remove(*slot);
    container.m_outputs.remove(*slot);
    if (slot->m_ownParameter->m_slot == slot.get())
        slot->m_ownParameter->m_slot = nullptr;
    leave(*slot);
    FrameHooks::readersChanged(*slot->m_parameter);
    FrameHooks::rewired(*slot);
    container.wiring().network->order.inputRemoved(container);
    FrameHooks::becomeDue(container);
    slot->m_container = nullptr;
    slot->m_cell = VSlotPlace::NoCell;
}

VSlot* Wiring::passingSlot(const VParameter& parameter) noexcept
{
    VSlot* const slot = parameter.m_slot;
    return slot && !slot->hasFlag(VSlot::Output) ? slot : nullptr;
}

NetworkCore* Wiring::networkOf(const VParameter& parameter) noexcept
{
    if (parameter.m_slot && parameter.m_slot->m_container)
        return parameter.m_slot->m_container->wiring().network;
    if (const StrongPtr<VSlotContainer> owner = parameter.owner())
        return owner->wiring().network;
    for (const VSlot* reader : parameter.m_readers) {
        if (reader->m_container)
            return reader->m_container->wiring().network;
    }
    return nullptr;
}

void Wiring::connect(VSlot& slot, const StrongPtr<VParameter>& parameter, const std::string& member, VSlot* leader)
{
    NetworkCore& network = *slot.m_container->wiring().network;
    const ChangeScope change{network};

    // First everything that may fail: collect the slots that change, each with its new link.
    struct Step {
        StrongPtr<VSlot> slot;
        std::string member;
        VValueComponents::Accessor accessor;
    };
    std::vector<Step> steps;
    std::unordered_set<const VSlot*> known{&slot};
    steps.push_back({WeakPtrImpl<VSlot>(&slot).lock(), member, {}});
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const StrongPtr<VSlot> each = steps[i].slot;
        const bool isUnchanged = each->m_parameter == parameter && each->member() == steps[i].member;
        if (isUnchanged || !each->m_link)
            continue;
        for (VSlot* follower : each->m_link->followers) {
            // Slots may follow each other in a ring; each is visited once.
            if (!follower->m_container || !known.insert(follower).second)
                continue;
            steps.push_back(
                {WeakPtrImpl<VSlot>(follower).lock(),
                 VValueComponents::join(steps[i].member, VValueComponents::rest(follower->member(), each->member())),
                 {}});
        }
    }
    std::erase_if(steps, [&](const Step& step) {
        return step.slot->m_parameter == parameter && step.slot->member() == step.member;
    });
    for (Step& step : steps) {
        step.accessor = VValueComponents::accessor(parameter->valueType(), step.member);
        if (!step.slot->m_link)
            step.slot->m_link = std::make_unique<VSlot::Link>();
        FrameHooks::keepOwnValues(*step.slot);
    }
    parameter->m_readers.reserve(parameter->m_readers.size() + steps.size());
    if (leader && leader != &slot) {
        if (!slot.m_link)
            slot.m_link = std::make_unique<VSlot::Link>();
        if (slot.m_link->leader != leader) {
            unfollow(slot);
            follow(slot, leader);
        }
    } else {
        unfollow(slot);
    }

    for (Step& step : steps) {
        VSlot& each = *step.slot;
        leave(each);
        FrameHooks::readersChanged(*each.m_parameter);
        each.m_parameter = parameter;
        each.m_link->member = std::move(step.member);
        each.m_link->accessor = std::move(step.accessor);
        join(each);
        FrameHooks::readersChanged(*parameter);
        FrameHooks::rewired(each);
        network.order.inputChanged(*each.m_container, &each);
        FrameHooks::becomeDue(*each.m_container);
    }
}

void Wiring::cut(VSlotContainer& container) noexcept
{
    for (const StrongPtr<VSlot>& slot : container.m_inputs) {
        leave(*slot);
        unfollow(*slot);
        if (slot->m_link) {
            slot->m_link->member.clear();
            slot->m_link->accessor.clear();
        }
        slot->m_parameter = slot->m_ownParameter;
        slot->m_readsOthers = false;
    }
}

void Wiring::destroy(VSlotContainer& container) noexcept
{
    NetworkCore& network = *container.wiring().network;
    const ChangeScope change{network};
    FrameHooks::containerGone(container);
    // Before the slots are removed, because `forget` visits their readers.
    network.order.forget(container);
    network.remove(container);
    const VSlotSet inputs = std::move(container.m_inputs);
    const VSlotSet outputs = std::move(container.m_outputs);
    for (const VSlotSet* slots : {&inputs, &outputs}) {
        for (const StrongPtr<VSlot>& slot : *slots) {
            leave(*slot);
            FrameHooks::readersChanged(*slot->m_parameter);
            if (slot->m_ownParameter->m_slot == slot.get())
                slot->m_ownParameter->m_slot = nullptr;
            slot->m_container = nullptr;
        }
    }
    // Readers keep the parameters of the outputs, which no longer have a source.
}

void Wiring::release(VSlot& slot) noexcept
{
    leave(slot);
    unfollow(slot);
    if (slot.m_ownParameter->m_slot == &slot)
        slot.m_ownParameter->m_slot = nullptr;
    if (!slot.m_link)
        return;
    for (VSlot* follower : slot.m_link->followers)
        follower->m_link->leader = nullptr;
}

} // namespace Orla::Detail
