#pragma once

#include <atomic>

namespace Tarn {

/// What the program is doing outside of updates with code of a library, such as loading it. A
/// report on a crash names it. Activities may be nested; only the main thread has any.
class Activity {
public:
    /// \p what and \p name, such as "loading" and a path, must outlive the activity.
    Activity(const char* what, const char* name) noexcept : m_what{what}, m_name{name}, m_outer{s_current.load()}
    {
        s_current.store(this);
    }
    ~Activity() { s_current.store(m_outer); }
    Activity(const Activity&) = delete;
    Activity& operator=(const Activity&) = delete;

    /// Returns the innermost activity, or null. May be called in a signal handler.
    static const Activity* current() noexcept { return s_current.load(); }

    const char* what() const noexcept { return m_what; }
    const char* name() const noexcept { return m_name; }

private:
    const char* m_what;
    const char* m_name;
    const Activity* m_outer;

    static inline constinit std::atomic<const Activity*> s_current{nullptr};
};

} // namespace Tarn
