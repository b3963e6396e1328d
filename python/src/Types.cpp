#include "Bindings.hpp"
#include "Serving.hpp"
#include "Slots.hpp"
#include "Texts.hpp"

#include <tarn/types/TypeCatalogue.hpp>

#include <pybind11/stl.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn::Python {

namespace {

using Strings = std::vector<Text>;

std::vector<std::string> namesOf(const Strings& libraries)
{
    std::vector<std::string> names;
    for (const Text& library : libraries)
        names.push_back(library.bytes);
    return names;
}

void requireAll(const TypeCatalogue& catalogue)
{
    if (!catalogue.refusals().empty())
        throw py::value_error(catalogue.refusals().front());
}

std::vector<ValueTypeDescription> valueTypes(const Strings& libraries)
{
    return unlocked([&] {
        const TypeCatalogue catalogue{namesOf(libraries)};
        requireAll(catalogue);
        return catalogue.valueTypes();
    });
}

std::vector<ObjectTypeDescription> objectTypes(const Strings& libraries)
{
    return unlocked([&] {
        const TypeCatalogue catalogue{namesOf(libraries)};
        requireAll(catalogue);
        return catalogue.objectTypes();
    });
}

py::tuple toTuple(const std::vector<std::string>& texts)
{
    py::tuple made(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        made[i] = toStr(texts[i]);
    return made;
}

void addDescription(py::dict& made, const Orla::VSlotDescription* description)
{
    made["description"] = toStr(description ? description->parts().sentence : std::string());
    made["unit"] = toStr(description ? description->parts().unit : std::string());
    made["limits"] = limitsOf(description);
    made["limits_text"] = toStr(description ? description->limitsText() : std::string());
}

// Fields are dicts here; the module in Python makes classes of them.
py::dict toDict(const ValueTypeDescription& type)
{
    py::dict made;
    made["name"] = toStr(type.name);
    made["label"] = toStr(type.label);
    made["colour"] = toStr(type.colour);
    made["default_text"] = toStr(type.defaultText);
    made["is_input"] = type.isInput;
    made["components"] = py::tuple(py::cast(type.components));
    made["example"] = toStr(type.example);
    made["failure"] = toStr(type.failure);
    return made;
}

py::dict toDict(const ObjectTypeDescription& type)
{
    py::list inputs;
    for (const ObjectTypeDescription::Input& input : type.inputs) {
        py::dict made;
        made["name"] = toStr(input.name);
        made["type"] = toStr(input.typeLabel);
        made["level"] = input.level;
        made["initial_text"] = toStr(input.initialText);
        made["is_automatic"] = input.findsPartner;
        made["choices"] = toTuple(input.choices);
        addDescription(made, input.description);
        inputs.append(made);
    }
    py::list outputs;
    for (const ObjectTypeDescription::Output& output : type.outputs) {
        py::dict made;
        made["name"] = toStr(output.name);
        made["type"] = toStr(output.typeLabel);
        addDescription(made, output.description);
        outputs.append(made);
    }
    py::dict made;
    made["name"] = toStr(type.name);
    made["library"] = toStr(type.library);
    made["failure"] = toStr(type.failure);
    const Orla::VTypeDescription::Parts parts = type.description.value_or(Orla::VTypeDescription::Parts{});
    made["description"] = toStr(parts.sentence);
    made["details"] = toStr(parts.details);
    made["category"] = toStr(parts.category);
    made["keywords"] = toTuple(parts.keywords);
    made["page"] = toStr(parts.page);
    made["inputs"] = inputs;
    made["outputs"] = outputs;
    return made;
}

template<class Descriptions>
py::list toDicts(const Descriptions& types)
{
    py::list made;
    for (const auto& type : types)
        made.append(toDict(type));
    return made;
}

} // namespace

void bindTypes(py::module_& module)
{
    module.def("value_types", [](const Strings& libraries) { return toDicts(valueTypes(libraries)); });
    module.def("object_types", [](const Strings& libraries) { return toDicts(objectTypes(libraries)); });
}

} // namespace Tarn::Python
