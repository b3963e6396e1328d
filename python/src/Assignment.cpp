#include "Assignment.hpp"

#include "Numbers.hpp"

#include <tarn/run/Context.hpp>

#include <fathom/Double.hpp>

#include <utility>

namespace Tarn::Python {

namespace {

// Returns the text of a natural Python object for a type of a client library, which has no other
// conversion: a number, a date, an instant or a duration in seconds.
std::optional<std::string> naturalTextOf(const py::object& object)
{
    const py::module_ datetime = py::module_::import("datetime");
    if (py::isinstance(object, datetime.attr("datetime"))) {
        toNumber(object); // refuses one without a time zone
        return object.attr("isoformat")().cast<std::string>();
    }
    if (py::isinstance(object, datetime.attr("date")))
        return object.attr("isoformat")().cast<std::string>();
    if (py::isinstance(object, datetime.attr("timedelta")))
        return Orla::VValueTrait<double>::Text(object.attr("total_seconds")().cast<double>()) + " s";
    if (PyLong_Check(object.ptr()) && !isBool(object))
        return py::str(object).cast<std::string>();
    const std::optional<double> number = toNumber(object);
    return number ? std::optional{Orla::VValueTrait<double>::Text(*number)} : std::nullopt;
}

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
        if (!hasConversion(*slot.type)) {
            if (std::optional<std::string> text = naturalTextOf(object))
                return {.text = std::move(text)};
        }
        return {.value = fromPython(*slot.type, object)};
    } catch (const py::type_error& error) {
        throw py::type_error(slot.place() + error.what());
    } catch (const py::value_error& error) {
        throw py::value_error(slot.place() + error.what());
    }
}

void Assignment::applyTo(Context& context, const Slot& slot) const
{
    const Loam::Result<void> done = text ? context.setText(slot.reference(), *text)
                                         : context.setValue(slot.reference(), value ? value->copy() : nullptr);
    if (!done)
        throw RefusedAssignment{slot.place() + done.reason()};
}

} // namespace Tarn::Python
