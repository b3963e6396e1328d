#pragma once

#include <tarn/study/CaseResult.hpp>

#include <cstdint>
#include <functional>
#include <map>

namespace Tarn {

/// Passes results on in the order of their cases. Keeps those whose predecessors are missing.
class CaseOrder {
public:
    explicit CaseOrder(std::function<void(const CaseResult& result)> receive);

    void add(CaseResult result);

private:
    std::function<void(const CaseResult&)> m_receive;
    std::uint64_t m_next = 0;
    std::map<std::uint64_t, CaseResult> m_waiting;
};

} // namespace Tarn
