#include <tarn/study/CaseEvaluation.hpp>

#include <tarn/network/SessionCore.hpp>
#include <tarn/run/PrintedOutputs.hpp>
#include <tarn/run/StepEvaluation.hpp>
#include <tarn/study/Sweep.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/RunningCase.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VScheduler.hpp>

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
    : m_session{session}, m_sweep{sweep}, m_options{std::move(options)}, m_helpers{m_options.helpers}
{
    const Orla::VNetwork::Scope scope{m_session.network()};
    const Orla::VNetwork::Use use{m_session.network()};
    m_statuses = StatusReport::findOutputs();
}

// Threads may call it at the same time.
Context CaseEvaluation::makeContext(std::uint64_t number)
{
    const bool isAlone = m_sweep.inputs().empty();
    Context context{m_session, isAlone ? std::string() : "case",
                    isAlone ? std::string() : "case" + std::to_string(number)};
    context.setExecutor(m_helpers.concurrency() > 0 ? &m_helpers : nullptr);
    context.schedule(m_options.events);
    setTexts(context, m_sweep.texts(number), {});
    return context;
}

// Sets the inputs whose texts differ from the former ones, if there are any.
void CaseEvaluation::setTexts(Context& context, const std::vector<std::string>& texts,
                              const std::vector<std::string>& former) const
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (!former.empty() && former[i] == texts[i])
            continue;
        if (const Loam::Result<void> done = context.setText(m_sweep.inputs()[i], texts[i]); !done)
            throw std::runtime_error{"input " + inQuotes(m_sweep.inputs()[i]) + ": " + done.reason()};
    }
}

CaseResult CaseEvaluation::evaluate(std::uint64_t number, const Orla::VCancellation& cancellation)
{
    const RunningCase running{number};
    CaseResult result{.number = number};
    std::optional<Context> context = std::exchange(m_context, std::nullopt);
    const Loam::Result<void> done = Loam::attempt([&] {
        std::vector<std::string> texts = m_sweep.texts(number);
        if (context) {
            context->startOver();
            setTexts(*context, texts, m_texts);
        } else {
            context.emplace(makeContext(number));
        }
        evaluateSteps(*context, result, cancellation);
        if (isReusable(*context, result)) {
            m_texts = std::move(texts);
            m_context = std::move(context);
        }
    });
    if (!done) {
        result.hasFailed = true;
        result.messages.push_back("error: " + done.reason());
    }
    return result;
}

void CaseEvaluation::evaluateSteps(Context& context, CaseResult& result, const Orla::VCancellation& cancellation)
{
    const StepOptions steps{.receive = [&result](std::uint64_t, const Row& row) { result.rows.push_back(row); },
                            .threads = m_options.stepThreads,
                            .makeContext = [this, &result] { return makeContext(result.number); },
                            .reportOrder = m_options.reportOrder};
    if (Tarn::evaluateSteps(context, steps, cancellation) || context.summary().timeIsLost)
        context.finish(cancellation);

    const StatusReport statuses = statusesOf(context);
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
}

StatusReport CaseEvaluation::statusesOf(const Context& context) const
{
    const Orla::VNetwork::Scope scope{m_session.network()};
    const Orla::VNetwork::Use use{m_session.network()};
    return StatusReport{context.pool(), m_statuses};
}

// A failed object would not fail again if no input of it changes.
bool CaseEvaluation::isReusable(const Context& context, const CaseResult& result) const
{
    return !result.hasFailed && !result.isCancelled && !context.hasEvents()
           && !Orla::VScheduler::history(context.pool());
}

} // namespace Tarn
