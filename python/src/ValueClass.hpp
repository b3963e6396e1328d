#pragma once

#include "Conversions.hpp"
#include "Numbers.hpp"
#include "Texts.hpp"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <utility>

namespace Tarn::Python {

/// What Python objects that are not of the class become values.
enum class Accepts {
    Arguments, ///< a tuple or list of the arguments of the constructor
    Argument,  ///< the only argument of the constructor
};

// What the classes have in common: `_fields` has the names of the attributes, in the order of the
// arguments of the constructor. `cls(*fields)` is equal to the object.
py::tuple fieldsOf(py::handle self);
py::ssize_t hashOf(py::handle self);
py::str reprOf(py::handle self);
py::object areEqual(py::handle self, py::handle other);
py::tuple reductionOf(py::handle self);
void finishClass(py::handle cls, const py::list& fields);

/// Returns an object of \p cls that is made from \p object; null if \p object has an unsuitable type.
py::object made(py::handle cls, py::handle object, Accepts accepts);

/// Binds a value type as an immutable Python class: with a constructor, fields, comparison, hash,
/// text, a representation that evaluates, and pickling.
template<class T>
class ValueClass {
public:
    ValueClass(py::module_& module, const char* name, const char* doc, Accepts accepts = Accepts::Arguments)
        : m_class{module, name, doc}
    {
        s_accepts = accepts;
        m_class.def("__str__", [](const T& self) { return Text{Orla::VValueTrait<T>::Text(self)}; });
        addConversion<T, toPython, fromPython>();
    }

    /// Adds what the class does not define differently.
    ~ValueClass()
    {
        finishClass(m_class, m_fields);
        defineUnlessDefined("__eq__", areEqual);
        defineUnlessDefined("__hash__", hashOf);
        defineUnlessDefined("__repr__", reprOf);
        defineUnlessDefined("__reduce__", reductionOf);
    }
    ValueClass(const ValueClass&) = delete;
    ValueClass& operator=(const ValueClass&) = delete;

    /// Adds the constructor \p make with the names of its arguments.
    template<class Make, class... Extra>
    ValueClass& constructor(Make&& make, Extra&&... extra)
    {
        m_class.def(py::init(std::forward<Make>(make)), std::forward<Extra>(extra)...);
        return *this;
    }

    template<class Getter>
    ValueClass& field(const char* name, Getter&& getter, const char* doc)
    {
        m_class.def_property_readonly(name, std::forward<Getter>(getter), doc);
        m_fields.append(name);
        return *this;
    }

    template<class... Arguments>
    ValueClass& def(Arguments&&... arguments)
    {
        m_class.def(std::forward<Arguments>(arguments)...);
        return *this;
    }

    template<class... Arguments>
    ValueClass& property(Arguments&&... arguments)
    {
        m_class.def_property_readonly(std::forward<Arguments>(arguments)...);
        return *this;
    }

    /// Makes objects of the class sequences of their fields.
    ValueClass& asSequence()
    {
        m_class.def("__len__", [](py::handle self) { return fieldsOf(self).size(); });
        m_class.def("__iter__", [](py::handle self) { return py::iter(fieldsOf(self)); });
        m_class.def("__getitem__",
                    [](py::handle self, const py::object& key) { return py::object(fieldsOf(self)[key]); });
        return *this;
    }

private:
    template<class Function>
    void defineUnlessDefined(const char* name, Function function)
    {
        const py::object defined = m_class.attr("__dict__").attr("get")(name);
        if (defined.is_none()) // which also is the hash of a class with a comparison
            m_class.def(name, function);
    }

    static py::object toPython(const T& content) { return py::cast(content, py::return_value_policy::copy); }

    static std::optional<T> fromPython(py::handle object)
    {
        const py::object value = py::isinstance<T>(object) ? py::reinterpret_borrow<py::object>(object)
                                                           : made(py::type::of<T>(), object, s_accepts);
        if (!value)
            return std::nullopt;
        return value.cast<const T&>();
    }

    static inline Accepts s_accepts = Accepts::Arguments;

    py::class_<T> m_class;
    py::list m_fields;
};

} // namespace Tarn::Python
