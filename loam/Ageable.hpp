#pragma once

#include <loam/AtomicCount.hpp>
#include <loam/Export.hpp>

#include <atomic>
#include <compare>
#include <cstdint>

namespace Loam {

/// The age stamp of a value: when it was created or last touched, in ticks of a
/// process-wide clock. A larger age is later.
class LOAM_API Ageable {
public:
    using Age = std::uint64_t;

    /// The newest age assigned or reserved so far.
    static std::atomic<Age> GlobalTime;

    /// Starts with the age `now()`.
    Ageable() noexcept : m_age{now()} {}
    explicit Ageable(Age age) noexcept : m_age{age} {}

    Age stamp() const noexcept { return m_age; }

    /// Returns the newest age known to this thread.
    static Age now() noexcept
    {
        return isSingleThreaded() ? GlobalTime.load(std::memory_order_relaxed) : nowAmongThreads();
    }

    /// Makes this the youngest value: advances the global clock by one tick and takes the
    /// new age. Within a `Ticks` scope, it is the youngest that this thread has seen.
    void touch() noexcept { m_age = isSingleThreaded() ? countUp(GlobalTime) + 1 : nextAmongThreads(); }

    /// While it exists, this thread reserves ticks of the global clock in advance, so
    /// threads that touch many values do not contend for the clock. Ages assigned by
    /// several threads meanwhile are unique but not ordered.
    class LOAM_API Ticks {
    public:
        Ticks() noexcept;
        Ticks(const Ticks&) = delete;
        Ticks& operator=(const Ticks&) = delete;
        ~Ticks();
    };

    bool isYoungerThan(const Ageable& other) const noexcept { return m_age > other.m_age; }

    friend auto operator<=>(const Ageable&, const Ageable&) noexcept = default;

private:
    static Age nowAmongThreads() noexcept;
    static Age nextAmongThreads() noexcept;

    Age m_age;
};

} // namespace Loam
