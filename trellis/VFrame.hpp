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

/// What one pool holds for one slot container: a single block with one cell per slot.
///
/// The cell of a slot that reads its own parameter owns the value. The cell of a
/// connected input refers to the value that the input reads, which is worked out when
/// connections change. An update therefore touches its own frame, the values that it
/// reads and the frames of its readers, and looks nothing up.
///
/// A frame is used by the thread that uses its pool. The members are the framework's
/// own; typed slots and outputs use `cell` and `flags`.
class TRELLIS_API VFrame {
public:
    /// Bits that say what a cell holds.
    enum CellFlag : std::uint16_t {
        Owned = 0x0001,        ///< the cell owns the variable of the slot's own parameter
        Part = 0x0002,         ///< the cell owns a component of the value that the slot reads
        Plain = 0x0004,        ///< the value is a `VValue` of the slot's type
        Typed = 0x0008,        ///< the value is a `VTypedValueBase` of the slot's type
        Off = 0x0010,          ///< the parameter is switched off
        Heard = 0x0020,        ///< the parameter has listeners
        KnowsReaders = 0x0040, ///< `link` lists the frames that read the value
        OneReader = 0x0080,    ///< `link` is that frame
        ManyReaders = 0x0100,  ///< `link` is a list of frames
        OwnInput = 0x0200,     ///< the container reads the value itself
        Rewired = 0x0400,      ///< reads another value than in the last update that succeeded
        FromFailed = 0x0800,   ///< the value comes from a destroyed object whose update had failed
        Unannounced = 0x1000,  ///< a change could not be announced for lack of memory
        Missing = 0x2000       ///< the value comes from an update that failed or waits
    };

    struct Cell {
        VValueBase* value = nullptr;
        void* link = nullptr; // of an owned value its readers, else the frame that owns the value
    };

    /// The frame of the running update, if that belongs to \p place's container; else null.
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

    /// Prepares announcing changes of an owned value, so that `announce` cannot fail.
    /// \throw std::bad_alloc
    void prepareToAnnounce(std::uint32_t index)
    {
        if ((flags(index) & KnowsReaders) == 0) [[unlikely]]
            findReaders(index);
    }

    /// Makes the objects due that read an owned value, and notifies its listeners.
    void announce(std::uint32_t index);

private:
    friend class Detail::DueQueue;
    friend class Detail::PoolState;
    friend class Detail::Update;

    struct WideCell {
        Cell cell;
        std::uint16_t flags = 0;
    };
    struct alignas(WideCell) MoreCells {
        std::uint32_t count;
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

    /// True while the object's own update writes. Such an object knows about the inputs
    /// that it writes itself.
    bool isWriting() const noexcept
    {
        return m_isUpdating && !m_hasReturned;
    }

    /// False for an object that simply runs.
    bool needsPreparation() const noexcept
    {
        // The compiler makes one test of these, but not of bits that are combined with `|`.
        return m_isStale || m_isWaiting || m_needsHold || m_keepsState || m_acceptsFailed || m_hasPrecision;
    }

    Cell* inlineCells() noexcept
    {
        return reinterpret_cast<Cell*>(this + 1);
    }
    WideCell* moreCells() noexcept
    {
        return static_cast<MoreCells*>(m_more)->cells();
    }
    void findReaders(std::uint32_t index);

    const VSlotContainer* m_container = nullptr;
    VObject* m_object = nullptr;
    Detail::PoolState* m_pool = nullptr;
    VFrame* m_nextDue = nullptr;         // among the due frames of the same order number
    std::uint64_t m_lastRun = 0;         // older values are known to the object; 0 before its first success
    void* m_more = nullptr;              // cells of slots that were added after the frame was made
    std::uint32_t m_order = 0;           // the container's
    std::uint32_t m_pass : 23 = 0;       // the last evaluation that ran the object
    std::uint32_t m_wasLong : 1 = false; // the last update of one that is short by the rule of `m_isShort`
    std::uint32_t m_runs : 8 = 0;        // in that evaluation
    std::uint32_t m_place = 0;           // among the container's frames; guarded by their lock
    std::uint8_t m_inlineCells = 0;
    bool m_isDead = false; // its container was destroyed; freed when nothing refers to it
    // A thread that runs an update concurrently does not touch these.
    std::uint16_t m_isDue : 1 = false;
    std::uint16_t m_isUpdating : 1 = false;
    std::uint16_t m_hasReturned : 1 = false; // its update; what it wrote is not announced yet
    std::uint16_t m_missedRun : 1 = false;   // became due while waiting
    std::uint16_t m_isEvaluated : 1 = false;
    std::uint16_t m_isInLoop : 1 = false;
    std::uint16_t m_runsInTurn : 1 = false; // not concurrently: a member of a loop, or as declared
    std::uint16_t m_isShort : 1 = false;    // one of its last two updates took less than handing it over
    // Each update asks for these, so they share a byte.
    std::uint16_t m_isStale : 1 = true;     // cells must be worked out before the next update
    std::uint16_t m_isWaiting : 1 = false;  // for an object that failed
    std::uint16_t m_needsHold : 1 = true;   // no registry keeps the object alive
    std::uint16_t m_keepsState : 1 = false; // the object runs in one pool at a time
    std::uint16_t m_acceptsFailed : 1 = false;
    std::uint16_t m_hasPrecision : 1 = false;
    std::uint16_t m_hasFailed : 1 = false;
    std::uint16_t m_hasRewired : 1 = false; // a cell has the flag `Rewired`
};

static_assert(sizeof(void*) != 8 || sizeof(VFrame) == 64, "what an update needs fits into one cache line");

} // namespace Orla
