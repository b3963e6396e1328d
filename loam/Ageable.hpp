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
    Ageable() noexcept : m_age{GlobalTime.load(std::memory_order_relaxed)} {}
    explicit Ageable(Age age) noexcept : m_age{age} {}

    Age stamp() const noexcept { return m_age; }

    /// Makes this younger than everything else: advances the global clock by
    /// one tick and takes the new age.
    void touch() noexcept { m_age = countUp(GlobalTime) + 1; }

    bool isYoungerThan(const Ageable& other) const noexcept { return m_age > other.m_age; }

    friend auto operator<=>(const Ageable&, const Ageable&) noexcept = default;

private:
    Age m_age;
};

} // namespace Loam
