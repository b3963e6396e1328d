#include <tarn/commands/Commands.hpp>

#include <tarn/network/Conversion.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/OutputFile.hpp>

#include <filesystem>
#include <memory>

namespace Tarn {

namespace {

int perform(const Arguments& arguments, const StandardStreams& streams)
{
    const std::vector<std::string> overrides = overridesOf(arguments);
    const std::string network = findNetwork(arguments.names[0]);
    const std::string& target = arguments.names[1];
    const bool isFile = !isStandardOutput(target);
    const std::string path = isFile ? absolutePath(target) : target;

    Conversion conversion{network, overrides};
    if (!conversion.faults().empty())
        return reportFaults(conversion.faults(), "; nothing was written");
    const auto output = openResult(path, streams);
    // Where a stream ends is not known; names in it count from the old folder.
    if (!output->isStream() && !arguments.has("keep-names")) {
        for (const std::string& message : conversion.moveTo(std::filesystem::path(path).parent_path().string()))
            printLine(message);
        if (!conversion.faults().empty())
            return reportFaults(conversion.faults(), "; nothing was written");
    }
    output->write(conversion.text());
    output->commit();
    if (!conversion.unknown().empty())
        return reportFaults(conversion.unknown(), "; what is not known was written as it stood");
    printLine(conversion.faults().file() + ": " + counted(conversion.objectCount(), "object") + ", "
              + counted(conversion.connectionCount(), "connection") + ", written to "
              + (isFile ? printable(target) : "standard output"));
    return Fine;
}

} // namespace

const Command& convertCommand()
{
    static const Command command{
        .name = "convert",
        .nameShape = "IN.toml OUT.toml",
        .fewestNames = 2,
        .mostNames = 2,
        .summary = "Writes a network in its canonical form.",
        .help = R"(Loads the network and its libraries, makes and sets its objects, and writes them with
everything in one order and one spelling: once written so, a network is written the
same again. Comments are not kept. Values are kept bit by bit. OUT.toml may be IN.toml;
"-" is standard output. Until the new file is complete OUT.toml is what it was before.

Objects of unknown types are written as they stood; the exit status is then 2. With any
other fault nothing is written.

File names count from the folder of the network. If OUT.toml lies in another folder,
texts that name a file beside IN.toml are changed so that they still find it, and are
listed; names of folders are listed only.
)",
        .options =
            {
                setOption(),
                {.name = "keep-names", .shape = "", .help = "Leaves texts that name files as they are."},
            },
        .libraryFolders = NetworkFolders,
        .perform = &perform,
    };
    return command;
}

} // namespace Tarn
