#include "Bindings.hpp"
#include "ValueClass.hpp"

#include <fathom/Range.hpp>
#include <fathom/VTime.hpp>

#include <optional>

// Ranges and times.

namespace Tarn::Python {

using Orla::Range;
using Orla::VTime;

void bindIntervals(py::module_& module)
{
    ValueClass<Range>(module, "Range",
                      "An interval of numbers from `begin` to `end`. Nothing is enforced: the end may be before the "
                      "begin.\n\n>>> str(fa.Range(4.5, 10))\n'4.5:10'\n")
        .constructor(
            [](Number begin, Number end) {
                return Range{begin.value, end.value};
            },
            py::arg("begin") = 0.0, py::arg("end") = 1.0)
        .field(
            "begin", [](const Range& self) { return self.begin; }, "The first number.")
        .field(
            "end", [](const Range& self) { return self.end; }, "The last number.")
        .asSequence();

    ValueClass<VTime>(module, "Time",
                      "A point in time, with the interval of valid times and the length of one step; a step of 0 "
                      "means continuous time. The unit is the user's.\n\n"
                      ">>> str(fa.Time(5, 0, 10, 1))\n'5[0,10]@1'\n")
        .constructor(
            [](Number time, std::optional<Number> begin, std::optional<Number> end, Number step, const Text& info1,
               const Text& info2, const Text& info3, bool flagA, bool flagB) {
                const double first = begin.value_or(time).value;
                VTime made{time.value,  first,      end.value_or(first).value, step.value, info1.bytes,
                           info2.bytes, info3.bytes};
                made.flagA = flagA;
                made.flagB = flagB;
                return made;
            },
            py::arg("time") = 0.0, py::arg("begin") = py::none(), py::arg("end") = py::none(), py::arg("step") = 0.0,
            py::arg("info1") = "", py::arg("info2") = "", py::arg("info3") = "", py::arg("flag_a") = false,
            py::arg("flag_b") = true)
        .field(
            "time", [](const VTime& self) { return self.time; }, "The point in time.")
        .field(
            "begin", [](const VTime& self) { return self.range.begin; }, "The first valid time.")
        .field(
            "end", [](const VTime& self) { return self.range.end; }, "The last valid time.")
        .field(
            "step", [](const VTime& self) { return self.dt; }, "The length of one step; 0 for continuous time.")
        .field(
            "info1", [](const VTime& self) { return Text{self.info1}; }, "A free text that travels with the time.")
        .field(
            "info2", [](const VTime& self) { return Text{self.info2}; }, "A free text that travels with the time.")
        .field(
            "info3", [](const VTime& self) { return Text{self.info3}; }, "A free text that travels with the time.")
        .field(
            "flag_a", [](const VTime& self) { return self.flagA; }, "A flag that travels with the time.")
        .field(
            "flag_b", [](const VTime& self) { return self.flagB; }, "A flag that travels with the time.")
        .property("last_step", &VTime::maxTsteps, "The number of the last step; 0 without steps.")
        .def("step_of", &VTime::Tstep, py::arg("time"), "Returns the number of the step nearest to `time`.")
        .def("time_of", &VTime::Tdiscrete, py::arg("step"), "Returns the time of a step, wrapped into the valid steps.")
        .def("__float__", [](const VTime& self) { return self.time; });
}

} // namespace Tarn::Python
