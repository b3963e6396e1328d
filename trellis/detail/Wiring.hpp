#pragma once

#include <trellis/VSlotContainer.hpp>
#include <trellis/VValueComponents.hpp>
#include <trellis/detail/NetworkCore.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Orla {

/// What only a slot needs that is connected, or that passes its input on.
struct VSlot::Link {
    std::string member; ///< of the value that the slot reads; empty for the value itself
    VValueComponents::Accessor accessor;
    /// Slots that were connected to this one, which reads for them, and the slot that
    /// this one was connected to in that way.
    std::vector<VSlot*> followers;
    VSlot* leader = nullptr;
    std::size_t followerIndex = 0;
};

namespace Detail {

/// Makes, changes and cuts connections. All functions keep the network to this thread
/// while they work, and leave everything as it was if they throw.
class Wiring {
public:
    static StrongPtr<VSlot> addInput(VSlotContainer& container, const std::string& name, int expertLevel,
                                     const StrongPtr<VParameter>& parameter, std::uint8_t flags);
    static StrongPtr<VSlot> addOutput(VSlotContainer& container, const std::string& name,
                                      const StrongPtr<VParameter>& parameter);
    static void removeInput(VSlotContainer& container, const StrongPtr<VSlot>& slot);

    /// Lets \p slot read \p member of \p parameter and, with a \p leader, whatever that
    /// slot reads from now on.
    static void connect(VSlot& slot, const StrongPtr<VParameter>& parameter, const std::string& member, VSlot* leader);

    /// The slot through which \p parameter passes an input on, or null.
    static VSlot* passingSlot(const VParameter& parameter) noexcept;

    /// The network of the containers that write or read \p parameter; null if there are
    /// none.
    static NetworkCore* networkOf(const VParameter& parameter) noexcept;

    /// Makes all inputs of a container read their own parameters. Allocates nothing;
    /// the container must not have frames any more.
    static void cut(VSlotContainer& container) noexcept;

    /// Removes a container that is about to be destroyed.
    static void destroy(VSlotContainer& container) noexcept;

    /// Takes a slot that is about to be destroyed out of all lists.
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
