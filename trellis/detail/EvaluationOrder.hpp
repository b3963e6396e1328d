#pragma once

#include <cstdint>
#include <vector>

namespace Orla {

class VSlot;
class VSlotContainer;

namespace Detail {

/// The evaluation order of the slot containers of a network: each container comes
/// after those that it reads. The members of a loop follow each other without a gap,
/// and their readers come after all of them.
///
/// A changed connection is only noted. `update` works out the order for the
/// containers that changed and for those that depend on them.
class EvaluationOrder {
public:
    /// Notes that \p container reads something else through \p slot; a null \p slot
    /// was removed.
    void inputChanged(VSlotContainer& container, const VSlot* slot) noexcept;

    /// Notes that an input of \p container was removed, which leaves a gap among them
    /// that `update` closes.
    void inputRemoved(VSlotContainer& container) noexcept { note(container); }

    /// Forgets a container that is about to be destroyed.
    void forget(VSlotContainer& container) noexcept;

    bool isUpToDate() const noexcept { return m_pending.empty() && !m_mustStartOver; }

    /// Works out what was noted.
    /// \throw std::bad_alloc; the next call starts over.
    void update(const std::vector<VSlotContainer*>& all);

    /// True if `update` needs the list of all containers.
    bool needsAll() const noexcept { return m_mustStartOver; }

    /// The containers that form a loop with \p container, itself included; only
    /// itself if it is not part of a loop.
    static std::vector<VSlotContainer*> loopOf(VSlotContainer& container);

private:
    class Search;

    void note(VSlotContainer& container) noexcept;
    void apply(Search& search);

    static void orderLoop(std::vector<VSlotContainer*>& loop, VSlotContainer& entry);

    // Bits of a container's mark, beside its number in a search.
    static constexpr std::uint32_t InThisComponent = 1u << 31;
    static constexpr std::uint32_t Ordered = 1u << 30;

    std::vector<VSlotContainer*> m_pending;
    bool m_mustStartOver = false; // a note was lost for lack of memory
};

} // namespace Detail

} // namespace Orla
