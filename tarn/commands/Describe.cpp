#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/TypeArguments.hpp>
#include <tarn/libraries/Libraries.hpp>
#include <tarn/libraries/LibraryFiles.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/TypeReport.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/Ascii.hpp>

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>

namespace Tarn {

namespace {

bool beginsWith(std::string_view name, std::string_view start)
{
    return name.size() >= start.size()
           && std::ranges::equal(name.substr(0, start.size()), start, {}, &Loam::toLower, &Loam::toLower);
}

// Returns the names of all types, as registered and as shown to people.
std::vector<std::string> valueTypeNames(const TypeCatalogue& catalogue)
{
    std::vector<std::string> names;
    for (const ValueTypeDescription& type : catalogue.valueTypes()) {
        names.push_back(type.label);
        names.push_back(type.name);
    }
    return names;
}

// Returns the end of a message about an unknown type: what the user may have meant.
std::string suggestionFor(const std::string& name, const TypeCatalogue& catalogue)
{
    std::vector<std::string> objects = Orla::VObjectCreator::names();
    std::vector<std::string> values = valueTypeNames(catalogue);
    for (const LibraryFile& file : findLibraryFiles(Libraries::searchPath(), {})) {
        if (std::ranges::find(file.objectTypes, name) != file.objectTypes.end()
            || std::ranges::find(file.valueTypes, name) != file.valueTypes.end())
            return "; the library " + inQuotes(file.name) + " has it: add --library=" + printable(file.name);
        objects.insert(objects.end(), file.objectTypes.begin(), file.objectTypes.end());
        values.insert(values.end(), file.valueTypes.begin(), file.valueTypes.end());
    }

    std::set<std::string> longer;
    for (const std::vector<std::string>* const names : {&objects, &values})
        std::ranges::copy_if(*names, std::inserter(longer, longer.end()),
                             [&](const std::string& each) { return beginsWith(each, name); });
    if (!longer.empty())
        return "; did you mean " + alternatives({longer.begin(), longer.end()}) + "?";

    std::string suggestions;
    const auto suggest = [&](const char* kind, const std::vector<std::string>& names) {
        if (const std::string near = nearest(name, names); !near.empty())
            suggestions += (suggestions.empty() ? "; did you mean " : " or ") + std::string(kind) + inQuotes(near);
    };
    suggest("the object type ", objects);
    suggest("the value type ", values);
    return suggestions.empty() ? "; tarn types lists the known types" : suggestions + "?";
}

int performDescribe(const Arguments& arguments, const StandardStreams& streams)
{
    const int level = levelOf(arguments);
    const std::string& name = arguments.names[0];
    const TypeCatalogue catalogue{librariesOf(arguments)};
    const int status = reportRefusals(catalogue);
    const auto values = catalogue.valueTypes(name);
    const auto objects = catalogue.objectTypes(name, level);
    if (values.empty() && objects.empty()) {
        say("no library has a type " + inQuotes(name) + suggestionFor(name, catalogue));
        return NotUnderstood;
    }
    print(streams, arguments.has("json") ? descriptionJson(values, objects) : descriptionText(values, objects));
    const auto failed = [](const auto& type) { return !type.failure.empty(); };
    if (status == Fine && (std::ranges::any_of(values, failed) || std::ranges::any_of(objects, failed)))
        return ObjectFailed;
    return status;
}

} // namespace

const Command& describeCommand()
{
    static const Command command{
        .name = "describe",
        .nameShape = "NAME",
        .fewestNames = 1,
        .mostNames = 1,
        .summary = "Describes a type of values or objects.",
        .help = R"(Describes the object type NAME with its inputs and outputs, or the value type NAME, or
both if both exist. NAME may be the name of a value type in code, such as FlagList, or its
name in messages, such as flags. The meaning of each input and output follows it; at
the end are lines for a network. To read them, an object is created and
destroyed; the exit status is 1 if that fails, and 2 if no type has the name.
)",
        .options = {libraryOption(), levelOption(), jsonOption()},
        .libraryFolders = WorkingFolders,
        .perform = &performDescribe,
    };
    return command;
}

} // namespace Tarn
