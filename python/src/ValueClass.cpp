#include "ValueClass.hpp"

#include <cmath>

namespace Tarn::Python {

namespace {

// The representations of infinity and NaN do not evaluate.
py::str evaluable(py::handle object)
{
    if (PyFloat_Check(object.ptr()) && !std::isfinite(PyFloat_AS_DOUBLE(object.ptr())))
        return py::str("float('{}')").format(object);
    if (!PyTuple_CheckExact(object.ptr()))
        return py::repr(object);
    py::list items;
    for (const py::handle item : py::reinterpret_borrow<py::tuple>(object))
        items.append(evaluable(item));
    const char* const shape = items.size() == 1 ? "({},)" : "({})";
    return py::str(shape).format(py::str(", ").attr("join")(items));
}

} // namespace

py::tuple fieldsOf(py::handle self)
{
    py::list values;
    for (const py::handle name : self.attr("_fields"))
        values.append(self.attr(name));
    return py::tuple(values);
}

py::ssize_t hashOf(py::handle self)
{
    return py::hash(fieldsOf(self));
}

py::str reprOf(py::handle self)
{
    py::list texts;
    for (const py::handle value : fieldsOf(self))
        texts.append(evaluable(value));
    return py::str("fathom.{}({})").format(py::type::of(self).attr("__name__"), py::str(", ").attr("join")(texts));
}

py::object areEqual(py::handle self, py::handle other)
{
    if (!py::isinstance(other, py::type::of(self)))
        return py::reinterpret_borrow<py::object>(Py_NotImplemented);
    return py::bool_(fieldsOf(self).equal(fieldsOf(other)));
}

py::tuple reductionOf(py::handle self)
{
    return py::make_tuple(py::type::of(self), fieldsOf(self));
}

void finishClass(py::handle cls, const py::list& fields)
{
    cls.attr("__module__") = "fathom";
    cls.attr("_fields") = py::tuple(fields);
    cls.attr("__match_args__") = py::tuple(fields);
}

py::object made(py::handle cls, py::handle object, Accepts accepts)
{
    const bool isSequence =
        py::isinstance<py::tuple>(object) || py::isinstance<py::list>(object) || py::hasattr(object, "__array__");
    if (py::isinstance<py::bytes>(object) || py::isinstance<py::bytearray>(object))
        return {}; // which are sequences of integers
    try {
        if (accepts == Accepts::Argument)
            return cls(object);
        if (isSequence)
            return cls(*py::tuple(py::reinterpret_borrow<py::object>(object)));
        if (py::isinstance<py::dict>(object))
            return cls(**py::reinterpret_borrow<py::dict>(object));
        return {};
    } catch (py::error_already_set& error) {
        if (!error.matches(PyExc_TypeError))
            throw;
        return {};
    }
}

} // namespace Tarn::Python
