#pragma once

namespace Orla {

class ValueNotifierList;
class VParameter;
class VSlot;
class VSlotContainer;

/// What pools do when the wiring changes. The wiring calls these functions while it
/// keeps the network to this thread; the frames of the pools implement them.
namespace Detail::FrameHooks {

/// The container has more slots than before.
void slotsAdded(VSlotContainer& container) noexcept;

/// The container's object is due in every pool that uses it.
void becomeDue(VSlotContainer& container) noexcept;

/// Keeps the slot's own values outside its cells, before the slot reads another
/// parameter or is removed.
/// \throw std::bad_alloc; nothing is lost.
void keepOwnValues(VSlot& slot);

/// The slot reads another parameter or component now, or was removed.
void rewired(VSlot& slot) noexcept;

/// The slots that read \p parameter changed, or which of them make objects due.
void readersChanged(const VParameter& parameter) noexcept;

/// The order number of the container changed.
void orderChanged(VSlotContainer& container) noexcept;

/// One of the container's switches changed.
void switchesChanged(VSlotContainer& container) noexcept;

/// The parameter was switched on or off.
void parameterSwitched(const VParameter& parameter) noexcept;

/// The first listener was added or the last one removed.
void listenersChanged(const ValueNotifierList& parameter) noexcept;

/// The container is about to be destroyed, or its network was.
void containerGone(VSlotContainer& container) noexcept;

/// The parameter is about to be destroyed.
void parameterGone(VParameter& parameter) noexcept;

} // namespace Detail::FrameHooks

} // namespace Orla
