#include <tarn/study/CaseQueue.hpp>

#include <utility>

namespace Tarn {

CaseQueue::CaseQueue(std::uint64_t count, std::function<void(CaseResult)> receive,
                     std::function<bool(std::uint64_t)> isDone)
    : m_count{count}, m_receive{std::move(receive)}, m_isDone{std::move(isDone)}
{
}

std::vector<std::uint64_t> CaseQueue::next(std::size_t most)
{
    const std::lock_guard lock{m_mutex};
    std::vector<std::uint64_t> numbers;
    for (; m_next < m_count && numbers.size() < most; ++m_next) {
        if (!m_isDone || !m_isDone(m_next))
            numbers.push_back(m_next);
    }
    return numbers;
}

void CaseQueue::deliver(std::vector<CaseResult> results)
{
    const std::lock_guard lock{m_mutex};
    for (CaseResult& result : results)
        m_receive(std::move(result));
}

void CaseQueue::end()
{
    const std::lock_guard lock{m_mutex};
    m_next = m_count;
}

} // namespace Tarn
