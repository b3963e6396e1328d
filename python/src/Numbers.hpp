#pragma once

#include <pybind11/pybind11.h>

#include <optional>

namespace Tarn::Python {

namespace py = pybind11;

/// A number that Python code gives: an int, a float, or any other type that converts to float, and
/// a `datetime` with a time zone, which means the seconds since 1970 UTC. A bool is refused, since
/// it is rarely meant as a number.
struct Number {
    double value = 0;

    Number() = default;
    Number(double number) noexcept : value{number} {} // implicit: default arguments
};

/// Returns nothing if the object is not a number.
/// \throw py::value_error for a `datetime` without a time zone.
std::optional<double> toNumber(py::handle object);

/// Returns true for a Python bool and for that of numpy.
bool isBool(py::handle object);

} // namespace Tarn::Python

namespace pybind11::detail {

template<>
struct type_caster<Tarn::Python::Number> {
    PYBIND11_TYPE_CASTER(Tarn::Python::Number, const_name("float"));

    bool load(handle source, bool)
    {
        const std::optional<double> number = Tarn::Python::toNumber(source);
        if (number)
            value = *number;
        return number.has_value();
    }
    static handle cast(const Tarn::Python::Number& number, return_value_policy, handle)
    {
        return PyFloat_FromDouble(number.value);
    }
};

} // namespace pybind11::detail
