#pragma once

#include <tarn/Export.hpp>
#include <tarn/run/EventScript.hpp>
#include <tarn/study/CaseResult.hpp>
#include <tarn/study/Sweep.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/VRequest.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

class Session;

/// Hands out the cases of a study and takes their results. Several threads use it at the same
/// time.
class TARN_API CaseExchange {
public:
    virtual ~CaseExchange();

    /// Returns the numbers of the next cases to evaluate, at most \p most. Returns none if no more
    /// cases are to be evaluated.
    virtual std::vector<std::uint64_t> next(std::size_t most) = 0;

    /// Takes results of cases that `next` returned.
    virtual void deliver(std::vector<CaseResult> results) = 0;

    /// Makes `next` return nothing from now on, because a thread cannot continue.
    virtual void end() = 0;
};

/// How a study is evaluated.
struct TARN_API StudyOptions {
    /// The number of threads; 0 means one per core. Without a number, cases are evaluated one at a
    /// time, and independent objects of a case concurrently.
    std::optional<unsigned> jobs = {};

    /// Outputs whose texts the results contain: "OBJECT.OUTPUT" or "OBJECT.OUTPUT.MEMBER".
    std::vector<std::string> printed = {};

    /// Events that are played in each case, sorted by step.
    std::vector<ScriptedEvent> events = {};

    /// Receives the reason, a clause, if fewer threads are used than wanted. Called at most once
    /// per reason, by any thread.
    std::function<void(const std::string& reason)> reportOrder = {};
};

/// The evaluation of a session's network in many cases, which differ in the texts of some inputs.
///
///     Tarn::Sweep sweep;
///     sweep.add("filter.magnitude", {"4:10", "5:10", "6:10"});
///     Tarn::Study study{session, sweep};
///     study.run({.jobs = 0}, [](Tarn::CaseResult result) { ... });
///
/// Each case has its own context, with the result tag "case" and its number: an object that writes
/// "map.png" in case 7 writes "map-case7.png", or in step 3 of several "map-case7-step3.png".
/// Results do not depend on the number of threads.
///
/// The session must outlive the study and stay unchanged.
class TARN_API Study {
public:
    Study(const Session& session, Sweep sweep);

    const Session& session() const noexcept { return m_session; }
    const Sweep& sweep() const noexcept { return m_sweep; }

    /// Adds a fault for each varied input that does not exist or is connected, and for each text
    /// that its input refuses.
    void check(Faults& faults) const;

    /// Returns why the cases must be evaluated one at a time, in order: an object keeps state in
    /// its members, which all cases share. Returns nothing if they are independent.
    std::optional<std::string> orderReason(const StudyOptions& options) const;

    /// Evaluates all cases. Passes each result to \p receive, in the order of completion; one
    /// thread at a time calls it. Returns false if the evaluation was cancelled. An exception of
    /// \p receive ends the evaluation and is rethrown.
    /// \pre The session has no faults, and `check` adds none.
    bool run(const StudyOptions& options, std::function<void(CaseResult result)> receive,
             const Orla::VCancellation& cancellation = {}) const;

    /// Evaluates the cases that \p exchange hands out.
    void run(const StudyOptions& options, CaseExchange& exchange, const Orla::VCancellation& cancellation) const;

private:
    const Session& m_session;
    Sweep m_sweep;
};

} // namespace Tarn
