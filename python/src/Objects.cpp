#include "Objects.hpp"

#include "Bindings.hpp"
#include "Conversions.hpp"
#include "Serving.hpp"
#include "Texts.hpp"

#include <fathom/Action.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VChart.hpp>

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VFrame.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VPolyConnection.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueCreator.hpp>

#include <pybind11/stl.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Tarn::Python {

namespace {

using Orla::VSlot;
using Orla::VValueCreator;

PyObject* cancelled = nullptr;

// The running updates, guarded by the interpreter lock.
std::vector<ObjectCore*>& runningUpdates()
{
    static std::vector<ObjectCore*>& updates = *new std::vector<ObjectCore*>;
    return updates;
}

// Returns the last line of what Python would print.
std::string messageOf(const py::error_already_set& error)
{
    const py::list lines = py::module_::import("traceback").attr("format_exception_only")(error.type(), error.value());
    std::string text = lines.empty() ? std::string("unknown exception") : printed(lines[lines.size() - 1]);
    while (text.ends_with('\n'))
        text.pop_back();
    return text;
}

std::string tracebackOf(const py::error_already_set& error)
{
    const py::object lines =
        py::module_::import("traceback").attr("format_exception")(error.type(), error.value(), error.trace());
    std::string text = printed(py::str("").attr("join")(lines));
    while (text.ends_with('\n'))
        text.pop_back();
    return text;
}

std::string placeOf(const SlotDeclaration& slot)
{
    return (slot.isOutput ? "output \"" : "input \"") + slot.name + "\": ";
}

Orla::StrongPtr<VValueCreator> creatorOf(const SlotDeclaration& slot)
{
    if (Orla::StrongPtr<VValueCreator> found = findCreator(slot.type))
        return found;
    throw std::invalid_argument(placeOf(slot) + "no loaded library has a value type \"" + slot.type + '"');
}

// Copies a Python object into a value. A text is read as in saved networks.
void assignTo(VValueBase& value, py::handle content, const std::string& place)
{
    if (PyUnicode_Check(content.ptr())) {
        const std::string text = content.cast<Text>().bytes;
        if (!value.setValueFromText(text))
            throw py::value_error(place + "found \"" + text + "\", expected a text of type "
                                  + Orla::VTypeLabel::of(value.getType()));
        return;
    }
    try {
        value.getValueFrom(Python::fromPython(value.getType(), content));
    } catch (const py::type_error& error) {
        throw py::type_error(place + error.what());
    } catch (const py::value_error& error) {
        throw py::value_error(place + error.what());
    }
}

StrongPtr<VValueBase> initialValueOf(const SlotDeclaration& slot)
{
    bool ok = false;
    StrongPtr<VValueBase> value = creatorOf(slot)->create({}, ok);
    if (slot.initial.get() && !slot.initial.get().is_none())
        assignTo(*value, slot.initial.get(), placeOf(slot));
    return value;
}

class PythonObject : public Orla::VObject {
public:
    PythonObject(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences,
                 const ClassDeclaration& declaration, Reference instance, ObjectCorePtr core,
                 const std::vector<StrongPtr<VValueBase>>& values)
        : VObject{name, level, preferences}, m_instance{std::move(instance)}, m_core{std::move(core)}
    {
        setTypeName(declaration.name);
        runsInOnePool();
        if (declaration.keepsState)
            keepsState();
        for (std::size_t i = 0; i < values.size(); ++i)
            addSlot(declaration.slots[i], values[i]);
        m_core->object = this;
    }

    bool update(Orla::VRequest& request, double precision) override
    {
        const Locked locked;
        const Running running{*m_core, request, precision};
        try {
            const py::object result = m_instance.get().attr("update")(m_core);
            return result.is_none() || py::bool_(result);
        } catch (const py::error_already_set& error) {
            if (request.isCancelled() && error.matches(cancelled))
                return false;
            Orla::VActionNotifier::Warning(typeAndName() + " failed: " + tracebackOf(error));
            throw std::runtime_error(messageOf(error));
        }
    }

private:
    // Makes the instance usable for the duration of an update.
    class Running {
    public:
        Running(ObjectCore& core, Orla::VRequest& request, double number) : m_core{core}
        {
            m_core.number = number;
            m_core.request = &request;
            m_core.thread = PyThread_get_thread_ident();
            m_core.isInterrupted = false;
            runningUpdates().push_back(&core);
        }
        ~Running()
        {
            std::erase(runningUpdates(), &m_core);
            m_core.request = nullptr;
            // An interruption that came too late must not hit other code of the thread.
            if (m_core.isInterrupted)
                PyThreadState_SetAsyncExc(m_core.thread, nullptr);
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        ObjectCore& m_core;
    };

    void addSlot(const SlotDeclaration& slot, const StrongPtr<VValueBase>& value)
    {
        if (slot.isOutput) {
            const StrongPtr<Orla::VParameter> parameter(new Orla::VParameter(value, slot.name, slot.description));
            parameter->setSource(this);
            registerOutput(parameter, slot.name);
            if (value->getType() == typeid(Orla::VChartList))
                m_chartOffers.push_back(std::make_unique<Orla::VPolyConnection>(parameter, isChartSelector));
            return;
        }
        StrongPtr<VSlot> added;
        const StrongPtr<Orla::TypedSlotCreator> creator = Orla::TypedSlotCreator::find(value->getType());
        if (creator && slot.triggers) {
            bool ok = false;
            added = creator->newSlot(this, slot.name, {}, ok, slot.description, slot.level);
            if (added)
                added->parameter()->setGlobalValue(value, {});
        } else {
            const StrongPtr<Orla::VParameter> parameter(new Orla::VParameter(value, slot.name, slot.description));
            parameter->setCreator(this);
            added = addParameter(slot.name, slot.level, parameter, slot.triggers);
        }
        if (!added)
            throw std::invalid_argument(placeOf(slot) + "the object has an input of that name already");
        added->clearFlag(VSlot::AddedLater);
        if (slot.description && slot.description->parts().textKind == Orla::VTextKind::OutputFile)
            added->setFlag(VSlot::NamesResult);
        if (value->getType() == typeid(Orla::VChart))
            followChart(added);
    }

    // As Orla::VChartDependent and Orla::Atlas do for slots that a class has at compile time.
    void followChart(const StrongPtr<VSlot>& input)
    {
        const StrongPtr<Orla::VChartSelector> selector = Orla::VChartSelector::getChartSelector();
        if (const StrongPtr<VSlot> current = selector->findOutput("CurrentChart"))
            attachParameter(current->parameter(), input, "");
    }

    static bool isChartSelector(const Orla::VObject& object)
    {
        return dynamic_cast<const Orla::VChartSelector*>(&object) != nullptr;
    }

    Reference m_instance;
    ObjectCorePtr m_core;
    std::vector<std::unique_ptr<Orla::VPolyConnection>> m_chartOffers;
};

class TimedPythonObject final : public PythonObject, public Orla::TimeDependent {
public:
    template<class... Arguments>
    explicit TimedPythonObject(const std::string& name, int level,
                               const StrongPtr<Orla::VCreationPreferences>& preferences, Arguments&&... arguments)
        : PythonObject{name, level, preferences, std::forward<Arguments>(arguments)...}
        , TimeDependent{"time", "timerange", preferences, Orla::VTime{}}
    {
    }
};

class PythonObjectCreator final : public Orla::VObjectCreator {
public:
    explicit PythonObjectCreator(ClassDeclaration declaration)
        : VObjectCreator{declaration.isTimed ? typeid(TimedPythonObject) : typeid(PythonObject)}
        , m_declaration{std::move(declaration)}
    {
        setFile(m_declaration.file);
    }

    StrongPtr<Orla::VObject> create(const std::string& name, int level,
                                    const StrongPtr<Orla::VCreationPreferences>& preferences) const override
    {
        std::vector<StrongPtr<VValueBase>> values;
        const auto core = std::make_shared<ObjectCore>();
        Reference instance;
        {
            const Locked locked;
            try {
                for (const SlotDeclaration& slot : m_declaration.slots)
                    values.push_back(initialValueOf(slot));
                // Set before `__init__`, which a subclass may forget to call.
                const py::object made = m_declaration.cls.get().attr("__new__")(m_declaration.cls.get());
                py::module_::import("builtins").attr("object").attr("__setattr__")(made, "_core", core);
                made.attr("__init__")();
                instance = Reference{made};
            } catch (const py::error_already_set& error) {
                throw std::runtime_error(messageOf(error));
            }
        }
        // Without the interpreter lock: adding an object may wait for updates in Python.
        if (m_declaration.isTimed)
            return Loam::makeStrong<TimedPythonObject>(name, level, preferences, m_declaration, std::move(instance),
                                                       core, values);
        return Loam::makeStrong<PythonObject>(name, level, preferences, m_declaration, std::move(instance), core,
                                              values);
    }

private:
    ClassDeclaration m_declaration;
};

/// The registration of a class, which Python owns.
class Registration {
public:
    explicit Registration(StrongPtr<PythonObjectCreator> creator, const std::string& name)
        : m_creator{std::move(creator)}
    {
        unlocked([&] { Orla::VObjectCreator::registerCreator(m_creator, name); });
    }
    ~Registration() { unregister(); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    // The registry may have a reference for a moment, and a lock.
    void unregister()
    {
        if (!m_creator || hasEnded())
            return;
        unlocked([this] { m_creator.reset(); });
    }

private:
    StrongPtr<PythonObjectCreator> m_creator;
};

template<class T>
T optionOf(const py::dict& options, const char* name, const char* expected, T fallback)
{
    if (!options.contains(name) || options[name].is_none())
        return fallback;
    try {
        return options[name].cast<T>();
    } catch (const py::cast_error&) {
        throw py::type_error("found " + printed(options[name]) + " for " + name + ", expected " + expected);
    }
}

std::string textOf(const py::dict& options, const char* name)
{
    return optionOf(options, name, "a str", Text{}).bytes;
}

Orla::VLimits readLimits(const py::dict& options, const char* name)
{
    using End = std::optional<double>;
    const auto [from, to] = optionOf(options, name, "two numbers, of which either may be None", std::pair<End, End>{});
    const Orla::VLimits unlimited;
    return {from.value_or(unlimited.from), to.value_or(unlimited.to)};
}

std::vector<std::string> textsOf(const py::dict& options, const char* name)
{
    std::vector<std::string> texts;
    for (const Text& text : optionOf(options, name, "a list of str", std::vector<Text>{}))
        texts.push_back(text.bytes);
    return texts;
}

constexpr std::pair<const char*, Orla::VTextKind> textKinds[] = {{"", Orla::VTextKind::Plain},
                                                                 {"text", Orla::VTextKind::Plain},
                                                                 {"input file", Orla::VTextKind::InputFile},
                                                                 {"output file", Orla::VTextKind::OutputFile},
                                                                 {"folder", Orla::VTextKind::Folder},
                                                                 {"colour", Orla::VTextKind::Color},
                                                                 {"web page", Orla::VTextKind::WebPage},
                                                                 {"multi-line text", Orla::VTextKind::MultiLine}};

constexpr std::pair<const char*, Orla::VVisibility> visibilities[] = {
    {"", Orla::VVisibility::Ordinary},
    {"ordinary", Orla::VVisibility::Ordinary},
    {"advanced", Orla::VVisibility::Advanced},
    {"hidden", Orla::VVisibility::Hidden},
    {"private state", Orla::VVisibility::PrivateState}};

// Returns the choice of that name; the empty name is the default.
template<class Choice, std::size_t Count>
Choice choiceOf(const py::dict& options, const char* option, const std::pair<const char*, Choice> (&choices)[Count])
{
    const std::string given = textOf(options, option);
    std::string names;
    for (const auto& [name, value] : choices) {
        if (given == name)
            return value;
        names += *name ? (names.empty() ? "" : ", ") + std::string(name) : "";
    }
    throw py::value_error("found " + std::string(option) + " \"" + given + "\", expected one of: " + names);
}

// Returns the limits with the numbers that must be exceeded, which are excluded ends.
Orla::VLimits allLimitsOf(const py::dict& options)
{
    Orla::VLimits limits = readLimits(options, "limits");
    if (const auto above = optionOf(options, "above", "a number", std::optional<double>{});
        above && !(*above < limits.from)) {
        limits.from = *above;
        limits.excludesFrom = true;
    }
    if (const auto below = optionOf(options, "below", "a number", std::optional<double>{});
        below && !(*below > limits.to)) {
        limits.to = *below;
        limits.excludesTo = true;
    }
    return limits;
}

void readCondition(const py::dict& options, Orla::VSlotDescription::Parts& parts)
{
    using Condition = std::pair<Text, std::vector<Text>>;
    const auto condition =
        optionOf(options, "only_if", "the name of an input and its texts", std::optional<Condition>{});
    if (!condition)
        return;
    parts.conditionInput = condition->first.bytes;
    for (const Text& value : condition->second)
        parts.conditionValues.push_back(value.bytes);
}

SlotDeclaration slotOf(const py::dict& options)
{
    SlotDeclaration slot{.name = textOf(options, "name"),
                         .type = textOf(options, "type"),
                         .initial = Reference{options["default"]},
                         .description = {},
                         .level = optionOf(options, "level", "an int", 0),
                         .isOutput = options["is_output"].cast<bool>(),
                         .triggers = optionOf(options, "triggers", "a bool", true)};
    Orla::VSlotDescription::Parts parts;
    parts.unit = textOf(options, "unit");
    parts.limits = allLimitsOf(options);
    parts.softLimits = readLimits(options, "soft_limits");
    parts.step = optionOf(options, "step", "a number", 0.0);
    parts.isLogarithmic = optionOf(options, "logarithmic", "a bool", false);
    parts.isFinite = optionOf(options, "finite", "a bool", false);
    parts.textKind = choiceOf(options, "kind", textKinds);
    parts.visibility = choiceOf(options, "visibility", visibilities);
    parts.extensions = textsOf(options, "extensions");
    readCondition(options, parts);
    const bool isDescribed = !(parts == Orla::VSlotDescription::Parts{});
    parts.sentence = textOf(options, "description");
    if (!isDescribed && parts.sentence.empty())
        return slot;
    // A unit alone is useful, but descriptions begin with a sentence.
    if (parts.sentence.empty())
        parts.sentence = slot.name;
    if (const std::string fault = Orla::VSlotDescription::faultOf(parts); !fault.empty())
        throw py::value_error(placeOf(slot) + fault);
    slot.description = Orla::VSlotDescription::of(parts);
    return slot;
}

std::unique_ptr<Registration> registerClass(const py::object& cls, const py::dict& options, const py::list& slots)
{
    ClassDeclaration declaration{.name = textOf(options, "name"),
                                 .file = textOf(options, "file"),
                                 .cls = Reference{cls},
                                 .slots = {},
                                 .isTimed = options["is_timed"].cast<bool>(),
                                 .keepsState = options["keeps_state"].cast<bool>()};
    for (const py::handle slot : slots)
        declaration.slots.push_back(slotOf(slot.cast<py::dict>()));
    const std::string name = declaration.name;
    const auto creator = Loam::makeStrong<PythonObjectCreator>(std::move(declaration));
    if (const std::string sentence = textOf(options, "description"); !sentence.empty()) {
        creator->setDescription(Loam::makeStrong<Orla::VTypeDescription>(
            Orla::VTypeDescription::Parts{.sentence = sentence,
                                          .details = textOf(options, "details"),
                                          .category = textOf(options, "category"),
                                          .keywords = textsOf(options, "keywords"),
                                          .page = textOf(options, "page")}));
    }
    return std::make_unique<Registration>(creator, name);
}

// Returns the registered name of the value type that a class of the package has; empty for another
// class.
Text typeNameOf(const py::type& cls)
{
    const auto* const type = py::detail::get_type_info(reinterpret_cast<PyTypeObject*>(cls.ptr()));
    if (!type)
        return {};
    for (const std::string& name : VValueCreator::names()) {
        const Orla::StrongPtr<VValueCreator> creator = VValueCreator::find(name);
        if (creator && creator->valueType() == *type->cpptype)
            return {name};
    }
    return {};
}

} // namespace

void ObjectCore::requireUpdate() const
{
    if (!request)
        throw std::runtime_error("inputs and outputs can be used only while update runs");
    if (thread != PyThread_get_thread_ident())
        throw std::runtime_error("inputs and outputs can be used only in the thread that calls update");
}

StrongPtr<VSlot> ObjectCore::findSlot(const std::string& name, bool isOutput) const
{
    requireUpdate();
    StrongPtr<VSlot> slot = isOutput ? object->findOutput(name) : object->findSlot(name);
    if (!slot)
        throw py::key_error(name);
    return slot;
}

py::object ObjectCore::read(const std::string& name, bool isOutput)
{
    const StrongPtr<VSlot> slot = findSlot(name, isOutput);
    Orla::ValuePool& pool = *request->valuePool();
    if (isOutput && pool.runningFrame() && !pool.hasWritten(slot->place().cell))
        pool.runningFrame()->readEarlierOutput(slot->place().cell);
    StrongPtr<VValueBase> value = slot->getLocalValue(request->valuePool());
    // What Python keeps must not change with the pool.
    if (value && !hasConversion(value->getType()))
        value = value->copy();
    return toPython(value, nullptr);
}

void ObjectCore::write(const std::string& name, const py::object& content)
{
    const StrongPtr<VSlot> slot = findSlot(name, true);
    const StrongPtr<VValueBase> value = slot->parameter()->newValue();
    assignTo(*value, content, "output \"" + name + "\": ");
    Orla::ValuePool& pool = *request->valuePool();
    pool.noteWritten(slot->place().cell);
    const StrongPtr<VValueBase> held = slot->parameter()->getLocalValue(request->valuePool());
    if (!held)
        return;
    if (value->getType() == typeid(StrongPtr<Orla::VAction>)) {
        if (const auto action = contentOf<StrongPtr<Orla::VAction>>(*value))
            action->emitAction(request->valuePool(), slot->parameter());
        return;
    }
    if (!value->isDifferentFrom(held))
        return;
    held->getValueFrom(value);
    slot->parameter()->notifyValueChange(held, request->valuePool());
}

std::string ObjectCore::inputFile(const std::string& name)
{
    requireUpdate();
    return object->inputFile(name);
}

std::string ObjectCore::resultFile(const std::string& name)
{
    requireUpdate();
    return object->resultFile(name, request->valuePool());
}

void ObjectCore::progress(double fraction)
{
    requireUpdate();
    request->reportProgress(fraction);
}

bool ObjectCore::isCancelled()
{
    requireUpdate();
    return request->isCancelled();
}

bool ObjectCore::hasChanged(const std::string& name)
{
    const StrongPtr<VSlot> input = findSlot(name, false);
    return request->hasChanged(*input);
}

void interruptUpdates()
{
    for (ObjectCore* const core : runningUpdates()) {
        if (core->isInterrupted || !core->request->isCancelled())
            continue;
        core->isInterrupted = true;
        PyThreadState_SetAsyncExc(core->thread, cancelled);
    }
}

void bindObjects(py::module_& module)
{
    // Not an Exception, so that an update does not catch it by accident.
    cancelled = PyErr_NewExceptionWithDoc("fathom.Cancelled",
                                          "Raised in the update of an object when its evaluation is cancelled.",
                                          PyExc_BaseException, nullptr);
    module.attr("Cancelled") = py::handle(cancelled);
    py::class_<ObjectCore, ObjectCorePtr>(module, "Request", "The context of an update.")
        .def("progress", &ObjectCore::progress, "Reports the progress as a fraction between 0 and 1.")
        .def_property_readonly("is_cancelled", &ObjectCore::isCancelled, "True if the evaluation was cancelled.")
        .def(
            "has_changed", [](ObjectCore& self, const Text& input) { return self.hasChanged(input.bytes); },
            "Returns True if the input was written since the last successful update.")
        .def_readonly("number", &ObjectCore::number, "The number of the action that triggered the update, else 0.")
        .def("_read", [](ObjectCore& self, const Text& name, bool isOutput) { return self.read(name.bytes, isOutput); })
        .def("_write",
             [](ObjectCore& self, const Text& name, const py::object& content) { self.write(name.bytes, content); })
        .def("_input_file", [](ObjectCore& self, const Text& name) { return Text{self.inputFile(name.bytes)}; })
        .def("_result_file", [](ObjectCore& self, const Text& name) { return Text{self.resultFile(name.bytes)}; });
    py::class_<Registration>(module, "Registration", "The registration of a class; ends with the object.")
        .def("unregister", &Registration::unregister);
    module.def("register_class", registerClass);
    module.def("interrupt_updates", interruptUpdates);
    module.def("type_name", typeNameOf);
}

} // namespace Tarn::Python
