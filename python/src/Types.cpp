#include "Bindings.hpp"
#include "Serving.hpp"
#include "Texts.hpp"

#include <tarn/types/TypeCatalogue.hpp>

#include <pybind11/stl.h>

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

// Fields are dicts here; the module in Python makes classes of them, and adds what the framework
// describes.
py::dict toDict(const ValueTypeDescription& type)
{
    py::dict made;
    made["name"] = toStr(type.name);
    made["label"] = toStr(type.label);
    made["colour"] = toStr(type.colour);
    made["default_text"] = toStr(type.defaultText);
    made["is_input"] = type.isInput;
    made["components"] = py::tuple(py::cast(type.components));
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
        inputs.append(made);
    }
    py::list outputs;
    for (const ObjectTypeDescription::Output& output : type.outputs) {
        py::dict made;
        made["name"] = toStr(output.name);
        made["type"] = toStr(output.typeLabel);
        outputs.append(made);
    }
    py::dict made;
    made["name"] = toStr(type.name);
    made["library"] = toStr(type.library);
    made["failure"] = toStr(type.failure);
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
