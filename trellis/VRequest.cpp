#include <trellis/VRequest.hpp>

#include <trellis/detail/PoolState.hpp>

#include <trellis/VSlot.hpp>

#include <utility>

namespace Orla {

VRequest::VRequest(const StrongPtr<ValuePool>& pool, Progress progress) : m_pool{pool}, m_progress{std::move(progress)}
{
}

VRequest::VRequest(const StrongPtr<ValuePool>& pool, Progress progress, VCancellation cancellation)
    : m_pool{pool}, m_progress{std::move(progress)}, m_cancellation{std::move(cancellation)}
{
}

void VRequest::cancel() noexcept
{
    m_isCancelled = true;
    if (m_cancellation)
        m_cancellation->cancel();
}

const VCancellation& VRequest::cancellation() const
{
    if (!m_cancellation) {
        m_cancellation.emplace();
        if (m_isCancelled)
            m_cancellation->cancel();
    }
    return *m_cancellation;
}

void VRequest::reportProgress(double fraction) const
{
    if (!m_progress)
        return;
    // NaN compares false with everything and becomes 0.
    m_progress(fraction > 0 ? (fraction < 1 ? fraction : 1) : 0);
}

bool VRequest::hasChanged(const VSlot& input) const
{
    VFrame* const frame = m_pool ? VFrame::of(m_pool->runningFrame(), input.place()) : nullptr;
    return frame && Detail::PoolState::hasChanged(*frame, input.place().cell);
}

bool VRequest::hasFailed(const VSlot& input) const
{
    VFrame* const frame = m_pool ? VFrame::of(m_pool->runningFrame(), input.place()) : nullptr;
    return frame && Detail::PoolState::isMissing(*frame, input.place().cell);
}

} // namespace Orla
