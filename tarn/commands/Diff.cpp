#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/TypeArguments.hpp>
#include <tarn/network/DifferenceReport.hpp>
#include <tarn/network/NetworkContent.hpp>
#include <tarn/network/NetworkReading.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VActionNotifier.hpp>

#include <string>
#include <utility>
#include <vector>

namespace Tarn {

namespace {

struct Compared {
    NetworkContent content;
    Faults faults;
    Faults unknown;
};

// Unloads the libraries of the network, so that the other one can have others of the same names.
Compared readCompared(const NetworkSource& source, const NetworkContent& like)
{
    NetworkReading reading{source, {}};
    Compared compared{{}, reading.faults(), reading.unknown()};
    if (compared.faults.empty())
        compared.content = NetworkContent::of(reading, compared.faults, like);
    if (const Loam::Result<void> unloaded = reading.unload(); !unloaded)
        Orla::VActionNotifier::Warning("The " + unloaded.reason());
    return compared;
}

int performDiff(const Arguments& arguments, const StandardStreams& streams)
{
    const NetworkSource first{findNetwork(arguments.names[0])};
    const NetworkSource second{findNetwork(arguments.names[1])};
    const Compared before = readCompared(first, {});
    const Compared after = readCompared(second, before.content);
    int status = Fine;
    for (const Compared* const network : {&before, &after}) {
        if (!network->faults.empty())
            status = reportFaults(network->faults, "; nothing was compared");
    }
    if (status != Fine)
        return status;

    const ComparedFiles files{first.path, second.path};
    const std::vector<NetworkDifference> differences = differencesBetween(before.content, after.content);
    std::vector<std::string> unknown = before.unknown.lines();
    for (std::string& line : after.unknown.lines())
        unknown.push_back(std::move(line));
    print(streams,
          arguments.has("json") ? differencesJson(files, differences, unknown) : differencesText(files, differences));
    for (const Compared* const network : {&before, &after}) {
        if (!network->unknown.empty())
            status = reportFaults(network->unknown, "; unknown parts were compared as texts");
    }
    printLine(printable(first.path) + ", " + printable(second.path) + ": "
              + (differences.empty() ? "no differences" : counted(differences.size(), "difference")));
    return status != Fine || differences.empty() ? status : Different;
}

} // namespace

const Command& diffCommand()
{
    static const Command command{
        .name = "diff",
        .nameShape = "A.toml B.toml",
        .fewestNames = 2,
        .mostNames = 2,
        .summary = "Compares two networks by meaning.",
        .help = R"(Loads each network with its libraries, sets up its objects as a run does, and lists what
turns A.toml into B.toml: libraries, the chart, objects, their inputs and the columns of
the table, one line per difference. Evaluates nothing. The exit status is 1 if the
networks differ, and 0 if they are equal.

The order of objects and the notation of values do not matter; the order of columns does.
An input that is set to the value that its object declares equals one that is not set,
unless the text is a choice, which a run checks. Automatic connections are compared as
well. Texts that name files are compared as texts.

An object that differs only in its name is listed as renamed. Objects of unknown types
are compared as texts; the exit status is then 2. If there are other faults, nothing is
compared.
)",
        .options = {jsonOption()},
        .libraryFolders = NetworkFolders,
        .perform = &performDiff,
    };
    return command;
}

} // namespace Tarn
