#include <tarn/Evaluation.hpp>

#include <tarn/Session.hpp>
#include <tarn/TableWriter.hpp>
#include <tarn/Wording.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VScheduler.hpp>

#include <exception>
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

// Empty, and counted as a failure, where the value has no text.
std::string textOf(const Network::Column& column, const StrongPtr<Orla::ValuePool>& pool, EvaluationSummary& summary)
{
    std::string why = "it has no value";
    try {
        StrongPtr<Orla::VValueBase> value = column.output->getLocalValue(pool);
        if (value && !column.member.empty())
            value = value->component(column.member);
        if (value)
            return value->Text();
    } catch (const std::exception& error) {
        why = error.what();
    }
    Orla::VActionNotifier::Warning("Column " + inQuotes(column.title) + " is empty: " + why);
    ++summary.failures;
    return {};
}

} // namespace

EvaluationSummary evaluate(const Session& session, TableWriter* table, const Orla::VCancellation& cancellation)
{
    const StrongPtr<Orla::ValuePool>& pool = session.pool();
    const TimeProvider& provider = session.timeProvider();
    const Orla::VTime time = provider ? provider.time(pool) : Orla::VTime{};
    EvaluationSummary summary;
    if (table)
        table->writeRow(titlesOf(session.network()));

    for (std::uint64_t step = 0; step < session.stepCount(); ++step) {
        if (provider && !provider.exists()) {
            summary.timeIsLost = true;
            break;
        }
        if (provider)
            provider.setStep(pool, time, step);
        if (step == 0)
            Orla::VScheduler::scheduleAll(pool);
        Orla::VRequest request{pool, {}, cancellation};
        const Orla::VScheduler::Summary done = Orla::VScheduler::run(request);
        if (done.outcome != Orla::VScheduler::Outcome::Done || request.isCancelled()) {
            summary.cancelled = true;
            break;
        }
        const bool wasFine = summary.isFine();
        summary.failures += done.failures;
        summary.stopped += done.stopped;
        if (table) {
            std::vector<std::string> row{std::to_string(step)};
            for (const Network::Column& column : session.network().columns)
                row.push_back(textOf(column, pool, summary));
            table->writeRow(row);
        }
        if (wasFine && !summary.isFine())
            summary.firstTrouble = step;
        ++summary.steps;
    }
    return summary;
}

} // namespace Tarn
