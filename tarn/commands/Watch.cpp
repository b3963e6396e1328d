#include <tarn/commands/Watch.hpp>

#include <tarn/commands/Commands.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/RunOptions.hpp>
#include <tarn/commands/RunReports.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Evaluation.hpp>
#include <tarn/run/FileWatcher.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/PrintedOutputs.hpp>
#include <tarn/run/TableWriter.hpp>
#include <tarn/run/UpdateList.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/run/WatchedNetwork.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/FileError.hpp>
#include <loam/OutputFile.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace Tarn {

namespace {

// More objects are only counted.
constexpr std::size_t MostListedObjects = 5;

// Returns, for example, "2 of 12 objects ran (scale, layer)".
std::string listOf(const UpdateList& updates, const Session& session)
{
    const Network& network = session.core()->network();
    std::size_t count = 0;
    std::string names;
    for (const auto& each : network.objects) {
        const Orla::StrongPtr<Orla::VObject> object = each.lock();
        if (!object || !updates.contains(*object))
            continue;
        names += (count == 0 ? "" : ", ") + printable(object->Name());
        ++count;
    }
    return std::to_string(count) + " of " + counted(network.objectCount, "object") + " ran"
           + (count > 0 && count <= MostListedObjects ? " (" + names + ")" : "");
}

std::string timeSince(std::chrono::steady_clock::time_point start)
{
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    return time.count() == 0 ? "less than 1 ms" : std::to_string(time.count()) + " ms";
}

class Watch {
public:
    Watch(const Arguments& arguments, const LoadOptions& options, const std::string& network,
          const StandardStreams& streams)
        : m_printed{arguments.texts("print")}
        , m_streams{streams}
        , m_file{network}
        , m_table{placeOf(arguments, "table", network)}
        , m_network{network, options}
    {
    }

    int perform()
    {
        if (const Faults& faults = m_network.load(); !faults.empty())
            reportFaults(faults, "; nothing was evaluated");
        else if (const std::optional<int> status = evaluateFirst())
            return *status;
        for (bool isFirst = true; Interruption::signal() == 0; isFirst = false) {
            prepareToWait();
            if (isFirst)
                printLine(m_file + ": waiting for changes");
            const std::vector<std::string> changed = m_watcher.wait(m_interruption.descriptor());
            if (!changed.empty())
                respond(changed);
        }
        if (!m_isReported)
            say("interrupted");
        return 128 + Interruption::signal();
    }

private:
    using Clock = std::chrono::steady_clock;

    // Returns an exit status if the command line asks for what the network does not have.
    std::optional<int> evaluateFirst()
    {
        Faults faults{m_file};
        const PrintedOutputs printed{m_network.session(), m_printed, faults};
        if (!faults.empty())
            return reportFaults(faults, "; nothing was evaluated");
        evaluateNetwork({}, Clock::now());
        return std::nullopt;
    }

    void prepareToWait()
    {
        m_watcher.watch(m_network.files());
        for (const std::string& refusal : m_watcher.refusals()) {
            if (m_reportedRefusals.insert(refusal).second)
                say("warning: changes are not noticed in the folder " + refusal);
        }
        WarningPrinter* const printer = WarningPrinter::last();
        if (printer)
            printer->printRepeats();
        // May repeat warnings.
        m_network.prepare();
        if (printer)
            printer->forget();
    }

    void respond(const std::vector<std::string>& files)
    {
        const Clock::time_point start = Clock::now();
        const WatchedNetwork::Response response = m_network.apply(files);
        for (const std::string& error : response.errors)
            say(error);
        const char* const consequence =
            m_network.isLoaded() ? "; the last network without faults is kept" : "; nothing was evaluated";
        if (response.faults)
            reportFaults(*response.faults, consequence);
        std::string changes;
        for (const std::string& change : response.changes)
            changes += (changes.empty() ? "" : ", ") + change;
        if (!m_network.isLoaded() || (changes.empty() && !m_mustWrite))
            return;
        if (WarningPrinter* const printer = WarningPrinter::last())
            printer->forget();
        if (!response.mustEvaluate && !mustWriteAgain()) {
            printLine(m_file + ": " + changes + "; nothing ran");
            return;
        }
        if (!response.mustEvaluate)
            m_network.startOver();
        evaluateNetwork(changes.empty() ? "the results are written again" : changes, start);
    }

    // Returns true if the last table is missing.
    bool mustWriteAgain() const
    {
        return m_mustWrite || (!m_table.empty() && !isStandardOutput(m_table) && !FileState::of(m_table).exists);
    }

    // A table that cannot be written ends the program only at the beginning, when its name is
    // probably wrong.
    void evaluateNetwork(const std::string& changes, Clock::time_point start)
    {
        try {
            m_mustWrite = true;
            evaluateOnce(changes, start);
            m_mustWrite = false;
        } catch (const Loam::FileError& error) {
            if (changes.empty() || m_table.empty() || isStandardOutput(m_table))
                throw;
            say(error.what());
        }
    }

    void evaluateOnce(const std::string& changes, Clock::time_point start)
    {
        const Session& session = m_network.session();
        Context& context = m_network.context();
        const std::unique_ptr<Loam::OutputFile> output = m_table.empty() ? nullptr : openResult(m_table, m_streams);
        std::unique_ptr<TableWriter> writer;
        if (output) {
            writer = std::make_unique<TableWriter>(*output, isStandardOutput(m_table) && m_streams.isTerminal());
            output->saveIfUnfinished(m_table + ".incomplete", {});
        }
        const UpdateList updates{context.pool()};
        EvaluationSummary summary =
            evaluate(session, context, {.table = writer.get(), .showsProgress = true}, m_interruption.cancellation());
        if (summary.cancelled || Interruption::signal() != 0) {
            reportInterruption(context, summary, output.get());
            m_isReported = Interruption::signal() != 0;
            m_interruption.renew();
            return;
        }
        if (summary.chartIsMissing) {
            reportMissingChart(session, context, summary.chartRefusal);
            return;
        }
        if (!summary.unknownChoices.empty()) {
            reportFaults(summary.unknownChoices, "; the evaluation ended in step " + std::to_string(summary.steps));
            return;
        }
        if (output)
            commitTable(*output, context);
        const std::string work = changes.empty()
                                     ? workOf(session, summary)
                                     : changes + "; " + listOf(updates, session) + " in " + timeSince(start);
        Faults faults{m_file};
        const PrintedOutputs printed{session, m_printed, faults};
        if (!faults.empty())
            reportFaults(faults, "; nothing was printed");
        else
            printOutputs(printed, context, m_streams, summary);
        reportEvaluation(session, context, summary, work);
    }

    Interruption m_interruption;
    const std::vector<std::string> m_printed;
    const StandardStreams& m_streams;
    const std::string m_file;
    const std::string m_table;
    FileWatcher m_watcher;
    WatchedNetwork m_network;
    std::set<std::string> m_reportedRefusals;
    bool m_mustWrite = false;  // the last results could not be written
    bool m_isReported = false; // the interruption
};

} // namespace

int watchNetwork(const Arguments& arguments, const LoadOptions& options, const std::string& network,
                 const StandardStreams& streams)
{
    if (arguments.has("trace"))
        throw UsageError{"--trace describes one evaluation, so it cannot be used with --watch"};
    if (arguments.has("events"))
        throw UsageError{"--events changes a network for one evaluation, so it cannot be used with --watch"};
    if (arguments.has("jobs"))
        throw UsageError{"--jobs has no effect with --watch, which evaluates the steps in order"};
    return Watch{arguments, options, network, streams}.perform();
}

} // namespace Tarn
