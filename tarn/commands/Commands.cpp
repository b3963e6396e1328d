#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/text/Faults.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <fathom/CommandLineParser.hpp>

#include <loam/FileError.hpp>
#include <loam/FileInfo.hpp>
#include <loam/OutputFile.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace Tarn {

const std::vector<const Command*>& commands()
{
    static const std::vector<const Command*> all{
        &runCommand(),     &checkCommand(),    &convertCommand(), &diffCommand(),      &graphCommand(), &typesCommand(),
        &objectsCommand(), &describeCommand(), &manualCommand(),  &librariesCommand(), &newCommand()};
    return all;
}

void print(const StandardStreams& streams, const std::string& text)
{
    Loam::OutputFile output{streams.results(), "standard output"};
    output.write(text);
    output.commit();
}

bool isStandardOutput(const std::string& name)
{
    const std::vector<std::string> names{"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"};
    return std::ranges::find(names, name) != names.end();
}

std::unique_ptr<Loam::OutputFile> openResult(const std::string& path, const StandardStreams& streams)
{
    return isStandardOutput(path) ? std::make_unique<Loam::OutputFile>(streams.results(), "standard output")
                                  : std::make_unique<Loam::OutputFile>(path);
}

Option setOption()
{
    return {.name = "set",
            .shape = "OBJECT.SLOT=TEXT",
            .help = "Sets an input, overriding the file. May be repeated; if an\n"
                    "input is set several times, the last text counts.",
            .repeats = true};
}

std::vector<std::string> overridesOf(const Arguments& arguments)
{
    std::vector<std::string> overrides = arguments.texts("set");
    for (const std::string& set : overrides) {
        // Names of objects may contain "=".
        const std::size_t dot = set.find('.');
        if (dot == std::string::npos || set.find('=', dot) == std::string::npos)
            throw UsageError{"--set=" + printable(set) + ": expected --set=OBJECT.SLOT=TEXT"};
    }
    return overrides;
}

std::string absolutePath(const std::string& name)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(name, error);
    if (error)
        throw Loam::FileError{"cannot find " + printable(name), error.value()};
    return path.string();
}

std::string resultPath(const std::string& option, const std::string& name, const std::string& network)
{
    if (isStandardOutput(name))
        return name;
    std::error_code error;
    if (std::filesystem::equivalent(network, name, error) && !error)
        throw UsageError{"--" + option + "=" + printable(name) + " would overwrite the network"};
    return absolutePath(name);
}

int reportNothingWritten()
{
    say("interrupted; nothing was written");
    return 128 + Interruption::signal();
}

std::string findNetwork(const std::string& name)
{
    std::error_code error;
    if (std::filesystem::path(name).is_absolute() || std::filesystem::exists(name, error))
        return name;
    // CommandLineParser::resolvePath prints each name that it tries.
    for (const std::string& folder : Orla::CommandLineParser::getDataDirs()) {
        if (std::string file = folder + '/' + name; Loam::FileInfo{file}.exists())
            return file;
    }
    return name;
}

int reportFaults(const Faults& faults, const std::string& consequence)
{
    for (const std::string& line : faults.lines())
        printLine(line);
    printLine(faults.file() + ": " + counted(faults.size(), "fault") + consequence);
    return NotUnderstood;
}

} // namespace Tarn
