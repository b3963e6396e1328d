#include "Bindings.hpp"
#include "Conversions.hpp"
#include "Numbers.hpp"
#include "Texts.hpp"

#include <fathom/Char.hpp>
#include <fathom/Double.hpp>
#include <fathom/String.hpp>

#include <concepts>
#include <cmath>
#include <limits>
#include <string>

namespace Tarn::Python {

namespace {

template<class T>
py::object integerToPython(const T& number)
{
    return py::int_(number);
}

template<std::integral T>
std::string integerLimits()
{
    return std::to_string(std::numeric_limits<T>::min()) + " to " + std::to_string(std::numeric_limits<T>::max());
}

template<std::integral T>
std::optional<T> integerFromPython(py::handle object)
{
    if (isBool(object) || !PyIndex_Check(object.ptr())
        || py::hasattr(object, "__array__") != py::hasattr(object, "item"))
        return std::nullopt;
    const py::object number = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
    if (!number) {
        PyErr_Clear();
        return std::nullopt;
    }
    if (number < py::int_(std::numeric_limits<T>::min()) || number > py::int_(std::numeric_limits<T>::max()))
        throw py::value_error("found " + printed(number) + ", expected an integer from " + integerLimits<T>());
    return number.cast<T>();
}

py::object boolToPython(const bool& truth)
{
    return py::bool_(truth);
}

std::optional<bool> boolFromPython(py::handle object)
{
    if (!isBool(object))
        return std::nullopt;
    return py::bool_(py::reinterpret_borrow<py::object>(object));
}

template<std::floating_point T>
py::object floatToPython(const T& number)
{
    return py::float_(static_cast<double>(number));
}

template<std::floating_point T>
std::optional<T> floatFromPython(py::handle object)
{
    const std::optional<double> number = toNumber(object);
    if (!number)
        return std::nullopt;
    if (std::isfinite(*number) && std::abs(*number) > static_cast<double>(std::numeric_limits<T>::max()))
        throw py::value_error("found " + printed(object) + ", which is too large for a single-precision number");
    return static_cast<T>(*number);
}

py::object textToPython(const std::string& text)
{
    return toStr(text);
}

std::optional<std::string> textFromPython(py::handle object)
{
    py::detail::type_caster<Text> caster;
    if (!caster.load(object, false))
        return std::nullopt;
    return static_cast<Text&>(caster).bytes;
}

py::object charToPython(const char& character)
{
    // One byte of a text, which need not be a character.
    return character == 0 ? py::str() : toStr({&character, 1});
}

std::optional<char> charFromPython(py::handle object)
{
    const std::optional<std::string> text = textFromPython(object);
    if (!text)
        return std::nullopt;
    if (text->size() > 1)
        throw py::value_error("found " + printed(object) + ", expected at most one ASCII character");
    return text->empty() ? char{} : text->front();
}

template<class... T>
void addIntegers()
{
    (addConversion<T, integerToPython<T>, integerFromPython<T>>(), ...);
}

} // namespace

void bindPlainValues()
{
    addIntegers<short, int, long, long long, unsigned short, unsigned int, unsigned long, unsigned long long>();
    addConversion<bool, boolToPython, boolFromPython>();
    addConversion<double, floatToPython<double>, floatFromPython<double>>();
    addConversion<float, floatToPython<float>, floatFromPython<float>>();
    addConversion<char, charToPython, charFromPython>();
    addConversion<std::string, textToPython, textFromPython>();
}

} // namespace Tarn::Python
