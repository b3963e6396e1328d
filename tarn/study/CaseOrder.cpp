#include <tarn/study/CaseOrder.hpp>

#include <utility>

namespace Tarn {

CaseOrder::CaseOrder(std::function<void(const CaseResult&)> receive) : m_receive{std::move(receive)}
{
}

void CaseOrder::add(CaseResult result)
{
    const std::uint64_t number = result.number;
    m_waiting.emplace(number, std::move(result));
    while (!m_waiting.empty() && m_waiting.begin()->first == m_next) {
        m_receive(m_waiting.begin()->second);
        m_waiting.erase(m_waiting.begin());
        ++m_next;
    }
}

} // namespace Tarn
