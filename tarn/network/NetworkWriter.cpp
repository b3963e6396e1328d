#include <tarn/network/NetworkWriter.hpp>

#include <tarn/text/TomlText.hpp>

#include <vector>

namespace Tarn {

namespace {

void addLine(std::string& text, const std::string& key, const std::string& value)
{
    text += key + " = " + value + '\n';
}

std::string arrayOf(const std::vector<PlacedText>& texts)
{
    std::string array;
    for (const PlacedText& text : texts)
        array += (array.empty() ? "" : ", ") + tomlString(text.text);
    return '[' + array + ']';
}

std::string spelled(const NetworkFile::InputText& setting)
{
    if (setting.exact.empty()) {
        if (setting.isTruth)
            return setting.value.text;
        const auto number = setting.isNumber ? tomlNumber(setting.value.text) : std::nullopt;
        return number ? *number : tomlString(setting.value.text);
    }
    return (setting.value.place ? "{ text = " + tomlString(setting.value.text) + ", exact = " : "{ exact = ")
           + (setting.exact.size() == 1 ? tomlString(setting.exact[0].text) : arrayOf(setting.exact)) + " }";
}

void addObject(std::string& text, const NetworkFile::Object& object)
{
    text += "\n[[object]]\n";
    addLine(text, "name", tomlString(object.name.text));
    addLine(text, "type", tomlString(object.type.text));
    if (!object.kept.empty()) {
        text += object.kept;
        return;
    }
    for (const NetworkFile::InputText& setting : object.texts)
        addLine(text, "set." + tomlKey(setting.input.text), spelled(setting));
    for (const NetworkFile::Setting& connection : object.connections)
        addLine(text, "connect." + tomlKey(connection.input.text), tomlString(connection.value.text));
}

} // namespace

std::string networkText(const NetworkFile& file)
{
    std::string text;
    addLine(text, "format", std::to_string(NetworkFile::Format));
    if (!file.libraries.empty())
        addLine(text, "libraries", arrayOf(file.libraries));
    if (file.chart.place)
        addLine(text, "chart", tomlString(file.chart.text));
    for (const NetworkFile::Object& object : file.objects)
        addObject(text, object);
    for (const NetworkFile::Column& column : file.columns) {
        text += "\n[[column]]\n";
        addLine(text, "title", tomlString(column.title.text));
        addLine(text, "value", tomlString(column.value.text));
    }
    return text;
}

} // namespace Tarn
