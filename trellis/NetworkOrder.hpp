#pragma once

#include <loam/StrongPtr.hpp>

#include <cstdint>
#include <vector>

namespace Orla {

class VSlot;
class VSlotContainer;

/// Keeps the evaluation order of slot containers up to date: everybody comes
/// after those that it reads, and the members of a loop follow each other
/// without a gap, with their readers behind all of them.
///
/// A changed connection is only noted; the order is worked out when somebody
/// needs it, for the containers that changed and those that depend on them.
class NetworkOrder {
public:
    /// Notes that \p container reads something else now, through \p slot; a null
    /// \p slot was removed.
    static void inputChanged(VSlotContainer& container, const VSlot* slot);

    /// The container is about to go.
    static void forget(VSlotContainer& container);

    /// Works out what was noted.
    static void update();

    static bool isUpToDate() noexcept;

    /// The containers that form a loop with \p container, itself included; only
    /// itself if it is in none.
    static std::vector<VSlotContainer*> loopOf(VSlotContainer& container);

private:
    class Search;

    static void note(VSlotContainer& container);

    // Bits of a container's mark, beside its number in a search.
    static constexpr std::uint32_t InThisComponent = 1u << 31;
    static constexpr std::uint32_t Ordered = 1u << 30;

    static void orderLoop(std::vector<VSlotContainer*>& loop, VSlotContainer& entry);
};

} // namespace Orla
