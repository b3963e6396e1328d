#include <tarn/commands/Commands.hpp>

#include <tarn/network/Conversion.hpp>
#include <tarn/commands/ExitStatus.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/SimilarMessages.hpp>

#include <loam/OutputFile.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Tarn {

namespace {

void printSimilar(const std::string& start, const std::vector<std::string>& messages)
{
    SimilarMessages similar;
    for (const std::string& message : messages) {
        if (similar.add(message))
            printLine(start + message);
    }
    for (const std::string& more : similar.summary())
        printLine(start + more);
}

int performConvert(const Arguments& arguments, const StandardStreams& streams)
{
    const std::vector<std::string> overrides = overridesOf(arguments);
    const std::string network = findNetwork(arguments.names[0]);
    const Interruption interruption;
    const std::string& target = arguments.names[1];
    const bool isFile = !isStandardOutput(target);
    const std::string path = isFile ? absolutePath(target) : target;

    Conversion conversion{network, overrides};
    if (!conversion.faults().empty())
        return reportFaults(conversion.faults(), "; nothing was written");
    const auto output = openResult(path, streams);
    std::vector<std::string> changes;
    // The destination of a stream is unknown; its names stay relative to the old folder.
    if (!output->isStream() && !arguments.has("keep-names")) {
        changes = conversion.moveTo(std::filesystem::path(path).parent_path().string());
        if (!conversion.faults().empty())
            return reportFaults(conversion.faults(), "; nothing was written");
    }
    output->write(conversion.text());
    if (Interruption::signal() != 0)
        return reportNothingWritten();
    output->commit();
    printSimilar(conversion.faults().file() + ": ", changes);
    if (!conversion.unknown().empty())
        return reportFaults(conversion.unknown(), "; unknown parts were written unchanged");
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
        .help = R"(Loads the network and its libraries, creates and sets its objects, and writes them in
canonical order and spelling; converting the result again does not change it.
Comments are not kept. Values are preserved bit for bit. OUT.toml may be IN.toml; "-"
is standard output. OUT.toml stays unchanged until the new file is complete.

Objects of unknown types are written unchanged; the exit status is then 2. If there are
other faults, nothing is written.

File names are relative to the folder of the network. If OUT.toml is in another folder,
texts that name a file beside IN.toml are adapted to name the same file from there, and
listed; names of folders are only listed. Names of files that an object writes are not
adapted, so the new network does not overwrite the results of the old one.
)",
        .options =
            {
                setOption(),
                {.name = "keep-names", .shape = "", .help = "Leaves texts that name files unchanged."},
            },
        .libraryFolders = NetworkFolders,
        .perform = &performConvert,
    };
    return command;
}

} // namespace Tarn
