#include <trellis/detail/Gate.hpp>

#include <loam/AtomicCount.hpp>

#include <algorithm>
#include <utility>

namespace Orla::Detail {

/// One thread's use of one gate.
class alignas(64) Gate::User {
public:
    explicit User(Gate& theGate) : gate{&theGate} {}

    /// Returns false and leaves the use inactive if a change is running or waiting.
    bool activate() noexcept
    {
        // Threads that are started later see everything that happened before.
        if (Loam::isSingleThreaded())
            m_active.store(true, std::memory_order_relaxed);
        else
            m_active.store(true, std::memory_order_seq_cst);
        Gate& where = *gate.load(std::memory_order_relaxed);
        if (where.m_wanted.load(std::memory_order_seq_cst) == 0)
            return true;
        deactivate();
        return false;
    }

    void deactivate() noexcept
    {
        if (!isActive())
            return;
        Gate& where = *gate.load(std::memory_order_relaxed);
        if (Loam::isSingleThreaded())
            m_active.store(false, std::memory_order_relaxed);
        else
            m_active.store(false, std::memory_order_seq_cst);
        // A change that began to wait before this store is asleep or about to sleep.
        if (where.m_wanted.load(std::memory_order_seq_cst) != 0)
            where.wake();
    }

    bool isActive() const noexcept { return m_active.load(std::memory_order_seq_cst); }

    std::atomic<Gate*> gate; // null once the gate is destroyed
    unsigned depth = 0;      // nesting depth of this thread's uses

private:
    std::atomic<bool> m_active{false};
};

struct Gate::Thread {
    std::vector<std::shared_ptr<User>> users;
    User* last = nullptr; // the user that was looked up last
};

namespace {

// Guards the links from gates and threads to users. Locked only when a thread uses a gate for
// the first time, and when either is destroyed.
std::mutex& usersMutex()
{
    static std::mutex& theMutex = *new std::mutex; // threads may outlive static objects
    return theMutex;
}

} // namespace

// A plain pointer, because the main thread's thread-local objects are destroyed before static
// objects, which still use gates.
#if defined(__GNUC__) && !defined(_WIN32)
#    define TRELLIS_FAST_TLS __attribute__((tls_model("initial-exec")))
#else
#    define TRELLIS_FAST_TLS
#endif
TRELLIS_FAST_TLS static thread_local void* t_thread = nullptr;
TRELLIS_FAST_TLS static thread_local char t_mark = 0; // its address identifies the thread

struct Gate::ThreadEnd {
    ~ThreadEnd()
    {
        auto* const thread = static_cast<Thread*>(std::exchange(t_thread, nullptr));
        if (!thread)
            return;
        {
            const std::lock_guard lock{usersMutex()};
            for (const std::shared_ptr<User>& user : thread->users) {
                if (Gate* const gate = user->gate.load()) {
                    const std::lock_guard gateLock{gate->m_mutex};
                    std::erase(gate->m_users, user);
                }
            }
        }
        delete thread;
    }
};

Gate::Thread& Gate::thisThread()
{
    if (!t_thread) {
        static thread_local ThreadEnd end;
        static_cast<void>(&end);
        t_thread = new Thread;
    }
    return *static_cast<Thread*>(t_thread);
}

Gate::~Gate()
{
    const std::lock_guard lock{usersMutex()};
    for (const std::shared_ptr<User>& user : m_users)
        user->gate.store(nullptr);
}

Gate::User& Gate::userOfThisThread()
{
    Thread& thread = thisThread();
    if (thread.last && thread.last->gate.load(std::memory_order_relaxed) == this)
        return *thread.last;
    for (const std::shared_ptr<User>& user : thread.users) {
        if (user->gate.load(std::memory_order_relaxed) == this) {
            thread.last = user.get();
            return *user;
        }
    }
    const auto user = std::make_shared<User>(*this);
    const std::lock_guard lock{usersMutex()};
    thread.last = nullptr;
    std::erase_if(thread.users, [](const std::shared_ptr<User>& each) { return !each->gate.load(); });
    thread.users.reserve(thread.users.size() + 1);
    {
        const std::lock_guard gateLock{m_mutex};
        m_users.push_back(user);
    }
    thread.users.push_back(user);
    thread.last = user.get();
    return *user;
}

void Gate::enter()
{
    User& user = userOfThisThread();
    if (!user.isActive() && !isChangedByThisThread()) {
        while (!user.activate())
            waitForChanges();
    }
    ++user.depth;
}

void Gate::leave() noexcept
{
    User& user = userOfThisThread(); // exists since `enter`
    if (--user.depth == 0)
        user.deactivate();
}

bool Gate::isChangedByThisThread() const noexcept
{
    return m_changer.load(std::memory_order_relaxed) == &t_mark;
}

bool Gate::isUsed() const noexcept
{
    return std::ranges::any_of(m_users, [](const std::shared_ptr<User>& user) { return user->isActive(); });
}

void Gate::wake() noexcept
{
    // The lock ensures that a thread that found its condition false is asleep by now.
    {
        const std::lock_guard lock{m_mutex};
    }
    m_changed.notify_all();
}

void Gate::waitForChanges() noexcept
{
    std::unique_lock lock{m_mutex};
    m_changed.wait(lock, [this] { return m_wanted.load(std::memory_order_relaxed) == 0; });
}

// Lets other threads change every network that this thread uses.
void Gate::withdraw() noexcept
{
    if (!t_thread)
        return;
    for (const std::shared_ptr<User>& user : static_cast<Thread*>(t_thread)->users) {
        if (user->depth > 0)
            user->deactivate();
    }
}

void Gate::reenter() noexcept
{
    if (!t_thread)
        return;
    const auto& users = static_cast<Thread*>(t_thread)->users;
    for (std::size_t i = 0; i < users.size();) {
        User& user = *users[i];
        Gate* const gate = user.gate.load(std::memory_order_relaxed);
        if (user.depth == 0 || !gate || user.isActive() || gate->isChangedByThisThread() || user.activate()) {
            ++i;
            continue;
        }
        // Using some networks while waiting for another one might cause a deadlock.
        withdraw();
        gate->waitForChanges();
        i = 0;
    }
}

void Gate::giveWaySlowly()
{
    if (isChangedByThisThread())
        return;
    withdraw();
    waitForChanges();
    reenter();
}

void Gate::beginChange()
{
    if (isChangedByThisThread()) {
        ++m_depth;
        return;
    }
    withdraw();
    std::unique_lock lock{m_mutex};
    m_wanted.fetch_add(1, std::memory_order_seq_cst);
    m_changed.wait(lock, [this] { return !m_changer.load(std::memory_order_relaxed) && !isUsed(); });
    m_changer.store(&t_mark, std::memory_order_relaxed);
    m_depth = 1;
}

void Gate::endChange() noexcept
{
    if (--m_depth > 0)
        return;
    {
        const std::lock_guard lock{m_mutex};
        m_changer.store(nullptr, std::memory_order_relaxed);
        m_wanted.fetch_sub(1, std::memory_order_seq_cst);
    }
    m_changed.notify_all();
    reenter();
}

} // namespace Orla::Detail
