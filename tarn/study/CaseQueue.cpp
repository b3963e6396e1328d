#include <tarn/study/CaseQueue.hpp>

#include <utility>

namespace Tarn {

CaseQueue::CaseQueue(std::uint64_t count, std::function<void(CaseResult)> receive,
                     std::function<bool(std::uint64_t)> isDone)
    : m_count{count}, m_receive{std::move(receive)}, m_isDone{std::move(isDone)}
{
}

std::optional<std::uint64_t> CaseQueue::next()
{
    const std::lock_guard lock{m_mutex};
    while (m_isDone && m_next < m_count && m_isDone(m_next))
        ++m_next;
    return m_next < m_count ? std::optional(m_next++) : std::nullopt;
}

void CaseQueue::deliver(CaseResult result)
{
    const std::lock_guard lock{m_mutex};
    m_receive(std::move(result));
}

void CaseQueue::end()
{
    const std::lock_guard lock{m_mutex};
    m_next = m_count;
}

} // namespace Tarn
