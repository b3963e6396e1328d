#include <trellis/detail/FrameHooks.hpp>

#include <trellis/detail/PoolState.hpp>
#include <trellis/detail/Wiring.hpp>

#include <trellis/VParameter.hpp>
#include <trellis/VSlot.hpp>

#include <utility>

namespace Orla::Detail {

namespace {

// Calls `function` with the container's frame in each pool. The calling thread has exclusive
// access to the network, so the list of frames does not change meanwhile.
template<class Function>
void forEachFrame(VSlotContainer* container, Function&& function)
{
    if (!container)
        return;
    for (VFrame* frame : container->wiring().frames)
        function(*frame, PoolState::of(*frame));
}

// Calls `function` with each cell that keeps the variable of `parameter`.
template<class Function>
void forEachHomeCell(const VParameter& parameter, Function&& function)
{
    const VSlot* const slot = parameter.slot();
    if (!slot || slot->parameter().get() != &parameter || slot->place().cell == VSlotPlace::NoCell)
        return;
    forEachFrame(slot->container(), [&](VFrame& frame, PoolState&) {
        if (frame.hasCell(slot->place().cell))
            function(frame, slot->place().cell);
    });
}

void setFlag(VFrame& frame, std::uint32_t cell, VFrame::CellFlag flag, bool isOn)
{
    std::uint16_t& bits = frame.flags(cell);
    bits = static_cast<std::uint16_t>(isOn ? bits | flag : bits & ~flag);
}

} // namespace

void FrameHooks::slotsAdded(VSlotContainer& container) noexcept
{
    forEachFrame(&container, [](VFrame& frame, PoolState&) { PoolState::becameStale(frame); });
}

void FrameHooks::becomeDue(VSlotContainer& container) noexcept
{
    forEachFrame(&container, [](VFrame& frame, PoolState& pool) { pool.makeDue(frame, VObserver::Cause::Connected); });
}

void FrameHooks::keepOwnValues(VSlot& slot)
{
    forEachFrame(slot.container(), [&slot](VFrame& frame, PoolState& pool) { pool.keepOutside(frame, slot); });
}

void FrameHooks::rewired(VSlot& slot) noexcept
{
    if (slot.place().cell == VSlotPlace::NoCell)
        return;
    forEachFrame(slot.container(),
                 [&slot](VFrame& frame, PoolState&) { PoolState::rewiredCell(frame, slot.place().cell); });
}

void FrameHooks::readersChanged(const VParameter& parameter) noexcept
{
    forEachHomeCell(parameter, [](VFrame& frame, std::uint32_t cell) { PoolState::forgetReaders(frame, cell); });
}

void FrameHooks::orderChanged(VSlotContainer& container) noexcept
{
    forEachFrame(&container, [](VFrame& frame, PoolState& pool) {
        PoolState::readSwitches(frame);
        pool.orderChanged();
    });
}

void FrameHooks::switchesChanged(VSlotContainer& container) noexcept
{
    forEachFrame(&container, [](VFrame& frame, PoolState& pool) {
        PoolState::readSwitches(frame);
        pool.updateWaiting(frame);
    });
}

void FrameHooks::parameterSwitched(const VParameter& parameter) noexcept
{
    forEachHomeCell(parameter, [&parameter](VFrame& frame, std::uint32_t cell) {
        setFlag(frame, cell, VFrame::Off, !parameter.isEnabled());
    });
}

void FrameHooks::listenersChanged(const ValueNotifierList& list) noexcept
{
    const auto* const parameter = dynamic_cast<const VParameter*>(&list);
    if (!parameter)
        return;
    forEachHomeCell(*parameter, [](VFrame& frame, std::uint32_t cell) {
        setFlag(frame, cell, VFrame::Heard, true);
        PoolState::of(frame).hasListeners = true;
    });
}

void FrameHooks::containerGone(VSlotContainer& container) noexcept
{
    // Moved out first: values that are destroyed here may use the container's pools.
    const PointerList<VFrame> frames = std::move(container.wiring().frames);
    if (frames.empty())
        return;
    // A parameter that only its slot owns is destroyed with it.
    constexpr std::uint32_t OwnReferences = 2;
    const auto keep = [&](VSlot& slot) {
        if (slot.ownParameter()->referenceBlock().strongCount() <= OwnReferences)
            return;
        for (VFrame* frame : frames) {
            try {
                PoolState::of(*frame).keepOutside(*frame, slot);
            } catch (const std::bad_alloc&) {
                // Readers start again from the parameter's initial value.
                for (const VSlot* reader : slot.parameter()->readers())
                    forEachFrame(reader->container(), [reader](VFrame& each, PoolState&) {
                        PoolState::rewiredCell(each, reader->place().cell);
                    });
            }
        }
    };
    container.inputs().forEach(keep);
    container.outputs().forEach(keep);
    // Remove the readers' references to the frames.
    container.outputs().forEach([](VSlot& slot) {
        for (const VSlot* reader : slot.parameter()->readers())
            forEachFrame(reader->container(), [reader](VFrame& each, PoolState&) {
                if (each.hasCell(reader->place().cell) && (each.flags(reader->place().cell) & VFrame::Owned) == 0)
                    each.cell(reader->place().cell).link = nullptr;
            });
    });
    // Likewise for the objects that the container reads.
    container.inputs().forEach([](const VSlot& slot) { readersChanged(*slot.parameter()); });
    for (VFrame* frame : frames)
        PoolState::of(*frame).dropFrame(*frame);
}

void FrameHooks::parameterGone(VParameter& parameter) noexcept
{
    PoolState::forgetEverywhere(parameter);
}

} // namespace Orla::Detail
