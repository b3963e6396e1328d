#pragma once

#include <fathom/VValue.hpp>

#include <trellis/VFrame.hpp>
#include <trellis/ValuePool.hpp>

#include <cstdint>
#include <typeinfo>

namespace Orla {

/// The cell of a slot of the object whose update runs. Typed slots and outputs access their
/// values through it without a look-up. The class of the value is determined once and noted in
/// the cell.
template<class T>
class VRunningCell {
public:
    /// Finds the cell at \p place if \p pool belongs to a running update of the place's
    /// container.
    VRunningCell(ValuePool* pool, const VSlotPlace& place) noexcept
        : m_pool{pool}, m_frame{pool ? VFrame::of(pool->runningFrame(), place) : nullptr}, m_cell{place.cell}
    {
    }

    explicit operator bool() const noexcept { return m_frame != nullptr; }

    /// Returns the value if it is a `VValue<T>`, else null.
    VValue<T>* plain() const noexcept
    {
        std::uint16_t& flags = m_frame->flags(m_cell);
        VValueBase* const value = m_frame->cell(m_cell).value;
        if ((flags & VFrame::Plain) != 0) [[likely]]
            return static_cast<VValue<T>*>(value);
        if (!value || (flags & VFrame::Typed) != 0 || typeid(*value) != typeid(VValue<T>))
            return nullptr;
        flags |= VFrame::Plain;
        return static_cast<VValue<T>*>(value);
    }

    /// Returns the value, which may be a component of another one; null if the cell has no
    /// value of type \p T.
    VTypedValueBase<T>* typed() const noexcept
    {
        if (VValue<T>* const value = plain())
            return value;
        std::uint16_t& flags = m_frame->flags(m_cell);
        VValueBase* const value = m_frame->cell(m_cell).value;
        if ((flags & VFrame::Typed) != 0)
            return static_cast<VTypedValueBase<T>*>(value);
        auto* const typed = dynamic_cast<VTypedValueBase<T>*>(value);
        if (typed)
            flags |= VFrame::Typed;
        return typed;
    }

    /// Returns the plain value of an output that may be written, else null.
    VValue<T>* writable() const noexcept
    {
        const std::uint16_t flags = m_frame->flags(m_cell);
        return (flags & (VFrame::Owned | VFrame::Off)) == VFrame::Owned ? plain() : nullptr;
    }

    /// Assigns \p value to \p to, the result of `writable`, and announces the change.
    void write(VValue<T>& to, const T& value) const
    {
        m_frame->prepareToAnnounce(m_cell);
        to.content() = Detail::independent(value);
        to.touch();
        noteWritten();
        m_frame->announce(m_cell);
    }

    /// Notes that the update has written the output, also if the value stayed the same.
    void noteWritten() const noexcept { m_pool->noteWritten(m_cell); }

    /// Notes that the update reads the output. Unless it has written the output, the value is
    /// from an earlier update.
    void noteRead() const noexcept
    {
        if (!m_pool->hasWritten(m_cell)) [[unlikely]]
            m_frame->readEarlierOutput(m_cell);
    }

private:
    ValuePool* m_pool;
    VFrame* m_frame;
    std::uint32_t m_cell;
};

} // namespace Orla
