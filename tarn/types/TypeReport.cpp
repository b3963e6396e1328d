#include <tarn/types/TypeReport.hpp>

#include <tarn/text/JsonText.hpp>
#include <tarn/text/TextTable.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/DescriptionText.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace Tarn {

namespace {

constexpr std::size_t LineWidth = 88;
constexpr char Blank[] = "-";

// The version of the schema of the JSON of descriptions.
constexpr int JsonVersion = 1;

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

std::vector<std::string> wordsOf(std::string_view text)
{
    std::vector<std::string> words;
    Loam::StringUtil::forEachPiece(text, ' ', [&](std::string_view piece) {
        if (!piece.empty())
            words.push_back(printable(std::string(piece)));
    });
    return words;
}

// Returns "one, two, three".
std::string listed(const std::vector<std::string>& texts)
{
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : ", ") + printable(text);
    return list;
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
    if (!type.example.empty())
        table.add({"example", inQuotes(type.example)});
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

// Returns \p text in lines that begin with \p indent. Blank lines separate its paragraphs.
std::string paragraphs(const std::string& text, const std::string& indent)
{
    std::string lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find("\n\n", begin), text.size());
        std::string line;
        for (const std::string& word : wordsOf(std::string_view(text).substr(begin, end - begin))) {
            if (!line.empty()
                && indent.size() + Loam::countCharacters(line) + 1 + Loam::countCharacters(word) > LineWidth)
                lines += indent + std::exchange(line, {}) + '\n';
            line += (line.empty() ? "" : " ") + word;
        }
        lines += indent + line + '\n';
        begin = end + 2;
        if (begin < text.size())
            lines += '\n';
    }
    return lines;
}

// Adds \p notes below the rows of a table, whose first line is its head.
std::string withNotes(const std::string& table, const std::vector<std::string>& notes)
{
    std::string text;
    std::size_t row = 0;
    for (std::size_t begin = 0; begin < table.size(); ++row) {
        const std::size_t end = table.find('\n', begin) + 1;
        text += table.substr(begin, end - begin);
        if (row < notes.size() && !notes[row].empty())
            text += paragraphs(notes[row], "      ");
        begin = end;
    }
    return text;
}

std::string indentedLines(const std::string& lines, const std::string& indent)
{
    std::string text;
    for (std::size_t begin = 0; begin < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', begin), lines.size());
        text += indent + lines.substr(begin, end - begin) + '\n';
        begin = end + 1;
    }
    return text;
}

std::string noteOn(const ObjectTypeDescription::Input& input)
{
    std::string note = summaryOf(input.description);
    if (!input.choices.empty())
        note += (note.empty() ? "" : " ") + std::string("Choices: ") + listed(input.choices) + '.';
    return note;
}

std::string headOf(const ObjectTypeDescription& type)
{
    std::string text = "Object type " + printable(type.name) + ", " + printable(type.library) + "\n\n";
    if (!type.description)
        return text;
    const auto& [sentence, details, category, keywords, page] = *type.description;
    text += paragraphs(details.empty() ? sentence : sentence + "\n\n" + details, "  ") + '\n';
    TextTable table;
    if (!category.empty())
        table.add({"category", printable(category)});
    if (!keywords.empty())
        table.add({"keywords", listed(keywords)});
    if (!page.empty())
        table.add({"page", printable(page)});
    const std::string facts = table.text("  ");
    return facts.empty() ? text : text + facts + '\n';
}

std::string textOf(const ObjectTypeDescription& type)
{
    std::string text = headOf(type);
    if (!type.failure.empty())
        return text + "  cannot be made: " + printable(type.failure) + '\n';
    TextTable table;
    std::vector<std::string> notes;
    const auto add = [&](std::vector<std::string> cells, const std::string& note) {
        table.add(std::move(cells));
        notes.push_back(note);
    };
    std::size_t hidden = 0;
    if (!type.inputs.empty())
        add({"Input", "Type", "Level", "Initial text", "Partner"}, {});
    for (const ObjectTypeDescription::Input& input : type.inputs) {
        if (isListed(input.description))
            add({printable(input.name), printable(input.typeLabel), std::to_string(input.level),
                 inQuotes(input.initialText), partnerOf(input)},
                noteOn(input));
        else
            ++hidden;
    }
    if (!type.outputs.empty())
        add({"Output", "Type"}, {});
    for (const ObjectTypeDescription::Output& output : type.outputs)
        add({printable(output.name), printable(output.typeLabel)}, summaryOf(output.description));
    text += withNotes(table.text("  "), notes);
    if (hidden > 0)
        text += "  " + counted(hidden, "hidden input") + " not shown\n";
    if (type.hiddenInputs > 0)
        text += "  " + counted(type.hiddenInputs, "input") + " of a higher expert level not shown\n";
    else if (type.inputs.empty() && type.outputs.empty())
        text += "  has neither inputs nor outputs\n";
    return text + "\n  In a network:\n\n" + indentedLines(exampleNetworkLines(type), "    ");
}

Json jsonOf(const ValueTypeDescription& type)
{
    return {{"name", type.name},
            {"label", type.label},
            {"example", orNull(type.example)},
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
                          {"partner", orNull(input.partner)},
                          {"choices", input.choices},
                          {"description", slotDescriptionJson(input.description)}});
    Json outputs = Json::array();
    for (const ObjectTypeDescription::Output& output : type.outputs)
        outputs.push_back({{"name", output.name},
                           {"type", output.type},
                           {"typeLabel", output.typeLabel},
                           {"description", slotDescriptionJson(output.description)}});
    return {{"name", type.name},
            {"library", type.library},
            {"description", typeDescriptionJson(type.description)},
            {"inputs", inputs},
            {"hiddenInputs", type.hiddenInputs},
            {"outputs", outputs},
            {"failure", orNull(type.failure)}};
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
    return indented({{"version", JsonVersion}, {"valueTypes", jsonList(values)}, {"objectTypes", jsonList(objects)}});
}

std::string objectListJson(const std::vector<ObjectTypeDescription>& objects)
{
    return indented({{"version", JsonVersion}, {"objectTypes", jsonList(objects)}});
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
