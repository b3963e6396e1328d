#pragma once

#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Tarn {

/// Threads that perform the same work.
class Workers {
public:
    /// Starts \p count threads that call \p work once. If a call throws, its thread calls
    /// \p onFailure, which makes the others end.
    Workers(unsigned count, std::function<void()> work, std::function<void()> onFailure);

    /// Waits until all threads have ended.
    ~Workers();

    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// Waits until all threads have ended. Rethrows the first exception of a thread.
    void join();

private:
    void perform() noexcept;

    std::function<void()> m_work;
    std::function<void()> m_onFailure;
    std::mutex m_mutex;
    std::exception_ptr m_failure;
    std::vector<std::thread> m_threads;
};

} // namespace Tarn
