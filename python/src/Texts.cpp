#include "Texts.hpp"

namespace Tarn::Python {

py::str toStr(std::string_view bytes)
{
    PyObject* const text = PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
    if (!text)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(text);
}

std::string printed(py::handle object)
{
    const py::object text = py::str(py::repr(object)).attr("encode")("utf-8", "replace");
    return text.cast<std::string>();
}

} // namespace Tarn::Python

namespace pybind11::detail {

bool type_caster<Tarn::Python::Text>::load(handle source, bool)
{
    if (!source || !PyUnicode_Check(source.ptr()))
        return false;
    const object bytes = reinterpret_steal<object>(PyUnicode_AsEncodedString(source.ptr(), "utf-8", "surrogateescape"));
    if (!bytes)
        throw error_already_set();
    value.bytes.assign(PyBytes_AS_STRING(bytes.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.ptr())));
    return true;
}

} // namespace pybind11::detail
