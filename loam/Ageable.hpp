#pragma once

#include <loam/AtomicCount.hpp>
#include <loam/Export.hpp>

#include <atomic>
#include <compare>
#include <cstdint>

namespace Loam {

/// Age stamp of a value: when it was made or last changed, in ticks of a clock
/// that the whole process shares. A larger age is a later one.
class LOAM_API Ageable {
public:
    using Age = std::uint64_t;

    /// The newest age given to anything so far.
    static std::atomic<Age> GlobalTime;

    /// A new value takes the current global age.
    Ageable() noexcept : m_age{now()} {}
    explicit Ageable(Age age) noexcept : m_age{age} {}

    Age stamp() const noexcept { return m_age; }

    /// The newest age that this thread knows of.
    static Age now() noexcept
    {
        return isSingleThreaded() ? GlobalTime.load(std::memory_order_relaxed) : nowAmongThreads();
    }

    /// Makes this younger than everything else: advances the global clock by
    /// one tick and takes the new age. Within a `Ticks` scope, everything else is what
    /// this thread has seen.
    void touch() noexcept { m_age = isSingleThreaded() ? countUp(GlobalTime) + 1 : nextAmongThreads(); }

    /// While it lives, this thread takes ticks of the global clock in advance, so that
    /// threads which touch many values do not wait for each other at the clock. Ages
    /// that several threads give out meanwhile are unique, but not in order.
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
