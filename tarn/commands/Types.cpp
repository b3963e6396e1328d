#include <tarn/commands/Commands.hpp>

#include <tarn/types/TypeReport.hpp>
#include <tarn/commands/TypeArguments.hpp>

namespace Tarn {

namespace {

int performTypes(const Arguments& arguments, const StandardStreams& streams)
{
    std::vector<std::string> libraries = librariesOf(arguments);
    libraries.insert(libraries.end(), arguments.names.begin(), arguments.names.end());
    const TypeCatalogue catalogue{libraries};
    const int status = reportRefusals(catalogue);
    const auto values = catalogue.valueTypes();
    const auto objects = catalogue.objectTypeFiles();
    print(streams, arguments.has("json") ? typeListJson(values, objects) : typeListText(values, objects));
    return status;
}

} // namespace

const Command& typesCommand()
{
    static const Command command{
        .name = "types",
        .nameShape = "LIBRARY",
        .mostNames = ~std::size_t{0},
        .summary = "Lists the types of values and objects.",
        .help = R"(Lists the value types, with their names in code where these differ, their use as values
or inputs, the colour of their connections and their default text; and the object types of
the standard library and the libraries named, with their files.
)",
        .options = {libraryOption(), jsonOption()},
        .libraryFolders = WorkingFolders,
        .perform = &performTypes,
    };
    return command;
}

} // namespace Tarn
