#include "Numbers.hpp"

#include <string_view>

namespace Tarn::Python {

bool isBool(py::handle object)
{
    return PyBool_Check(object.ptr()) || std::string_view{Py_TYPE(object.ptr())->tp_name} == "numpy.bool_";
}

std::optional<double> toNumber(py::handle object)
{
    if (!object || isBool(object))
        return std::nullopt;
    if (PyFloat_Check(object.ptr()))
        return PyFloat_AS_DOUBLE(object.ptr());
    if (py::isinstance(object, py::module_::import("datetime").attr("datetime"))) {
        if (object.attr("tzinfo").is_none())
            throw py::value_error("found a datetime without a time zone, expected one with a time zone, such as "
                                  "datetime.timezone.utc");
        return object.attr("timestamp")().cast<double>();
    }
    // Arrays with one element convert to float, too.
    if (py::hasattr(object, "ndim") && object.attr("ndim").cast<int>() != 0)
        return std::nullopt;
    const PyNumberMethods* const methods = Py_TYPE(object.ptr())->tp_as_number;
    if (!methods || (!methods->nb_float && !methods->nb_index))
        return std::nullopt;
    const double number = PyFloat_AsDouble(object.ptr());
    if (number == -1.0 && PyErr_Occurred()) {
        PyErr_Clear();
        return std::nullopt;
    }
    return number;
}

} // namespace Tarn::Python
