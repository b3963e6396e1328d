#include <tarn/run/Evaluation.hpp>

#include <tarn/network/ChartChoice.hpp>
#include <tarn/network/ChoiceCheck.hpp>
#include <tarn/run/EventPlayer.hpp>
#include <tarn/run/Progress.hpp>
#include <tarn/run/RunActions.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/run/TableWriter.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/run/Tracer.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VScheduler.hpp>

#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

namespace {

using Orla::StrongPtr;

std::vector<std::string> titlesOf(const Network& network)
{
    std::vector<std::string> titles{"step"};
    for (const Network::Column& column : network.columns)
        titles.push_back(column.title);
    return titles;
}

// Returns an empty text if the object failed or waits, and if the value has no text. The latter
// counts as a failure.
std::string textOf(const Network::Column& column, const StrongPtr<Orla::ValuePool>& pool, EvaluationSummary& summary)
{
    if (!column.output.hasResult(pool))
        return {};
    Loam::Result<std::string> text = column.output.text(pool);
    if (text)
        return *std::move(text);
    Orla::VActionNotifier::Error("Column " + inQuotes(column.title) + " is empty: " + text.reason());
    ++summary.failures;
    return {};
}

class Evaluation {
public:
    Evaluation(const Session& session, const EvaluationTask& task, const Orla::VCancellation& cancellation)
        : m_session{session}, m_task{task}, m_cancellation{cancellation}
    {
    }

    EvaluationSummary perform()
    {
        const TimeProvider& provider = m_session.timeProvider();
        const Orla::VTime time = provider ? provider.time(m_pool) : Orla::VTime{};
        std::optional<Progress> progress;
        if (m_task.showsProgress)
            progress.emplace(m_session.stepCount());
        if (m_task.table)
            m_task.table->writeRow(titlesOf(m_session.network()));

        for (std::uint64_t step = 0; step < m_session.stepCount(); ++step) {
            if (provider && !provider.exists()) {
                m_summary.timeIsLost = true;
                break;
            }
            if (m_task.tracer)
                m_task.tracer->beginStep(step);
            if (provider)
                provider.setStep(m_pool, time, step);
            if (step == 0)
                Orla::VScheduler::scheduleAll(m_pool);
            const bool wasFine = m_summary.isFine();
            if (!performStep(step))
                return m_summary;
            if (wasFine && !m_summary.isFine())
                m_summary.firstTrouble = step;
            ++m_summary.steps;
            if (progress)
                progress->show(m_summary.steps);
        }
        const bool wasFine = m_summary.isFine();
        if (m_actions.emitFinished(m_pool))
            runDue();
        if (wasFine && !m_summary.isFine())
            m_summary.firstTrouble = m_summary.steps - 1;
        return m_summary;
    }

private:
    // Returns false if the evaluation ends here.
    bool performStep(std::uint64_t step)
    {
        if (!runDue() || (step == 0 && !hasChart()))
            return false;
        for (; m_nextEvent < m_task.events.size() && m_task.events[m_nextEvent].step <= step; ++m_nextEvent) {
            m_player.play(m_task.events[m_nextEvent], m_pool);
            if (!runDue())
                return false;
        }
        if (m_actions.emitStepped(m_pool) && !runDue())
            return false;
        m_choices.addFaults(m_pool, m_summary.unknownChoices);
        if (!m_summary.unknownChoices.empty())
            return false;
        if (m_task.table) {
            std::vector<std::string> row{std::to_string(step)};
            for (const Network::Column& column : m_session.network().columns)
                row.push_back(textOf(column, m_pool, m_summary));
            m_task.table->writeRow(row);
        }
        return true;
    }

    bool runDue()
    {
        Orla::VRequest request{m_pool, {}, m_cancellation};
        // A trace shows how long each object takes, so objects run one at a time.
        const Orla::VScheduler::Summary done =
            m_task.tracer ? Orla::VScheduler::run(request) : Orla::VScheduler::run(request, m_executor);
        m_summary.failures += done.failures;
        m_summary.stopped += done.stopped;
        m_summary.cancelled = done.outcome != Orla::VScheduler::Outcome::Done || request.isCancelled();
        return !m_summary.cancelled;
    }

    bool hasChart()
    {
        const std::string& wanted = m_session.wantedChart().text;
        m_summary.chartIsMissing = !wanted.empty() && !m_chart.isSelected(wanted, m_pool);
        return !m_summary.chartIsMissing;
    }

    const Session& m_session;
    const EvaluationTask& m_task;
    const Orla::VCancellation& m_cancellation;
    const StrongPtr<Orla::ValuePool>& m_pool = m_session.pool();
    const ChartChoice m_chart = ChartChoice::find();
    ChoiceCheck m_choices{m_session.network()};
    const EventPlayer m_player = EventPlayer::find();
    const RunActions m_actions = RunActions::find();
    TaskExecutor m_executor;
    EvaluationSummary m_summary{.unknownChoices = Faults{m_session.faults().file()}};
    std::size_t m_nextEvent = 0;
};

} // namespace

EvaluationSummary evaluate(const Session& session, const EvaluationTask& task, const Orla::VCancellation& cancellation)
{
    return Evaluation{session, task, cancellation}.perform();
}

} // namespace Tarn
