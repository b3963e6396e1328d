#include <tarn/CommandLine.hpp>
#include <tarn/Evaluation.hpp>
#include <tarn/ExitStatus.hpp>
#include <tarn/FileError.hpp>
#include <tarn/Interruption.hpp>
#include <tarn/Libraries.hpp>
#include <tarn/OutputFile.hpp>
#include <tarn/Session.hpp>
#include <tarn/StandardStreams.hpp>
#include <tarn/TableWriter.hpp>
#include <tarn/TypeList.hpp>
#include <tarn/WarningPrinter.hpp>
#include <tarn/Wording.hpp>

#include <loam/Environment.hpp>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace Tarn {

namespace {

constexpr char OutputName[] = "standard output";

void print(const StandardStreams& streams, const std::string& text)
{
    OutputFile output{streams.results(), OutputName};
    output.write(text);
    output.commit();
}

// Standard output leads elsewhere by now, so its other names must not be opened.
bool isStandardOutput(const std::string& name)
{
    const std::vector<std::string> names{"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"};
    return std::ranges::find(names, name) != names.end();
}

// The working folder changes when the network is loaded.
std::string absolutePath(const std::string& name)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(name, error);
    if (error)
        throw FileError{"cannot write " + printable(name), error.value()};
    return path.string();
}

std::unique_ptr<OutputFile> openTable(const std::string& path, const StandardStreams& streams)
{
    return isStandardOutput(path) ? std::make_unique<OutputFile>(streams.results(), OutputName)
                                  : std::make_unique<OutputFile>(path);
}

int reportFaults(const Faults& faults, const std::string& consequence)
{
    for (const std::string& line : faults.lines())
        printLine(line);
    printLine(faults.file() + ": " + counted(faults.size(), "fault") + consequence);
    return NotUnderstood;
}

int reportEvaluation(const Session& session, const EvaluationSummary& summary)
{
    std::string message = session.faults().file() + ": " + counted(session.network().objectCount, "object") + ", "
                          + counted(summary.steps, "step");
    if (summary.failures > 0)
        message += ", " + counted(summary.failures, "failure");
    if (summary.stopped > 0)
        message += ", " + counted(summary.stopped, "loop") + " stopped";
    if (summary.failures > 0 || summary.stopped > 0)
        message += ", the first in step " + std::to_string(summary.firstTrouble);
    printLine(message);
    if (summary.timeIsLost)
        say("object " + inQuotes(session.timeProvider().name()) + ", which provided the time, was removed before step "
            + std::to_string(summary.steps));
    return summary.isFine() ? Fine : ObjectFailed;
}

int reportInterruption(const EvaluationSummary& summary, const OutputFile* table)
{
    const int signal = Interruption::signal();
    std::string message = signal != 0 ? "interrupted" : "an object cancelled the evaluation";
    message += " in step " + std::to_string(summary.steps);
    if (table)
        message += table->isStream() ? "; the table ends before" : "; no table was written";
    say(message);
    return signal != 0 ? 128 + signal : ObjectFailed;
}

int run(const CommandLine& line, const StandardStreams& streams)
{
    const Interruption interruption;
    std::string tablePath;
    if (line.table) {
        tablePath = isStandardOutput(*line.table) ? *line.table : absolutePath(*line.table);
        std::error_code error;
        if (std::filesystem::equivalent(line.network, tablePath, error) && !error)
            throw UsageError{"--table=" + printable(*line.table) + " would overwrite the network"};
    }

    const Session session{line.network, line.overrides, line.steps};
    if (!session.faults().empty())
        return reportFaults(session.faults(), "; nothing was evaluated");

    const std::unique_ptr<OutputFile> output = line.table ? openTable(tablePath, streams) : nullptr;
    std::unique_ptr<TableWriter> table;
    if (output)
        table = std::make_unique<TableWriter>(*output);
    const EvaluationSummary summary = evaluate(session, table.get(), interruption.cancellation());
    if (summary.cancelled || Interruption::signal() != 0)
        return reportInterruption(summary, output.get());
    if (output)
        output->commit();
    return reportEvaluation(session, summary);
}

int check(const CommandLine& line)
{
    const Session session{line.network, {}, {}};
    if (!session.faults().empty())
        return reportFaults(session.faults(), "");
    printLine(session.faults().file() + ": " + counted(session.network().objectCount, "object") + ", "
        + counted(session.network().connectionCount, "connection") + ", no faults");
    return Fine;
}

int types(const CommandLine& line, const StandardStreams& streams)
{
    // Stay in memory until the end: nothing was made that needs them to go before.
    Libraries libraries{Libraries::searchPath(Loam::getCurrentDir())};
    std::vector<std::string> names{StandardLibrary};
    names.insert(names.end(), line.libraries.begin(), line.libraries.end());
    int status = Fine;
    for (const std::string& name : names) {
        if (const std::string why = libraries.load(name); !why.empty()) {
            say(why);
            status = NotUnderstood;
        }
    }
    print(streams, typeList());
    return status;
}

int perform(const CommandLine& line, const StandardStreams& streams)
{
    switch (line.command) {
    case CommandLine::Command::Run:
        return run(line, streams);
    case CommandLine::Command::Check:
        return check(line);
    case CommandLine::Command::Types:
        return types(line, streams);
    case CommandLine::Command::Version:
        print(streams, CommandLine::versionText());
        return Fine;
    case CommandLine::Command::Help:
        break;
    }
    print(streams, line.helpText());
    return Fine;
}

int performSafely(const std::vector<std::string>& arguments, const StandardStreams& streams)
{
    try {
        return perform(CommandLine::parse(arguments), streams);
    } catch (const UsageError& error) {
        say(error.what());
        say("see tarn --help");
        return WrongUsage;
    } catch (const FileError& error) {
        say(error.what());
        return FileFailed;
    } catch (const std::exception& error) {
        say(std::string("cannot go on: ") + error.what());
        return ObjectFailed;
    }
}

} // namespace

} // namespace Tarn

int main(int argc, char** argv)
{
    const Tarn::StandardStreams streams;
    const auto warnings = Loam::makeStrong<Tarn::WarningPrinter>();
    Orla::VActionNotifier::add(warnings);
    const int status = Tarn::performSafely(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc), streams);
    warnings->printRepeats();
    return status;
}
