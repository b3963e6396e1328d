#pragma once

#include <trellis/VSlotContainer.hpp>
#include <trellis/VValueComponents.hpp>
#include <trellis/detail/NetworkCore.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Orla {

/// Data of a slot that is connected, or that passes its input on.
struct VSlot::Link {
    std::string member; ///< of the value that the slot reads; empty for the value itself
    VValueComponents::Accessor accessor;
    /// Slots that are connected through this one and read what it reads, and the slot through
    /// which this one is connected.
    std::vector<VSlot*> followers;
    VSlot* leader = nullptr;
    std::size_t followerIndex = 0;
};

namespace Detail {

/// Makes, changes and cuts connections. All functions take exclusive access to the network,
/// and leave everything unchanged if they throw.
class Wiring {
public:
    static StrongPtr<VSlot> addInput(VSlotContainer& container, const std::string& name, int expertLevel,
                                     const StrongPtr<VParameter>& parameter, std::uint8_t flags);
    static StrongPtr<VSlot> addOutput(VSlotContainer& container, const std::string& name,
                                      const StrongPtr<VParameter>& parameter);
    static void removeInput(VSlotContainer& container, const StrongPtr<VSlot>& slot);

    /// Connects \p slot to \p member of \p parameter. If \p leader is not null, the slot then
    /// follows whatever that slot reads.
    static void connect(VSlot& slot, const StrongPtr<VParameter>& parameter, const std::string& member, VSlot* leader);

    /// Returns the slot through which \p parameter passes an input on, or null.
    static VSlot* passingSlot(const VParameter& parameter) noexcept;

    /// Returns the network of the containers that write or read \p parameter; null if no
    /// container does.
    static NetworkCore* networkOf(const VParameter& parameter) noexcept;

    /// Reconnects all inputs of a container to their own parameters. Allocates nothing.
    /// \pre The container has no frames.
    static void cut(VSlotContainer& container) noexcept;

    /// Removes a container that is about to be destroyed.
    static void destroy(VSlotContainer& container) noexcept;

    /// Removes a slot that is about to be destroyed from all lists.
    static void release(VSlot& slot) noexcept;

private:
    static std::uint32_t takeCell(VSlotContainer& container);
    static void giveCellBack(VSlot& slot);
    static void join(VSlot& slot);
    static void leave(VSlot& slot) noexcept;
    static void follow(VSlot& slot, VSlot* leader);
    static void unfollow(VSlot& slot) noexcept;
};

} // namespace Detail

} // namespace Orla
