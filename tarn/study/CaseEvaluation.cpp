#include <tarn/study/CaseEvaluation.hpp>

#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Context.hpp>
#include <tarn/run/PrintedOutputs.hpp>
#include <tarn/run/StepEvaluation.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/study/Sweep.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/RunningCase.hpp>

#include <loam/Result.hpp>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace Tarn {

namespace {

// Returns why the evaluation is not fine, apart from what the objects report.
std::vector<std::string> messagesOf(const EvaluationSummary& summary, const std::string& chart)
{
    std::vector<std::string> messages = summary.unknownChoices.lines();
    if (!summary.timeRefusal.empty())
        messages.push_back("error: " + summary.timeRefusal);
    if (summary.timeIsLost)
        messages.push_back("error: the object that provided the time was removed");
    if (summary.chartIsMissing)
        messages.push_back("error: no object offers the chart " + inQuotes(chart)
                           + (summary.chartRefusal.empty() ? "" : ": " + summary.chartRefusal));
    if (summary.stopped > 0)
        messages.push_back("error: " + counted(summary.stopped, "loop") + " stopped, the first in step "
                           + std::to_string(summary.firstTrouble));
    else if (summary.failures > 0)
        messages.push_back("error: " + counted(summary.failures, "failure") + ", the first in step "
                           + std::to_string(summary.firstTrouble));
    return messages;
}

} // namespace

CaseEvaluation::CaseEvaluation(const Session& session, const Sweep& sweep, Options options)
    : m_session{session}, m_sweep{sweep}, m_options{std::move(options)}
{
}

Context CaseEvaluation::makeContext(std::uint64_t number) const
{
    const std::string name = std::to_string(number);
    const bool isAlone = m_sweep.inputs().empty();
    Context context{m_session, isAlone ? std::string() : "case " + name, isAlone ? std::string() : "case" + name};
    const std::vector<std::string> texts = m_sweep.texts(number);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (const Loam::Result<void> done = context.setText(m_sweep.inputs()[i], texts[i]); !done)
            throw std::runtime_error{"input " + inQuotes(m_sweep.inputs()[i]) + ": " + done.reason()};
    }
    context.schedule(m_options.events);
    return context;
}

CaseResult CaseEvaluation::evaluate(std::uint64_t number, const Orla::VCancellation& cancellation) const
{
    const RunningCase running{number};
    CaseResult result{.number = number};
    TaskExecutor helpers{m_options.helpers};
    const auto contextOfCase = [&] {
        Context context = makeContext(number);
        context.setExecutor(helpers.concurrency() > 0 ? &helpers : nullptr);
        return context;
    };
    const Loam::Result<void> done = Loam::attempt([&] {
        Context context = contextOfCase();
        const StepOptions steps{.receive = [&result](std::uint64_t, const Row& row) { result.rows.push_back(row); },
                                .threads = m_options.stepThreads,
                                .makeContext = contextOfCase,
                                .reportOrder = m_options.reportOrder};
        if (evaluateSteps(context, steps, cancellation) || context.summary().timeIsLost)
            context.finish(cancellation);

        const StatusReport statuses = context.statuses();
        result.messages = messagesOf(context.summary(), m_session.core()->wantedChart().text);
        std::ranges::move(statuses.lines(Severity::Warning), std::back_inserter(result.messages));
        result.isCancelled = context.summary().cancelled;
        result.hasFailed = !context.summary().isFine() || statuses.hasErrors();
        for (const std::string& name : m_options.printed) {
            const Loam::Result<std::string> text = context.text(name);
            result.printed.push_back(escaped(name) + ": " + (text ? escaped(*text) : std::string()));
            if (!text) {
                result.hasFailed = true;
                result.messages.push_back("error: output " + inQuotes(name) + " cannot be printed: " + text.reason());
            }
        }
    });
    if (!done) {
        result.hasFailed = true;
        result.messages.push_back("error: " + done.reason());
    }
    return result;
}

} // namespace Tarn
