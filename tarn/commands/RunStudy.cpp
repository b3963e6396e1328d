#include <tarn/commands/RunStudy.hpp>

#include <tarn/commands/Commands.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/RunOptions.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/Context.hpp>
#include <tarn/run/CrashReport.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/PrintedOutputs.hpp>
#include <tarn/run/Progress.hpp>
#include <tarn/run/TableWriter.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/study/CaseOrder.hpp>
#include <tarn/study/CaseQueue.hpp>
#include <tarn/study/Ranks.hpp>
#include <tarn/study/Study.hpp>
#include <tarn/study/StudyJournal.hpp>
#include <tarn/study/StudyReport.hpp>
#include <tarn/text/CsvReader.hpp>
#include <tarn/text/JsonText.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>

#include <loam/OutputFile.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Tarn {

namespace {

constexpr char NothingEvaluated[] = "; nothing was evaluated";

void checkUsage(const Arguments& arguments)
{
    if (arguments.has("trace"))
        throw UsageError{"--trace shows one evaluation; it cannot be combined with --sweep"};
    if (arguments.has("watch"))
        throw UsageError{"--watch repeats one evaluation; it cannot be combined with --sweep"};
    const std::optional<std::string> table = arguments.text("table");
    if (arguments.has("resume") && (!table || isStandardOutput(*table)))
        throw UsageError{"--resume needs --table=FILE.csv, beside which the complete cases are kept"};
}

// Returns the position of the "=" after the input's name. Names of objects may contain "=".
std::size_t endOfInput(const std::string& sweep, const Session& session)
{
    const std::size_t first = sweep.find('=');
    for (std::size_t end = first; end != std::string::npos; end = sweep.find('=', end + 1)) {
        if (session.core()->findInput(std::string_view(sweep).substr(0, end)))
            return end;
    }
    return first;
}

void addOption(const std::string& text, const Session& session, Sweep& sweep, Faults& faults)
{
    const auto refuse = [&](const std::string& reason) {
        faults.add(FaultKind::Option, "--sweep=" + printable(text) + ": " + reason);
    };
    const std::size_t end = endOfInput(text, session);
    if (end == std::string::npos)
        return refuse("expected --sweep=OBJECT.SLOT=TEXT,...");
    const Loam::Result<std::vector<std::string>> texts = parseCsvRow(std::string_view(text).substr(end + 1));
    if (!texts)
        return refuse(texts.reason());
    if (const Loam::Result<void> added = sweep.add(text.substr(0, end), *texts); !added)
        refuse(added.reason());
}

void addFile(const std::string& path, Sweep& sweep, Faults& faults)
{
    const std::vector<CsvRow> rows = parseCsv(readFile(path), faults);
    if (!faults.empty())
        return;
    if (rows.size() < 2)
        return faults.add(FaultKind::Content,
                          "--sweep-file: expected a row with the names of inputs and one row per case, found "
                              + counted(rows.size(), "row"));
    std::vector<std::string> inputs;
    for (const PlacedText& title : rows.front())
        inputs.push_back(title.text);
    std::vector<std::vector<std::string>> cases;
    for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
        if (row->size() != inputs.size())
            faults.add(FaultKind::Content, row->front().place,
                       "found " + counted(row->size(), "field") + ", expected one per title, "
                           + std::to_string(inputs.size()));
        std::vector<std::string>& texts = cases.emplace_back();
        for (const PlacedText& field : *row)
            texts.push_back(field.text);
    }
    if (!faults.empty())
        return;
    if (const Loam::Result<void> added = sweep.addRows(inputs, std::move(cases)); !added)
        faults.add(FaultKind::Content, "--sweep-file: " + added.reason());
}

void checkTitles(const Session& session, const Sweep& sweep, Faults& faults)
{
    const std::vector<std::string> columns = session.columns();
    std::vector<std::string> titles = sweep.inputs();
    titles.insert(titles.begin(), "case");
    for (const std::string& title : titles) {
        if (std::ranges::find(columns, title) != columns.end())
            faults.add(FaultKind::Column,
                       "the column " + inQuotes(title) + " has the title of a column that a sweep adds to the table");
    }
}

std::vector<std::string> titlesOf(const Session& session, const Sweep& sweep)
{
    std::vector<std::string> titles{"case"};
    std::ranges::copy(sweep.inputs(), std::back_inserter(titles));
    titles.emplace_back("step");
    std::ranges::copy(session.columns(), std::back_inserter(titles));
    return titles;
}

void writeRows(TableWriter& table, const Sweep& sweep, const CaseResult& result)
{
    std::vector<std::string> begin{std::to_string(result.number)};
    std::ranges::copy(sweep.texts(result.number), std::back_inserter(begin));
    for (std::size_t step = 0; step < result.rows.size(); ++step) {
        std::vector<std::string> fields = begin;
        fields.push_back(std::to_string(step));
        for (const std::optional<std::string>& cell : result.rows[step])
            fields.push_back(cell.value_or(std::string()));
        table.writeRow(fields);
    }
}

// Returns everything on which the results depend, apart from libraries and data files.
std::string identityOf(const Arguments& arguments, const std::string& network, const Sweep& sweep)
{
    Json json{{"study", 1}, {"network", readFile(network)}};
    for (const char* option : {"set", "chart", "steps", "print"}) {
        for (const std::string& text : arguments.texts(option))
            json[option].push_back(text);
    }
    if (const std::optional<std::string> events = arguments.text("events"))
        json["events"] = readFile(*events);
    json["inputs"] = sweep.inputs();
    for (const Sweep::Factor& factor : sweep.factors())
        json["texts"].push_back(factor.rows);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Receives the results of a study and writes them in the order of the cases.
class StudyOutput {
public:
    StudyOutput(const Sweep& sweep, StudyJournal* journal, TableWriter* table)
        : m_sweep{sweep}, m_journal{journal}, m_table{table}, m_progress{sweep.caseCount()}
    {
    }

    /// Takes a result from the journal.
    void resume(CaseResult result) { m_order.add(std::move(result)); }

    void receive(CaseResult result)
    {
        if (m_journal)
            m_journal->add(result);
        m_failures += result.hasFailed ? 1 : 0;
        m_progress.show(++m_done, m_failures);
        m_order.add(std::move(result));
    }

    const StudyReport& report() const noexcept { return m_report; }
    const std::string& printed() const noexcept { return m_printed; }

private:
    void write(const CaseResult& result)
    {
        m_report.add(result);
        if (m_table)
            writeRows(*m_table, m_sweep, result);
        for (const std::string& line : result.printed)
            m_printed += "case " + std::to_string(result.number) + ": " + line + '\n';
    }

    const Sweep& m_sweep;
    StudyJournal* m_journal;
    TableWriter* m_table;
    Progress m_progress;
    std::uint64_t m_done = 0;
    std::uint64_t m_failures = 0;
    StudyReport m_report;
    std::string m_printed;
    CaseOrder m_order{[this](const CaseResult& result) { write(result); }};
};

// Opens the journal of a study with a table in a file. Returns null without such a table, for which
// a device or a pipe does not count.
// \throw Loam::FileError if it has the cases of an interrupted study that is not to be resumed.
std::unique_ptr<StudyJournal> openJournal(const Loam::OutputFile* output, const std::string& table,
                                          const std::string& identity, bool resumes)
{
    if (!output || output->isStream())
        return nullptr;
    const std::string path = table + ".study";
    auto journal = std::make_unique<StudyJournal>(path, identity);
    if (const std::size_t count = journal->results().size(); count > 0 && !resumes)
        throw Loam::FileError{printable(path) + " has " + counted(count, "complete case")
                              + " of an interrupted study; --resume continues it; remove the file to begin again"};
    return journal;
}

// Reports that a signal or an object ended the study. Returns the exit status.
int reportInterruption(const std::vector<bool>& complete, bool canResume)
{
    CaseList cases;
    for (std::size_t i = 0; i < complete.size(); ++i) {
        if (complete[i])
            cases.add(i);
    }
    const int signal = Interruption::signal();
    say(std::string(signal != 0 ? "interrupted" : "an object cancelled the evaluation") + "; "
        + (cases.size() == 0 ? std::string("no case is complete")
                             : counted(cases.size(), "complete case") + " of " + std::to_string(complete.size()) + ": "
                                   + cases.text()));
    if (canResume && cases.size() > 0)
        say("the table was not written; --resume evaluates the other cases");
    return signal != 0 ? 128 + signal : ObjectFailed;
}

int reportStudy(const Session& session, const StudyReport& report, std::uint64_t caseCount)
{
    std::string message = session.faults().file() + ": " + counted(session.core()->network().objectCount, "object")
                          + ", " + counted(caseCount, "case") + ", " + counted(report.steps(), "step");
    if (report.failed().size() > 0)
        message += ", " + counted(report.failed().size(), "failed case") + ": " + report.failed().text();
    printLine(message);
    for (const std::string& line : report.lines())
        printLine(line);
    return report.failed().size() > 0 ? ObjectFailed : Fine;
}

// Evaluates the cases that the journal does not have. Returns the exit status.
int evaluateStudy(const Study& study, const StudyOptions& options, StudyJournal* journal, Loam::OutputFile* output,
                  TableWriter* table, const StandardStreams& streams, const Interruption& interruption)
{
    const Sweep& sweep = study.sweep();
    if (table)
        table->writeRow(titlesOf(study.session(), sweep));
    std::vector<bool> complete(sweep.caseCount());
    StudyOutput results{sweep, journal, table};
    std::vector<CaseResult> former;
    if (journal)
        former = journal->takeResults();
    for (CaseResult& result : former) {
        // A case that failed, perhaps because of the machine, is evaluated again.
        if (result.hasFailed || result.number >= complete.size())
            continue;
        complete[result.number] = true;
        results.resume(std::move(result));
    }
    if (const auto count = std::ranges::count(complete, true); count > 0)
        say("resuming: " + counted(static_cast<std::size_t>(count), "case") + " of " + std::to_string(complete.size())
            + (count == 1 ? " is" : " are") + " complete");
    CaseQueue queue{complete.size(),
                    [&](CaseResult result) {
                        complete[result.number] = true;
                        results.receive(std::move(result));
                    },
                    [&complete](std::uint64_t number) { return complete[number]; }};
    const auto evaluate = [&] { study.run(options, queue, interruption.cancellation()); };
    if (Ranks* const ranks = Ranks::current())
        ranks->serve(evaluate, queue, !study.orderReason(options), interruption.cancellation());
    else
        evaluate();
    if (interruption.cancellation().isCancelled())
        return reportInterruption(complete, journal != nullptr);
    if (const auto missing = std::ranges::count(complete, false); missing > 0)
        throw std::logic_error{counted(static_cast<std::size_t>(missing), "case") + " were lost"};
    if (output)
        output->commit();
    if (journal)
        journal->remove();
    if (!results.printed().empty())
        print(streams, results.printed());
    return reportStudy(study.session(), results.report(), complete.size());
}

} // namespace

bool isStudy(const Arguments& arguments)
{
    return arguments.has("sweep") || arguments.has("sweep-file");
}

int performStudy(const Arguments& arguments, const StandardStreams& streams)
{
    checkUsage(arguments);
    const std::vector<std::string> overrides = overridesOf(arguments);
    const std::optional<std::uint64_t> steps = readNumber(arguments, "steps", 1);
    const std::optional<unsigned> jobs = readJobs(arguments);
    const std::string network = findNetwork(arguments.names[0]);
    const Interruption interruption;
    const std::string tablePath = placeOf(arguments, "table", network);

    Faults eventFaults{arguments.text("events").value_or("")};
    // Several ranks share the cores.
    StudyOptions options{.jobs = jobs || !Ranks::current() ? jobs : 1, .printed = arguments.texts("print")};
    options.events = readEvents(arguments, eventFaults);
    const Session session = Session::load(network, {overrides, arguments.text("chart"), steps});
    if (!session.faults().empty())
        return reportFaults(session.faults(), NothingEvaluated);
    checkEvents(options.events, session, *Context{session}.stepCount(), eventFaults);
    if (!eventFaults.empty())
        return reportFaults(eventFaults, NothingEvaluated);

    Sweep sweep;
    if (const std::optional<std::string> path = arguments.text("sweep-file")) {
        Faults fileFaults{*path};
        addFile(*path, sweep, fileFaults);
        if (!fileFaults.empty())
            return reportFaults(fileFaults, NothingEvaluated);
    }
    Faults faults{session.faults().file()};
    for (const std::string& text : arguments.texts("sweep"))
        addOption(text, session, sweep, faults);
    const PrintedOutputs printed{session, options.printed, faults};
    checkTitles(session, sweep, faults);
    const Study study{session, std::move(sweep)};
    if (faults.empty())
        study.check(faults);
    if (!faults.empty())
        return reportFaults(faults, NothingEvaluated);
    Ranks* const ranks = Ranks::current();
    if (ranks && !ranks->isFirst()) {
        if (const std::optional<int> status = ranks->agree())
            return *status;
        return ranks->work([&](CaseExchange& cases) { study.run(options, cases, interruption.cancellation()); },
                           interruption.cancellation());
    }
    options.reportOrder = [&arguments](const std::string& reason) {
        say("--jobs=" + arguments.text("jobs").value_or("1") + ": evaluated in order, because " + reason);
    };

    const std::unique_ptr<Loam::OutputFile> output = tablePath.empty() ? nullptr : openResult(tablePath, streams);
    const std::unique_ptr<StudyJournal> journal =
        openJournal(output.get(), tablePath, identityOf(arguments, network, study.sweep()), arguments.has("resume"));
    if (journal && arguments.has("resume")) {
        if (const std::optional<std::string> reason = study.orderReason(options))
            throw UsageError{"--resume: the results of a case depend on earlier cases, because " + *reason};
    }
    std::unique_ptr<TableWriter> table;
    if (output)
        table = std::make_unique<TableWriter>(*output, isStandardOutput(tablePath) && streams.isTerminal());
    CrashReport::watchForExit();
    if (const std::optional<int> status = ranks ? ranks->agree() : std::nullopt)
        return *status;
    return evaluateStudy(study, options, journal.get(), output.get(), table.get(), streams, interruption);
}

} // namespace Tarn
