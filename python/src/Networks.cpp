#include "Networks.hpp"

#include "Assignment.hpp"
#include "Bindings.hpp"
#include "Conversions.hpp"
#include "Slots.hpp"

#include <tarn/run/Context.hpp>

#include <loam/FileError.hpp>

#include <pybind11/stl.h>

#include <utility>
#include <vector>

namespace Tarn::Python {

Network::~Network()
{
    // The interpreter may collect the network at any time, in any thread. Destroying it may wait
    // for other threads, which may wait for the interpreter.
    if (PyGILState_Check() == 0) {
        m_session.reset();
        return;
    }
    const py::gil_scoped_release release;
    m_session.reset();
}

std::optional<std::string> endReason(const EvaluationSummary& summary)
{
    if (summary.cancelled)
        return "the evaluation was cancelled";
    if (summary.timeIsLost)
        return "the object that provides the time was removed";
    if (!summary.timeRefusal.empty())
        return summary.timeRefusal;
    if (summary.chartIsMissing)
        return "no object offers the chart" + (summary.chartRefusal.empty() ? "" : ": " + summary.chartRefusal);
    if (summary.unknownChoices.empty())
        return std::nullopt;
    std::string lines;
    for (const std::string& line : summary.unknownChoices.lines())
        lines += (lines.empty() ? "" : "\n") + line;
    return lines;
}

Handle::Handle(NetworkPtr network, const ObjectPtr& object)
    : m_network{std::move(network)}, m_object{object.get()}, m_identity{object.get()}, m_firstName{object->Name()}
{
}

Handle Handle::find(const NetworkPtr& network, const std::string& name)
{
    Orla::VNetwork& objects = network->session().network();
    const Orla::VNetwork::Use use{objects};
    const ObjectPtr object{objects.find(name)};
    if (!object)
        throw py::key_error(name);
    return {network, object};
}

ObjectPtr Handle::object() const
{
    ObjectPtr object{m_object.lock()};
    if (!object || !object->isRegistered())
        throw Removed{"object \"" + m_firstName + "\" was removed from its network"};
    return object;
}

std::string Handle::name() const
{
    const Orla::VNetwork::Use use{m_network->session().network()};
    const ObjectPtr object{m_object.lock()};
    return object ? object->Name() : m_firstName;
}

bool Handle::exists() const
{
    const Orla::VNetwork::Use use{m_network->session().network()};
    const ObjectPtr object{m_object.lock()};
    return object && object->isRegistered();
}

namespace {

using Texts = std::vector<std::string>;

Texts toTexts(const std::vector<Text>& texts)
{
    Texts bytes;
    for (const Text& text : texts)
        bytes.push_back(text.bytes);
    return bytes;
}

py::list toStrs(const Texts& texts)
{
    py::list strs;
    for (const std::string& text : texts)
        strs.append(toStr(text));
    return strs;
}

LoadOptions optionsOf(const std::vector<Text>& overrides, const std::optional<Text>& chart,
                      std::optional<std::uint64_t> steps)
{
    LoadOptions options;
    options.overrides = toTexts(overrides);
    if (chart)
        options.chart = chart->bytes;
    options.stepLimit = steps;
    return options;
}

NetworkPtr load(const Text& path, const std::vector<Text>& overrides, const std::optional<Text>& chart,
                std::optional<std::uint64_t> steps)
{
    return unlocked(
        [&] { return std::make_shared<Network>(Session::load(path.bytes, optionsOf(overrides, chart, steps))); });
}

NetworkPtr read(const Text& text, const Text& title, const Text& folder, const std::vector<Text>& overrides,
                const std::optional<Text>& chart, std::optional<std::uint64_t> steps)
{
    return unlocked([&] {
        return std::make_shared<Network>(
            Session::read(text.bytes, title.bytes, folder.bytes, optionsOf(overrides, chart, steps)));
    });
}

NetworkPtr create(const Text& folder)
{
    return unlocked([&] { return std::make_shared<Network>(Session{folder.bytes}); });
}

// One tuple per fault, in the order of their places: kind, line, column and message.
py::list faultsOf(Network& network)
{
    py::list faults;
    for (const Fault& fault : network.session().faults().all())
        faults.append(
            py::make_tuple(static_cast<int>(fault.kind), fault.place.line, fault.place.column, toStr(fault.message)));
    return faults;
}

void assign(const NetworkPtr& network, const Handle& handle, const Text& input, const py::object& object)
{
    const Slot slot = unlocked([&] { return Slot::find(handle, input.bytes, SlotKind::Input); });
    const Assignment assignment = Assignment::of(slot, object);
    network->use([&](Session& session) {
        const std::string reference = slot.reference();
        const Loam::Result<void> done = assignment.text ? session.setText(reference, *assignment.text)
                                                        : session.setValue(reference, assignment.value);
        if (!done)
            throw py::value_error(slot.place() + done.reason());
    });
}

// Calls a function of the session that changes the network and may fail.
template<class... Arguments>
auto changing(Loam::Result<void> (Session::*change)(Arguments...))
{
    return [change](Network& network, const std::conditional_t<true, Text, Arguments>&... arguments) {
        network.use([&](Session& session) { require((session.*change)(arguments.bytes...)); });
        network.noteChange();
    };
}

void bindHandles(py::module_& module)
{
    py::class_<Handle>(module, "Handle", "Refers to an object of a network.")
        .def_property_readonly("name", [](const Handle& self) { return Text{unlocked([&] { return self.name(); })}; })
        .def_property_readonly("exists", [](const Handle& self) { return unlocked([&] { return self.exists(); }); })
        .def_property_readonly("type", [](const Handle& self) { return Text{unlocked([&] { return typeOf(self); })}; })
        .def("__eq__",
             [](const Handle& self, py::handle other) {
                 return py::isinstance<Handle>(other) && self.refersTo(other.cast<const Handle&>());
             })
        .def("__hash__", [](const Handle& self) { return self.hash(); })
        .def("inputs", [](const Handle& self) { return unlocked([&] { return slotsOf(self, SlotKind::Input); }); })
        .def("outputs", [](const Handle& self) { return unlocked([&] { return slotsOf(self, SlotKind::Output); }); })
        .def("slot", [](const Handle& self, const Text& name, SlotKind kind) {
            return unlocked([&] { return Slot::find(self, name.bytes, kind); });
        });
}

void bindErrors(py::module_& module)
{
    static PyObject* const objectError = PyErr_NewExceptionWithDoc(
        "fathom.ObjectError", "An object has no result: its update failed, or it waits for one that failed.", nullptr,
        nullptr);
    module.attr("ObjectError") = py::handle(objectError);
    py::register_exception_translator([](std::exception_ptr error) {
        try {
            if (error)
                std::rethrow_exception(error);
        } catch (const NoResult& exception) {
            PyErr_SetObject(objectError, toStr(exception.what()).ptr());
        } catch (const Removed& exception) {
            PyErr_SetObject(PyExc_ReferenceError, toStr(exception.what()).ptr());
        } catch (const Missing& exception) {
            PyErr_SetObject(PyExc_AttributeError, toStr(exception.what()).ptr());
        } catch (const Loam::FileError& exception) {
            PyErr_SetObject(PyExc_OSError, toStr(exception.what()).ptr());
        }
    });
}

} // namespace

void bindNetworks(py::module_& module)
{
    bindErrors(module);
    bindSlots(module);
    bindHandles(module);
    const auto none = py::none();
    py::class_<Network, NetworkPtr>(module, "Session", "A network of objects.")
        .def_static("load", load, py::arg("path"), py::arg("overrides") = py::tuple(), py::arg("chart") = none,
                    py::arg("steps") = none)
        .def_static("read", read, py::arg("text"), py::arg("title"), py::arg("folder"),
                    py::arg("overrides") = py::tuple(), py::arg("chart") = none, py::arg("steps") = none)
        .def_static("create", create, py::arg("folder") = "")
        .def_property_readonly("faults", faultsOf)
        .def_property_readonly("fault_lines", [](Network& self) { return toStrs(self.session().faults().lines()); })
        .def_property_readonly("file", [](Network& self) { return Text{self.session().faults().file()}; })
        .def_property_readonly("folder", [](Network& self) { return Text{self.session().network().folder()}; })
        .def("objects", [](Network& self) { return toStrs(self.use([](Session& each) { return each.objects(); })); })
        .def("columns", [](Network& self) { return toStrs(self.use([](Session& each) { return each.columns(); })); })
        .def("find", [](const NetworkPtr& self,
                        const Text& name) { return unlocked([&] { return Handle::find(self, name.bytes); }); })
        .def("assign", assign)
        .def("load_library", changing(&Session::loadLibrary))
        .def("add", changing(&Session::create))
        .def("remove", changing(&Session::remove))
        .def("rename", changing(&Session::rename))
        .def("connect", changing(&Session::connect))
        .def("disconnect", changing(&Session::disconnect))
        .def("add_column", changing(&Session::addColumn))
        .def("select_chart", changing(&Session::selectChart))
        .def(
            "saved_text",
            [](Network& self) { return Text{self.use([](Session& session) { return require(session.savedText()); })}; })
        .def("save", [](Network& self, const Text& path) {
            self.use([&](Session& session) {
                if (const Loam::Result<void> saved = session.save(path.bytes); !saved)
                    throw py::value_error(saved.reason());
            });
        });
}

} // namespace Tarn::Python
