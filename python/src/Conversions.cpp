#include "Conversions.hpp"

#include "Bindings.hpp"
#include "Texts.hpp"

#include <tarn/network/Session.hpp>

#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueComponents.hpp>

#include <loam/Typename.hpp>
#include <loam/Utf8.hpp>

#include <pybind11/stl.h>

#include <typeindex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tarn::Python {

namespace {

using Table = std::unordered_map<std::type_index, Conversion>;

// Filled while the module is imported; never destroyed, because Python objects may outlive it.
Table& table()
{
    static Table& table = *new Table;
    return table;
}

// Texts of values may be long, such as that of a catalogue.
constexpr std::size_t LongestText = 60;

std::string labelOf(const Value& value)
{
    return Orla::VTypeLabel::of(value.content()->getType());
}

std::vector<std::string> componentsOf(const Value& value)
{
    return Orla::VValueComponents::names(value.content()->getType());
}

bool areEqual(const Value& a, const Value& b)
{
    return a.content()->getType() == b.content()->getType() && !a.content()->isDifferentFrom(b.content());
}

py::tuple argumentsOf(const Value& value)
{
    return py::make_tuple(toStr(Loam::Typename(value.content()->getType())), toStr(value.content()->Text()));
}

// Evaluates unless the text is long.
py::str shortRepr(const Value& value)
{
    std::string text = value.content()->Text();
    if (text.size() <= LongestText)
        return py::str("fathom.Value{}").format(py::repr(argumentsOf(value)));
    std::size_t end = LongestText;
    while (end > 0 && Loam::isContinuation(text[end]))
        --end;
    text.resize(end);
    return toStr("<fathom.Value " + labelOf(value) + ' ' + text + "...>");
}

std::vector<std::string> attributesOf(py::handle self)
{
    auto names = py::module_::import("builtins").attr("object").attr("__dir__")(self).cast<std::vector<std::string>>();
    for (std::string& name : componentsOf(self.cast<const Value&>()))
        names.push_back(std::move(name));
    return names;
}

} // namespace

void addConversion(const std::type_info& type, const Conversion& conversion)
{
    table().insert_or_assign(type, conversion);
}

bool hasConversion(const std::type_info& type)
{
    return table().contains(type);
}

py::object toPython(const StrongPtr<VValueBase>& value, const Keeper& keeper)
{
    if (!value)
        return py::none();
    const auto found = table().find(value->getType());
    return found == table().end() ? py::cast(Value{value, keeper}) : found->second.toPython(*value);
}

StrongPtr<VValueBase> fromPython(const std::type_info& type, py::handle object)
{
    if (py::isinstance<Value>(object)) {
        const StrongPtr<VValueBase>& value = object.cast<const Value&>().content();
        if (value->getType() == type)
            return value->copy();
        throw py::type_error("found a value of type " + Orla::VTypeLabel::of(value->getType()) + ", expected type "
                             + Orla::VTypeLabel::of(type));
    }
    const auto found = table().find(type);
    if (found != table().end()) {
        if (StrongPtr<VValueBase> value = found->second.fromPython(object))
            return value;
    }
    throw py::type_error("found " + printed(object) + " of type " + Py_TYPE(object.ptr())->tp_name
                         + ", expected a value of type " + Orla::VTypeLabel::of(type));
}

StrongPtr<Orla::VValueCreator> findCreator(const std::string& type)
{
    if (StrongPtr<Orla::VValueCreator> found = Orla::VValueCreator::find(type))
        return found;
    for (StrongPtr<Orla::VValueCreator>& creator : Orla::VValueCreator::creators()) {
        if (Orla::VTypeLabel::of(creator->valueType()) == type)
            return std::move(creator);
    }
    return nullptr;
}

Value Value::read(const std::string& type, const std::string& text)
{
    StrongPtr<Orla::VValueCreator> creator = findCreator(type);
    Keeper standard;
    if (!creator) {
        standard = std::make_shared<Session>(); // which loads the standard library
        creator = findCreator(type);
    }
    if (!creator)
        throw py::value_error("found type \"" + type + "\", expected one that a loaded library registers");
    bool ok = false;
    StrongPtr<VValueBase> value = creator->create(text, ok);
    if (!ok) {
        const std::string example = Orla::VTypeLabel::exampleOf(creator->valueType());
        throw py::value_error("found \"" + text + "\", expected a text of type "
                              + Orla::VTypeLabel::of(creator->valueType())
                              + (example.empty() ? "" : ", such as \"" + example + '"'));
    }
    return {std::move(value), std::move(standard)};
}

py::object Value::component(const std::string& name) const
{
    if (const StrongPtr<VValueBase> found = name.empty() ? nullptr : m_content->component(name))
        return Python::toPython(found, m_keeper);
    std::string message = "values of type " + labelOf(*this) + " have no component \"" + name + '"';
    const char* separator = "; components: ";
    for (const std::string& each : componentsOf(*this))
        message += std::exchange(separator, ", ") + each;
    throw py::attribute_error(message);
}

void bindValue(py::module_& module)
{
    py::class_<Value>(module, "Value",
                      "A value of a type of an object library. Its components are attributes; number arrays among "
                      "them are read-only numpy arrays. It can be assigned to inputs of its type, and made from the "
                      "name of the type and a text; the library must be loaded.\n\n"
                      ">>> fa.Value('TimeStep', '1.5 h').seconds\n5400.0\n")
        .def(py::init([](const Text& type, const Text& text) { return Value::read(type.bytes, text.bytes); }),
             py::arg("type"), py::arg("text"))
        .def_property_readonly(
            "type", [](const Value& self) { return Text{labelOf(self)}; }, "The name of the type.")
        .def_property_readonly("components", componentsOf, "The names of the components.")
        .def(
            "__getattr__", [](const Value& self, const Text& name) { return self.component(name.bytes); },
            "Returns a component.")
        .def(
            "__getitem__",
            [](const Value& self, const Text& name) {
                try {
                    return self.component(name.bytes);
                } catch (const py::attribute_error& error) {
                    throw py::key_error(error.what());
                }
            },
            "Returns a component, also one whose name is an attribute of every value, such as \"type\".")
        .def("__dir__", attributesOf)
        .def("__str__", [](const Value& self) { return Text{self.content()->Text()}; })
        .def("__repr__", shortRepr)
        .def("__eq__",
             [](const Value& self, py::handle other) -> py::object {
                 if (!py::isinstance<Value>(other))
                     return py::reinterpret_borrow<py::object>(Py_NotImplemented);
                 return py::bool_(areEqual(self, other.cast<const Value&>()));
             })
        .def("__hash__", [](const Value& self) { return py::hash(argumentsOf(self)); })
        .def("__reduce__", [](py::handle self) {
            return py::make_tuple(py::type::of(self), argumentsOf(self.cast<const Value&>()));
        });
}

} // namespace Tarn::Python
