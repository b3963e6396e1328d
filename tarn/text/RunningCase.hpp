#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

namespace Tarn {

/// The case of a study that this thread evaluates. A report on a crash names it.
class RunningCase {
public:
    explicit RunningCase(std::uint64_t number) noexcept : m_outer{s_current.exchange(static_cast<std::int64_t>(number))}
    {
    }
    ~RunningCase() { s_current = m_outer; }
    RunningCase(const RunningCase&) = delete;
    RunningCase& operator=(const RunningCase&) = delete;

    /// Returns the number of the case, or -1. May be called in a signal handler.
    static std::int64_t current() noexcept { return s_current; }

private:
    std::int64_t m_outer;

    static inline constinit thread_local std::atomic<std::int64_t> s_current{-1};
};

} // namespace Tarn
