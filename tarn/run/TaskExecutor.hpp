#pragma once

#include <trellis/VExecutor.hpp>

#include <functional>
#include <optional>

namespace Tarn {

/// Runs tasks in oneTBB's worker threads: one per core, except one for the thread that
/// evaluates.
class TaskExecutor final : public Orla::VExecutor {
public:
    /// Uses at most \p most of these threads at a time; by default all.
    explicit TaskExecutor(std::optional<unsigned> most = {}) noexcept;

    /// Returns the number of cores that the process may use.
    static unsigned cores() noexcept;

    unsigned concurrency() const noexcept override;
    void execute(std::function<void()> task) override;

private:
    unsigned m_most;
};

} // namespace Tarn
