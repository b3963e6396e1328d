#include <tarn/program/Program.hpp>

#include <tarn/commands/CommandLine.hpp>
#include <tarn/commands/Commands.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/StandardStreams.hpp>
#include <tarn/run/CrashReport.hpp>
#include <tarn/run/UrlHandler.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/EmergencyMessage.hpp>
#include <tarn/text/EndProcess.hpp>

#include <loam/FileError.hpp>
#include <loam/OutputFile.hpp>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>

#include <malloc.h>

namespace Tarn {

namespace {

constexpr char OutOfMemory[] = "tarn: out of memory\n";

int performSafely(int argc, char** argv, const StandardStreams& streams,
                  int (*performRequest)(const CommandLine& line, const StandardStreams& streams))
{
    try {
        return performRequest(CommandLine::parse(argc, argv, commands()), streams);
    } catch (const UsageError& error) {
        say(error.what());
        say("see tarn --help");
        return WrongUsage;
    } catch (const Loam::FileError& error) {
        say(error.what());
        return FileFailed;
    } catch (const std::bad_alloc&) {
        say("out of memory");
        return ObjectFailed;
    } catch (const std::exception& error) {
        say(std::string("cannot continue: ") + error.what());
        return ObjectFailed;
    }
}

// Ends the program by the signal, as the system would, but without unfinished files.
void endBySignal(int signal)
{
    Loam::OutputFile::removeUnfinished();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// For everything before and after an evaluation, which handles signals itself.
void handleSignals()
{
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction former {};
        ::sigaction(signal, nullptr, &former);
        if (former.sa_handler != SIG_IGN)
            std::signal(signal, endBySignal);
    }
}

// The terminate handler. A std::bad_alloc that leaves a destructor ends the program with a
// message. Anything else is a bug, for which a core dump is more useful.
[[noreturn]] void endBecauseOfException()
{
    try {
        if (const std::exception_ptr thrown = std::current_exception())
            std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        Loam::OutputFile::removeUnfinished();
        std::fputs(OutOfMemory, stderr);
        endProcess(ObjectFailed);
    } catch (const std::exception& error) {
        EmergencyMessage message;
        (message << "tarn: exception that was not caught: ").appendForeign(error.what());
        message.write();
    } catch (...) {
    }
    std::abort();
}

} // namespace

int perform(const CommandLine& line, const StandardStreams& streams)
{
    switch (line.request) {
    case CommandLine::Request::Perform:
        return line.command->perform(line.arguments, streams);
    case CommandLine::Request::Version:
        print(streams, CommandLine::versionText());
        return Fine;
    case CommandLine::Request::Help:
        break;
    }
    print(streams, line.command ? helpOn(*line.command) : CommandLine::generalHelp(commands()));
    return Fine;
}

int runProgram(int argc, char** argv, int (*performRequest)(const CommandLine& line, const StandardStreams& streams))
{
    // A large network consists of millions of small blocks. With the lists that this turns off,
    // the C library walks through them again and again while they are released.
    ::mallopt(M_MXFAST, 0);
    std::set_terminate(endBecauseOfException);
    handleSignals();
    try {
        const StandardStreams streams;
        const CrashReport crashReport;
        const auto warnings = Loam::makeStrong<WarningPrinter>();
        Orla::VActionNotifier::add(warnings);
        Orla::VUrlSystemHandler::TheUrlSystemHandler = Loam::makeStrong<UrlHandler>();
        const int status = performSafely(argc, argv, streams, performRequest);
        warnings->printRepeats();
        return status;
    } catch (...) {
        // Not even a message could be composed.
        std::fputs(OutOfMemory, stderr);
        return ObjectFailed;
    }
}

} // namespace Tarn
