#include <tarn/run/Context.hpp>

#include <tarn/network/ChartChoice.hpp>
#include <tarn/network/ChoiceCheck.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/EventPlayer.hpp>
#include <tarn/run/RunActions.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/DescriptionCheck.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/VTypeLabel.hpp>

#include <utility>

namespace Tarn {

using Loam::Failure;
using Loam::Result;
using Orla::StrongPtr;
using Orla::VNetwork;

namespace {

// Makes a network current in this thread, and keeps other threads from changing it. The scheduler
// takes its own `Use`, so that changes need not wait for the end of an evaluation.
struct Access {
    explicit Access(VNetwork& network) : scope{network}, use{network} {}

    VNetwork::Scope scope;
    VNetwork::Use use;
};

// Fails if the input reads an output that is not a result in the pool.
Result<void> checkSource(const Orla::VSlot& input, const StrongPtr<Orla::ValuePool>& pool)
{
    const StrongPtr<Orla::VSlotContainer> owner = input.isConnected() ? input.parameter()->owner() : nullptr;
    if (!owner)
        return {};
    for (const StrongPtr<Orla::VSlot>& output : owner->outputs()) {
        if (output->parameter() == input.parameter())
            return OutputReference{output, {}}.checkResult(pool);
    }
    return {};
}

} // namespace

class Context::Implementation {
public:
    Implementation(std::shared_ptr<Detail::SessionCore> shared, const std::string& name, const std::string& resultTag)
        : core{std::move(shared)}, pool{Loam::makeStrong<Orla::ValuePool>(name, resultTag)}, tag{resultTag}
    {
        startOver();
    }

    void startOver()
    {
        summary = {};
        summary.unknownChoices = Faults{core->faults().file()};
        nextEvent = 0;
        time.reset();
        count.reset();
    }

    Result<StrongPtr<Orla::VSlot>> freeInput(std::string_view reference) const
    {
        Result<StrongPtr<Orla::VSlot>> input = core->findInput(reference);
        if (input && (*input)->isConnected())
            return Failure{"the input is connected, so a value would have no effect"};
        return input;
    }

    Result<void> setValue(std::string_view reference, const StrongPtr<Orla::VValueBase>& value) const
    {
        const Result<StrongPtr<Orla::VSlot>> input = freeInput(reference);
        if (!input)
            return Failure{input.reason()};
        if (!value)
            return Failure{"found no value, expected type " + Orla::VTypeLabel::of((*input)->type())};
        if (Result<void> fine = checkLimits(**input, *value); !fine)
            return fine;
        const Access access{core->objects()};
        const StrongPtr<Orla::VValueBase> variable = (*input)->getLocalValue(pool);
        if (!variable || !variable->getValueFrom(Loam::WeakPtrImpl<Orla::VValueBase>(value)))
            return Failure{typeMismatch(*value, (*input)->type())};
        (*input)->parameter()->notifyValueChange(variable, pool);
        return {};
    }

    Result<void> setText(std::string_view reference, const std::string& text)
    {
        const Result<StrongPtr<Orla::VSlot>> found = freeInput(reference);
        if (!found)
            return Failure{found.reason()};
        const StrongPtr<Orla::VSlot>& input = *found;
        const Result<StrongPtr<Orla::VValueBase>> value = core->valueOfText(input, text);
        if (!value)
            return Failure{value.reason()};
        const Result<void> done = setValue(reference, *value);
        if (done && isSelection(input->type()))
            choices.replace({input, {}, inQuotes(reference), *value});
        return done;
    }

    bool run(const Orla::VCancellation& cancellation)
    {
        if (!std::exchange(hasBegun, true)) {
            const Access access{core->objects()};
            Orla::VScheduler::scheduleAll(pool);
        }
        const VNetwork::Scope scope{core->objects()};
        Orla::VRequest request{pool, progress, cancellation};
        const Orla::VScheduler::Summary done =
            executor ? Orla::VScheduler::run(request, *executor) : Orla::VScheduler::run(request);
        summary.failures += done.failures;
        summary.stopped += done.stopped;
        summary.cancelled = done.outcome != Orla::VScheduler::Outcome::Done || request.isCancelled();
        return !summary.cancelled;
    }

    // Returns false if the evaluation ends in this step.
    bool performStep(const Orla::VCancellation& cancellation)
    {
        if (provider)
            setTime(summary.steps);
        if (!run(cancellation) || (summary.steps == 0 && !hasChart()))
            return false;
        for (; nextEvent < events.size() && events[nextEvent].step <= summary.steps; ++nextEvent) {
            playEvent(events[nextEvent]);
            if (!run(cancellation))
                return false;
        }
        if (emit(&RunActions::emitStepped) && !run(cancellation))
            return false;
        const Access access{core->objects()};
        choices.addFaults(pool, summary.unknownChoices);
        return summary.unknownChoices.empty();
    }

    void setTime(std::uint64_t step)
    {
        const Access access{core->objects()};
        if (!time) {
            const Result<Orla::VTime> found = provider.time(pool);
            if (!found)
                return; // the object fails when it runs
            time = *found;
            const Result<std::uint64_t> steps = core->stepCount(provider, pool);
            tagsSteps = !tag.empty() && steps && *steps > 1;
        }
        if (tagsSteps)
            pool->setResultTag(tag + "-step" + std::to_string(step));
        provider.setStep(pool, *time, step);
    }

    bool playEvent(const ScriptedEvent& event)
    {
        const Access access{core->objects()};
        if (!player)
            player = EventPlayer::find();
        if (*player)
            player->play(event, pool);
        return bool(*player);
    }

    bool emit(bool (RunActions::*report)(const StrongPtr<Orla::ValuePool>&) const)
    {
        const Access access{core->objects()};
        if (!actions)
            actions = RunActions::find();
        return (*actions.*report)(pool);
    }

    bool hasChart()
    {
        const Access access{core->objects()};
        const std::string& wanted = wantedChart ? *wantedChart : networkChart;
        summary.chartIsMissing = !wanted.empty() && !ChartChoice::find().isSelected(wanted, pool);
        if (summary.chartIsMissing)
            summary.chartRefusal = refusalOf(inQuotes(wanted));
        return !summary.chartIsMissing;
    }

    std::optional<std::string> textOf(const Network::Column& column)
    {
        if (!column.output.hasResult(pool))
            return std::nullopt;
        if (Result<std::string> text = column.output.text(pool)) {
            return *std::move(text);
        } else {
            Orla::VActionNotifier::Error("Column " + inQuotes(column.title) + " is empty: " + text.reason());
            ++summary.failures;
            return std::nullopt;
        }
    }

    std::uint64_t lastStep() const noexcept { return summary.steps == 0 ? 0 : summary.steps - 1; }

    // Returns the first failure that mentions the text; empty if none does.
    std::string refusalOf(const std::string& text) const
    {
        for (const Orla::VScheduler::Failure& failure : Orla::VScheduler::failures(pool)) {
            if (failure.reason.find(text) != std::string::npos)
                return failure.object->typeAndName() + " failed: " + failure.reason;
        }
        return {};
    }

    // Calls the function and notes whether it was the first in which something failed.
    template<class Function>
    bool watched(std::uint64_t step, Function&& function)
    {
        const bool wasFine = summary.isFine();
        const bool goesOn = function();
        if (wasFine && !summary.isFine())
            summary.firstTrouble = step;
        return goesOn;
    }

    static ChoiceCheck choicesOf(Detail::SessionCore& core)
    {
        const VNetwork::Use use{core.objects()};
        return ChoiceCheck{core.network().choices};
    }

    std::shared_ptr<Detail::SessionCore> core; // outlives everything else here
    StrongPtr<Orla::ValuePool> pool;
    ChoiceCheck choices = choicesOf(*core);
    const TimeProvider provider = core->timeProvider();
    const std::string networkChart = core->wantedChart().text;
    TaskExecutor tasks;
    Orla::VExecutor* executor = &tasks;
    Orla::VRequest::Progress progress;
    EvaluationSummary summary;
    std::vector<ScriptedEvent> events;
    std::size_t nextEvent = 0;
    std::optional<Orla::VTime> time;    // before the first step, with its interval and step
    std::optional<std::uint64_t> count; // of steps, from the first step on
    std::optional<EventPlayer> player;
    std::optional<RunActions> actions;
    std::optional<std::string> wantedChart;
    bool hasBegun = false;
    std::string tag;
    bool tagsSteps = false;
};

Context::Context(const Session& session, const std::string& name, const std::string& resultTag)
    : m_implementation{std::make_unique<Implementation>(session.core(), name, resultTag)}
{
}

Context::~Context() = default;
Context::Context(Context&&) noexcept = default;
Context& Context::operator=(Context&&) noexcept = default;

const StrongPtr<Orla::ValuePool>& Context::pool() const noexcept
{
    return m_implementation->pool;
}

Result<void> Context::setText(std::string_view input, const std::string& text)
{
    return m_implementation->setText(input, text);
}

Result<void> Context::setValue(std::string_view input, const StrongPtr<Orla::VValueBase>& value)
{
    return m_implementation->setValue(input, value);
}

Result<StrongPtr<Orla::VValueBase>> Context::value(std::string_view slot) const
{
    Detail::SessionCore& core = *m_implementation->core;
    const Access access{core.objects()};
    const Result<OutputReference> found = core.findSlot(slot);
    if (!found)
        return Failure{found.reason()};
    if (found->output->hasFlag(Orla::VSlot::Output))
        return found->value(pool());
    if (const Result<void> computed = checkSource(*found->output, pool()); !computed)
        return Failure{computed.reason()};
    if (const StrongPtr<Orla::VValueBase> input = found->output->getLocalValue(pool()))
        return input->copy();
    return Failure{"the input has no value"};
}

Result<StrongPtr<Orla::VValueBase>> Context::output(std::string_view slot) const
{
    Detail::SessionCore& core = *m_implementation->core;
    const Access access{core.objects()};
    const Result<OutputReference> found = core.findOutput(slot);
    if (!found)
        return Failure{found.reason()};
    return found->value(pool());
}

Result<std::string> Context::text(std::string_view slot) const
{
    const Result<StrongPtr<Orla::VValueBase>> found = value(slot);
    if (!found)
        return Failure{found.reason()};
    return Loam::attempt([&] { return (*found)->Text(); });
}

std::vector<std::optional<std::string>> Context::row()
{
    std::vector<std::optional<std::string>> cells;
    const Access access{m_implementation->core->objects()};
    m_implementation->watched(m_implementation->lastStep(), [&] {
        for (const Network::Column& column : m_implementation->core->network().columns)
            cells.push_back(m_implementation->textOf(column));
        return true;
    });
    return cells;
}

std::vector<StrongPtr<Orla::VValueBase>> Context::values() const
{
    std::vector<StrongPtr<Orla::VValueBase>> cells;
    const Access access{m_implementation->core->objects()};
    for (const Network::Column& column : m_implementation->core->network().columns) {
        Result<StrongPtr<Orla::VValueBase>> value = column.output.value(pool());
        cells.push_back(value ? *std::move(value) : nullptr);
    }
    return cells;
}

Result<void> Context::selectChart(const std::string& name)
{
    const Access access{m_implementation->core->objects()};
    const ChartChoice choice = ChartChoice::find();
    if (!choice)
        return Failure{"no object depends on a chart"};
    choice.want(name, pool());
    m_implementation->wantedChart = name;
    return {};
}

std::vector<std::string> Context::charts() const
{
    const Access access{m_implementation->core->objects()};
    const ChartChoice choice = ChartChoice::find();
    return choice ? choice.names(pool()) : std::vector<std::string>{};
}

Result<void> Context::play(const ScriptedEvent& event)
{
    return m_implementation->playEvent(event) ? Result<void>{} : Failure{"no object listens to events"};
}

void Context::schedule(std::vector<ScriptedEvent> events)
{
    m_implementation->events = std::move(events);
    m_implementation->nextEvent = 0;
}

void Context::startOver()
{
    m_implementation->startOver();
}

bool Context::hasEvents() const noexcept
{
    return !m_implementation->events.empty();
}

void Context::skipTo(std::uint64_t step)
{
    m_implementation->summary.steps = step;
}

Result<std::uint64_t> Context::stepCount() const
{
    return m_implementation->core->stepCount(m_implementation->provider, pool());
}

void Context::setStep(std::uint64_t step)
{
    if (m_implementation->provider)
        m_implementation->setTime(step);
}

std::optional<Orla::VTime> Context::time() const
{
    if (const TimeProvider& provider = m_implementation->provider; provider && provider.exists()) {
        const Access access{m_implementation->core->objects()};
        if (const Result<Orla::VTime> time = provider.time(pool()))
            return *time;
    }
    return std::nullopt;
}

bool Context::evaluate(const Orla::VCancellation& cancellation)
{
    return m_implementation->watched(m_implementation->summary.steps,
                                     [&] { return m_implementation->run(cancellation); });
}

bool Context::evaluateStep(const Orla::VCancellation& cancellation)
{
    EvaluationSummary& summary = m_implementation->summary;
    if (const TimeProvider& provider = m_implementation->provider; provider && !provider.exists()) {
        summary.timeIsLost = true;
        return false;
    }
    if (!m_implementation->count) {
        const Result<std::uint64_t> count = stepCount();
        if (!count) {
            summary.timeRefusal = count.reason();
            return false;
        }
        m_implementation->count = *count;
    }
    if (summary.steps >= *m_implementation->count)
        return false;
    if (!m_implementation->watched(summary.steps, [&] { return m_implementation->performStep(cancellation); }))
        return false;
    ++summary.steps;
    return true;
}

void Context::finish(const Orla::VCancellation& cancellation)
{
    pool()->setResultTag(m_implementation->tag); // results of the run, not of the last step
    m_implementation->watched(m_implementation->lastStep(), [&] {
        return m_implementation->emit(&RunActions::emitFinished) && m_implementation->run(cancellation);
    });
}

const EvaluationSummary& Context::summary() const noexcept
{
    return m_implementation->summary;
}

StatusReport Context::statuses() const
{
    const Access access{m_implementation->core->objects()};
    return StatusReport{pool()};
}

void Context::setExecutor(Orla::VExecutor* executor)
{
    m_implementation->executor = executor;
}

void Context::setProgress(Orla::VRequest::Progress progress)
{
    m_implementation->progress = std::move(progress);
}

std::string Context::typeMismatch(const Orla::VValueBase& value, const std::type_info& wanted)
{
    return "found a value of type " + Orla::VTypeLabel::of(value.getType()) + ", expected type "
           + Orla::VTypeLabel::of(wanted);
}

} // namespace Tarn
