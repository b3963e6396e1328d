#include <tarn/network/NetworkContent.hpp>

#include <tarn/network/ChoiceCheck.hpp>
#include <tarn/network/NetworkBuilder.hpp>
#include <tarn/network/NetworkGraph.hpp>
#include <tarn/network/RestorableText.hpp>
#include <tarn/network/SlotLookup.hpp>
#include <tarn/network/TimeProvider.hpp>
#include <tarn/text/TomlTable.hpp>
#include <tarn/text/TomlText.hpp>

#include <trellis/VNetwork.hpp>

#include <loam/Result.hpp>

#include <toml++/toml.h>

#include <string_view>
#include <unordered_map>
#include <utility>

namespace Tarn {

namespace {

using Texts = std::vector<std::string>;

// Returns the entries of an object whose type is unknown: one per key, and one per input that is
// set or connected.
std::map<std::string, NetworkContent::Input> entriesOfUnknown(const NetworkFile::Object& object)
{
    std::map<std::string, NetworkContent::Input> entries;
    const auto add = [&](const std::string& key, const toml::node& value) {
        NetworkContent::Input& entry = entries[key];
        entry.place = object.place;
        entry.texts = {tomlValue(value)};
    };
    Faults none{{}}; // the text was written from a table that was read
    const std::optional<toml::table> table = parseToml(object.kept, none);
    for (const auto& [key, node] : table ? entriesOf(*table) : std::vector<TomlEntry>{}) {
        const toml::table* const inner = node->as_table();
        if (!inner || inner->empty()) {
            add(tomlKey(key.text), *node);
            continue;
        }
        for (const auto& [innerKey, value] : entriesOf(*inner))
            add(tomlKey(key.text) + '.' + tomlKey(innerKey.text), *value);
    }
    return entries;
}

class ContentReader {
public:
    ContentReader(const NetworkReading& reading, Faults& faults, const NetworkContent& like)
        : m_reading{reading}, m_file{reading.file()}, m_faults{faults}
    {
        for (const NetworkContent::Object& object : like.objects)
            m_like.emplace(object.name.text, &object);
        for (std::size_t number = 0; number < m_file.objects.size(); ++number)
            m_names.add(m_file.objects[number].name.text, number);
    }

    NetworkContent read()
    {
        m_content.isComplete = m_reading.unknown().empty();
        m_content.libraries = m_file.libraries;
        m_content.chart = m_file.chart;
        for (std::size_t number = 0; number < m_file.objects.size(); ++number)
            addObject(m_file.objects[number], m_reading.inputs().objects[number]);
        for (const auto& [title, value] : m_file.columns)
            m_content.columns.push_back({title, sourceOf(value.text)});
        if (m_content.isComplete)
            addWhatIsFound();
        return std::move(m_content);
    }

private:
    void addObject(const NetworkFile::Object& entry, const NetworkInputs::Object& made)
    {
        NetworkContent::Object& object = m_content.objects.emplace_back();
        object.name = entry.name;
        object.type = entry.type.text;
        object.isKnown = made.isKnown;
        if (!object.isKnown) {
            object.inputs = entriesOfUnknown(entry);
            return;
        }
        for (const NetworkInputs::Input& input : made.set) {
            // A text that chooses what is selected anyway makes the run check the choice.
            if (isSelection(*input.type) || !givesValue(input.given, {}, input.value)) {
                NetworkContent::Input& content = object.inputs[input.name];
                content.place = input.place;
                content.texts = textsOf(entry.name.text, input);
            }
        }
        for (const auto& [name, output] : entry.connections) {
            NetworkContent::Input& content = object.inputs[name.text];
            content.place = output.place;
            content.connected = sourceOf(output.text);
        }
    }

    Texts textsOf(const std::string& object, const NetworkInputs::Input& input) const
    {
        const Loam::Result<RestorableText> form = restorableText(input.given, input.value, input.texts);
        if (!form)
            return input.texts; // compared as written
        if (form->exact.empty())
            return {*form->text};
        if (const auto other = m_like.find(object); other != m_like.end()) {
            const auto& inputs = other->second->inputs;
            if (const auto same = inputs.find(input.name);
                same != inputs.end() && givesValue(input.given, same->second.texts, input.value))
                return same->second.texts;
        }
        return form->exact;
    }

    NetworkContent::Source sourceOf(const std::string& reference) const
    {
        std::string_view rest;
        const std::size_t number = m_names.findAtStart(reference, rest);
        if (number == ObjectNames::npos)
            return {{}, reference};
        return {m_file.objects[number].name.text, std::string(rest)};
    }

    // Builds the network and adds what its objects find automatically.
    void addWhatIsFound()
    {
        Orla::VNetwork objects{m_reading.folder()};
        const Orla::VNetwork::Scope scope{objects};
        const Network network = buildNetwork(m_file, {}, {}, m_faults);
        if (!m_faults.empty())
            return;
        addConnections(NetworkGraph::of(network));
        if (const TimeProvider provider = TimeProvider::find())
            m_content.timeProvider = provider.name();
    }

    void addConnections(const NetworkGraph& graph)
    {
        for (const NetworkGraph::Connection& connection : graph.connections) {
            const NetworkGraph::Object& reader = graph.objects[connection.input.object];
            const std::size_t number = m_names.find(reader.name);
            if (!connection.isImplicit || number == ObjectNames::npos)
                continue;
            const NetworkGraph::Object& source = graph.objects[connection.output.object];
            const std::vector<std::string>& slots = connection.passesInputOn ? source.inputs : source.outputs;
            m_content.objects[number].inputs[reader.inputs[connection.input.slot]].found = {
                source.name.empty() ? source.type : source.name,
                slots[connection.output.slot] + (connection.member.empty() ? "" : '.' + connection.member)};
        }
    }

    const NetworkReading& m_reading;
    const NetworkFile& m_file;
    Faults& m_faults;
    std::unordered_map<std::string_view, const NetworkContent::Object*> m_like; // by name
    ObjectNames m_names;
    NetworkContent m_content;
};

} // namespace

NetworkContent NetworkContent::of(const NetworkReading& reading, Faults& faults, const NetworkContent& like)
{
    return ContentReader{reading, faults, like}.read();
}

} // namespace Tarn
