#pragma once

namespace Orla {

class ValueNotifierList;
class VParameter;
class VSlot;
class VSlotContainer;

/// Notifies pools of changes of the wiring. The caller has exclusive access to the network.
namespace Detail::FrameHooks {

/// Slots were added to the container.
void slotsAdded(VSlotContainer& container) noexcept;

/// Makes the container's object due in every pool that uses it.
void becomeDue(VSlotContainer& container) noexcept;

/// Stores the slot's own values outside its cells, before the slot reads another parameter or
/// is removed.
/// \throw std::bad_alloc; nothing is lost.
void keepOwnValues(VSlot& slot);

/// The slot now reads another parameter or component, or was removed.
void rewired(VSlot& slot) noexcept;

/// The set of slots that read \p parameter changed, or which of them make objects due.
void readersChanged(const VParameter& parameter) noexcept;

/// The order number of the container changed.
void orderChanged(VSlotContainer& container) noexcept;

/// One of the container's switches changed.
void switchesChanged(VSlotContainer& container) noexcept;

/// The parameter was enabled or disabled.
void parameterSwitched(const VParameter& parameter) noexcept;

/// The first listener was added.
void listenersChanged(const ValueNotifierList& parameter) noexcept;

/// The container is about to be destroyed, or its network is being destroyed.
void containerGone(VSlotContainer& container) noexcept;

/// The parameter is about to be destroyed.
void parameterGone(VParameter& parameter) noexcept;

} // namespace Detail::FrameHooks

} // namespace Orla
