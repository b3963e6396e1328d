#pragma once

#include <trellis/detail/SerialRun.hpp>

#include <trellis/VExecutor.hpp>

#include <chrono>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Orla::Detail {

/// One call of `VScheduler::run` with an executor.
///
/// Due objects with the same order number do not depend on each other and run concurrently.
/// The calling thread itself runs objects whose updates take less time than handing them to
/// another thread. While some objects take long, later objects that do not depend on them
/// start early. Each thread records what its updates announce; the calling thread announces it
/// in the order of a serial run.
class ConcurrentRun final : private SerialRun, private Recorder {
public:
    ConcurrentRun(PoolState& pool, VRequest& request, VExecutor& executor);
    ~ConcurrentRun() override;

    VScheduler::Summary run();

private:
    using Clock = std::chrono::steady_clock;

    class Job;
    class SpareJobs;
    class Team;

    bool recordChange(VFrame& writer, std::uint32_t cell) override;
    bool recordChange(const VParameter& parameter, const std::string& member) override;
    bool recordSchedule(VFrame& frame, double precision) override;
    std::recursive_mutex& mutex() noexcept override;

    bool runShort(VFrame& frame);
    void noteDuration(VFrame& frame, std::chrono::nanoseconds duration) noexcept;
    void takeBatch(VFrame& first);
    std::unique_ptr<Job> makeJob(VFrame& frame);
    Job& keepEarly(VFrame& frame, std::unique_ptr<Job> job);
    void start(Job& job);
    void giveBack(Job& job) noexcept;
    void recycle(std::unique_ptr<Job> job);
    bool runBatch();
    void startEarly(std::size_t effort);
    bool commit(Job& job);
    void announce(Job& job);
    void hire(std::size_t jobs);

    VExecutor& m_executor;
    const std::chrono::nanoseconds m_handOverTime;
    std::shared_ptr<Team> m_team;
    std::unique_lock<std::mutex> m_plan;                   // released while this thread runs objects or waits
    std::vector<std::unique_ptr<Job>> m_batch;             // jobs of one order number, in serial order
    std::map<const VFrame*, std::unique_ptr<Job>> m_early; // jobs that started before their turn
    SpareJobs* m_spare = nullptr;                          // owned by the pool
    std::optional<Clock::time_point> m_lastEnd;            // of the last one in a series of short updates
    std::exception_ptr m_executorError;
    unsigned m_hired = 0;
};

} // namespace Orla::Detail
