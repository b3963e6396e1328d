#include <trellis/VRequest.hpp>

#include <utility>

namespace Orla {

VRequest::VRequest(const StrongPtr<ValuePool>& pool, Progress progress, VCancellation cancellation)
    : m_pool{pool}, m_progress{std::move(progress)}, m_cancellation{std::move(cancellation)}
{
}

void VRequest::reportProgress(double fraction) const
{
    if (!m_progress)
        return;
    // Written so that NaN, which compares false with everything, becomes 0.
    m_progress(fraction > 0 ? (fraction < 1 ? fraction : 1) : 0);
}

} // namespace Orla
