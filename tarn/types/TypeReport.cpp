#include <tarn/types/TypeReport.hpp>

#include <tarn/text/JsonText.hpp>
#include <tarn/text/TextTable.hpp>
#include <tarn/text/Messages.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <utility>

namespace Tarn {

namespace {

constexpr std::size_t LineWidth = 88;
constexpr char Blank[] = "-";

std::string orBlank(const std::string& text)
{
    return text.empty() ? Blank : printable(text);
}

// Returns "TITLE: one, two, ..." wrapped to fit, with continuation lines indented.
std::string listing(const std::string& title, const std::vector<std::string>& names)
{
    const std::string indent(title.size() < 24 ? title.size() : 4, ' ');
    std::string text;
    std::string line = title;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string word = printable(names[i]) + (i + 1 < names.size() ? "," : "");
        if (i > 0 && Loam::countCharacters(line) + 1 + Loam::countCharacters(word) > LineWidth) {
            text += line + '\n';
            line = indent;
        } else if (i > 0) {
            line += ' ';
        }
        line += word;
    }
    return text + line + '\n';
}

std::string useOf(const ValueTypeDescription& type)
{
    if (!type.failure.empty())
        return "cannot be made: " + printable(type.failure);
    return type.isInput ? "value and input" : "value";
}

std::string textOf(const ValueTypeDescription& type)
{
    std::string text = "Value type " + printable(type.label) + "\n\n";
    TextTable table;
    if (type.name != type.label)
        table.add({"name in code", printable(type.name)});
    table.add({"use", useOf(type)});
    table.add({"colour", orBlank(type.colour)});
    table.add({"default text", type.failure.empty() ? inQuotes(type.defaultText) : Blank});
    text += table.text("  ");
    if (!type.components.empty())
        text += listing("  components    ", type.components);
    return text;
}

std::string partnerOf(const ObjectTypeDescription::Input& input)
{
    if (!input.findsPartner)
        return {};
    return input.partner.empty() ? "connected automatically" : "connected automatically: " + printable(input.partner);
}

std::string textOf(const ObjectTypeDescription& type)
{
    std::string text = "Object type " + printable(type.name) + ", " + printable(type.library) + "\n\n";
    if (!type.failure.empty())
        return text + "  cannot be made: " + printable(type.failure) + '\n';
    TextTable table;
    if (!type.inputs.empty())
        table.add({"Input", "Type", "Level", "Initial text", "Partner"});
    for (const ObjectTypeDescription::Input& input : type.inputs)
        table.add({printable(input.name), printable(input.typeLabel), std::to_string(input.level),
                   inQuotes(input.initialText), partnerOf(input)});
    if (!type.outputs.empty())
        table.add({"Output", "Type"});
    for (const ObjectTypeDescription::Output& output : type.outputs)
        table.add({printable(output.name), printable(output.typeLabel)});
    text += table.text("  ");
    if (type.hiddenInputs > 0)
        text += "  " + counted(type.hiddenInputs, "input") + " of a higher expert level not shown\n";
    else if (type.inputs.empty() && type.outputs.empty())
        text += "  has neither inputs nor outputs\n";
    return text;
}

Json jsonOf(const ValueTypeDescription& type)
{
    return {{"name", type.name},
            {"label", type.label},
            {"colour", orNull(type.colour)},
            {"defaultText", type.failure.empty() ? Json(type.defaultText) : Json(nullptr)},
            {"isValue", type.failure.empty()},
            {"isInput", type.isInput},
            {"components", type.components},
            {"failure", orNull(type.failure)}};
}

Json jsonOf(const ObjectTypeDescription& type)
{
    Json inputs = Json::array();
    for (const ObjectTypeDescription::Input& input : type.inputs)
        inputs.push_back({{"name", input.name},
                          {"type", input.type},
                          {"typeLabel", input.typeLabel},
                          {"level", input.level},
                          {"initialText", input.initialText},
                          {"findsPartner", input.findsPartner},
                          {"partner", orNull(input.partner)}});
    Json outputs = Json::array();
    for (const ObjectTypeDescription::Output& output : type.outputs)
        outputs.push_back({{"name", output.name}, {"type", output.type}, {"typeLabel", output.typeLabel}});
    return {{"name", type.name},  {"library", type.library},
            {"inputs", inputs},   {"hiddenInputs", type.hiddenInputs},
            {"outputs", outputs}, {"failure", orNull(type.failure)}};
}

template<class Descriptions>
Json jsonList(const Descriptions& descriptions)
{
    Json list = Json::array();
    for (const auto& each : descriptions)
        list.push_back(jsonOf(each));
    return list;
}

} // namespace

std::string typeListText(const std::vector<ValueTypeDescription>& values,
                         const std::vector<ObjectTypeDescription>& objects)
{
    std::vector<ValueTypeDescription> sorted = values;
    std::ranges::stable_sort(sorted, {}, &ValueTypeDescription::label);
    TextTable valueTable;
    for (const ValueTypeDescription& type : sorted)
        valueTable.add({printable(type.label), type.name == type.label ? Blank : printable(type.name), useOf(type),
                        orBlank(type.colour), type.failure.empty() ? inQuotes(type.defaultText) : Blank});
    TextTable objectTable;
    for (const ObjectTypeDescription& type : objects)
        objectTable.add({printable(type.name), printable(type.library)});
    return "Value types (name in code, use, colour of connections, default text):\n" + valueTable.text("  ")
           + "\nObject types:\n" + objectTable.text("  ");
}

std::string typeListJson(const std::vector<ValueTypeDescription>& values,
                         const std::vector<ObjectTypeDescription>& objects)
{
    Json list = Json::array();
    for (const ObjectTypeDescription& type : objects)
        list.push_back({{"name", type.name}, {"library", type.library}});
    return indented({{"valueTypes", jsonList(values)}, {"objectTypes", list}});
}

std::string descriptionText(const std::vector<ValueTypeDescription>& values,
                            const std::vector<ObjectTypeDescription>& objects)
{
    std::string text;
    for (const ObjectTypeDescription& type : objects)
        text += (text.empty() ? "" : "\n") + textOf(type);
    for (const ValueTypeDescription& type : values)
        text += (text.empty() ? "" : "\n") + textOf(type);
    return text;
}

std::string descriptionJson(const std::vector<ValueTypeDescription>& values,
                            const std::vector<ObjectTypeDescription>& objects)
{
    return indented({{"valueTypes", jsonList(values)}, {"objectTypes", jsonList(objects)}});
}

std::string objectListJson(const std::vector<ObjectTypeDescription>& objects)
{
    Json all;
    all["objectTypes"] = jsonList(objects);
    return indented(all);
}

std::string libraryListText(const std::vector<LibraryFile>& files)
{
    std::string text;
    for (const LibraryFile& file : files) {
        text += (text.empty() ? "" : "\n") + printable(file.name)
                + (file.path.empty() ? "" : ", " + printable(file.path)) + '\n';
        if (!file.shadowedBy.empty())
            text += "  not used, because " + printable(file.shadowedBy) + " comes first\n";
        if (!file.loading)
            text += "  refused: " + file.loading.reason() + '\n'; // already printable
        else if (file.objectTypes.empty() && file.valueTypes.empty())
            text += "  registers no types\n";
        if (!file.objectTypes.empty())
            text += listing("  object types  ", file.objectTypes);
        if (!file.valueTypes.empty())
            text += listing("  value types   ", file.valueTypes);
    }
    return text;
}

std::string libraryListJson(const std::vector<LibraryFile>& files)
{
    Json list = Json::array();
    for (const LibraryFile& file : files)
        list.push_back({{"name", file.name},
                        {"path", orNull(file.path)},
                        {"shadowedBy", orNull(file.shadowedBy)},
                        {"objectTypes", file.objectTypes},
                        {"valueTypes", file.valueTypes},
                        {"failure", orNull(file.loading ? std::string() : file.loading.reason())}});
    Json all;
    all["libraries"] = std::move(list);
    return indented(all);
}

} // namespace Tarn
