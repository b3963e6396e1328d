#include <tarn/commands/CommandLine.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/StandardStreams.hpp>
#include <tarn/run/CrashReport.hpp>
#include <tarn/run/UrlHandler.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/commands/Commands.hpp>

#include <loam/FileError.hpp>

#include <exception>
#include <new>
#include <string>

namespace Tarn {

namespace {

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

int performSafely(int argc, char** argv, const StandardStreams& streams)
{
    try {
        return perform(CommandLine::parse(argc, argv, commands()), streams);
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

} // namespace

} // namespace Tarn

int main(int argc, char** argv)
{
    const Tarn::StandardStreams streams;
    const Tarn::CrashReport crashReport;
    const auto warnings = Loam::makeStrong<Tarn::WarningPrinter>();
    Orla::VActionNotifier::add(warnings);
    Orla::VUrlSystemHandler::TheUrlSystemHandler = Loam::makeStrong<Tarn::UrlHandler>();
    const int status = Tarn::performSafely(argc, argv, streams);
    warnings->printRepeats();
    return status;
}
