#include <tarn/network/NetworkParser.hpp>

#include <tarn/network/UnknownObject.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/TomlTable.hpp>

#include <loam/Numbers.hpp>

#include <toml++/toml.h>

#include <initializer_list>
#include <optional>
#include <utility>

namespace Tarn {

namespace {

// Returns the text form of a value that an input may be set to.
std::optional<std::string> textOf(const toml::node& node)
{
    if (const auto text = node.value_exact<std::string>())
        return text;
    if (const auto integer = node.value_exact<std::int64_t>())
        return std::to_string(*integer);
    if (const auto number = node.value_exact<double>())
        return Loam::numberText(*number);
    if (const auto truth = node.value_exact<bool>())
        return *truth ? "true" : "false";
    return std::nullopt;
}

class Parser {
public:
    using IsKnown = std::function<bool(const std::string& type)>;

    Parser(Faults& faults, const IsKnown& isKnown) noexcept : m_faults{faults}, m_isKnown{isKnown} {}

    NetworkFile parse(const toml::table& root);

private:
    using Keys = std::vector<std::string>;

    bool formatIsKnown(const toml::table& root);
    void readLibraries(const toml::node& node);
    void readChart(const toml::node& node);
    NetworkFile::Object readObject(const toml::table& table);
    std::vector<NetworkFile::InputText> readTexts(const std::string& owner, const toml::node& node);
    bool readExact(const std::string& owner, const toml::table& table, NetworkFile::InputText& setting);
    std::vector<NetworkFile::Setting> readConnections(const std::string& owner, const toml::node& node);
    NetworkFile::Column readColumn(const toml::table& table);

    /// Reads a mandatory text. If it is missing or has another type, adds a fault and returns
    /// an empty text without a place.
    PlacedText readText(const std::string& owner, const toml::table& table, const char* key);

    template<class Function>
    void forEachTable(const toml::node& node, const std::string& key, Function&& function);

    const toml::table* asTable(const std::string& owner, const char* key, const toml::node& node, const char* expected);

    void reportUnknownKey(const std::string& owner, const PlacedText& key, const Keys& known);

    Faults& m_faults;
    const IsKnown& m_isKnown;
    NetworkFile m_file;
};

NetworkFile Parser::parse(const toml::table& root)
{
    // The keys of a later format may have other meanings.
    if (!formatIsKnown(root))
        return {};
    const Keys known{"format", "libraries", "chart", "object", "column"};
    for (const auto& [key, node] : entriesOf(root)) {
        if (key.text == "libraries")
            readLibraries(*node);
        else if (key.text == "chart")
            readChart(*node);
        else if (key.text == "object")
            forEachTable(*node, key.text,
                         [this](const toml::table& table) { m_file.objects.push_back(readObject(table)); });
        else if (key.text == "column")
            forEachTable(*node, key.text,
                         [this](const toml::table& table) { m_file.columns.push_back(readColumn(table)); });
        else if (key.text != "format")
            reportUnknownKey({}, key, known);
    }
    return std::move(m_file);
}

bool Parser::formatIsKnown(const toml::table& root)
{
    const std::string current = std::to_string(NetworkFile::Format);
    const toml::node* node = root.get("format");
    if (!node) {
        m_faults.add(FaultKind::Content, Place{1, 1},
                     root.empty() ? "the file holds no network, expected format = " + current
                                  : "missing key \"format\", expected format = " + current);
        return true;
    }
    const auto format = node->value_exact<std::int64_t>();
    if (!format) {
        m_faults.add(FaultKind::Content, placeOf(*node),
                     std::string("format is ") + kindOf(*node) + ", expected the integer " + current);
        return true;
    }
    if (*format == NetworkFile::Format)
        return true;
    m_faults.add(FaultKind::Content, placeOf(*node),
                 "format " + std::to_string(*format)
                     + (*format > NetworkFile::Format ? ": saved by a newer version" : ": no such format")
                     + "; this version reads format " + current);
    return false;
}

void Parser::readLibraries(const toml::node& node)
{
    const toml::array* names = node.as_array();
    if (!names) {
        m_faults.add(FaultKind::Content, placeOf(node),
                     std::string("libraries is ") + kindOf(node) + ", expected an array of names");
        return;
    }
    for (const toml::node& element : *names) {
        const auto name = element.value_exact<std::string>();
        if (!name)
            m_faults.add(FaultKind::Content, placeOf(element),
                         std::string("libraries holds ") + kindOf(element) + ", expected names of libraries");
        else if (name->empty() || name->find_first_of(std::string_view("/\0", 2)) != std::string::npos)
            m_faults.add(FaultKind::Content, placeOf(element),
                         "library " + inQuotes(*name) + ": expected a plain name, without folder and ending");
        else
            m_file.libraries.push_back({*name, placeOf(element)});
    }
}

void Parser::readChart(const toml::node& node)
{
    const auto name = node.value_exact<std::string>();
    if (!name)
        m_faults.add(FaultKind::Content, placeOf(node),
                     std::string("chart is ") + kindOf(node) + ", expected the name of a chart");
    else if (name->empty())
        m_faults.add(FaultKind::Content, placeOf(node), "the name of the chart is empty");
    else
        m_file.chart = {*name, placeOf(node)};
}

NetworkFile::Object Parser::readObject(const toml::table& table)
{
    NetworkFile::Object object;
    object.place = placeOf(table);
    const toml::node* name = table.get("name");
    object.description = name && name->is_string() ? "object " + inQuotes(name->as_string()->get())
                                                   : "object number " + std::to_string(m_file.objects.size() + 1);

    object.name = readText(object.description, table, "name");
    object.type = readText(object.description, table, "type");
    if (object.name.place && object.name.text.empty()) {
        m_faults.add(FaultKind::Content, object.name.place, object.description + ": the name is empty");
        object.name.place = {};
    }
    if (object.type.place && m_isKnown && !m_isKnown(object.type.text)) {
        keepUnknown(object, table, m_faults);
        return object;
    }
    for (const auto& [key, node] : entriesOf(table)) {
        if (key.text == "set")
            object.texts = readTexts(object.description, *node);
        else if (key.text == "connect")
            object.connections = readConnections(object.description, *node);
        else if (key.text != "name" && key.text != "type")
            reportUnknownKey(object.description, key, {"name", "type", "set", "connect"});
    }
    return object;
}

std::vector<NetworkFile::InputText> Parser::readTexts(const std::string& owner, const toml::node& node)
{
    std::vector<NetworkFile::InputText> texts;
    const toml::table* table = asTable(owner, "set", node, "a table of inputs and their texts");
    if (!table)
        return texts;
    for (const auto& [key, value] : entriesOf(*table)) {
        NetworkFile::InputText setting{key, {}};
        if (const auto text = textOf(*value)) {
            setting.value = {*text, placeOf(*value)};
            setting.isNumber = value->is_number();
            setting.isTruth = value->is_boolean();
            texts.push_back(setting);
        } else if (const toml::table* exact = value->as_table()) {
            if (readExact(owner + ", input " + inQuotes(key.text), *exact, setting))
                texts.push_back(setting);
        } else
            m_faults.add(FaultKind::Content, placeOf(*value),
                         owner + ", input " + inQuotes(key.text) + ": set to " + kindOf(*value)
                             + ", expected a text, a number, a truth value or a table with an exact text");
    }
    return texts;
}

// Reads { text = "...", exact = "..." }, where `exact` may also be an array of texts.
bool Parser::readExact(const std::string& owner, const toml::table& table, NetworkFile::InputText& setting)
{
    const std::size_t faultsBefore = m_faults.size();
    for (const auto& [key, node] : entriesOf(table)) {
        const auto text = node->value_exact<std::string>();
        const toml::array* list = node->as_array();
        if (key.text != "text" && key.text != "exact") {
            reportUnknownKey(owner, key, {"text", "exact"});
        } else if (text) {
            const PlacedText placed{*text, placeOf(*node)};
            if (key.text == "exact")
                setting.exact.push_back(placed);
            else
                setting.value = placed;
        } else if (key.text == "exact" && list && !list->empty() && list->is_homogeneous(toml::node_type::string)) {
            for (const toml::node& element : *list)
                setting.exact.push_back({*element.value_exact<std::string>(), placeOf(element)});
        } else {
            m_faults.add(FaultKind::Content, placeOf(*node),
                         owner + ": " + key.text + " is " + kindOf(*node) + ", expected a text"
                             + (key.text == "exact" ? " or an array of texts" : ""));
        }
    }
    if (setting.exact.empty() && m_faults.size() == faultsBefore)
        m_faults.add(FaultKind::Content, placeOf(table), owner + ": missing key \"exact\"");
    return m_faults.size() == faultsBefore;
}

std::vector<NetworkFile::Setting> Parser::readConnections(const std::string& owner, const toml::node& node)
{
    std::vector<NetworkFile::Setting> connections;
    const toml::table* table = asTable(owner, "connect", node, "a table of inputs and the outputs they read");
    if (!table)
        return connections;
    for (const auto& [key, value] : entriesOf(*table)) {
        if (const auto text = value->value_exact<std::string>())
            connections.push_back({key, {*text, placeOf(*value)}});
        else
            m_faults.add(FaultKind::Content, placeOf(*value),
                         owner + ", input " + inQuotes(key.text) + ": connected to " + kindOf(*value)
                             + ", expected \"OBJECT.OUTPUT\"");
    }
    return connections;
}

NetworkFile::Column Parser::readColumn(const toml::table& table)
{
    const std::string description = "column number " + std::to_string(m_file.columns.size() + 1);
    NetworkFile::Column column{readText(description, table, "title"), readText(description, table, "value")};
    for (const auto& [key, node] : entriesOf(table)) {
        if (key.text != "title" && key.text != "value")
            reportUnknownKey(description, key, {"title", "value"});
    }
    return column;
}

PlacedText Parser::readText(const std::string& owner, const toml::table& table, const char* key)
{
    const toml::node* node = table.get(key);
    if (!node) {
        m_faults.add(FaultKind::Content, placeOf(table), owner + ": missing key \"" + key + "\"");
        return {};
    }
    const auto text = node->value_exact<std::string>();
    if (!text) {
        m_faults.add(FaultKind::Content, placeOf(*node),
                     owner + ": " + key + " is " + kindOf(*node) + ", expected a text");
        return {};
    }
    return {*text, placeOf(*node)};
}

template<class Function>
void Parser::forEachTable(const toml::node& node, const std::string& key, Function&& function)
{
    const toml::array* array = node.as_array();
    if (!array) {
        m_faults.add(FaultKind::Content, placeOf(node),
                     key + " is " + kindOf(node) + ", expected tables under the header [[" + key + "]]");
        return;
    }
    for (const toml::node& element : *array) {
        if (const toml::table* table = element.as_table())
            function(*table);
        else
            m_faults.add(FaultKind::Content, placeOf(element),
                         key + " holds " + kindOf(element) + ", expected tables under the header [[" + key + "]]");
    }
}

const toml::table* Parser::asTable(const std::string& owner, const char* key, const toml::node& node,
                                   const char* expected)
{
    const toml::table* table = node.as_table();
    if (!table)
        m_faults.add(FaultKind::Content, placeOf(node),
                     owner + ": " + key + " is " + kindOf(node) + ", expected " + expected);
    return table;
}

void Parser::reportUnknownKey(const std::string& owner, const PlacedText& key, const Keys& known)
{
    m_faults.add(FaultKind::Content, key.place,
                 (owner.empty() ? "" : owner + ": ") + "unknown key " + inQuotes(key.text)
                     + insteadOf(key.text, known));
}

} // namespace

NetworkFile parseNetwork(std::string_view text, Faults& faults)
{
    return parseNetwork(text, faults, {});
}

NetworkFile parseNetwork(std::string_view text, Faults& faults,
                         const std::function<bool(const std::string& type)>& isKnown)
{
    const std::optional<toml::table> root = parseToml(text, faults);
    return root ? Parser{faults, isKnown}.parse(*root) : NetworkFile{};
}

} // namespace Tarn
