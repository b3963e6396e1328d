#include <trellis/VFrame.hpp>

#include <trellis/detail/PoolState.hpp>

#include <trellis/VParameter.hpp>
#include <trellis/VSlot.hpp>
#include <trellis/VSlotContainer.hpp>

#include <algorithm>
#include <new>

namespace Orla {

using Detail::PoolState;

void VFrame::announce(std::uint32_t index)
{
    PoolState& pool = *m_pool;
    if (pool.recorder && pool.recorder->recordChange(*this, index)) [[unlikely]]
        return;
    if ((flags(index) & KnowsReaders) == 0) [[unlikely]]
        findReaders(index);
    const std::uint16_t bits = flags(index);
    if (pool.observer) [[unlikely]] {
        const VParameter* const parameter = pool.parameterOf(*this, index);
        if ((bits & OwnInput) != 0 && !isWriting())
            pool.makeDue(*this, VObserver::Cause::Changed, parameter);
        pool.forEachKnownReader(*this, index,
                                [&](VFrame& reader) { pool.makeDue(reader, VObserver::Cause::Changed, parameter); });
    } else {
        if ((bits & OwnInput) != 0 && !isWriting())
            pool.makeDue(*this);
        if ((bits & OneReader) != 0) {
            VFrame& reader = *static_cast<VFrame*>(cell(index).link);
            reader.prefetchForUpdate();
            pool.makeDue(reader);
        } else if ((bits & ManyReaders) != 0) {
            pool.forEachKnownReader(*this, index, [&pool](VFrame& reader) { pool.makeDue(reader); });
        }
    }
    if ((bits & Heard) != 0) [[unlikely]] {
        if (const VParameter* const parameter = pool.parameterOf(*this, index))
            parameter->notifyListeners(pool.pool().root());
    }
}

void VFrame::readEarlierOutput(std::uint32_t index) noexcept
{
    m_pool->noteHistory(*this, VHistory::Cause::ReadsOutput, index);
}

void VFrame::changedOwnInput(std::uint32_t index) noexcept
{
    m_pool->noteHistory(*this, VHistory::Cause::ChangesInput, index);
}

void VFrame::writesFile() noexcept
{
    m_pool->noteHistory(*this, VHistory::Cause::WritesFile, 0);
}

void VFrame::usesState() noexcept
{
    m_pool->noteHistory(*this, VHistory::Cause::KeepsState, 0);
}

void VFrame::findReaders(std::uint32_t index)
{
    PoolState& pool = *m_pool;
    const VParameter* const parameter = pool.parameterOf(*this, index);
    std::uint16_t ownInput = 0;
    std::vector<VFrame*> frames;
    try {
        for (std::size_t i = 0; parameter && i < parameter->readers().size(); ++i) {
            const VSlot& reader = *parameter->readers()[i];
            VSlotContainer* const container = reader.container();
            if (!container || !container->object() || reader.hasFlag(VSlot::Passive))
                continue;
            if (&reader == parameter->slot())
                ownInput = OwnInput; // not due if its own update writes the value
            else if (VFrame* const frame = pool.frame(*container))
                frames.push_back(frame);
        }
        void* link = nullptr;
        std::uint16_t kind = 0;
        if (frames.size() == 1) {
            link = frames[0];
            kind = OneReader;
        } else if (!frames.empty()) {
            auto* const list = static_cast<Detail::ReaderList*>(
                ::operator new(sizeof(Detail::ReaderList) + frames.size() * sizeof(VFrame*)));
            list->count = frames.size();
            std::ranges::copy(frames, list->frames());
            link = list;
            kind = ManyReaders;
        }
        PoolState::forgetReaders(*this, index);
        cell(index).link = link;
        std::uint16_t& bits = flags(index);
        bits = static_cast<std::uint16_t>((bits & ~OwnInput) | KnowsReaders | ownInput | kind);
    } catch (const std::bad_alloc&) {
        flags(index) |= Unannounced;
        pool.hasPending = true;
        throw;
    }
}

} // namespace Orla
