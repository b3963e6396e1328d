#pragma once

#include <cstdint>
#include <vector>

namespace Orla {

class VSlot;
class VSlotContainer;

namespace Detail {

/// The evaluation order of the slot containers of a network: each container follows those that
/// it reads. The members of a loop have consecutive numbers, and their readers follow all of
/// them.
///
/// A changed connection is only recorded. `update` computes the order of the containers that
/// changed and of those that depend on them.
class EvaluationOrder {
public:
    /// Records that \p container reads something else through \p slot; null means a removed
    /// slot.
    void inputChanged(VSlotContainer& container, const VSlot* slot) noexcept;

    /// Records that an input of \p container was removed; `update` closes the gap in its
    /// inputs.
    void inputRemoved(VSlotContainer& container) noexcept { note(container); }

    /// Removes a container that is about to be destroyed.
    void forget(VSlotContainer& container) noexcept;

    bool isUpToDate() const noexcept { return m_pending.empty() && !m_mustStartOver; }

    /// Computes the order for the recorded changes.
    /// \throw std::bad_alloc; the next call starts over.
    void update(const std::vector<VSlotContainer*>& all);

    /// Returns true if `update` needs the list of all containers.
    bool needsAll() const noexcept { return m_mustStartOver; }

    /// Returns the containers that form a loop with \p container, including \p container; only
    /// \p container if it is not part of a loop.
    static std::vector<VSlotContainer*> loopOf(VSlotContainer& container);

private:
    class Search;

    void note(VSlotContainer& container) noexcept;
    void apply(Search& search);

    static void orderLoop(std::vector<VSlotContainer*>& loop, VSlotContainer& entry);

    // Bits of a container's mark, in addition to its number in a search.
    static constexpr std::uint32_t InThisComponent = 1u << 31;
    static constexpr std::uint32_t Ordered = 1u << 30;

    std::vector<VSlotContainer*> m_pending;
    bool m_mustStartOver = false; // a change could not be recorded for lack of memory
};

} // namespace Detail

} // namespace Orla
