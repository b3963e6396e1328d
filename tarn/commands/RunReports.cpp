#include <tarn/commands/RunReports.hpp>

#include <tarn/commands/Commands.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/PrintedOutputs.hpp>
#include <tarn/run/StatusReport.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/OutputFile.hpp>

#include <optional>
#include <vector>

namespace Tarn {

namespace {

void printReport(const StatusReport& report)
{
    for (const std::string& line : report.lines())
        printLine(line);
}

} // namespace

void printOutputs(const PrintedOutputs& printed, const Context& context, const StandardStreams& streams,
                  EvaluationSummary& summary)
{
    if (printed.empty())
        return;
    std::vector<std::string> failures;
    print(streams, printed.lines(context, failures));
    for (const std::string& failure : failures)
        say("error: " + failure);
    // Outputs of failed objects are not further failures.
    if (!failures.empty() && summary.isFine()) {
        summary.firstTrouble = summary.steps - 1;
        summary.failures += failures.size();
    }
}

std::string workOf(const Session& session, const EvaluationSummary& summary)
{
    return counted(session.core()->network().objectCount, "object") + ", " + counted(summary.steps, "step");
}

int reportEvaluation(const Session& session, const Context& context, const EvaluationSummary& summary,
                     const std::string& work)
{
    std::string message = session.faults().file() + ": " + work;
    if (summary.failures > 0)
        message += ", " + counted(summary.failures, "failure");
    if (summary.stopped > 0)
        message += ", " + counted(summary.stopped, "loop") + " stopped";
    if (summary.failures > 0 || summary.stopped > 0)
        message += ", the first in step " + std::to_string(summary.firstTrouble);
    printLine(message);
    if (summary.timeIsLost)
        say("error: object " + inQuotes(session.core()->timeProvider().name())
            + ", which provided the time, was removed before step " + std::to_string(summary.steps));
    const StatusReport report = context.statuses();
    printReport(report);
    return summary.isFine() && !report.hasErrors() ? Fine : ObjectFailed;
}

int reportMissingChart(const Session& session, const Context& context, const std::string& refusal)
{
    const std::vector<std::string> names = context.charts();
    const PlacedText& wanted = session.core()->wantedChart();
    Faults faults{session.faults().file()};
    faults.add(FaultKind::Chart, wanted.place,
               std::string(wanted.place ? "" : "--") + "chart: no object offers the chart " + inQuotes(wanted.text)
                   + (!refusal.empty() ? ": " + refusal
                      : names.empty()  ? "; available: none"
                                       : insteadOf({}, names)));
    return reportFaults(faults, "; nothing was evaluated beyond the first step");
}

int reportInterruption(const Context& context, const EvaluationSummary& summary, const Loam::OutputFile* table)
{
    const int signal = Interruption::signal();
    std::string message = signal != 0 ? "interrupted" : "an object cancelled the evaluation";
    message += " in step " + std::to_string(summary.steps);
    if (table)
        message += table->isStream() ? "; the table ends before that step" : "; no table was written";
    say(message);
    printReport(context.statuses());
    return signal != 0 ? 128 + signal : ObjectFailed;
}

// A full disk may also have kept objects from writing their files, which only they know.
void commitTable(Loam::OutputFile& table, const Context& context)
{
    try {
        table.commit();
    } catch (const Loam::FileError&) {
        printReport(context.statuses());
        throw;
    }
}

} // namespace Tarn
