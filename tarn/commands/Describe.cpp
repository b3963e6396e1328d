#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/types/TypeReport.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/commands/TypeArguments.hpp>

#include <trellis/VObjectCreator.hpp>

#include <algorithm>

namespace Tarn {

namespace {

void reportUnknown(const std::string& name, const TypeCatalogue& catalogue)
{
    std::vector<std::string> values;
    for (const ValueTypeDescription& type : catalogue.valueTypes()) {
        values.push_back(type.label);
        values.push_back(type.name);
    }
    std::string suggestions;
    const auto suggest = [&](const char* kind, const std::vector<std::string>& names) {
        if (const std::string near = nearest(name, names); !near.empty())
            suggestions += (suggestions.empty() ? "; did you mean " : " or ") + std::string(kind) + inQuotes(near);
    };
    suggest("the object type ", Orla::VObjectCreator::names());
    suggest("the value type ", values);
    say("no library has a type " + inQuotes(name)
        + (suggestions.empty() ? "; tarn types lists the known types" : suggestions + "?"));
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
        reportUnknown(name, catalogue);
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
name in messages, such as flags. To read its inputs and outputs, an object is created and
destroyed; the exit status is 1 if that fails, and 2 if no type has the name.
)",
        .options = {libraryOption(), levelOption(), jsonOption()},
        .libraryFolders = WorkingFolders,
        .perform = &performDescribe,
    };
    return command;
}

} // namespace Tarn
