#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/run/Advice.hpp>
#include <tarn/run/HotKeys.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

namespace Tarn {

namespace {

int performCheck(const Arguments& arguments, const StandardStreams&)
{
    const Session session = Session::load(findNetwork(arguments.names[0]));
    if (!session.faults().empty())
        return reportFaults(session.faults(), "");
    const Orla::VNetwork::Scope scope{session.network()};
    for (const SharedHotKey& shared : sharedHotKeys()) {
        std::string names;
        for (const std::string& object : shared.objects)
            names += (names.empty() ? "" : ", ") + inQuotes(object);
        printLine(session.faults().file() + ": note: key " + nameOfKey(shared.key) + " is the hot key of " + names);
    }
    if (arguments.has("advice")) {
        const Faults advice = adviceOn(session.core()->network(), session.core()->file(), session.faults().file());
        for (const std::string& line : advice.lines())
            printLine(line);
    }
    printLine(session.faults().file() + ": " + counted(session.core()->network().objectCount, "object") + ", "
              + counted(session.core()->network().connected.size(), "connection") + ", no faults");
    return Fine;
}

} // namespace

const Command& checkCommand()
{
    static const Command command{
        .name = "check",
        .nameShape = "NETWORK.toml",
        .fewestNames = 1,
        .mostNames = 1,
        .summary = "Loads a network and lists its faults.",
        .help = R"(Loads the network and its libraries, creates and connects its objects, and lists all
faults with their places; of more than 20 similar ones, only the first 20. Evaluates
nothing. The exit status is 2 if there are faults.

Keys that are the hot key of several objects are listed too, but are not faults.
)",
        .options =
            {
                {.name = "advice",
                 .help = "Also lists what may be wrong in a network without faults:\n"
                         "inputs without a description, inputs that have no effect\n"
                         "because of other inputs, outputs that are never read, and\n"
                         "objects that reach no file, column or status."},
            },
        .libraryFolders = NetworkFolders,
        .perform = &performCheck,
    };
    return command;
}

} // namespace Tarn
