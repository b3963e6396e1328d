#pragma once

#include <trellis/VExecutor.hpp>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

namespace Orla {

/// An executor with one thread per task.
class Threads final : public VExecutor {
public:
    // Hands over each update that takes longer than `handOverTime`; by default all updates.
    explicit Threads(unsigned count = 3, std::chrono::nanoseconds handOverTime = {})
        : m_count{count}, m_handOverTime{handOverTime}
    {
    }
    ~Threads() override
    {
        for (std::thread& thread : m_threads)
            thread.join();
    }

    unsigned concurrency() const noexcept override { return m_count; }
    std::chrono::nanoseconds handOverTime() const noexcept override { return m_handOverTime; }
    /// Returns true if a task was passed.
    bool wasUsed() const noexcept { return !m_threads.empty(); }

    void execute(std::function<void()> task) override { m_threads.emplace_back(std::move(task)); }

private:
    unsigned m_count;
    std::chrono::nanoseconds m_handOverTime;
    std::vector<std::thread> m_threads;
};

/// Calls `function(number)` in \p count threads at once.
template<class Function>
void inThreads(unsigned count, Function&& function)
{
    std::atomic<unsigned> ready{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < count)
                std::this_thread::yield();
            function(i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace Orla
