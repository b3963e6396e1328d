#pragma once

#include <trellis/VExecutor.hpp>

#include <functional>

namespace Tarn {

/// Runs tasks in the threads of oneTBB, which has as many as the machine has cores.
class TaskExecutor final : public Orla::VExecutor {
public:
    unsigned concurrency() const noexcept override;
    void execute(std::function<void()> task) override;
};

} // namespace Tarn
