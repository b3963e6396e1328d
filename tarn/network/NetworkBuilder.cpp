#include <tarn/network/NetworkBuilder.hpp>

#include <tarn/libraries/FailureOf.hpp>
#include <tarn/network/SlotLookup.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VObjectCreator.hpp>
#include <trellis/VValueComponents.hpp>

#include <loam/Typename.hpp>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VObject;
using Orla::VSlot;

// Maximum number of suggestions. More faults of a kind are usually one mistake, and guessing
// the intended name for each would take longer than everything else.
constexpr std::size_t MostGuesses = 100;

std::string placeText(const Faults& faults, Place place)
{
    return faults.file() + ':' + std::to_string(place.line) + ':' + std::to_string(place.column);
}

class Builder {
public:
    /// For a network that is written again, \p unknown collects the objects of unknown type.
    /// If it is null, they are faults.
    Builder(const NetworkFile& file, const std::vector<std::string>& missingLibraries, Faults& faults, Faults* unknown)
        : m_file{file}
        , m_missingLibraries{missingLibraries}
        , m_faults{faults}
        , m_unknown{unknown}
        , m_objects(file.objects.size())
    {
    }

    void makeObjects();
    void setInputs();
    void setInput(const std::string& override);
    void connect();
    void finish();

    Network takeNetwork() { return std::move(m_network); }
    NetworkInputs takeInputs();

private:
    struct Made {
        StrongPtr<VObject> object; // null if it could not be created
        StrongPtr<Orla::VObjectCreator> creator;
        std::map<std::string, NetworkInputs::Input> set; // by name, if the network is written again
    };

    struct Reference {
        StrongPtr<VSlot> output;
        std::string member;
    };

    void make(std::size_t number);
    std::string typeOf(std::size_t number) const;
    StrongPtr<VSlot> findInput(std::size_t number, const PlacedText& name);
    void setExactly(std::size_t number, const StrongPtr<VSlot>& input, const NetworkFile::InputText& setting);
    bool setText(std::size_t number, Place place, const std::string& description, const StrongPtr<VSlot>& input,
                 const std::string& text);
    bool findOutput(Place place, const std::string& description, const std::string& text, Reference& found);
    void addColumns();
    std::string nearestObject(std::string_view text);

    const NetworkFile& m_file;
    const std::vector<std::string>& m_missingLibraries;
    Faults& m_faults;
    Faults* m_unknown;
    std::vector<Made> m_objects; // in file order
    ObjectNames m_names;
    std::size_t m_guesses = 0;
    Network m_network;
};

void Builder::makeObjects()
{
    for (std::size_t number = 0; number < m_objects.size(); ++number) {
        const NetworkFile::Object& entry = m_file.objects[number];
        if (entry.name.place && !m_names.add(entry.name.text, number)) {
            const Place first = m_file.objects[m_names.find(entry.name.text)].name.place;
            m_faults.add(entry.name.place,
                         entry.description + ": the name is used twice, first at " + placeText(m_faults, first));
        }
        if (entry.type.place)
            make(number);
    }
    m_network.objectCount = m_objects.size();
}

void Builder::make(std::size_t number)
{
    const NetworkFile::Object& entry = m_file.objects[number];
    Made& made = m_objects[number];
    made.creator = Orla::VObjectCreator::find(entry.type.text);
    if (!made.creator) {
        std::string message = entry.description + ": no library has an object type " + inQuotes(entry.type.text);
        if (const std::string near = nearest(entry.type.text, Orla::VObjectCreator::names()); !near.empty())
            message += "; did you mean " + inQuotes(near) + "?";
        std::string missing;
        for (const std::string& library : m_missingLibraries)
            missing += (missing.empty() ? "" : ", ") + inQuotes(library);
        if (!missing.empty())
            message += " (not loaded: " + missing + ")";
        (m_unknown ? *m_unknown : m_faults).add(entry.type.place, message);
        return;
    }
    std::string why = failureOf([&] { made.object = made.creator->create(entry.name.text, 0, nullptr); });
    if (why.empty() && !made.object)
        why = "its creator returned null";
    if (!why.empty())
        m_faults.add(entry.type.place, entry.description + ": an object of type " + inQuotes(entry.type.text)
                                           + " cannot be made: " + why);
}

void Builder::setInputs()
{
    for (std::size_t number = 0; number < m_objects.size(); ++number) {
        const NetworkFile::Object& entry = m_file.objects[number];
        for (const NetworkFile::InputText& setting : entry.texts) {
            const StrongPtr<VSlot> input = findInput(number, setting.input);
            if (!input)
                continue;
            if (setting.exact.empty())
                setText(number, setting.value.place, entry.description, input, setting.value.text);
            else
                setExactly(number, input, setting);
        }
    }
}

void Builder::setExactly(std::size_t number, const StrongPtr<VSlot>& input, const NetworkFile::InputText& setting)
{
    const std::string& description = m_file.objects[number].description;
    for (const PlacedText& text : setting.exact) {
        if (!setText(number, text.place, description, input, text.text))
            return;
    }
    if (!setting.value.place)
        return;
    // The user may have edited the text, unaware that only the exact text counts.
    const std::string shown = input->ownParameter()->DefaultValue()->Text();
    if (shown != setting.value.text)
        m_faults.add(setting.value.place, description + ", input " + inQuotes(input->name()) + ": the text "
                                              + inQuotes(setting.value.text) + " does not match " + inQuotes(shown)
                                              + ", which the exact text gives; remove one of the two");
}

void Builder::setInput(const std::string& override)
{
    const std::string description = "--set=" + printable(override);
    std::string_view rest;
    const std::size_t number = m_names.findAtStart(override, rest);
    if (number == ObjectNames::npos) {
        const std::string_view target = std::string_view(override).substr(0, override.find('='));
        m_faults.add(description + ": no object is named " + inQuotes(target.substr(0, target.rfind('.')))
                     + nearestObject(target));
        return;
    }
    const StrongPtr<VObject>& object = m_objects[number].object;
    if (!object) {
        // If the unknown type itself is not a fault, the text is: it cannot be kept.
        if (m_unknown)
            m_faults.add(description + ": object " + inQuotes(m_file.objects[number].name.text)
                         + " has no inputs because its type is unknown");
        return;
    }
    const StrongPtr<VSlot> input = findSlotAtStart(object->inputs(), rest, '=');
    if (!input || input->name().size() == rest.size()) {
        const std::string_view name = rest.substr(0, rest.find('='));
        m_faults.add(description + ": " + typeOf(number) + " has no input " + inQuotes(name)
                     + insteadOf(name, namesOf(object->inputs())));
        return;
    }
    const auto& connections = m_file.objects[number].connections;
    const auto connection = std::ranges::find(connections, input->name(),
                                              [](const NetworkFile::Setting& entry) { return entry.input.text; });
    if (connection != connections.end()) {
        m_faults.add(description + ": the input reads " + inQuotes(connection->value.text)
                     + ", so a text would have no effect");
        return;
    }
    setText(number, {}, description, input, std::string(rest.substr(input->name().size() + 1)));
}

bool Builder::setText(std::size_t number, Place place, const std::string& description, const StrongPtr<VSlot>& input,
                      const std::string& text)
{
    std::string message = description;
    if (place)
        message += ", input " + inQuotes(input->name());
    if (m_unknown) {
        const Orla::VParameter& parameter = *input->ownParameter();
        auto& inputs = m_objects[number].set;
        auto entry = inputs.find(input->name());
        if (entry == inputs.end())
            entry = inputs
                        .emplace(input->name(), NetworkInputs::Input{.name = input->name(),
                                                                     .type = &input->type(),
                                                                     .place = {},
                                                                     .description = {},
                                                                     .given = parameter.newValue(),
                                                                     .value = parameter.DefaultValue(),
                                                                     .texts = {}})
                        .first;
        entry->second.place = place;
        entry->second.description = message;
        entry->second.texts.push_back(text);
    }
    bool accepted = false;
    std::string why = failureOf([&] { accepted = input->setInitialText(text); });
    if (accepted)
        return true;
    message +=
        ": the text " + inQuotes(text) + " is refused, expected a value of type " + Loam::Typename(input->type());
    m_faults.add(place, why.empty() ? message : message + " (" + why + ")");
    return false;
}

std::string Builder::typeOf(std::size_t number) const
{
    return m_file.objects[number].type.text;
}

StrongPtr<VSlot> Builder::findInput(std::size_t number, const PlacedText& name)
{
    const StrongPtr<VObject>& object = m_objects[number].object;
    if (!object)
        return nullptr; // already reported
    StrongPtr<VSlot> input = object->findSlot(name.text);
    if (!input)
        m_faults.add(name.place,
                     m_file.objects[number].description + ": " + typeOf(number) + " has no input " + inQuotes(name.text)
                         + (object->findOutput(name.text) ? "; that is an output"
                                                          : insteadOf(name.text, namesOf(object->inputs()))));
    return input;
}

void Builder::connect()
{
    for (std::size_t number = 0; number < m_objects.size(); ++number) {
        const NetworkFile::Object& entry = m_file.objects[number];
        for (const auto& [name, output] : entry.connections) {
            const StrongPtr<VSlot> input = findInput(number, name);
            const std::string description = entry.description + ", input " + inQuotes(name.text);
            Reference reference;
            if (!findOutput(output.place, description, output.text, reference) || !input)
                continue;
            std::string why;
            if (m_objects[number].object->attachOutput(reference.output, input, reference.member, &why)) {
                ++m_network.connectionCount;
                m_network.connected.push_back(input);
            } else {
                m_faults.add(output.place, description + ": " + inQuotes(output.text) + " does not fit: " + why);
            }
        }
    }
    addColumns();
}

void Builder::addColumns()
{
    for (std::size_t number = 0; number < m_file.columns.size(); ++number) {
        const NetworkFile::Column& entry = m_file.columns[number];
        if (!entry.value.place)
            continue;
        const std::string description =
            entry.title.place ? "column " + inQuotes(entry.title.text) : "column number " + std::to_string(number + 1);
        Reference reference;
        if (!findOutput(entry.value.place, description, entry.value.text, reference))
            continue;
        const std::type_info& type = reference.output->type();
        if (!Orla::VValueComponents::typeOf(type, reference.member)) {
            m_faults.add(entry.value.place, description + ": values of type " + Loam::Typename(type)
                                                + " have no component " + inQuotes(reference.member)
                                                + insteadOf(reference.member, Orla::VValueComponents::names(type)));
            continue;
        }
        m_network.columns.push_back({entry.title.text, reference.output, reference.member});
    }
}

// Returns false if there is no such output; adds a fault unless there already is one.
bool Builder::findOutput(Place place, const std::string& description, const std::string& text, Reference& found)
{
    if (text.find('.') == std::string::npos) {
        m_faults.add(place, description + ": found " + inQuotes(text) + ", expected \"OBJECT.OUTPUT\"");
        return false;
    }
    std::string_view rest;
    const std::size_t number = m_names.findAtStart(text, rest);
    if (number == ObjectNames::npos) {
        m_faults.add(place, description + ": no object is named " + inQuotes(text.substr(0, text.find('.')))
                                + nearestObject(text));
        return false;
    }
    const StrongPtr<VObject>& object = m_objects[number].object;
    if (!object)
        return false; // already reported
    found.output = findSlotAtStart(object->outputs(), rest, '.');
    if (!found.output) {
        const std::string name(rest.substr(0, rest.find('.')));
        m_faults.add(
            place, description + ": " + m_file.objects[number].description + " of type " + typeOf(number)
                       + " has no output " + inQuotes(name)
                       + (object->findSlot(name) ? "; that is an input" : insteadOf(name, namesOf(object->outputs()))));
        return false;
    }
    const std::size_t end = found.output->name().size();
    found.member = end < rest.size() ? rest.substr(end + 1) : std::string_view{};
    if (end < rest.size() && found.member.empty()) {
        m_faults.add(place,
                     description + ": found " + inQuotes(text) + ", expected the name of a component at the end");
        return false;
    }
    return true;
}

// Returns the end of a message about a reference whose object is unknown.
std::string Builder::nearestObject(std::string_view text)
{
    if (++m_guesses > MostGuesses)
        return {};
    const std::vector<std::string> names = m_names.names();
    // Any of the dots may be the one after the name.
    std::size_t end = text.find('.');
    for (int tries = 0; tries < 4; ++tries) {
        if (const std::string near = nearest(text.substr(0, end), names); !near.empty())
            return "; did you mean " + inQuotes(near) + "?";
        if (end == std::string_view::npos)
            break;
        end = text.find('.', end + 1);
    }
    return {};
}

void Builder::finish()
{
    // Objects that look for partners are finished last, so they find providers that come
    // after them in the file.
    for (const bool seeking : {false, true}) {
        for (std::size_t number = 0; number < m_objects.size(); ++number) {
            Made& made = m_objects[number];
            if (!made.object || made.object->setupFunctions().empty() == seeking)
                continue;
            const std::string why = failureOf([&] { VObject::finishCreation(made.object, {}, made.creator); });
            if (!why.empty())
                m_faults.add(m_file.objects[number].place,
                             m_file.objects[number].description + " cannot be set up: " + why);
            // From now on the registry owns the object.
            made = {};
        }
    }
}

NetworkInputs Builder::takeInputs()
{
    NetworkInputs inputs;
    inputs.connectionCount = m_network.connectionCount;
    for (Made& made : m_objects) {
        NetworkInputs::Object& object = inputs.objects.emplace_back();
        object.isKnown = bool(made.creator);
        if (!made.object)
            continue;
        object.names = namesOf(made.object->inputs());
        for (const std::string& name : object.names) {
            if (const auto entry = made.set.find(name); entry != made.set.end())
                object.set.push_back(std::move(entry->second));
        }
    }
    return inputs;
}

} // namespace

Network buildNetwork(const NetworkFile& file, const std::vector<std::string>& overrides,
                     const std::vector<std::string>& missingLibraries, Faults& faults)
{
    Builder builder{file, missingLibraries, faults, nullptr};
    builder.makeObjects();
    builder.setInputs();
    for (const std::string& override : overrides)
        builder.setInput(override);
    builder.connect();
    if (!faults.empty())
        return {};
    builder.finish();
    return faults.empty() ? builder.takeNetwork() : Network{};
}

NetworkInputs readInputs(const NetworkFile& file, const std::vector<std::string>& overrides,
                         const std::vector<std::string>& missingLibraries, Faults& faults, Faults& unknown)
{
    Builder builder{file, missingLibraries, faults, &unknown};
    builder.makeObjects();
    builder.setInputs();
    for (const std::string& override : overrides)
        builder.setInput(override);
    builder.connect();
    return builder.takeInputs();
}

} // namespace Tarn
