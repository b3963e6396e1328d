#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace Orla::Detail {

/// Lets any number of threads use a network at the same time, or one thread change it.
///
/// Each thread marks its use in its own cache line, so threads that use the same network do
/// not slow each other down. A thread that wants to change the network waits until all others
/// are between two updates. While a thread waits, for whatever reason, it counts as being
/// between two updates in every network that it uses; two updates may therefore both change
/// the network without a deadlock.
class Gate {
public:
    Gate() = default;
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    ~Gate();

    /// Starts a use by this thread; waits while another thread changes the network. Uses nest.
    /// A thread that changes the network may also use it.
    /// \throw std::bad_alloc when a thread enters for the first time; nothing changes.
    void enter();
    void leave() noexcept;

    /// Lets other threads change the network if any of them waits to do so. Called between two
    /// updates.
    void giveWay()
    {
        if (m_wanted.load(std::memory_order_relaxed) != 0) [[unlikely]]
            giveWaySlowly();
    }

    /// Waits until no other thread uses or changes the network, then gives this thread
    /// exclusive access until the matching `endChange`. Changes nest.
    void beginChange();
    void endChange() noexcept;

    bool isChangedByThisThread() const noexcept;

    /// Suspends all uses of networks by this thread during its lifetime, so threads for which
    /// this one waits may change them.
    class Pause {
    public:
        Pause() noexcept { withdraw(); }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
        ~Pause() { reenter(); }
    };

    /// Waits until \p isDone returns true. Calls it again after each `wake`.
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

    std::atomic<unsigned> m_wanted{0};           // number of changes that run or wait
    std::atomic<const void*> m_changer{nullptr}; // the thread that changes the network
    unsigned m_depth = 0;                        // nesting depth of the changer's changes
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::shared_ptr<User>> m_users; // guarded by the mutex
};

} // namespace Orla::Detail
