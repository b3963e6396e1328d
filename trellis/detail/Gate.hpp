#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace Orla::Detail {

/// Lets any number of threads use a network at the same time, or one thread change it.
///
/// Each thread marks its use in a cache line of its own, so that threads which use
/// the same network do not slow each other down. A thread that wants to change the
/// network waits until all others are between two updates. While a thread waits, for
/// whatever reason, it counts as being between two updates in every network that it
/// uses; therefore two updates may both change the network without a deadlock.
class Gate {
public:
    Gate() = default;
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    ~Gate();

    /// Starts a use by this thread; waits while another thread changes the network.
    /// Uses nest, and a thread that changes the network may use it meanwhile.
    /// \throw std::bad_alloc when a thread enters for the first time; nothing changes.
    void enter();
    void leave() noexcept;

    /// Lets other threads change the network now, if any wants to. Called between
    /// two updates.
    void giveWay()
    {
        if (m_wanted.load(std::memory_order_relaxed) != 0) [[unlikely]]
            giveWaySlowly();
    }

    /// Waits until no other thread uses or changes the network, and keeps it to this
    /// thread until the matching `endChange`. Changes nest.
    void beginChange();
    void endChange() noexcept;

    bool isChangedByThisThread() const noexcept;

    /// While it lives, this thread uses no network, so that threads for which it
    /// waits may change them.
    class Pause {
    public:
        Pause() noexcept { withdraw(); }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
        ~Pause() { reenter(); }
    };

    /// Waits until \p isDone returns true; it is called again after each `wake`.
    template<class Predicate>
    void waitUntil(Predicate&& isDone)
    {
        withdraw();
        {
            std::unique_lock lock{m_mutex};
            m_changed.wait(lock, isDone);
        }
        reenter();
    }

    /// Wakes the threads in `waitUntil`.
    void wake() noexcept;

private:
    class User;
    struct Thread;
    struct ThreadEnd;

    static Thread& thisThread();
    static void withdraw() noexcept;
    static void reenter() noexcept;

    User& userOfThisThread();
    void giveWaySlowly();
    void waitForChanges() noexcept;
    bool isUsed() const noexcept;

    std::atomic<unsigned> m_wanted{0};           // changes that run or wait
    std::atomic<const void*> m_changer{nullptr}; // the thread that changes the network
    unsigned m_depth = 0;                        // of the changer's nested changes
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::shared_ptr<User>> m_users; // guarded by the mutex
};

} // namespace Orla::Detail
