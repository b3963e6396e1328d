#include <tarn/types/TypeCatalogue.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/libraries/Libraries.hpp>
#include <tarn/text/Activity.hpp>
#include <tarn/types/Choices.hpp>
#include <tarn/types/DescriptionCheck.hpp>

#include <fathom/VConnectionTypeColors.hpp>

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueComponents.hpp>
#include <trellis/VValueCreator.hpp>

#include <loam/Environment.hpp>
#include <loam/Typename.hpp>

#include <stdexcept>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VSlot;

// Returns LIBRARY:NAME for each library if several have different types of that name, else the
// name itself.
std::vector<std::string> completeNames(const std::string& name)
{
    const std::vector<std::string> libraries = Orla::VObjectCreator::libraries(name);
    if (libraries.size() < 2)
        return {name};
    std::vector<std::string> names;
    for (const std::string& library : libraries)
        names.push_back(library + ':' + name);
    return names;
}

ObjectTypeDescription nameAndFile(const std::string& name, const Orla::VObjectCreator& creator)
{
    ObjectTypeDescription description;
    description.name = name;
    description.library = creator.file();
    if (creator.description())
        description.description = creator.description()->parts();
    return description;
}

// Returns a text that gives the input its initial value; empty if its type reads none.
std::string exampleTextOf(const Orla::VParameter& parameter)
{
    const StrongPtr<Orla::VValueBase> declared = parameter.newValue();
    if (const auto cases = contentOf<Orla::Enum>(*declared); cases.selection())
        return cases.selection()->selectedName();
    if (const auto one = contentOf<OneOf>(*declared); one && one->contains(one->selection))
        return one->selection;
    const std::string text = declared->Text();
    const Loam::Result<bool> accepted = Loam::attempt([&] { return parameter.newValue()->setValueFromText(text); });
    return accepted && *accepted ? text : std::string();
}

ObjectTypeDescription::Input describeInput(const VSlot& slot)
{
    ObjectTypeDescription::Input input{.name = slot.name(),
                                       .type = Loam::Typename(slot.type()),
                                       .typeLabel = Orla::VTypeLabel::of(slot.type()),
                                       .level = slot.expertLevel(),
                                       .initialText = slot.ownParameter()->DefaultValue()->Text(),
                                       .exampleText = exampleTextOf(*slot.ownParameter()),
                                       .findsPartner = slot.hasFlag(VSlot::AutoConnected),
                                       .partner = {},
                                       .choices = choicesOf(*slot.ownParameter()->DefaultValue()),
                                       .description = slot.description()};
    // Only the constructor can have connected it this early.
    if (slot.isConnected() || !slot.ownsParameter()) {
        input.findsPartner = true;
        const StrongPtr<Orla::VSlotContainer> owner = slot.parameter()->owner();
        if (owner && owner->object())
            input.partner = owner->object()->Name() + '.' + slot.parameter()->Name();
    }
    return input;
}

void readSlots(const Orla::VObject& object, int highestLevel, ObjectTypeDescription& description)
{
    for (const StrongPtr<VSlot>& slot : object.inputs()) {
        if (slot->expertLevel() > highestLevel)
            ++description.hiddenInputs;
        else
            description.inputs.push_back(describeInput(*slot));
    }
    for (const StrongPtr<VSlot>& slot : object.outputs()) {
        if (!isPrivateState(*slot))
            description.outputs.push_back(
                {slot->name(), Loam::Typename(slot->type()), Orla::VTypeLabel::of(slot->type()), slot->description()});
    }
}

ValueTypeDescription describe(const std::string& name, Orla::VValueCreator& creator)
{
    const std::type_info& type = creator.valueType();
    ValueTypeDescription description{.name = name,
                                     .label = Orla::VTypeLabel::of(type),
                                     .example = Orla::VTypeLabel::exampleOf(type),
                                     .colour = Orla::VConnectionTypeColors::get(type),
                                     .defaultText = {},
                                     .failure = {},
                                     .isInput = bool(Orla::TypedSlotCreator::find(type)),
                                     .components = Orla::VValueComponents::names(type)};
    const Loam::Result<void> made = Loam::attempt([&] {
        // The empty text may be refused; the value is created anyway.
        bool ok = false;
        const StrongPtr<Orla::VValueBase> value = creator.create({}, ok);
        if (!value)
            throw std::runtime_error("its creator returned null");
        description.defaultText = value->Text();
    });
    if (!made)
        description.failure = made.reason();
    return description;
}

ObjectTypeDescription describe(const std::string& name, const Orla::VObjectCreator& creator, int highestLevel)
{
    ObjectTypeDescription description = nameAndFile(name, creator);
    const Activity activity{"creating an object of type", name.c_str()};
    const Loam::Result<void> made = Loam::attempt([&] {
        const StrongPtr<Orla::VObject> object = creator.create(creator.typeName(), 0, nullptr);
        if (!object)
            throw std::runtime_error("its creator returned null");
        readSlots(*object, highestLevel, description);
        if (const Loam::Result<void> fine = checkDescriptions(*object); !fine)
            throw std::runtime_error("its description is wrong: " + fine.reason());
    });
    if (!made)
        description.failure = made.reason();
    removeAnnouncedObjects();
    return description;
}

} // namespace

TypeCatalogue::TypeCatalogue(const std::vector<std::string>& libraries)
    : m_libraries{std::make_unique<Libraries>(Libraries::searchPath(Loam::getCurrentDir()))}
{
    std::vector<std::string> names{StandardLibrary};
    names.insert(names.end(), libraries.begin(), libraries.end());
    for (const std::string& name : names) {
        if (const Loam::Result<void> loaded = m_libraries->load(name); !loaded)
            m_refusals.push_back(loaded.reason());
    }
}

TypeCatalogue::~TypeCatalogue()
{
    if (const Loam::Result<void> unloaded = m_libraries->unload(); !unloaded)
        Orla::VActionNotifier::Warning("The " + unloaded.reason());
}

std::vector<ValueTypeDescription> TypeCatalogue::valueTypes() const
{
    std::vector<ValueTypeDescription> all;
    for (const std::string& name : Orla::VValueCreator::names()) {
        if (const StrongPtr<Orla::VValueCreator> creator = Orla::VValueCreator::find(name))
            all.push_back(describe(name, *creator));
    }
    return all;
}

std::vector<ValueTypeDescription> TypeCatalogue::valueTypes(const std::string& name) const
{
    std::vector<ValueTypeDescription> found;
    for (const std::string& each : Orla::VValueCreator::names()) {
        const StrongPtr<Orla::VValueCreator> creator = Orla::VValueCreator::find(each);
        if (creator && (each == name || Orla::VTypeLabel::of(creator->valueType()) == name))
            found.push_back(describe(each, *creator));
    }
    return found;
}

std::vector<ObjectTypeDescription> TypeCatalogue::objectTypes(int highestLevel) const
{
    std::vector<ObjectTypeDescription> all;
    for (const std::string& name : Orla::VObjectCreator::names()) {
        for (ObjectTypeDescription& each : objectTypes(name, highestLevel))
            all.push_back(std::move(each));
    }
    return all;
}

std::vector<ObjectTypeDescription> TypeCatalogue::objectTypeFiles() const
{
    std::vector<ObjectTypeDescription> all;
    for (const std::string& name : Orla::VObjectCreator::names()) {
        for (const std::string& each : completeNames(name)) {
            if (const StrongPtr<Orla::VObjectCreator> creator = Orla::VObjectCreator::find(each))
                all.push_back(nameAndFile(each, *creator));
        }
    }
    return all;
}

std::vector<ObjectTypeDescription> TypeCatalogue::objectTypes(const std::string& name, int highestLevel) const
{
    std::vector<ObjectTypeDescription> found;
    for (const std::string& each : completeNames(name)) {
        if (const StrongPtr<Orla::VObjectCreator> creator = Orla::VObjectCreator::find(each))
            found.push_back(describe(each, *creator, highestLevel));
    }
    return found;
}

} // namespace Tarn
