#pragma once

#include <tarn/Export.hpp>
#include <tarn/run/EventScript.hpp>
#include <tarn/run/StatusReport.hpp>
#include <tarn/text/Faults.hpp>

#include <fathom/VTime.hpp>
#include <fathom/VValue.hpp>

#include <trellis/VRequest.hpp>
#include <trellis/ValuePool.hpp>

#include <loam/Result.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orla {
class VExecutor;
}

namespace Tarn {

class Session;

/// The outcome of the steps that were evaluated so far.
struct TARN_API EvaluationSummary {
    std::uint64_t steps = 0;        ///< steps that were evaluated completely
    std::uint64_t failures = 0;     ///< failed updates, and outputs without a text
    std::uint64_t stopped = 0;      ///< loops that did not settle
    std::uint64_t firstTrouble = 0; ///< the first step with a failure or a stopped loop
    bool cancelled = false;         ///< the step in progress was not completed
    bool timeIsLost = false;        ///< the time provider was removed before the last step
    bool chartIsMissing = false;    ///< no object offers the wanted chart
    std::string chartRefusal{};     ///< why an object refused it; may be empty
    std::string timeRefusal{};      ///< why the steps of the time cannot be counted
    Faults unknownChoices{{}};      ///< texts that choose what an object does not offer

    bool isFine() const noexcept
    {
        return failures == 0 && stopped == 0 && !cancelled && !timeIsLost && !chartIsMissing && timeRefusal.empty()
               && unknownChoices.empty();
    }
};

/// An evaluation of a session's network: with its own inputs, time, chart and results.
///
/// A context steps through the time of its network, from beginning to end, or evaluates what
/// changed since the last evaluation. Outputs are read between evaluations. The context keeps the
/// network alive; contexts and sessions may be destroyed in any order.
///
/// A slot is named by "OBJECT.SLOT", a component of an output by "OBJECT.OUTPUT.MEMBER". Functions
/// that return a `Result` change nothing if they fail.
///
/// Several threads may use different contexts at the same time; one thread at a time may use a
/// context.
class TARN_API Context {
public:
    /// Creates a context for an evaluation from the initial values of all inputs. \p name appears
    /// in messages. \p resultTag is added to the names of files that objects write, and in a
    /// network with several steps "-step" and the number of the step; see
    /// `Orla::VObject::resultFile`. `finish` adds the tag alone.
    explicit Context(const Session& session, const std::string& name = {}, const std::string& resultTag = {});
    ~Context();

    /// A context that was moved from may only be destroyed or assigned to.
    Context(Context&&) noexcept;
    Context& operator=(Context&&) noexcept;

    /// The values of the context, for the functions of the framework.
    const Orla::StrongPtr<Orla::ValuePool>& pool() const noexcept;

    /// Sets an input from a text in the form that saved networks use. Fails if the input is
    /// connected.
    Loam::Result<void> setText(std::string_view input, const std::string& text);

    /// Sets an input. Fails if it is connected or has values of another type.
    Loam::Result<void> setValue(std::string_view input, const Orla::StrongPtr<Orla::VValueBase>& value);

    template<class T>
    Loam::Result<void> set(std::string_view input, const T& value)
    {
        return setValue(input, Loam::makeStrong<Orla::VValue<T>>(value));
    }

    /// Returns the text of an output, of a component, or of an input. Fails if the object that
    /// computes an output, or the output that an input reads, failed or waits for one that did.
    Loam::Result<std::string> text(std::string_view slot) const;

    /// Returns a copy of the value of an output, of a component, or of an input. Of an input and an
    /// output of one name, returns the input. Fails as `text` does.
    Loam::Result<Orla::StrongPtr<Orla::VValueBase>> value(std::string_view slot) const;

    /// As `value`, but finds only outputs and their components.
    Loam::Result<Orla::StrongPtr<Orla::VValueBase>> output(std::string_view slot) const;

    /// Returns the content of a value, if it is of type \p T.
    template<class T>
    Loam::Result<T> get(std::string_view slot) const
    {
        const Loam::Result<Orla::StrongPtr<Orla::VValueBase>> found = value(slot);
        if (!found)
            return Loam::Failure{found.reason()};
        T content{};
        const auto* const typed = Orla::VTypedValueBase<T>::cast(found->get());
        if (!typed || !typed->getValue(content))
            return Loam::Failure{typeMismatch(**found, typeid(T))};
        return content;
    }

    /// Returns the text of each column; nothing for a cell whose object failed or waits. A value
    /// without a text is reported through `Orla::VActionNotifier` and counts as a failure.
    std::vector<std::optional<std::string>> row();

    /// Returns a copy of the value of each column; null for a cell whose object failed or waits.
    std::vector<Orla::StrongPtr<Orla::VValueBase>> values() const;

    /// Makes the objects follow the chart \p name. Fails if no object depends on a chart. Whether
    /// an object offers the chart is known after an evaluation; see `charts`.
    Loam::Result<void> selectChart(const std::string& name);

    /// Returns the names of the charts that objects offer.
    std::vector<std::string> charts() const;

    /// Writes an event to the network, whose objects become due. Fails if no object listens to
    /// events.
    Loam::Result<void> play(const ScriptedEvent& event);

    /// Plays the events, sorted by step, after the evaluation of their steps by `evaluateStep`.
    void schedule(std::vector<ScriptedEvent> events);

    /// Returns the number of steps from the beginning to the end of the time; 1 for a network
    /// without time. Fails if the time has no steps or too many.
    Loam::Result<std::uint64_t> stepCount() const;

    /// Sets the time to that of step \p step. Does nothing in a network without time.
    void setStep(std::uint64_t step);

    /// Returns the time of the objects, with its interval and step; nothing in a network without
    /// time, or if the inputs of its clock contradict each other.
    std::optional<Orla::VTime> time() const;

    /// Evaluates the objects that are due: all of them the first time, later those that changes
    /// reach. Returns false if the evaluation was cancelled; it then continues with the next call.
    bool evaluate(const Orla::VCancellation& cancellation = {});

    /// Begins again with the first step: the next call of `evaluateStep` evaluates it, and
    /// `summary` has the outcome of the evaluations from then on. Only objects that are due run,
    /// which includes those that depend on time.
    void startOver();

    /// Returns true if `schedule` was called with events.
    bool hasEvents() const noexcept;

    /// Makes `evaluateStep` continue with step \p step. Its results are those of an evaluation of
    /// all steps, in order, if no object depends on its earlier updates; see
    /// `Orla::VScheduler::history`.
    void skipTo(std::uint64_t step);

    /// Evaluates the next step completely: sets the time, evaluates, plays the events of the step,
    /// and emits the actions that report it. Returns false if the evaluation has ended: all steps
    /// are done, or the summary has the reason.
    bool evaluateStep(const Orla::VCancellation& cancellation = {});

    /// Emits the actions that report the end of a run, and evaluates what they make due.
    void finish(const Orla::VCancellation& cancellation = {});

    /// Returns the outcome of all evaluations so far.
    const EvaluationSummary& summary() const noexcept;

    /// Returns the failures and the statuses of the objects.
    StatusReport statuses() const;

    /// Evaluates independent objects concurrently with \p executor, which must outlive the
    /// context; null evaluates them in turn. By default, oneTBB runs them.
    void setExecutor(Orla::VExecutor* executor);

    /// Receives the progress of evaluations; see `Orla::VRequest`.
    void setProgress(Orla::VRequest::Progress progress);

private:
    class Implementation;

    static std::string typeMismatch(const Orla::VValueBase& value, const std::type_info& wanted);

    std::unique_ptr<Implementation> m_implementation;
};

} // namespace Tarn
