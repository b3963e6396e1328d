#pragma once

#include <trellis/VScheduler.hpp>

#include <chrono>
#include <cstdint>
#include <exception>
#include <string>
#include <unordered_map>

namespace Loam {
class OutputFile;
}

namespace Tarn {

/// Records which objects run in a pool: when, for how long, and why they were due.
///
/// The text is in the trace event format that the tracing pages of web browsers open: one
/// event per update and one per step, each with its start and duration in microseconds.
class Tracer final : public Orla::VScheduler::Observer {
public:
    /// Starts the trace of \p pool in \p output; \p title is the name of the trace. If the
    /// program crashes, the last event is the beginning of the update that was running, and a
    /// trace that is a file appears as \p path. \p output must outlive the
    /// tracer.
    Tracer(Loam::OutputFile& output, const Orla::StrongPtr<Orla::ValuePool>& pool, const std::string& title,
           const std::string& path = {});
    ~Tracer() override;
    Tracer(const Tracer&) = delete;
    Tracer& operator=(const Tracer&) = delete;

    /// All further events belong to \p step.
    void beginStep(std::uint64_t step);

    /// Ends the trace: stops observing and completes the text.
    /// \throw Loam::FileError if this write or an earlier one failed.
    void finish();

    void becameDue(const Orla::VObject& object, Cause cause, const Orla::VParameter* changed,
                   double precision) noexcept override;
    void began(const Orla::VObject& object) noexcept override;
    void ended(const Orla::VObject& object, Result result) noexcept override;

private:
    using Clock = std::chrono::steady_clock;

    struct Due {
        Cause cause = Cause::Scheduled;
        double precision = 0;
        Orla::StrongPtr<Orla::VParameter> changed;
    };

    std::string reasonOf(const Due& due) const;
    void endStep(Clock::time_point now);
    void stop() noexcept;

    template<class Function>
    void guarded(Function&& function) noexcept;

    Loam::OutputFile& m_output;
    Orla::StrongPtr<Orla::ValuePool> m_pool;
    std::string m_path; // of the trace after a crash
    const Clock::time_point m_start = Clock::now();
    std::unordered_map<const Orla::VObject*, Due> m_due;
    Due m_running;
    Clock::time_point m_begin;
    Clock::time_point m_stepBegin;
    std::uint64_t m_step = 0;
    bool m_isInStep = false;
    std::exception_ptr m_failure; // the first one; nothing is written after it
};

} // namespace Tarn
