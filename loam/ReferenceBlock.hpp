#pragma once

#include <loam/AtomicCount.hpp>
#include <loam/Export.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Loam {

class Counted;

/// The strong and weak counts of one object, in memory that outlives it.
///
/// The block of an object created with `new` directly precedes it in the same
/// allocation, which is freed after the last strong and weak pointers are released.
/// An over-aligned object has a separate block. Any other object (static, local,
/// member) also has a separate block and is never deleted by its pointers.
class LOAM_API ReferenceBlock {
public:
    ReferenceBlock(const ReferenceBlock&) = delete;
    ReferenceBlock& operator=(const ReferenceBlock&) = delete;

    /// Adds a strong pointer made from another strong pointer or from a reference to
    /// an owned object.
    void addStrong() noexcept { countUp(m_strong); }

    /// Adds a strong pointer made from the plain pointer that `new` returned. From then
    /// on the strong pointers control the object's lifetime.
    void adopt() noexcept
    {
        const std::uint32_t old = m_strong.load(std::memory_order_relaxed);
        if ((old & Fresh) == 0)
            addStrong();
        else if (isSingleThreaded())
            m_strong.store(old + 1 - Fresh, std::memory_order_relaxed);
        else
            m_strong.fetch_add(1 - Fresh, std::memory_order_relaxed);
    }

    /// Removes a strong pointer. Removing the last one calls `extremeUnction` and
    /// destroys the object.
    void releaseStrong() noexcept
    {
        const std::uint32_t old = countDown(m_strong);
        if ((old & CountMask) == 1)
            lastStrongReleased(old);
    }

    void addWeak() noexcept { countUp(m_weak); }

    void releaseWeak() noexcept
    {
        if (countDown(m_weak) == 1)
            freeMemory();
    }

    /// Adds a strong pointer if the object is alive; returns false otherwise. Another
    /// thread may release the last one concurrently.
    bool tryAddStrong() noexcept
    {
        std::uint32_t old = m_strong.load(std::memory_order_relaxed);
        if (isSingleThreaded()) {
            if (!isAlive(old))
                return false;
            m_strong.store(old + 1, std::memory_order_relaxed);
            return true;
        }
        do {
            if (!isAlive(old))
                return false;
        } while (!m_strong.compare_exchange_weak(old, old + 1, std::memory_order_acquire, std::memory_order_relaxed));
        return true;
    }

    /// Returns false once the last strong pointer is released, including inside
    /// `extremeUnction` and the destructors.
    bool isAlive() const noexcept { return isAlive(m_strong.load(std::memory_order_acquire)); }

    /// Counts for diagnostics and tests; other threads may change them at any time.
    std::uint32_t strongCount() const noexcept { return m_strong.load(std::memory_order_relaxed) & CountMask; }
    std::uint32_t weakCount() const noexcept { return m_weak.load(std::memory_order_relaxed); }

private:
    friend class Counted;

    // Flags stored with the count of strong pointers.
    static constexpr std::uint32_t Unowned = 1u << 31;   // not from `new`: never deleted by pointers
    static constexpr std::uint32_t Fresh = 1u << 30;     // from `new`, not yet adopted by a strong pointer
    static constexpr std::uint32_t Dying = 1u << 29;     // the last strong pointer was released
    static constexpr std::uint32_t Destroyed = 1u << 28; // the object's destructor has run
    static constexpr std::uint32_t Apart = 1u << 27;     // the block is a separate allocation
    static constexpr std::uint32_t CountMask = Apart - 1;

    ReferenceBlock(std::uint32_t flags, Counted* object) noexcept : m_strong{flags}, m_weak{1}, m_object{object} {}
    ~ReferenceBlock() = default;

    static bool isAlive(std::uint32_t strong) noexcept
    {
        return (strong & (CountMask | Fresh | Unowned)) != 0 && (strong & (Dying | Destroyed)) == 0;
    }

    void lastStrongReleased(std::uint32_t old) noexcept;
    void freeMemory() noexcept;

    std::atomic<std::uint32_t> m_strong;
    std::atomic<std::uint32_t> m_weak; // the object itself counts as one
    Counted* m_object;
};

} // namespace Loam
