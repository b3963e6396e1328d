#pragma once

#include <tarn/study/Study.hpp>

#include <functional>
#include <mutex>

namespace Tarn {

/// Hands out all cases of a study in ascending order.
class CaseQueue final : public CaseExchange {
public:
    /// For the cases below \p count, except those for which \p isDone returns true. Results are
    /// passed to \p receive, one at a time.
    CaseQueue(std::uint64_t count, std::function<void(CaseResult result)> receive,
              std::function<bool(std::uint64_t number)> isDone = {});

    std::vector<std::uint64_t> next(std::size_t most) override;
    void deliver(std::vector<CaseResult> results) override;
    void end() override;

private:
    std::mutex m_mutex;
    std::uint64_t m_next = 0;
    std::uint64_t m_count;
    std::function<void(CaseResult)> m_receive;
    std::function<bool(std::uint64_t)> m_isDone;
};

} // namespace Tarn
