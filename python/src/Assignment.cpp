#include "Assignment.hpp"

#include <utility>

namespace Tarn::Python {

namespace {

std::optional<std::string> textOf(const py::object& object)
{
    if (PyUnicode_Check(object.ptr()))
        return object.cast<Text>().bytes;
    if (py::hasattr(object, "__fspath__"))
        return py::module_::import("os").attr("fsdecode")(object).cast<Text>().bytes;
    const bool isMember = py::isinstance(object, py::module_::import("enum").attr("Enum"));
    if (!isMember || PyLong_Check(object.ptr()))
        return std::nullopt;
    const py::object value = object.attr("value");
    return (PyUnicode_Check(value.ptr()) ? value : object.attr("name")).cast<Text>().bytes;
}

} // namespace

Assignment Assignment::of(const Slot& slot, const py::object& object)
{
    if (std::optional<std::string> text = textOf(object))
        return {.text = std::move(text)};
    try {
        return {.value = fromPython(*slot.type, object)};
    } catch (const py::type_error& error) {
        throw py::type_error(slot.place() + error.what());
    } catch (const py::value_error& error) {
        throw py::value_error(slot.place() + error.what());
    }
}

} // namespace Tarn::Python
