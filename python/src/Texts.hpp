#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <string_view>

namespace Tarn::Python {

namespace py = pybind11;

/// A text that passes between Python and the libraries as UTF-8. Bytes that are not UTF-8 become
/// surrogates in Python, as in names of files, and come back as the same bytes.
struct Text {
    std::string bytes;
};

/// Returns a Python string.
py::str toStr(std::string_view bytes);

/// Returns a message for people, in which invalid bytes are replaced.
std::string printed(py::handle object);

} // namespace Tarn::Python

namespace pybind11::detail {

template<>
struct type_caster<Tarn::Python::Text> {
    PYBIND11_TYPE_CASTER(Tarn::Python::Text, const_name("str"));

    bool load(handle source, bool);
    static handle cast(const Tarn::Python::Text& text, return_value_policy, handle)
    {
        return Tarn::Python::toStr(text.bytes).release();
    }
};

} // namespace pybind11::detail
