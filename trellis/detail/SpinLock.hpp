#pragma once

#include <atomic>
#include <thread>

namespace Orla::Detail {

/// A one-byte lock for critical sections of a few instructions.
class SpinLock {
public:
    void lock() noexcept
    {
        while (m_locked.exchange(true, std::memory_order_acquire))
            std::this_thread::yield();
    }

    void unlock() noexcept { m_locked.store(false, std::memory_order_release); }

private:
    std::atomic<bool> m_locked{false};
};

} // namespace Orla::Detail
