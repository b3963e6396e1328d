#include <tarn/run/Evaluation.hpp>

#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Progress.hpp>
#include <tarn/run/StepEvaluation.hpp>
#include <tarn/run/TableWriter.hpp>
#include <tarn/run/Tracer.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Tarn {

namespace {

std::vector<std::string> titlesOf(const Session& session)
{
    std::vector<std::string> titles{"step"};
    for (std::string& title : session.columns())
        titles.push_back(std::move(title));
    return titles;
}

std::vector<std::string> textsOf(std::uint64_t step, const Row& row)
{
    std::vector<std::string> texts{std::to_string(step)};
    for (const std::optional<std::string>& cell : row)
        texts.push_back(cell.value_or(std::string()));
    return texts;
}

// A missing chart also makes objects fail. Their failures are not reported; the summary has the
// reason of one.
bool evaluateFirst(const std::string& chart, Context& context, const Orla::VCancellation& cancellation)
{
    HeldFailures failures;
    const bool goesOn = context.evaluateStep(cancellation);
    if (context.summary().chartIsMissing)
        failures.drop(inQuotes(chart));
    return goesOn;
}

// Returns false if the evaluation ended before the last step.
bool evaluateSteps(const std::string& chart, Context& context, const EvaluationTask& task,
                   const Orla::VCancellation& cancellation)
{
    std::optional<Progress> progress;
    if (task.showsProgress)
        progress.emplace(*context.stepCount());
    StepOptions options;
    options.receive = [&](std::uint64_t step, const Row& row) {
        if (task.table)
            task.table->writeRow(textsOf(step, row));
        if (progress)
            progress->show(step + 1);
    };
    options.evaluateStep = [&](Context& each, const Orla::VCancellation& cancelled) {
        const std::uint64_t step = each.summary().steps;
        if (task.tracer)
            task.tracer->beginStep(step);
        return step == 0 && !chart.empty() ? evaluateFirst(chart, each, cancelled) : each.evaluateStep(cancelled);
    };
    // A trace shows how long each object takes, so objects run one at a time.
    options.threads = task.tracer ? 1 : task.threads;
    options.makeContext = task.makeContext;
    options.reportOrder = [&task](const std::string& reason) {
        say("--jobs=" + std::to_string(task.threads) + ": the steps are evaluated in order, because " + reason);
    };
    return Tarn::evaluateSteps(context, options, cancellation);
}

} // namespace

EvaluationSummary evaluate(const Session& session, Context& context, const EvaluationTask& task,
                           const Orla::VCancellation& cancellation)
{
    if (task.table)
        task.table->writeRow(titlesOf(session));
    if (task.tracer)
        context.setExecutor(nullptr);
    if (evaluateSteps(session.core()->wantedChart().text, context, task, cancellation) || context.summary().timeIsLost)
        context.finish(cancellation);
    return context.summary();
}

} // namespace Tarn
