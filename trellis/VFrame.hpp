#pragma once

#include <trellis/Export.hpp>
#include <trellis/VSlotPlace.hpp>

#include <cstddef>
#include <cstdint>

namespace Orla {

class VObject;
class VSlot;
class VSlotContainer;
class VValueBase;

namespace Detail {
class DueQueue;
class PoolState;
class Update;
} // namespace Detail

/// The data of one pool for one slot container: a single block with one cell per slot.
///
/// The cell of a slot that reads its own parameter owns the value. The cell of a connected
/// input refers to the value that the input reads and is resolved when connections change. An
/// update therefore touches only its own frame, the values that it reads and the frames of its
/// readers, and needs no look-ups.
///
/// A frame is used by the thread that uses its pool. The members are internal; typed slots and
/// outputs use `cell` and `flags`.
class TRELLIS_API VFrame {
public:
    /// Bits that describe a cell.
    enum CellFlag : std::uint16_t {
        Owned = 0x0001,        ///< the cell owns the variable of the slot's own parameter
        Part = 0x0002,         ///< the cell owns a component of the value that the slot reads
        Plain = 0x0004,        ///< the value is a `VValue` of the slot's type
        Typed = 0x0008,        ///< the value is a `VTypedValueBase` of the slot's type
        Off = 0x0010,          ///< the parameter is disabled
        Heard = 0x0020,        ///< the parameter has listeners
        KnowsReaders = 0x0040, ///< `link` lists the frames that read the value
        OneReader = 0x0080,    ///< `link` is that frame
        ManyReaders = 0x0100,  ///< `link` is a list of frames
        OwnInput = 0x0200,     ///< the container reads the value itself
        Rewired = 0x0400,      ///< reads a different value than in the last successful update
        FromFailed = 0x0800,   ///< the value comes from a destroyed object whose update had failed
        Unannounced = 0x1000,  ///< a change could not be announced for lack of memory
        Missing = 0x2000       ///< the value comes from an object that failed or waits
    };

    struct Cell {
        VValueBase* value = nullptr;
        void* link = nullptr; // the readers of an owned value, else the frame that owns the value
    };

    /// Returns \p running if it belongs to \p place's container, else null.
    static VFrame* of(VFrame* running, const VSlotPlace& place) noexcept
    {
        return running && running->m_container == place.container ? running : nullptr;
    }

    const VSlotContainer* container() const noexcept { return m_container; }

    std::uint32_t cellCount() const noexcept
    {
        return m_inlineCells + (m_more ? static_cast<const MoreCells*>(m_more)->count : 0u);
    }
    bool hasCell(std::uint32_t index) const noexcept { return index < cellCount(); }

    Cell& cell(std::uint32_t index) noexcept
    {
        return index < m_inlineCells ? inlineCells()[index] : moreCells()[index - m_inlineCells].cell;
    }

    std::uint16_t& flags(std::uint32_t index) noexcept
    {
        return index < m_inlineCells ? reinterpret_cast<std::uint16_t*>(inlineCells() + m_inlineCells)[index]
                                     : moreCells()[index - m_inlineCells].flags;
    }

    /// Prepares to announce changes of an owned value; `announce` then cannot fail.
    /// \throw std::bad_alloc
    void prepareToAnnounce(std::uint32_t index)
    {
        if ((flags(index) & KnowsReaders) == 0) [[unlikely]]
            findReaders(index);
    }

    /// Makes the readers of an owned value due and notifies its listeners.
    void announce(std::uint32_t index);

    /// Called when the object's update reads an output of its own that it has not written. The
    /// value is from an earlier update; see `VScheduler::history`.
    void readEarlierOutput(std::uint32_t index) noexcept;

    /// Called when the object's update changes an input of its own.
    void changedOwnInput(std::uint32_t index) noexcept;

    /// Called when the object's update asks for the name of a file to write.
    void writesFile() noexcept;

    /// Called when the object's update uses members that earlier updates changed.
    void usesState() noexcept;

private:
    friend class Detail::DueQueue;
    friend class Detail::PoolState;
    friend class Detail::Update;

    struct WideCell {
        Cell cell;
        std::uint16_t flags = 0;
    };
    struct MoreCells {
        alignas(WideCell) std::uint32_t count;
        WideCell* cells() noexcept { return reinterpret_cast<WideCell*>(this + 1); }
    };

    VFrame() = default;

    /// Prefetches the memory that an update needs first.
    void prefetchForUpdate() const noexcept
    {
#if defined(__GNUC__)
        __builtin_prefetch(m_nextDue);
        __builtin_prefetch(this + 1);
        const char* const object = reinterpret_cast<const char*>(m_object);
        __builtin_prefetch(object);
        __builtin_prefetch(object + 128);
        __builtin_prefetch(object + 256);
#endif
    }

    /// Returns true while the object's own update writes. Its writes to its own inputs do not
    /// make it due.
    bool isWriting() const noexcept { return m_isUpdating && !m_hasReturned; }

    /// Returns false if the update can run without preparation.
    bool needsPreparation() const noexcept
    {
        // The compiler merges these into one test, but not if they are combined with `|`.
        return m_isStale || m_isWaiting || m_needsHold || m_keepsState || m_acceptsFailed || m_hasPrecision;
    }

    Cell* inlineCells() noexcept { return reinterpret_cast<Cell*>(this + 1); }
    WideCell* moreCells() noexcept { return static_cast<MoreCells*>(m_more)->cells(); }
    void findReaders(std::uint32_t index);

    const VSlotContainer* m_container = nullptr;
    VObject* m_object = nullptr;
    Detail::PoolState* m_pool = nullptr;
    VFrame* m_nextDue = nullptr;           // the next due frame with the same order number
    std::uint64_t m_lastRun = 0;           // the object has seen all older values; 0 before its first success
    void* m_more = nullptr;                // the cells beyond `m_inlineCells`
    std::uint32_t m_order = 0;             // the container's order number
    std::uint32_t m_pass : 22 = 0;         // the last pass that ran the object
    std::uint32_t m_isStopped : 1 = false; // failed because its loop was stopped
    std::uint32_t m_wasLong : 1 = false;   // the last update was long; see `m_isShort`
    std::uint32_t m_runs : 8 = 0;          // number of runs in that pass
    std::uint32_t m_place = 0;             // index among the container's frames; guarded by their lock
    std::uint8_t m_inlineCells = 0;
    bool m_isDead = false; // its container was destroyed; freed when nothing refers to it
    // Threads that run concurrent updates do not touch these.
    std::uint16_t m_isDue : 1 = false;
    std::uint16_t m_isUpdating : 1 = false;
    std::uint16_t m_hasReturned : 1 = false; // the update has returned; its changes are not announced yet
    std::uint16_t m_missedRun : 1 = false;   // became due while waiting
    std::uint16_t m_isEvaluated : 1 = false;
    std::uint16_t m_isInLoop : 1 = false;
    std::uint16_t m_runsInTurn : 1 = false; // does not run concurrently: in a loop, or declared
    std::uint16_t m_isShort : 1 = false;    // one of the last two updates was shorter than a hand-over
    // Each update reads these, so they share a byte.
    std::uint16_t m_isStale : 1 = true;     // cells must be resolved before the next update
    std::uint16_t m_isWaiting : 1 = false;  // for a failed object
    std::uint16_t m_needsHold : 1 = true;   // no registry keeps the object alive
    std::uint16_t m_keepsState : 1 = false; // the object runs in one pool at a time
    std::uint16_t m_acceptsFailed : 1 = false;
    std::uint16_t m_hasPrecision : 1 = false;
    std::uint16_t m_hasFailed : 1 = false;
    std::uint16_t m_hasRewired : 1 = false; // a cell has the flag `Rewired`
};

static_assert(sizeof(void*) != 8 || sizeof(VFrame) == 64, "a frame without its cells must fit into one cache line");

} // namespace Orla
