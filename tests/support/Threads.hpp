#pragma once

#include <trellis/VExecutor.hpp>

#include <functional>
#include <thread>
#include <utility>
#include <vector>

namespace Orla {

/// An executor with one thread per task.
class Threads final : public VExecutor {
public:
    explicit Threads(unsigned count = 3) : m_count{count} {}
    ~Threads() override
    {
        for (std::thread& thread : m_threads)
            thread.join();
    }

    unsigned concurrency() const noexcept override { return m_count; }
    void execute(std::function<void()> task) override { m_threads.emplace_back(std::move(task)); }

private:
    unsigned m_count;
    std::vector<std::thread> m_threads;
};

} // namespace Orla
