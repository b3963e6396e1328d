#include <tarn/network/SessionCore.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/network/CanonicalNetwork.hpp>
#include <tarn/network/ChartChoice.hpp>
#include <tarn/network/ChoiceCheck.hpp>
#include <tarn/network/InputText.hpp>
#include <tarn/network/NetworkBuilder.hpp>
#include <tarn/network/NetworkParser.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>
#include <tarn/types/DescriptionCheck.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/Utf8.hpp>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace Tarn::Detail {

using Loam::Failure;
using Loam::Result;
using Orla::StrongPtr;

namespace {

using Scope = Orla::VNetwork::Scope;
using Change = Orla::VNetwork::Change;
using Use = Orla::VNetwork::Use;

// Marks the entries that do not come from a file as present.
constexpr Place Here{1, 1};

std::string absoluteFolder(const std::string& folder)
{
    return std::filesystem::absolute(folder.empty() ? "." : folder).lexically_normal().string();
}

// Returns the entry of the input's text, or the end.
auto findText(std::vector<NetworkFile::InputText>& texts, const std::string& input)
{
    return std::ranges::find(texts, input, [](const auto& each) { return each.input.text; });
}

// Returns the place where the object's input is set, else the place of the object.
Place placeOfSetting(const NetworkFile& file, const std::string& object, const std::string& input)
{
    const auto entry = std::ranges::find(file.objects, object, [](const auto& each) { return each.name.text; });
    if (entry == file.objects.end())
        return {};
    const auto text = std::ranges::find(entry->texts, input, [](const auto& each) { return each.input.text; });
    if (text == entry->texts.end())
        return entry->place;
    return text->exact.empty() ? text->value.place : text->exact.front().place;
}

// Returns false if the entry has no connection of the input.
bool forgetConnection(NetworkFile::Object& entry, const std::string& input)
{
    return std::erase_if(entry.connections, [&](const NetworkFile::Setting& each) { return each.input.text == input; })
           > 0;
}

// As the parser describes an object of that name.
std::string descriptionOf(const std::string& name)
{
    return "object " + inQuotes(name);
}

// Returns an input in the entry whose name begins with the prefix, or null. Objects that collect
// outputs, see `Orla::VPolyConnection`, have inputs that are named after other objects.
const std::string* inputWithPrefix(const std::string& prefix, const NetworkFile::Object& entry)
{
    const auto hasPrefix = [&](const auto& each) { return each.input.text.starts_with(prefix); };
    if (const auto text = std::ranges::find_if(entry.texts, hasPrefix); text != entry.texts.end())
        return &text->input.text;
    if (const auto connection = std::ranges::find_if(entry.connections, hasPrefix);
        connection != entry.connections.end())
        return &connection->input.text;
    return nullptr;
}

// Returns true if `reference`, such as "OBJECT.OUTPUT", names the object.
bool refersTo(const std::string& reference, const ObjectNames& names, std::size_t object)
{
    std::string_view rest;
    return names.findAtStart(reference, rest) == object;
}

} // namespace

SessionCore::SessionCore(const std::string& folder)
    : m_faults{"the network"}, m_folder{absoluteFolder(folder)}, m_libraries{Libraries::searchPath(m_folder)}
{
    m_objects.emplace(m_folder);
    m_objects->setDataFolders(dataFolders());
    m_libraries.loadAll({}, m_faults);
}

SessionCore::SessionCore(const std::string& title, const std::string& folder, const std::string& text,
                         const LoadOptions& options)
    : m_faults{title}
    , m_folder{absoluteFolder(folder)}
    , m_libraries{Libraries::searchPath(m_folder)}
    , m_stepLimit{options.stepLimit}
{
    m_file = parseNetwork(text, m_faults);
    m_objects.emplace(m_folder);
    m_objects->setDataFolders(dataFolders());
    const Scope scope{*m_objects};
    const std::vector<std::string> missing = m_libraries.loadAll(m_file.libraries, m_faults);
    m_network = buildNetwork(m_file, options.overrides, missing, m_faults);
    if (options.chart)
        m_file.chart = {*options.chart, {}};
    m_chart = m_file.chart;
    if (m_faults.empty() && !m_chart.text.empty())
        chooseChart();
    if (m_faults.empty())
        checkTime();
    if (m_faults.empty()) {
        keepOverrides();
        indexObjects();
    } else {
        m_timeProvider.reset();
        m_network = {};
        removeAnnouncedObjects();
    }
}

SessionCore::~SessionCore()
{
    m_timeProvider.reset();
    m_network = {};
    m_objects.reset();
    if (const Result<void> unloaded = m_libraries.unload(); !unloaded)
        Orla::VActionNotifier::Warning("The " + unloaded.reason());
}

void SessionCore::chooseChart()
{
    if (const ChartChoice choice = ChartChoice::find())
        choice.want(m_chart.text);
    else
        m_faults.add(FaultKind::Chart, m_chart.place,
                     std::string(m_chart.place ? "" : "--") + "chart: found " + inQuotes(m_chart.text)
                         + ", but no object depends on a chart");
}

void SessionCore::checkTime()
{
    const TimeProvider provider = timeProvider();
    if (!provider)
        return;
    if (const Result<std::uint64_t> count = stepCount(provider, Loam::makeStrong<Orla::ValuePool>()); !count)
        m_faults.add(FaultKind::Time, placeOfSetting(m_file, provider.name(), provider.inputName()), count.reason());
}

TimeProvider SessionCore::timeProvider() const
{
    const Scope scope{*m_objects};
    const Use use{*m_objects};
    const std::lock_guard lock{m_timeMutex};
    if (!m_timeProvider)
        m_timeProvider = TimeProvider::find();
    return *m_timeProvider;
}

PlacedText SessionCore::wantedChart() const
{
    const Use use{*m_objects};
    return m_chart;
}

Result<std::uint64_t> SessionCore::stepCount(const TimeProvider& provider, const StrongPtr<Orla::ValuePool>& pool) const
{
    if (!provider)
        return std::uint64_t{1};
    const Scope scope{*m_objects};
    const Use use{*m_objects};
    const Result<Orla::VTime> found = provider.time(pool);
    if (!found)
        return Failure{"object " + inQuotes(provider.name()) + ": " + found.reason()};
    const Orla::VTime& time = *found;
    const double count = TimeProvider::stepCount(time);
    const auto failure = [&](const std::string& expected) {
        return Failure{"object " + inQuotes(provider.name()) + ", input " + inQuotes(provider.inputName())
                       + ": the time " + Orla::VValueTrait<Orla::VTime>::Text(time) + " has " + Loam::numberText(count)
                       + " steps, " + expected};
    };
    // Negated to refuse NaN too, which compares false with everything.
    if (!(count >= 1 && count <= MostCountedSteps))
        return failure("expected 1 or more, " + Loam::numberText(MostCountedSteps) + " at most");
    if (m_stepLimit)
        return std::min(static_cast<std::uint64_t>(count), *m_stepLimit);
    if (count > MostSteps)
        return failure("more than " + Loam::numberText(MostSteps) + "; --steps=N evaluates the first N of them");
    return static_cast<std::uint64_t>(count);
}

// The saved network has the texts that were set last.
void SessionCore::keepOverrides()
{
    for (const Network::Override& each : m_network.overrides) {
        std::vector<NetworkFile::InputText>& texts = m_file.objects[each.object].texts;
        if (const auto text = findText(texts, each.input); text != texts.end())
            texts.erase(text);
        texts.push_back({{each.input, Here}, {each.text, Here}});
    }
}

void SessionCore::indexObjects()
{
    for (std::size_t number = 0; number < m_file.objects.size(); ++number)
        m_names.add(m_file.objects[number].name.text, number);
}

Result<void> SessionCore::requireNoFaults() const
{
    return m_faults.empty() ? Result<void>{} : Failure{"the network has faults"};
}

Result<SessionCore::Named> SessionCore::findObject(std::string_view reference, const char* shape) const
{
    if (reference.find('.') == std::string_view::npos)
        return Failure{"found " + inQuotes(reference) + ", expected " + shape};
    std::string_view rest;
    if (const std::size_t number = m_names.findAtStart(reference, rest); number != ObjectNames::npos) {
        if (StrongPtr<Orla::VObject> object = m_network.objects[number].lock(); object && object->isRegistered())
            return Named{std::move(object), rest};
        return Failure{m_file.objects[number].description + " was removed during an evaluation"};
    }
    // An object that was created automatically.
    for (std::size_t dot = reference.rfind('.'); dot != std::string_view::npos && dot > 0;
         dot = reference.rfind('.', dot - 1)) {
        if (StrongPtr<Orla::VObject> object{m_objects->find(std::string(reference.substr(0, dot)))})
            return Named{std::move(object), reference.substr(dot + 1)};
    }
    const std::string_view name = reference.substr(0, reference.find('.'));
    return Failure{"no object is named " + inQuotes(name) + insteadOf(name, m_names.names())};
}

Result<StrongPtr<Orla::VSlot>> SessionCore::findInput(std::string_view reference) const
{
    const Use use{*m_objects};
    const Result<Named> named = findObject(reference, "OBJECT.INPUT");
    if (!named)
        return Failure{named.reason()};
    const std::string name(named->rest);
    if (StrongPtr<Orla::VSlot> input = named->object->findSlot(name))
        return input;
    return Failure{named->object->typeAndName() + " has no input " + inQuotes(name)
                   + (named->object->findOutput(name) ? "; that is an output"
                                                      : insteadOf(name, namesOf(named->object->inputs())))};
}

Result<OutputReference> SessionCore::findOutput(std::string_view reference) const
{
    const Use use{*m_objects};
    const Result<Named> named = findObject(reference, "OBJECT.OUTPUT");
    if (!named)
        return Failure{named.reason()};
    Result<OutputReference> output = OutputReference::find(*named->object, named->object->typeAndName(), named->rest);
    if (!output)
        return output;
    if (const Result<void> exists = output->checkMember(); !exists)
        return Failure{exists.reason()};
    return output;
}

Result<OutputReference> SessionCore::findSlot(std::string_view reference) const
{
    const Use use{*m_objects};
    const Result<Named> named = findObject(reference, "OBJECT.SLOT");
    if (!named)
        return Failure{named.reason()};
    if (StrongPtr<Orla::VSlot> input = named->object->findSlot(std::string(named->rest)))
        return OutputReference{std::move(input), {}};
    return findOutput(reference);
}

std::vector<std::string> SessionCore::outputsOf(const std::string& name) const
{
    const Use use{*m_objects};
    const StrongPtr<Orla::VObject> object{m_objects->find(name)};
    return object ? visibleNamesOf(object->outputs()) : std::vector<std::string>{};
}

StrongPtr<Orla::VValueBase> SessionCore::declaredValue(const StrongPtr<Orla::VSlot>& input) const
{
    const auto found = m_network.declared.find(input.get());
    return found == m_network.declared.end() ? input->ownParameter()->newValue() : found->second->copy();
}

// Starts from the declared value: some texts, such as those of selections, are read into the value
// that is there.
Result<StrongPtr<Orla::VValueBase>> SessionCore::valueOfText(const StrongPtr<Orla::VSlot>& input,
                                                             const std::string& text) const
{
    const Use use{*m_objects};
    return readInputText(*input, declaredValue(input), text);
}

Result<SessionCore::OwnInput> SessionCore::findOwnInput(std::string_view reference)
{
    Result<StrongPtr<Orla::VSlot>> input = findInput(reference);
    if (!input)
        return Failure{input.reason()};
    const Orla::VObject& object = *(*input)->container()->object();
    const std::size_t number = m_names.find(object.Name());
    if (number == ObjectNames::npos)
        return Failure{object.typeAndName() + " is not part of the saved network"};
    return OwnInput{*std::move(input), &m_file.objects[number]};
}

Result<void> SessionCore::loadLibrary(const std::string& name)
{
    if (Result<void> loaded = m_libraries.load(name); !loaded)
        return loaded;
    if (name != StandardLibrary
        && std::ranges::find(m_file.libraries, name, &PlacedText::text) == m_file.libraries.end())
        m_file.libraries.push_back({name, Here});
    return {};
}

Result<void> SessionCore::setText(std::string_view reference, const std::string& text)
{
    const Change change{*m_objects};
    const Result<OwnInput> input = findOwnInput(reference);
    if (!input)
        return Failure{input.reason()};
    const Result<StrongPtr<Orla::VValueBase>> value = valueOfText(input->slot, text);
    if (!value)
        return Failure{value.reason()};
    const Result<void> assigned = assign(*input, *value, text);
    if (assigned && isSelection(input->slot->type()))
        m_network.choices.push_back({input->slot, {}, {}});
    return assigned;
}

Result<void> SessionCore::setValue(std::string_view reference, const StrongPtr<Orla::VValueBase>& value)
{
    const Change change{*m_objects};
    const Result<OwnInput> input = findOwnInput(reference);
    if (!input)
        return Failure{input.reason()};
    if (!value || value->getType() != input->slot->type())
        return Failure{"found a value of type " + (value ? Orla::VTypeLabel::of(value->getType()) : "null")
                       + ", expected type " + Orla::VTypeLabel::of(input->slot->type())};
    if (const Result<void> fine = checkLimits(*input->slot, *value); !fine)
        return fine;
    // The text of an array may be many times as large as the array, and is rarely saved.
    return assign(*input, value, std::nullopt);
}

// Sets the initial value, and records the text in the saved network instead of earlier ones.
Result<void> SessionCore::assign(const OwnInput& input, const StrongPtr<Orla::VValueBase>& value,
                                 const std::optional<std::string>& text)
{
    const auto& [slot, entry] = input;
    const auto connection = std::ranges::find(entry->connections, slot->name(),
                                              [](const NetworkFile::Setting& each) { return each.input.text; });
    if (connection != entry->connections.end())
        return Failure{"the input reads " + inQuotes(connection->value.text) + ", so a value would have no effect"};
    m_network.declared.try_emplace(slot.get(), slot->ownParameter()->newValue());
    slot->ownParameter()->setGlobalValue(value, {});
    if (const auto former = findText(entry->texts, slot->name()); former != entry->texts.end())
        entry->texts.erase(former);
    NetworkFile::InputText& made =
        entry->texts.emplace_back(NetworkFile::InputText{{slot->name(), Here}, {text.value_or(""), Here}});
    made.isOfInput = !text;
    std::erase_if(m_network.choices, [&](const Network::Choice& each) { return each.input == input.slot; });
    return {};
}

Result<void> SessionCore::requireNewName(const std::string& name) const
{
    if (name.empty() || !Loam::isUtf8(name))
        return Failure{"found the name " + inQuotes(name) + ", expected one that is not empty and valid UTF-8"};
    if (m_objects->find(name))
        return Failure{"the name " + inQuotes(name) + " is taken"};
    return {};
}

Result<void> SessionCore::create(const std::string& type, const std::string& name)
{
    if (Result<void> fine = requireNoFaults(); !fine)
        return fine;
    if (Result<void> fine = requireNewName(name); !fine)
        return fine;
    NetworkFile file;
    file.libraries = m_file.libraries;
    file.objects.push_back({.place = Here,
                            .name = {name, Here},
                            .type = {type, Here},
                            .texts = {},
                            .connections = {},
                            .kept = {},
                            .description = descriptionOf(name)});
    const Scope scope{*m_objects};
    const Change change{*m_objects};
    Faults faults{m_faults.file()};
    Network made = buildNetwork(file, {}, {}, faults);
    if (!faults.empty()) {
        if (const StrongPtr<Orla::VManagedObject> half = m_objects->find(name))
            Orla::VManagedObject::remove(half);
        return Failure{faults.all().front().message};
    }
    m_file.objects.push_back(std::move(file.objects.front()));
    m_network.objects.push_back(made.objects.front());
    m_network.objectCount = m_network.objects.size();
    m_names.add(name, m_network.objectCount - 1);
    m_timeProvider.reset();
    return {};
}

Result<void> SessionCore::remove(const std::string& name)
{
    const Scope scope{*m_objects};
    const Change change{*m_objects};
    const std::size_t number = m_names.find(name);
    if (number == ObjectNames::npos)
        return Failure{"no object is named " + inQuotes(name) + insteadOf(name, m_names.names())};
    for (NetworkFile::Object& object : m_file.objects)
        std::erase_if(object.connections,
                      [&](const NetworkFile::Setting& each) { return refersTo(each.value.text, m_names, number); });
    std::erase_if(m_file.columns,
                  [&](const NetworkFile::Column& each) { return refersTo(each.value.text, m_names, number); });
    const StrongPtr<Orla::VObject> object = m_network.objects[number].lock();
    const auto isOfObject = [&](const StrongPtr<Orla::VSlot>& slot) {
        return !slot->container() || slot->container()->object() == object.get();
    };
    std::erase_if(m_network.columns, [&](const Network::Column& each) { return isOfObject(each.output.output); });
    std::erase_if(m_network.choices, [&](const Network::Choice& each) { return isOfObject(each.input); });
    if (object) {
        for (const StrongPtr<Orla::VSlot>& input : object->inputs())
            m_network.declared.erase(input.get());
        Orla::VManagedObject::remove(object);
    }
    m_file.objects.erase(m_file.objects.begin() + static_cast<std::ptrdiff_t>(number));
    m_network.objects.erase(m_network.objects.begin() + static_cast<std::ptrdiff_t>(number));
    m_network.objectCount = m_network.objects.size();
    m_names.remove(name);
    std::erase_if(m_network.connected, [](const StrongPtr<Orla::VSlot>& input) { return !input->isConnected(); });
    m_timeProvider.reset();
    return {};
}

Result<void> SessionCore::rename(const std::string& name, const std::string& newName)
{
    if (Result<void> fine = requireNoFaults(); !fine)
        return fine;
    const Scope scope{*m_objects};
    const Change change{*m_objects};
    const std::size_t number = m_names.find(name);
    if (number == ObjectNames::npos)
        return Failure{m_objects->find(name)
                           ? "object " + inQuotes(name) + " is not part of the saved network"
                           : "no object is named " + inQuotes(name) + insteadOf(name, m_names.names())};
    NetworkFile::Object& entry = m_file.objects[number];
    const StrongPtr<Orla::VObject> object = m_network.objects[number].lock();
    if (!object)
        return Failure{entry.description + " was removed during an evaluation"};
    if (newName == name)
        return {};
    if (Result<void> fine = requireNewName(newName); !fine)
        return fine;

    // Nothing that can fail comes after the first change.
    struct Reference {
        std::string* text;
        std::string newText;
        std::size_t object;
    };
    std::vector<Reference> references;
    const std::string prefix = name + '.';
    const std::string newPrefix = newName + '.';
    const auto collect = [&](std::string& text) {
        if (!text.starts_with(prefix) && !text.starts_with(newPrefix))
            return;
        std::string_view rest;
        const std::size_t referred = m_names.findAtStart(text, rest);
        references.push_back({&text, referred == number ? newPrefix + std::string(rest) : text, referred});
    };
    for (NetworkFile::Object& each : m_file.objects) {
        for (NetworkFile::Setting& connection : each.connections)
            collect(connection.value.text);
        const std::string* const input = &each == &entry ? nullptr : inputWithPrefix(prefix, each);
        if (input)
            return Failure{each.description + " has the input " + inQuotes(*input) + ", which is named after "
                           + entry.description + " and would be missing after loading"};
    }
    for (NetworkFile::Column& column : m_file.columns)
        collect(column.value.text);
    std::string formerName = name;
    std::string objectName = newName;
    PlacedText fileName{newName, entry.name.place};
    std::string description = descriptionOf(newName);

    m_names.rename(name, newName);
    // Names may contain dots, so the new name may match the beginning of other references.
    const auto isMisread = [&](const Reference& each) {
        std::string_view rest;
        return m_names.findAtStart(each.newText, rest) != each.object;
    };
    if (const auto misread = std::ranges::find_if(references, isMisread); misread != references.end()) {
        m_names.rename(newName, std::move(formerName));
        return Failure{"with an object named " + inQuotes(newName) + ", " + inQuotes(misread->newText)
                       + " would mean another output"};
    }
    Orla::VManagedObject::rename(object, std::move(objectName));
    entry.name = std::move(fileName);
    entry.description = std::move(description);
    for (Reference& each : references)
        each.text->swap(each.newText);
    return {};
}

Result<void> SessionCore::connect(const std::string& output, const std::string& reference)
{
    const Scope scope{*m_objects};
    const Change change{*m_objects};
    const Result<OutputReference> source = findOutput(output);
    if (!source)
        return Failure{source.reason()};
    const Result<OwnInput> input = findOwnInput(reference);
    if (!input)
        return Failure{input.reason()};
    const auto& [slot, entry] = *input;
    if (Result<void> connected = slot->container()->tryAttachOutput(source->output, slot, source->member); !connected)
        return connected;
    forgetConnection(*entry, slot->name());
    entry->connections.push_back({{slot->name(), Here}, {output, Here}});
    if (std::ranges::find(m_network.connected, slot) == m_network.connected.end())
        m_network.connected.push_back(slot);
    m_timeProvider.reset();
    return {};
}

Result<void> SessionCore::disconnect(const std::string& reference)
{
    const Scope scope{*m_objects};
    const Change change{*m_objects};
    const Result<OwnInput> input = findOwnInput(reference);
    if (!input)
        return Failure{input.reason()};
    const auto& [slot, entry] = *input;
    if (!forgetConnection(*entry, slot->name()))
        return Failure{"the input is not connected"};
    slot->container()->detach(slot);
    std::erase(m_network.connected, slot);
    m_timeProvider.reset();
    return {};
}

Result<void> SessionCore::addColumn(const std::string& title, const std::string& output)
{
    if (Result<void> fine = requireNoFaults(); !fine)
        return fine;
    const Change change{*m_objects};
    Result<OutputReference> source = findOutput(output);
    if (!source)
        return Failure{source.reason()};
    m_file.columns.push_back({{title, Here}, {output, Here}});
    m_network.columns.push_back({title, *std::move(source)});
    return {};
}

Result<void> SessionCore::selectChart(const std::string& name)
{
    const Scope scope{*m_objects};
    const Change change{*m_objects};
    const ChartChoice choice = ChartChoice::find();
    if (!choice)
        return Failure{"no object depends on a chart"};
    choice.want(name);
    m_chart = m_file.chart = {name, Here};
    return {};
}

Result<std::string> SessionCore::savedText() const
{
    if (const Result<void> fine = requireNoFaults(); !fine)
        return Failure{fine.reason()};
    NetworkInputs inputs;
    for (std::size_t number = 0; number < m_file.objects.size(); ++number) {
        const NetworkFile::Object& entry = m_file.objects[number];
        const StrongPtr<Orla::VObject> object = m_network.objects[number].lock();
        if (!object)
            return Failure{entry.description + " was removed during an evaluation"};
        NetworkInputs::Object& made = inputs.objects.emplace_back();
        made.isKnown = true;
        made.names = namesOf(object->inputs());
        for (const StrongPtr<Orla::VSlot>& input : object->inputs()) {
            const auto text =
                std::ranges::find(entry.texts, input->name(), [](const auto& each) { return each.input.text; });
            if (text == entry.texts.end())
                continue;
            std::vector<std::string> texts;
            for (const PlacedText& exact : text->exact)
                texts.push_back(exact.text);
            const StrongPtr<Orla::VValueBase> value = input->ownParameter()->DefaultValue();
            if (texts.empty() && text->isOfInput) {
                const Result<std::string> own = Loam::attempt([&] { return value->Text(); });
                if (!own)
                    return Failure{entry.description + ", input " + inQuotes(input->name()) + ": " + own.reason()};
                texts.push_back(*own);
            } else if (texts.empty()) {
                texts.push_back(text->value.text);
            }
            made.set.push_back({.name = input->name(),
                                .type = &input->type(),
                                .place = {},
                                .description = entry.description + ", input " + inQuotes(input->name()),
                                .given = declaredValue(input),
                                .value = value,
                                .texts = std::move(texts),
                                .namesResult = input->hasFlag(Orla::VSlot::NamesResult)});
        }
    }
    Faults faults{m_faults.file()};
    const CanonicalNetwork canonical{m_file, inputs, faults};
    if (!faults.empty())
        return Failure{faults.all().front().message};
    return Loam::attempt([&] { return canonicalText(canonical.file(), faults); });
}

} // namespace Tarn::Detail
