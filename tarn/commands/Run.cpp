#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/RunOptions.hpp>
#include <tarn/commands/RunReports.hpp>
#include <tarn/commands/RunStudy.hpp>
#include <tarn/commands/Watch.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/CrashReport.hpp>
#include <tarn/run/Evaluation.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/PrintedOutputs.hpp>
#include <tarn/run/StatusReport.hpp>
#include <tarn/run/TableWriter.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/run/Tracer.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/OutputFile.hpp>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace Tarn {

namespace {

// Returns true if both are the same file, or standard output.
bool areSame(const std::string& one, const std::string& other)
{
    if (isStandardOutput(one) || isStandardOutput(other))
        return isStandardOutput(one) && isStandardOutput(other);
    std::error_code error;
    std::error_code otherError;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(one, error);
    return resolved == std::filesystem::weakly_canonical(other, otherError) && !error && !otherError;
}

int performRun(const Arguments& arguments, const StandardStreams& streams)
{
    if (isStudy(arguments))
        return performStudy(arguments, streams);
    if (arguments.has("resume"))
        throw UsageError{"--resume continues a study; it needs --sweep or --sweep-file"};
    const std::vector<std::string> overrides = overridesOf(arguments);
    const std::optional<std::uint64_t> steps = readNumber(arguments, "steps", 1);
    const std::optional<unsigned> jobs = readJobs(arguments);
    const std::string network = findNetwork(arguments.names[0]);
    if (arguments.has("watch"))
        return watchNetwork(arguments, {overrides, arguments.text("chart"), steps}, network, streams);

    const Interruption interruption;
    const std::string table = placeOf(arguments, "table", network);
    const std::string trace = placeOf(arguments, "trace", network);
    if (!trace.empty() && !table.empty() && areSame(trace, table))
        throw UsageError{"--trace=" + printable(trace) + " would overwrite the table"};
    if (isStandardOutput(trace) && arguments.has("print"))
        throw UsageError{"--print would write into the trace on standard output"};

    Faults eventFaults{arguments.text("events").value_or("")};
    std::vector<ScriptedEvent> events = readEvents(arguments, eventFaults);
    const Session session = Session::load(network, {overrides, arguments.text("chart"), steps});
    if (!session.faults().empty())
        return reportFaults(session.faults(), "; nothing was evaluated");
    Context context{session, network};
    checkEvents(events, session, *context.stepCount(), eventFaults);
    if (!eventFaults.empty())
        return reportFaults(eventFaults, "; nothing was evaluated");
    Faults printFaults{session.faults().file()};
    const PrintedOutputs printed{session, arguments.texts("print"), printFaults};
    if (!printFaults.empty())
        return reportFaults(printFaults, "; nothing was evaluated");

    const std::unique_ptr<Loam::OutputFile> output = table.empty() ? nullptr : openResult(table, streams);
    std::unique_ptr<TableWriter> writer;
    if (output) {
        writer = std::make_unique<TableWriter>(*output, isStandardOutput(table) && streams.isTerminal());
        output->saveIfUnfinished(table + ".incomplete", {});
    }
    std::optional<TaskExecutor> helpers;
    if (jobs)
        context.setExecutor(&helpers.emplace(*jobs - 1));
    EvaluationTask task{.table = writer.get(),
                        .threads = jobs.value_or(1),
                        .makeContext =
                            [&] {
                                Context another{session, network};
                                if (jobs)
                                    another.setExecutor(&*helpers);
                                return another;
                            },
                        .showsProgress = true};
    const std::unique_ptr<Loam::OutputFile> traceOutput = trace.empty() ? nullptr : openResult(trace, streams);
    std::unique_ptr<Tracer> tracer;
    if (traceOutput)
        tracer = std::make_unique<Tracer>(*traceOutput, context.pool(), "tarn run " + arguments.names[0], trace);
    task.tracer = tracer.get();
    CrashReport::watchForExit();
    context.schedule(std::move(events));
    EvaluationSummary summary = evaluate(session, context, task, interruption.cancellation());
    // Completed even if the evaluation ended early, when a trace is most useful.
    if (tracer) {
        tracer->finish();
        traceOutput->commit();
    }
    if (summary.cancelled || Interruption::signal() != 0)
        return reportInterruption(context, summary, output.get());
    if (summary.chartIsMissing)
        return reportMissingChart(session, context, summary.chartRefusal);
    if (!summary.unknownChoices.empty()) {
        reportFaults(summary.unknownChoices, "; the evaluation ended in step " + std::to_string(summary.steps));
        return ObjectFailed;
    }
    if (output)
        commitTable(*output, context);
    printOutputs(printed, context, streams, summary);
    return reportEvaluation(session, context, summary, workOf(session, summary));
}

} // namespace

const Command& runCommand()
{
    static const Command command{
        .name = "run",
        .nameShape = "NETWORK.toml",
        .fewestNames = 1,
        .mostNames = 1,
        .summary = "Evaluates a network.",
        .help = R"(Evaluates the network once per step of its global time, or once if no object provides
the time.

Relative names in the texts of inputs are resolved in the folder of the network, then, for
files that are read, in those of TARN_DATA. Names in options are relative to the working
directory.

FILE.csv is replaced only when the table is complete; if something fails before, it
stays unchanged. If an object crashes, calls exit or ignores an interruption, it is
named, the rows of the steps before are in FILE.csv.incomplete, and the trace ends
where it happened. An object that fails does not end the run: objects that read its
outputs wait until it succeeds, cells of the table without a result are empty, and the
exit status is 1.

At the end, the objects whose last update failed are listed, with the numbers of objects
that wait for them, and every object that reports a status, errors first. An error makes
the exit status 1.

With --sweep or --sweep-file the network is evaluated for several cases, numbered from
0; the last input varies fastest. The table gets a column for the case and one for each
varied input. Names of files that objects write get "-caseN" before the extension, and
"-caseN-stepM" if the network has several steps. A case that fails is listed at the
end, and the others continue. FILE.csv.study keeps the complete cases until FILE.csv is
written, for --resume.

SIGINT and SIGTERM end the run within a second, with exit status 130 or 143. FILE.csv
then stays unchanged; standard output has the rows of the steps before. To keep these
rows, write the table with "--table=- > FILE.csv".

With --watch, the network is evaluated again whenever its file, a library that it names or
a file that its objects read changes. Only what depends on the change runs, and with
several time steps what depends on the time. The table and the printed outputs are written
again. Of a file with faults, the faults are listed, and the last network without faults
is kept. A signal ends the program with exit status 130 or 143.
)",
        .options =
            {
                setOption(),
                {.name = "steps", .shape = "N", .help = "Evaluates only the first N steps."},
                {.name = "chart",
                 .shape = "NAME",
                 .help = "Makes all objects that depend on a coordinate chart\n"
                         "follow this one, overriding the file."},
                {.name = "events",
                 .shape = "FILE.toml",
                 .help = "Plays pointer and keyboard events from a TOML file. Each\n"
                         "table [[event]] has a step, a kind and a place or a key."},
                {.name = "table",
                 .shape = "FILE.csv",
                 .help = "Writes the columns that the network lists, one row per\n"
                         "step, as comma-separated values; \"-\" is standard output."},
                {.name = "print",
                 .shape = "OBJECT.OUTPUT",
                 .help = "Prints the text of an output, of its component\n"
                         "OBJECT.OUTPUT.MEMBER, or of an input to standard output\n"
                         "at the end. \"*\" matches any text in the names of\n"
                         "outputs: \"filter.*\". May be repeated.",
                 .repeats = true},
                {.name = "sweep",
                 .shape = "OBJECT.SLOT=TEXT,...",
                 .help = "Evaluates the network once per text of an input. Texts\n"
                         "with commas are quoted as in CSV. May be repeated: all\n"
                         "combinations are evaluated.",
                 .repeats = true},
                {.name = "sweep-file",
                 .shape = "FILE.csv",
                 .help = "Evaluates the network once per row of a table, whose\n"
                         "titles name inputs; with --sweep, for all combinations."},
                {.name = "resume", .help = "Evaluates the cases that an interrupted study lacks."},
                {.name = "jobs",
                 .shape = "N",
                 .help = "Evaluates cases, and steps that do not depend on\n"
                         "earlier ones, in N threads; 0 means one per core. The\n"
                         "results are the same for each N."},
                {.name = "trace",
                 .shape = "FILE.json",
                 .help = "Writes which objects ran when, for how long and why, for\n"
                         "the tracing pages of web browsers; \"-\" is standard output."},
                {.name = "watch",
                 .shape = {},
                 .help = "Evaluates again whenever the network, a library that it\n"
                         "names or a file that it reads changes, until a signal."},
            },
        .libraryFolders = NetworkFolders,
        .perform = &performRun,
    };
    return command;
}

} // namespace Tarn
