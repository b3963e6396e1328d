#include <tarn/network/NetworkAssembly.hpp>

#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/ChoiceCheck.hpp>
#include <tarn/network/InputText.hpp>
#include <tarn/text/Activity.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/DescriptionCheck.hpp>

#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/Result.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Tarn {

using Loam::Result;
using Orla::StrongPtr;
using Orla::VObject;
using Orla::VSlot;

namespace {

// Maximum number of suggestions. More faults of a kind are usually one mistake, and guessing
// the intended name for each would take longer than everything else.
constexpr std::size_t MostGuesses = 100;

// Returns the number in a text that consists of digits, or an infinite one; else nothing.
std::optional<double> wholeNumber(const std::string& text)
{
    double number = 0;
    const char* const end = text.data() + text.size();
    if (text.empty() || Loam::readNumber(text.data(), end, number) != end
        || (std::isfinite(number) && number != std::trunc(number)))
        return std::nullopt;
    return number;
}

// Returns the names in quotes, at most three of them.
std::string listed(const std::vector<std::string>& names)
{
    constexpr std::size_t MostLibrariesListed = 3;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), MostLibrariesListed); ++i)
        list += (i == 0 ? "" : ", ") + inQuotes(names[i]);
    return names.size() > MostLibrariesListed
               ? list + " and " + std::to_string(names.size() - MostLibrariesListed) + " more"
               : list;
}

std::string placeText(const Faults& faults, Place place)
{
    return faults.file() + ':' + std::to_string(place.line) + ':' + std::to_string(place.column);
}

// Returns the libraries that have different object types called `type`; nothing if only one
// library has such a type. If the network names some of them, the others do not count: other
// networks of the program use them.
std::vector<std::string> rivalsOf(const std::string& type, const NetworkFile& file)
{
    std::vector<std::string> owners = Orla::VObjectCreator::libraries(type);
    if (owners.size() < 2)
        return {};
    const auto isNamed = [&file](const std::string& library) {
        return library == StandardLibrary
               || std::ranges::find(file.libraries, library, &PlacedText::text) != file.libraries.end();
    };
    if (std::ranges::any_of(owners, isNamed))
        std::erase_if(owners, [&](const std::string& library) { return !isNamed(library); });
    return owners;
}

// Returns the complete names, such as `"a:T" or "b:T"`.
std::string completeNames(const std::vector<std::string>& libraries, const std::string& type)
{
    std::string names;
    for (const std::string& library : libraries)
        names += (names.empty() ? "" : " or ") + inQuotes(library + ':' + type);
    return names;
}

} // namespace

NetworkAssembly::NetworkAssembly(const NetworkFile& file, Faults& faults)
    : m_file{file}, m_faults{faults}, m_objects(file.objects.size())
{
}

NetworkAssembly::~NetworkAssembly() = default;

void NetworkAssembly::onUnknownType(Place place, const std::string& message)
{
    m_faults.add(FaultKind::Type, place, message);
}

void NetworkAssembly::onOverrideOfUnknownType(const std::string&)
{
    // The unknown type is already a fault.
}

void NetworkAssembly::beforeText(const GivenText&)
{
}

void NetworkAssembly::assemble(const std::vector<std::string>& overrides,
                               const std::vector<std::string>& missingLibraries)
{
    for (std::size_t number = 0; number < m_objects.size(); ++number)
        createObject(number, missingLibraries);
    for (const std::string& override : overrides)
        prepareOverride(override);
    for (std::size_t number = 0; number < m_objects.size(); ++number)
        setInputs(number);
    for (const Override& override : m_overrides)
        applyOverride(override);
    for (std::size_t number = 0; number < m_objects.size(); ++number)
        connectInputs(number);
    for (std::size_t number = 0; number < m_file.columns.size(); ++number)
        addColumn(number);
    m_network.objectCount = m_objects.size();
}

void NetworkAssembly::createObject(std::size_t number, const std::vector<std::string>& missingLibraries)
{
    const NetworkFile::Object& entry = m_file.objects[number];
    if (entry.name.place && !m_names.add(entry.name.text, number)) {
        const Place first = m_file.objects[m_names.find(entry.name.text)].name.place;
        m_faults.add(FaultKind::Object, entry.name.place,
                     entry.description + ": the name is used twice, first at " + placeText(m_faults, first));
    }
    if (!entry.type.place)
        return;

    Object& made = m_objects[number];
    const std::vector<std::string> rivals = rivalsOf(entry.type.text, m_file);
    made.creator =
        Orla::VObjectCreator::find(rivals.size() == 1 ? rivals.front() + ':' + entry.type.text : entry.type.text);
    if (!made.creator) {
        std::string message = entry.description + ": no library has an object type " + inQuotes(entry.type.text);
        if (const std::string near = nearest(entry.type.text, Orla::VObjectCreator::names()); !near.empty())
            message += "; did you mean " + inQuotes(near) + "?";
        if (!missingLibraries.empty())
            message += " (not loaded: " + listed(missingLibraries) + ")";
        onUnknownType(entry.type.place, message);
        return;
    }
    if (rivals.size() > 1) {
        m_faults.add(FaultKind::Type, entry.type.place,
                     entry.description + ": several libraries have different object types " + inQuotes(entry.type.text)
                         + "; write " + completeNames(rivals, entry.type.text));
        made.creator.reset();
        return;
    }
    const Activity activity{"creating the object", entry.name.text.c_str()};
    const Result<void> done = Loam::attempt([&] { made.object = made.creator->create(entry.name.text, 0, nullptr); });
    if (!made.object)
        m_faults.add(FaultKind::Object, entry.type.place,
                     entry.description + ": an object of type " + inQuotes(entry.type.text)
                         + " cannot be made: " + (done ? "its creator returned null" : done.reason()));
    else if (m_checkedTypes.insert(made.creator.get()).second)
        checkType(number);
}

// Descriptions belong to the type, so one object of it suffices.
void NetworkAssembly::checkType(std::size_t number)
{
    const NetworkFile::Object& entry = m_file.objects[number];
    if (const Result<void> fine = checkDescriptions(*m_objects[number].object); !fine)
        m_faults.add(FaultKind::Object, entry.type.place,
                     entry.description + ": the description of type " + inQuotes(entry.type.text)
                         + " is wrong: " + fine.reason());
}

void NetworkAssembly::setInputs(std::size_t number)
{
    const NetworkFile::Object& entry = m_file.objects[number];
    for (const NetworkFile::InputText& setting : entry.texts) {
        const StrongPtr<VSlot> input = findInput(number, setting.input);
        if (!input)
            continue;
        if (!setting.exact.empty())
            setExactly(number, input, setting);
        else
            setText({number, input, setting.value.place, entry.description + ", input " + inQuotes(input->name()),
                     setting.value.text, setting.isNumber});
    }
}

void NetworkAssembly::setExactly(std::size_t number, const StrongPtr<VSlot>& input,
                                 const NetworkFile::InputText& setting)
{
    const std::string description = m_file.objects[number].description + ", input " + inQuotes(input->name());
    for (const PlacedText& text : setting.exact) {
        if (!setText({number, input, text.place, description, text.text}))
            return;
    }
    if (!setting.value.place)
        return;
    // The user may have edited the text, unaware that only the exact text counts.
    const std::string shown = input->ownParameter()->DefaultValue()->Text();
    if (shown != setting.value.text)
        m_faults.add(FaultKind::Input, setting.value.place,
                     description + ": the text " + inQuotes(setting.value.text) + " does not match " + inQuotes(shown)
                         + ", which the exact text gives; remove one of the two");
}

// Finds the input and keeps the value that its object declares.
void NetworkAssembly::prepareOverride(const std::string& override)
{
    const std::string description = "--set=" + printable(override);
    std::string_view rest;
    const std::size_t number = m_names.findAtStart(override, rest);
    if (number == ObjectNames::npos) {
        const std::string_view target =
            std::string_view(override).substr(0, override.find('=', std::min(override.find('.'), override.size())));
        m_faults.add(FaultKind::Option, description + ": no object is named "
                                            + inQuotes(target.substr(0, target.rfind('.'))) + nearestObject(target));
        return;
    }
    const NetworkFile::Object& entry = m_file.objects[number];
    const Object& made = m_objects[number];
    if (!made.object) {
        if (!made.creator)
            onOverrideOfUnknownType(description + ": object " + inQuotes(entry.name.text)
                                    + " has no inputs because its type is unknown");
        return;
    }
    const StrongPtr<VSlot> input = findSlotAtStart(made.object->inputs(), rest, '=');
    if (!input || input->name().size() == rest.size()) {
        const std::string_view name = rest.substr(0, rest.find('='));
        m_faults.add(FaultKind::Option, description + ": " + entry.type.text + " has no input " + inQuotes(name)
                                            + insteadOf(name, namesOf(made.object->inputs())));
        return;
    }
    const auto connection = std::ranges::find(entry.connections, input->name(),
                                              [](const NetworkFile::Setting& each) { return each.input.text; });
    if (connection != entry.connections.end()) {
        m_faults.add(FaultKind::Option, description + ": the input reads " + inQuotes(connection->value.text)
                                            + ", so a text would have no effect");
        return;
    }
    m_overrides.push_back({{number, input, {}, description, std::string(rest.substr(input->name().size() + 1))},
                           input->ownParameter()->newValue()});
}

// Starts from the declared value: some texts, such as those of selections, are read into the
// value that is there.
void NetworkAssembly::applyOverride(const Override& override)
{
    override.text.input->ownParameter()->setGlobalValue(override.declared, {});
    std::erase_if(m_network.choices, [&](const Network::Choice& each) { return each.input == override.text.input; });
    setText(override.text);
}

bool NetworkAssembly::setText(const GivenText& given)
{
    beforeText(given);
    const Activity activity{"setting", given.description.c_str()};
    const Orla::VParameter& parameter = *given.input->ownParameter();
    // The type of the value may throw.
    const Result<Result<void>> done = Loam::attempt([&]() -> Result<void> {
        const Result<StrongPtr<Orla::VValueBase>> value = readInputText(*given.input, parameter.newValue(), given.text);
        if (!value)
            return Loam::Failure{value.reason()};
        parameter.setGlobalValue(*value, {});
        return {};
    });
    if (!done || !*done) {
        m_faults.add(FaultKind::Input, given.place, given.description + ": " + (done ? done->reason() : done.reason()));
        return false;
    }
    if (given.isNumber)
        checkNumber(given);
    noteChoice(given);
    return true;
}

// A number that is not a text must be kept whole: an integer input would read 1.5 as 1.
void NetworkAssembly::checkNumber(const GivenText& given)
{
    const std::string kept = given.input->ownParameter()->DefaultValue()->Text();
    const std::optional<double> number = wholeNumber(kept);
    if (!number || kept == given.text || Loam::numberText(*number) == given.text)
        return;
    m_faults.add(FaultKind::Input, given.place,
                 given.description + ": the number " + given.text + " would become " + kept
                     + ", expected a value of type " + Orla::VTypeLabel::of(given.input->type()));
}

void NetworkAssembly::noteChoice(const GivenText& given)
{
    if (!isSelection(given.input->type()))
        return;
    // Of several exact texts for one input, the last one counts.
    if (!m_network.choices.empty() && m_network.choices.back().input == given.input)
        m_network.choices.pop_back();
    m_network.choices.push_back({given.input, given.place, given.place ? std::string() : given.description});
}

StrongPtr<VSlot> NetworkAssembly::findInput(std::size_t number, const PlacedText& name)
{
    const StrongPtr<VObject>& object = m_objects[number].object;
    if (!object)
        return nullptr; // already reported
    StrongPtr<VSlot> input = object->findSlot(name.text);
    if (!input) {
        const NetworkFile::Object& entry = m_file.objects[number];
        m_faults.add(FaultKind::Input, name.place,
                     entry.description + ": " + entry.type.text + " has no input " + inQuotes(name.text)
                         + (object->findOutput(name.text) ? "; that is an output"
                                                          : insteadOf(name.text, namesOf(object->inputs()))));
    }
    return input;
}

void NetworkAssembly::connectInputs(std::size_t number)
{
    const NetworkFile::Object& entry = m_file.objects[number];
    for (const auto& [name, output] : entry.connections) {
        const StrongPtr<VSlot> input = findInput(number, name);
        const std::string description = entry.description + ", input " + inQuotes(name.text);
        const std::optional<OutputReference> source =
            findOutput(FaultKind::Connection, output.place, description, output.text);
        if (!source || !input)
            continue;
        if (const Result<void> connected =
                m_objects[number].object->tryAttachOutput(source->output, input, source->member))
            m_network.connected.push_back(input);
        else
            m_faults.add(FaultKind::Connection, output.place,
                         description + ": " + inQuotes(output.text) + " does not fit: " + connected.reason());
    }
}

void NetworkAssembly::addColumn(std::size_t number)
{
    const auto& [title, value] = m_file.columns[number];
    if (!value.place)
        return;
    const std::string description =
        title.place ? "column " + inQuotes(title.text) : "column number " + std::to_string(number + 1);
    std::optional<OutputReference> output = findOutput(FaultKind::Column, value.place, description, value.text);
    if (!output)
        return;
    if (const Result<void> exists = output->checkMember())
        m_network.columns.push_back({title.text, *std::move(output)});
    else
        m_faults.add(FaultKind::Column, value.place, description + ": " + exists.reason());
}

// Finds the output that `text`, "OBJECT.OUTPUT" or "OBJECT.OUTPUT.MEMBER", names. Adds a fault
// if it does not exist, unless its object already has one.
std::optional<OutputReference> NetworkAssembly::findOutput(FaultKind kind, Place place, const std::string& description,
                                                           const std::string& text)
{
    if (text.find('.') == std::string::npos) {
        m_faults.add(kind, place, description + ": found " + inQuotes(text) + ", expected \"OBJECT.OUTPUT\"");
        return std::nullopt;
    }
    std::string_view rest;
    const std::size_t number = m_names.findAtStart(text, rest);
    if (number == ObjectNames::npos) {
        m_faults.add(kind, place,
                     description + ": no object is named " + inQuotes(text.substr(0, text.find('.')))
                         + nearestObject(text));
        return std::nullopt;
    }
    const Object& made = m_objects[number];
    if (!made.object)
        return std::nullopt; // already reported
    const NetworkFile::Object& entry = m_file.objects[number];
    Result<OutputReference> output =
        OutputReference::find(*made.object, entry.description + " of type " + entry.type.text, rest);
    if (!output) {
        m_faults.add(kind, place, description + ": " + output.reason());
        return std::nullopt;
    }
    return *std::move(output);
}

// Returns the end of a message about a reference whose object is unknown.
std::string NetworkAssembly::nearestObject(std::string_view text)
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

} // namespace Tarn
