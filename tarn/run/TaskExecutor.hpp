#pragma once

#include <trellis/VExecutor.hpp>

#include <functional>

namespace Tarn {

/// Runs tasks in oneTBB's worker threads: one per core, except one for the thread that
/// evaluates.
class TaskExecutor final : public Orla::VExecutor {
public:
    unsigned concurrency() const noexcept override;
    void execute(std::function<void()> task) override;
};

} // namespace Tarn
