#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/TypeArguments.hpp>
#include <tarn/reference/ManualPages.hpp>
#include <tarn/reference/ManualFolder.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/TypeCatalogue.hpp>

namespace Tarn {

namespace {

// Ends the writing of a manual.
struct Interrupted {};

int performManual(const Arguments& arguments, const StandardStreams&)
{
    const std::optional<std::string> output = arguments.text("output");
    if (!output || output->empty())
        throw UsageError{"no --output, expected --output=FOLDER"};
    const Interruption interruption;
    const std::string path = absolutePath(*output);
    const TypeCatalogue catalogue{arguments.names};
    if (const int status = reportRefusals(catalogue); status != Fine) {
        say("nothing was written");
        return status;
    }
    const std::vector<ObjectTypeDescription> objects = catalogue.objectTypes();
    int status = Fine;
    try {
        ManualFolder folder{path};
        writeManual(catalogue.valueTypes(), objects, [&](const std::string& file, const std::string& content) {
            if (Interruption::signal() != 0)
                throw Interrupted{};
            folder.add(file, content);
        });
        if (Interruption::signal() != 0)
            throw Interrupted{};
        folder.commit();
    } catch (const UnsuitableFolder& error) {
        throw UsageError{error.what()};
    } catch (const Interrupted&) {
        return reportNothingWritten();
    }
    for (const ObjectTypeDescription& type : objects) {
        if (!type.failure.empty()) {
            say("objects of type " + inQuotes(type.name) + " cannot be made: " + onOneLine(type.failure));
            status = ObjectFailed;
        }
    }
    printLine(counted(objects.size(), "object type") + " described in " + printable(*output));
    return status;
}

} // namespace

const Command& manualCommand()
{
    static const Command command{
        .name = "manual",
        .nameShape = "LIBRARY",
        .mostNames = ~std::size_t{0},
        .summary = "Writes a manual of object types in HTML and Markdown.",
        .help = R"(Writes a page for each object type of the standard library and the libraries named:
its description, a drawing, tables of its inputs and outputs, a network, and links to
related types. Further pages describe the types of values; index.html and index.md list
all pages. Links are relative, and the pages contain no scripts.

To read the inputs and outputs, an object of each type is created and destroyed. A type
for which that fails has a page with the reason, and the exit status is 1.
)",
        .options =
            {
                {.name = "output",
                 .shape = "FOLDER",
                 .help = "The folder to write. It is created if it does not exist;\n"
                         "otherwise it must be empty or contain an earlier manual,\n"
                         "which is replaced."},
            },
        .libraryFolders = WorkingFolders,
        .perform = &performManual,
    };
    return command;
}

} // namespace Tarn
