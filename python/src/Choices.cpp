#include "Bindings.hpp"
#include "ValueClass.hpp"

#include <fathom/VChart.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VFlagList.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VStringList.hpp>

#include <string>
#include <vector>

// Choices, flags and charts. Assigned texts choose among what an object offers; assigned objects
// also replace what is offered.

namespace Tarn::Python {

using Loam::StringList;
using Orla::Enum;
using Orla::FlagList;
using Orla::VChart;
using Orla::VChartList;

namespace {

using Choice = StrongPtr<Orla::StringSelection, StringList>;
using MultipleChoice = StrongPtr<Orla::MultipleStringSelection, StringList>;

py::tuple toTuple(const StringList& list)
{
    py::list texts;
    for (const std::string& text : list)
        texts.append(toStr(text));
    return py::tuple(texts);
}

StrongPtr<StringList> toList(const std::vector<Text>& texts)
{
    const auto list = Loam::makeStrong<StringList>();
    for (const Text& text : texts)
        list->append(text.bytes);
    return list;
}

void bindSelections(py::module_& module)
{
    ValueClass<Choice>(module, "Choice", "The chosen text and the texts to choose from.")
        .constructor(
            [](const Text& chosen, const std::vector<Text>& choices) -> Choice {
                return Loam::makeStrong<Orla::StringSelection>(chosen.bytes, toList(choices));
            },
            py::arg("chosen") = "", py::arg("choices") = py::tuple())
        .field(
            "chosen", [](const Choice& self) { return Text{self ? self->selection : std::string()}; },
            "The chosen text; empty if nothing is chosen.")
        .field(
            "choices", [](const Choice& self) { return self ? toTuple(*self) : py::tuple(); },
            "The texts to choose from.");

    ValueClass<MultipleChoice>(module, "MultipleChoice", "The selected texts and the texts to choose from.")
        .constructor(
            [](const std::vector<Text>& selected, const std::vector<Text>& choices) -> MultipleChoice {
                const auto made = Loam::makeStrong<Orla::MultipleStringSelection>();
                for (const Text& text : choices)
                    made->append(text.bytes);
                *made->selection = *toList(selected);
                return made;
            },
            py::arg("selected") = py::tuple(), py::arg("choices") = py::tuple())
        .field(
            "selected", [](const MultipleChoice& self) { return self ? toTuple(*self->selection) : py::tuple(); },
            "The selected texts, in the order in which they were selected.")
        .field(
            "choices", [](const MultipleChoice& self) { return self ? toTuple(*self) : py::tuple(); },
            "The texts to choose from.");

    ValueClass<Enum>(module, "Enumeration", "The chosen case and the names of all cases.")
        .constructor(
            [](const Text& chosen, const std::vector<Text>& cases) {
                Enum made;
                for (const Text& each : cases) {
                    if (!made.addCase(each.bytes))
                        throw py::value_error("found an empty name of a case, expected a text");
                }
                if (!chosen.bytes.empty() && !made.select(chosen.bytes))
                    throw py::value_error("found the case " + printed(toStr(chosen.bytes))
                                          + ", expected one of the cases");
                return made;
            },
            py::arg("chosen") = "", py::arg("cases") = py::tuple())
        .field(
            "chosen",
            [](const Enum& self) { return Text{self.selection() ? self.selection()->selectedName() : std::string()}; },
            "The chosen case, or the empty text for an enumeration without cases.")
        .field(
            "cases", [](const Enum& self) { return self.selection() ? toTuple(*self.selection()) : py::tuple(); },
            "The names of all cases.");
}

VChartList chartsOf(const py::iterable& charts)
{
    std::vector<VChart> made;
    for (const py::handle chart : charts)
        made.push_back(py::isinstance<VChart>(chart) ? chart.cast<VChart>() : VChart{chart.cast<Text>().bytes});
    return VChartList{std::move(made)};
}

} // namespace

void bindChoices(py::module_& module)
{
    bindSelections(module);

    ValueClass<FlagList>(module, "Flags",
                         "A set of named switches, each on or off.\n\n"
                         ">>> fa.Flags({'land': True, 'sea': False})['land']\nTrue\n",
                         Accepts::Argument)
        .constructor(
            [](const py::dict& flags) {
                FlagList made;
                for (const auto& [name, isOn] : flags) {
                    if (!PyBool_Check(isOn.ptr()))
                        throw py::type_error("found " + printed(isOn) + ", expected True or False");
                    made.addFlag((isOn.cast<bool>() ? '+' : '-') + name.cast<Text>().bytes);
                }
                return made;
            },
            py::arg("flags") = py::dict())
        .field(
            "flags",
            [](const FlagList& self) {
                py::dict flags;
                for (const auto& [name, isOn] : self)
                    flags[toStr(name)] = isOn;
                return flags;
            },
            "A dict of the states by name.")
        .def("__hash__", [](const FlagList& self) { return py::hash(toStr(Orla::VValueTrait<FlagList>::Text(self))); })
        .def("__contains__", [](const FlagList& self, const Text& name) { return self.contains(name.bytes); })
        .def("__len__", &FlagList::size)
        .def("__getitem__", [](const FlagList& self, const Text& name) {
            if (!self.contains(name.bytes))
                throw py::key_error(name.bytes);
            return self.isOn(name.bytes);
        });

    ValueClass<VChart>(module, "Chart", "The name of a coordinate chart.")
        .constructor([](const Text& name) { return VChart{name.bytes}; }, py::arg("name") = "")
        .field(
            "name", [](const VChart& self) { return Text{self.name()}; }, "The name; empty if none is chosen.");

    ValueClass<VChartList>(module, "Charts", "A set of charts, ordered by name.", Accepts::Argument)
        .constructor([](const py::iterable& charts) { return chartsOf(charts); }, py::arg("charts") = py::tuple())
        .field(
            "charts",
            [](const VChartList& self) {
                py::list charts;
                for (const VChart& chart : self)
                    charts.append(chart);
                return py::tuple(charts);
            },
            "The charts.")
        .def("__len__", &VChartList::size)
        .def("__contains__", [](const VChartList& self, const VChart& chart) { return self.find(chart); });
}

} // namespace Tarn::Python
