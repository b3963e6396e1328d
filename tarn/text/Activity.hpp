#pragma once

#include <atomic>

#include <unistd.h>

namespace Tarn {

/// What the main thread is doing outside of updates with code of a library, such as loading it. A
/// report on a crash names it. Activities may be nested; those of other threads are ignored.
class Activity {
public:
    /// \p what and \p name, such as "loading" and a path, must outlive the activity.
    Activity(const char* what, const char* name) noexcept : m_what{what}, m_name{name}, m_outer{s_current.load()}
    {
        if (isMainThread())
            s_current.store(this);
    }
    ~Activity()
    {
        if (isMainThread())
            s_current.store(m_outer);
    }
    Activity(const Activity&) = delete;
    Activity& operator=(const Activity&) = delete;

    /// Returns the innermost activity, or null. May be called in a signal handler.
    static const Activity* current() noexcept { return s_current.load(); }

    const char* what() const noexcept { return m_what; }
    const char* name() const noexcept { return m_name; }

private:
    static bool isMainThread() noexcept
    {
        static thread_local const bool isMain = ::gettid() == ::getpid();
        return isMain;
    }

    const char* m_what;
    const char* m_name;
    const Activity* m_outer;

    static inline constinit std::atomic<const Activity*> s_current{nullptr};
};

} // namespace Tarn
