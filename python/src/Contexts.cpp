#include "Assignment.hpp"
#include "Bindings.hpp"
#include "Conversions.hpp"
#include "Networks.hpp"
#include "Slots.hpp"

#include <tarn/run/Context.hpp>

#include <fathom/Action.hpp>

#include <trellis/VScheduler.hpp>

#include <pybind11/stl.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Tarn::Python {

namespace {

using Use = Orla::VNetwork::Use;
using Scope = Orla::VNetwork::Scope;

/// A context, which one Python thread at a time uses.
class Evaluation {
public:
    Evaluation(NetworkPtr network, const Text& name, const Text& tag)
        : m_network{std::move(network)}, m_name{name.bytes}, m_tag{tag.bytes}
    {
        m_network->use([this](Session& session) { create(session); });
    }

    ~Evaluation() { reset(); }
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;

    const NetworkPtr& network() const noexcept { return m_network; }

    void close()
    {
        cancel();
        const Turn::Hold hold{m_turn};
        reset();
    }

    bool isClosed() const noexcept { return !m_context; }

    void assign(const Handle& handle, const Text& input, const py::object& object)
    {
        const Turn::Hold hold{m_turn};
        const Slot slot = unlocked([&] { return Slot::find(handle, input.bytes, SlotKind::Input); });
        Made made{handle, slot.name, Assignment::of(slot, object)};
        unlocked([&] { apply(made); });
        m_isCurrent = false;
        std::erase_if(
            m_made, [&](const Made& each) { return each.input == made.input && each.handle.name() == handle.name(); });
        m_made.push_back(std::move(made));
    }

    py::object read(const Handle& handle, const Text& name, SlotKind kind, const py::object& progress)
    {
        const Turn::Hold hold{m_turn};
        const Slot slot = unlocked([&] { return Slot::find(handle, name.bytes, kind); });
        if (slot.isOutput || slot.isConnected)
            bringUpToDate(progress);
        const Loam::Result<StrongPtr<VValueBase>> value = unlocked([&] {
            const std::string reference = slot.reference();
            return slot.isOutput ? context().output(reference) : context().value(reference);
        });
        if (!value)
            throw NoResult{value.reason()};
        return toPython(*value, m_network);
    }

    void evaluate(const py::object& progress)
    {
        const Turn::Hold hold{m_turn};
        bringUpToDate(progress);
    }

    // Returns false if the run has ended.
    bool step(const py::object& progress)
    {
        const Turn::Hold hold{m_turn};
        refresh();
        bool goesOn = false;
        serveContext(progress,
                     [&](const Orla::VCancellation& cancellation) { goesOn = context().evaluateStep(cancellation); });
        m_isCurrent = !context().summary().cancelled;
        return goesOn;
    }

    // Evaluates all steps, and returns the values of the columns and why the run ended early, or None.
    py::tuple run(const py::object& progress)
    {
        startOver();
        const Turn::Hold hold{m_turn};
        refresh();
        std::vector<std::vector<StrongPtr<VValueBase>>> rows;
        serveContext(progress, [&](const Orla::VCancellation& cancellation) {
            while (context().evaluateStep(cancellation))
                rows.push_back(context().values());
            if (!endReason(context().summary()))
                context().finish(cancellation);
        });
        m_isCurrent = !context().summary().cancelled;
        py::list table;
        for (const std::vector<StrongPtr<VValueBase>>& row : rows)
            table.append(toTuple(row));
        const std::optional<std::string> reason = endReason(context().summary());
        return py::make_tuple(table, reason ? py::object(toStr(*reason)) : py::none());
    }

    void finish(const py::object& progress)
    {
        const Turn::Hold hold{m_turn};
        serveContext(progress, [&](const Orla::VCancellation& cancellation) { context().finish(cancellation); });
    }

    // Begins again with the first step. Results that depend on earlier updates, or that are missing,
    // require a new context.
    void startOver()
    {
        const Turn::Hold hold{m_turn};
        const bool mustForget = unlocked([&] {
            return m_network->changes() != m_changes || !context().summary().isFine()
                   || Orla::VScheduler::history(context().pool());
        });
        if (mustForget)
            createAgain();
        else
            unlocked([&] { context().startOver(); });
    }

    void forget()
    {
        const Turn::Hold hold{m_turn};
        createAgain();
    }

    void setStep(std::uint64_t step)
    {
        const Turn::Hold hold{m_turn};
        unlocked([&] { context().setStep(step); });
        m_isCurrent = false;
    }

    // Triggers the objects that read the parameter of the input.
    void emitAction(const Handle& handle, const Text& input, double number)
    {
        const Turn::Hold hold{m_turn};
        unlocked([&] {
            Orla::VNetwork& objects = m_network->session().network();
            const Scope scope{objects};
            const Use use{objects};
            const Slot slot = Slot::find(handle, input.bytes, SlotKind::Input);
            if (*slot.type != typeid(StrongPtr<Orla::VAction>))
                throw py::type_error(slot.place() + "found type " + slot.typeName + ", expected an input for actions");
            Orla::VAction{number}.emitAction(context().pool(), handle.object()->findSlot(slot.name)->parameter());
        });
        m_isCurrent = false;
    }

    void selectChart(const Text& name)
    {
        const Turn::Hold hold{m_turn};
        unlocked([&] { require(context().selectChart(name.bytes)); });
        m_chart = name.bytes;
        m_isCurrent = false;
    }

    py::list charts()
    {
        const Turn::Hold hold{m_turn};
        py::list charts;
        for (const std::string& chart : unlocked([&] { return context().charts(); }))
            charts.append(toStr(chart));
        return charts;
    }

    py::object time()
    {
        const Turn::Hold hold{m_turn};
        const std::optional<Orla::VTime> time = unlocked([&] { return context().time(); });
        return time ? py::cast(*time) : py::none();
    }

    std::uint64_t stepCount()
    {
        const Turn::Hold hold{m_turn};
        return unlocked([&] { return require(context().stepCount()); });
    }

    // The current time, and the values of the columns.
    py::tuple outcome()
    {
        const Turn::Hold hold{m_turn};
        const auto [time, values] = unlocked([&] { return std::pair{context().time(), context().values()}; });
        return py::make_tuple(time ? py::cast(*time) : py::none(), toTuple(values));
    }

    py::list texts()
    {
        const Turn::Hold hold{m_turn};
        py::list texts;
        for (const std::optional<std::string>& text : unlocked([&] { return context().row(); }))
            texts.append(text ? py::object(toStr(*text)) : py::none());
        return texts;
    }

    // One tuple per status: object, severity, text, and the number of objects that wait.
    py::list statuses()
    {
        const Turn::Hold hold{m_turn};
        py::list entries;
        const StatusReport report = unlocked([&] { return context().statuses(); });
        for (const StatusReport::Entry& entry : report.entries())
            entries.append(py::make_tuple(toStr(entry.object), static_cast<int>(entry.severity), toStr(entry.text),
                                          entry.waiting));
        return entries;
    }

    py::tuple summary()
    {
        const Turn::Hold hold{m_turn};
        const EvaluationSummary& summary = context().summary();
        const std::optional<std::string> reason = endReason(summary);
        return py::make_tuple(summary.steps, summary.failures, summary.stopped,
                              reason ? py::object(toStr(*reason)) : py::none());
    }

    // Called from any thread.
    void cancel()
    {
        const std::lock_guard lock{m_cancellationMutex};
        m_cancellation.cancel();
    }

private:
    // An assignment, for a context that replaces this one.
    struct Made {
        Handle handle;
        std::string input;
        Assignment assignment;
    };

    Context& context()
    {
        if (!m_context)
            throw std::runtime_error("the context is closed");
        return *m_context;
    }

    void create(Session& session)
    {
        m_changes = m_seen = m_network->changes();
        m_isCurrent = false;
        m_context.emplace(session, m_name, m_tag);
        m_context->setProgress([this](double fraction) { m_progress.note(fraction); });
        if (isForked())
            m_context->setExecutor(nullptr); // the threads of the executor are in the parent
    }

    py::tuple toTuple(const std::vector<StrongPtr<VValueBase>>& values) const
    {
        py::tuple made(values.size());
        for (std::size_t i = 0; i < values.size(); ++i)
            made[i] = toPython(values[i], m_network);
        return made;
    }

    void createAgain()
    {
        m_network->use([this](Session& session) {
            context();
            m_context.reset();
            create(session);
            std::erase_if(m_made, [](const Made& each) { return !each.handle.exists(); });
            for (const Made& each : m_made)
                apply(each);
            if (m_chart)
                require(m_context->selectChart(*m_chart));
        });
    }

    void reset()
    {
        const py::gil_scoped_release release;
        m_context.reset();
    }

    void apply(const Made& made)
    {
        made.assignment.applyTo(context(), Slot::find(made.handle, made.input, SlotKind::Input));
    }

    // Makes objects due that were added since.
    void refresh()
    {
        context();
        if (isForked())
            context().setExecutor(nullptr);
        const std::uint64_t changes = m_network->changes();
        if (changes == m_seen)
            return;
        unlocked([&] {
            Orla::VNetwork& objects = m_network->session().network();
            const Scope scope{objects};
            const Use use{objects};
            Orla::VScheduler::scheduleAll(context().pool());
        });
        m_seen = changes;
        m_isCurrent = false;
    }

    void bringUpToDate(const py::object& progress)
    {
        refresh();
        if (m_isCurrent)
            return;
        bool isDone = false;
        serveContext(progress,
                     [&](const Orla::VCancellation& cancellation) { isDone = context().evaluate(cancellation); });
        if (!isDone)
            throw NoResult{"the evaluation was cancelled"};
        m_isCurrent = true;
    }

    void serveContext(const py::object& progress, const std::function<void(const Orla::VCancellation&)>& work)
    {
        context();
        Orla::VCancellation cancellation;
        {
            const std::lock_guard lock{m_cancellationMutex};
            m_cancellation = cancellation;
        }
        struct Logging {
            ~Logging() { logMessages(); }
        } logging;
        serve(work, cancellation, m_progress, progress);
    }

    // Returns why a run ended early, or None.
    NetworkPtr m_network;
    std::string m_name;
    std::string m_tag;
    Turn m_turn;
    Progress m_progress;
    std::mutex m_cancellationMutex;
    Orla::VCancellation m_cancellation;
    std::vector<Made> m_made;
    std::optional<std::string> m_chart;
    std::uint64_t m_changes = 0; // of the network when the context was created
    std::uint64_t m_seen = 0;    // that the context has noticed
    bool m_isCurrent = false;    // nothing is due
    std::optional<Context> m_context;
};

} // namespace

void bindContexts(py::module_& module)
{
    const auto none = py::none();
    py::class_<Evaluation>(module, "Context", "An evaluation of a network with its own inputs and results.")
        .def(py::init<NetworkPtr, Text, Text>(), py::arg("session"), py::arg("name") = "", py::arg("tag") = "")
        .def("close", &Evaluation::close)
        .def_property_readonly("is_closed", &Evaluation::isClosed)
        .def("assign", &Evaluation::assign)
        .def("read", &Evaluation::read, py::arg("handle"), py::arg("slot"), py::arg("kind"), py::arg("progress") = none)
        .def("evaluate", &Evaluation::evaluate, py::arg("progress") = none)
        .def("step", &Evaluation::step, py::arg("progress") = none)
        .def("run", &Evaluation::run, py::arg("progress") = py::none())
        .def("finish", &Evaluation::finish, py::arg("progress") = none)
        .def("start_over", &Evaluation::startOver)
        .def("forget", &Evaluation::forget)
        .def("set_step", &Evaluation::setStep)
        .def("emit", &Evaluation::emitAction)
        .def("select_chart", &Evaluation::selectChart)
        .def("charts", &Evaluation::charts)
        .def("time", &Evaluation::time)
        .def("step_count", &Evaluation::stepCount)
        .def("outcome", &Evaluation::outcome)
        .def("texts", &Evaluation::texts)
        .def("statuses", &Evaluation::statuses)
        .def("summary", &Evaluation::summary)
        .def("cancel", &Evaluation::cancel);
}

} // namespace Tarn::Python
