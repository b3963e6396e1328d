#include "Slots.hpp"

#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueComponents.hpp>

#include <loam/Typename.hpp>

#include <pybind11/stl.h>

#include <string_view>
#include <utility>

namespace Tarn::Python {

namespace {

using SlotPtr = Orla::StrongPtr<Orla::VSlot>;
using Use = Orla::VNetwork::Use;

// Returns "OBJECT.OUTPUT" or "OBJECT.OUTPUT.MEMBER" that a connected input reads.
std::string sourceOf(const Orla::VSlot& input)
{
    const Orla::StrongPtr<Orla::VSlotContainer> owner = input.parameter()->owner();
    if (!input.isConnected() || !owner || !owner->object())
        return {};
    std::string name = input.parameter()->Name();
    for (const SlotPtr& output : owner->outputs()) {
        if (output->parameter() == input.parameter())
            name = output->name();
    }
    return owner->object()->Name() + '.' + name + (input.member().empty() ? "" : '.' + input.member());
}

Slot describe(const Orla::VObject& object, const Orla::VSlot& slot, bool isOutput)
{
    return {.object = object.Name(),
            .description = object.typeAndName(),
            .name = slot.name(),
            .type = &slot.type(),
            .typeName = Orla::VTypeLabel::of(slot.type()),
            .typeCode = Loam::Typename(slot.type()),
            .components = Orla::VValueComponents::names(slot.type()),
            .source = isOutput ? std::string() : sourceOf(slot),
            .level = slot.expertLevel(),
            .meaning = slot.description(),
            .isOutput = isOutput,
            .isConnected = slot.isConnected(),
            .isAutomatic = slot.hasFlag(Orla::VSlot::AutoConnected),
            .namesResult = slot.hasFlag(Orla::VSlot::NamesResult)};
}

// Returns the component that the name denotes, if an output has it.
std::optional<Slot> findComponent(const Orla::VObject& object, std::string_view name)
{
    for (std::size_t dot = name.find('.'); dot != std::string_view::npos; dot = name.find('.', dot + 1)) {
        const SlotPtr output = object.findOutput(std::string(name.substr(0, dot)));
        const std::string member(name.substr(dot + 1));
        const std::type_info* const type = output ? Orla::VValueComponents::typeOf(output->type(), member) : nullptr;
        if (!type)
            continue;
        Slot slot = describe(object, *output, true);
        slot.name = name;
        slot.type = type;
        slot.typeName = Orla::VTypeLabel::of(*type);
        slot.typeCode = Loam::Typename(*type);
        slot.components = Orla::VValueComponents::names(*type);
        slot.meaning = nullptr; // it describes the whole value
        return slot;
    }
    return std::nullopt;
}

std::string namesOf(const Orla::VSlotSet& slots)
{
    std::string names;
    for (const SlotPtr& slot : slots)
        names += (names.empty() ? "" : ", ") + slot->name();
    return names.empty() ? "none" : names;
}

} // namespace

Slot Slot::find(const Handle& handle, const std::string& name, SlotKind kind)
{
    const Use use{handle.network()->session().network()};
    const ObjectPtr object = handle.object();
    if (kind != SlotKind::Output) {
        if (const SlotPtr input = object->findSlot(name))
            return describe(*object, *input, false);
    }
    if (kind != SlotKind::Input) {
        if (const SlotPtr output = object->findOutput(name))
            return describe(*object, *output, true);
        if (std::optional<Slot> component = findComponent(*object, name))
            return *std::move(component);
    }
    std::string message = object->typeAndName() + " has no ";
    message += kind == SlotKind::Input ? "input" : kind == SlotKind::Output ? "output" : "input or output";
    message += " \"" + name + '"';
    if (kind == SlotKind::Input && object->findOutput(name))
        throw Missing{message + "; that is an output"};
    if (kind != SlotKind::Output)
        message += "; inputs: " + namesOf(object->inputs());
    if (kind != SlotKind::Input)
        message += "; outputs: " + namesOf(object->outputs());
    throw Missing{message};
}

std::string Slot::place() const
{
    return description + ", " + (isOutput ? "output" : "input") + " \"" + name + "\": ";
}

py::object limitsOf(const Orla::VSlotDescription* description)
{
    if (!description || !description->parts().limits.isSet())
        return py::none();
    return py::make_tuple(description->parts().limits.from, description->parts().limits.to);
}

std::vector<Slot> slotsOf(const Handle& handle, SlotKind kind)
{
    const Use use{handle.network()->session().network()};
    const ObjectPtr object = handle.object();
    const bool isOutput = kind == SlotKind::Output;
    std::vector<Slot> slots;
    for (const SlotPtr& slot : isOutput ? object->outputs() : object->inputs())
        slots.push_back(describe(*object, *slot, isOutput));
    return slots;
}

std::string typeOf(const Handle& handle)
{
    const Use use{handle.network()->session().network()};
    const ObjectPtr owner = handle.object();
    const Orla::VObject& object = *owner; // a reference, because of a warning of Clang
    if (object.hasTypeName())
        return object.typeName();
    for (const auto& creator : Orla::VObjectCreator::creators()) {
        if (creator->objectType() == typeid(object))
            return creator->typeName();
    }
    return Loam::Typename(typeid(object));
}

void bindSlots(py::module_& module)
{
    py::enum_<SlotKind>(module, "SlotKind")
        .value("ANY", SlotKind::Any)
        .value("INPUT", SlotKind::Input)
        .value("OUTPUT", SlotKind::Output);
    py::class_<Slot>(module, "SlotInfo", "An input or output of an object at one moment.")
        .def_property_readonly("name", [](const Slot& self) { return Text{self.name}; })
        .def_property_readonly("type", [](const Slot& self) { return Text{self.typeName}; })
        .def_property_readonly("type_code", [](const Slot& self) { return Text{self.typeCode}; })
        .def_property_readonly("components", [](const Slot& self) { return self.components; })
        .def_property_readonly("source", [](const Slot& self) { return Text{self.source}; })
        .def_property_readonly(
            "description", [](const Slot& self) { return Text{self.meaning ? self.meaning->parts().sentence : ""}; })
        .def_property_readonly("unit",
                               [](const Slot& self) { return Text{self.meaning ? self.meaning->parts().unit : ""}; })
        .def_property_readonly("limits", [](const Slot& self) { return limitsOf(self.meaning); })
        .def_property_readonly("limits_text",
                               [](const Slot& self) { return Text{self.meaning ? self.meaning->limitsText() : ""}; })
        .def_readonly("level", &Slot::level)
        .def_readonly("is_output", &Slot::isOutput)
        .def_readonly("is_connected", &Slot::isConnected)
        .def_readonly("is_automatic", &Slot::isAutomatic)
        .def_readonly("names_result", &Slot::namesResult);
}

} // namespace Tarn::Python
