#include "Conversions.hpp"

#include "Bindings.hpp"
#include "Texts.hpp"

#include <trellis/VTypeLabel.hpp>

#include <typeindex>
#include <unordered_map>
#include <utility>

namespace Tarn::Python {

namespace {

using Table = std::unordered_map<std::type_index, Conversion>;

// Filled while the module is imported; never destroyed, because Python objects may outlive it.
Table& table()
{
    static Table& table = *new Table;
    return table;
}

bool areEqual(const Opaque& a, const Opaque& b)
{
    return a.value()->getType() == b.value()->getType() && !a.value()->isDifferentFrom(b.value());
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
    return found == table().end() ? py::cast(Opaque{value, keeper}) : found->second.toPython(*value);
}

StrongPtr<VValueBase> fromPython(const std::type_info& type, py::handle object)
{
    if (py::isinstance<Opaque>(object)) {
        const StrongPtr<VValueBase>& value = object.cast<const Opaque&>().value();
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

void bindOpaque(py::module_& module)
{
    py::class_<Opaque>(module, "Opaque",
                       "A value of a type that Python does not know. It has a text, and can be assigned to inputs "
                       "of its type.")
        .def_property_readonly(
            "type", [](const Opaque& self) { return Text{Orla::VTypeLabel::of(self.value()->getType())}; },
            "The name of the type.")
        .def("__str__", [](const Opaque& self) { return Text{self.value()->Text()}; })
        .def("__repr__",
             [](const Opaque& self) {
                 return Text{"<fathom.Opaque " + Orla::VTypeLabel::of(self.value()->getType()) + ' '
                             + self.value()->Text() + '>'};
             })
        .def("__eq__",
             [](const Opaque& self, py::handle other) -> py::object {
                 if (!py::isinstance<Opaque>(other))
                     return py::reinterpret_borrow<py::object>(Py_NotImplemented);
                 return py::bool_(areEqual(self, other.cast<const Opaque&>()));
             })
        .def("__reduce__", [](const Opaque& self) -> py::object {
            throw py::type_error("values of type " + Orla::VTypeLabel::of(self.value()->getType())
                                 + " cannot be pickled");
        });
}

} // namespace Tarn::Python
