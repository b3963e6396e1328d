#include <tarn/run/Evaluation.hpp>

#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Progress.hpp>
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

std::vector<std::string> rowOf(Context& context, std::uint64_t step)
{
    std::vector<std::string> row{std::to_string(step)};
    for (std::optional<std::string>& cell : context.row())
        row.push_back(std::move(cell).value_or(std::string()));
    return row;
}

// A missing chart also makes objects fail. Their failures are not reported; the summary has the
// reason of one.
bool evaluateFirst(const std::string& chart, Context& context, const Orla::VCancellation& cancellation)
{
    if (chart.empty())
        return context.evaluateStep(cancellation);
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
    const std::uint64_t count = *context.stepCount();
    std::optional<Progress> progress;
    if (task.showsProgress)
        progress.emplace(count);
    for (std::uint64_t step = 0; step < count; ++step) {
        if (task.tracer)
            task.tracer->beginStep(step);
        if (!(step == 0 ? evaluateFirst(chart, context, cancellation) : context.evaluateStep(cancellation)))
            return false;
        if (task.table)
            task.table->writeRow(rowOf(context, step));
        if (progress)
            progress->show(step + 1);
    }
    return true;
}

} // namespace

EvaluationSummary evaluate(const Session& session, Context& context, const EvaluationTask& task,
                           const Orla::VCancellation& cancellation)
{
    if (task.table)
        task.table->writeRow(titlesOf(session));
    // A trace shows how long each object takes, so objects run one at a time.
    if (task.tracer)
        context.setExecutor(nullptr);
    if (evaluateSteps(session.core()->wantedChart().text, context, task, cancellation) || context.summary().timeIsLost)
        context.finish(cancellation);
    return context.summary();
}

} // namespace Tarn
