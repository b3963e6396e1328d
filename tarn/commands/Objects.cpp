#include <tarn/commands/Commands.hpp>

#include <tarn/types/TypeReport.hpp>
#include <tarn/commands/TypeArguments.hpp>

namespace Tarn {

namespace {

int performObjects(const Arguments& arguments, const StandardStreams& streams)
{
    const int level = levelOf(arguments);
    std::vector<std::string> libraries = librariesOf(arguments);
    libraries.insert(libraries.end(), arguments.names.begin(), arguments.names.end());
    const TypeCatalogue catalogue{libraries};
    const int status = reportRefusals(catalogue);
    const auto objects = catalogue.objectTypes(level);
    print(streams, arguments.has("json") ? objectListJson(objects) : descriptionText({}, objects));
    return status;
}

} // namespace

const Command& objectsCommand()
{
    static const Command command{
        .name = "objects",
        .nameShape = "LIBRARY",
        .mostNames = ~std::size_t{0},
        .summary = "Lists object types with their inputs and outputs.",
        .help = R"(Describes all object types of the standard library and the libraries named. To read the
inputs and outputs, an object of each type is created and destroyed. A type for which
that fails is listed with the reason.

Inputs marked as connected automatically need no connection: the time comes from the
network's clock, events come from the interaction source, and so on.
)",
        .options = {libraryOption(), levelOption(), jsonOption()},
        .libraryFolders = WorkingFolders,
        .perform = &performObjects,
    };
    return command;
}

} // namespace Tarn
