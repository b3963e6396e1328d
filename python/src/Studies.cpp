#include "Assignment.hpp"
#include "Bindings.hpp"
#include "Networks.hpp"
#include "Serving.hpp"
#include "Slots.hpp"

#include <tarn/run/Context.hpp>
#include <tarn/study/Study.hpp>

#include <trellis/VScheduler.hpp>

#include <pybind11/stl.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Tarn::Python {

namespace {

// An input that is varied, and its values.
struct Factor {
    Slot slot;
    std::vector<Assignment> values;
};

// The values of the columns after each step.
using Rows = std::vector<std::vector<StrongPtr<VValueBase>>>;

// Evaluates all combinations of the values, the last factor varying fastest, in several threads. Unlike
// Tarn::Study, it keeps the values of the columns, which Python converts, instead of their texts.
class Sweep {
public:
    struct Failure {
        std::size_t number;
        std::string reason;
        bool isRefusal; ///< of a value of an input
    };

    Sweep(Session& session, std::vector<Factor> factors) : m_session{session}, m_factors{std::move(factors)}
    {
        std::size_t count = 1;
        for (const Factor& factor : m_factors)
            count *= factor.values.size();
        m_rows.resize(count);
    }

    // Ends after the cases in progress if one of them fails.
    void run(std::size_t jobs, const Orla::VCancellation& cancellation, Progress& progress)
    {
        m_usesExecutor = jobs == 1 && !isForked();
        std::vector<std::jthread> threads; // which their destructor joins
        for (std::size_t i = 1; i < std::min(jobs, m_rows.size()); ++i)
            threads.emplace_back([&] { work(cancellation, progress); });
        work(cancellation, progress);
    }

    const std::vector<Rows>& rows() const noexcept { return m_rows; }

    // Returns the failure of the first case that has one.
    const std::optional<Failure>& failure() const noexcept { return m_failure; }

private:
    void work(const Orla::VCancellation& cancellation, Progress& progress)
    {
        std::optional<Context> context;
        for (std::size_t former = 0; !cancellation.isCancelled();) {
            const std::size_t number = m_next++;
            if (number >= m_rows.size())
                return;
            try {
                evaluate(context, former, number, cancellation);
            } catch (const RefusedAssignment& refusal) {
                fail({number, refusal.what(), true});
                context.reset();
            } catch (const std::exception& error) {
                fail({number, error.what(), false});
                context.reset();
            }
            former = number;
            progress.note(static_cast<double>(++m_done) / static_cast<double>(m_rows.size()));
        }
    }

    // A context is used again by the next case unless results may depend on earlier ones.
    void evaluate(std::optional<Context>& context, std::size_t former, std::size_t number,
                  const Orla::VCancellation& cancellation)
    {
        const bool isNew = !context;
        if (isNew) {
            const std::string tag = "case" + std::to_string(number);
            context.emplace(m_session, "case " + std::to_string(number), tag);
            if (!m_usesExecutor)
                context->setExecutor(nullptr);
        } else {
            context->startOver();
        }
        for (std::size_t i = m_factors.size(), period = 1; i-- > 0; period *= m_factors[i].values.size()) {
            const std::size_t size = m_factors[i].values.size();
            const std::size_t index = number / period % size;
            if (isNew || index != former / period % size)
                m_factors[i].values[index].applyTo(*context, m_factors[i].slot);
        }
        Rows rows;
        while (context->evaluateStep(cancellation))
            rows.push_back(context->values());
        const EvaluationSummary& summary = context->summary();
        if (const std::optional<std::string> reason = endReason(summary)) {
            fail({number, *reason, false});
            context.reset();
            return;
        }
        context->finish(cancellation);
        m_rows[number] = std::move(rows);
        if (!summary.isFine() || Orla::VScheduler::history(context->pool()))
            context.reset();
    }

    void fail(Failure failure)
    {
        m_next = m_rows.size();
        const std::lock_guard lock{m_mutex};
        if (!m_failure || failure.number < m_failure->number)
            m_failure = std::move(failure);
    }

    Session& m_session;
    const std::vector<Factor> m_factors;
    bool m_usesExecutor = true;
    std::vector<Rows> m_rows; // by the number of the case
    std::atomic<std::size_t> m_next = 0;
    std::atomic<std::size_t> m_done = 0;
    std::mutex m_mutex;
    std::optional<Failure> m_failure;
};

// Returns one tuple per step of each case, the number of the case, the step and the columns, and the
// number and the reason of a case that ended early, or None.
py::tuple sweep(const NetworkPtr& network, const std::vector<std::pair<Handle, Text>>& inputs,
                const std::vector<py::list>& values, std::size_t jobs, const py::object& report)
{
    const Turn::Hold hold{network->turn()};
    Session& session = network->session();
    std::vector<Factor> factors;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        Factor factor{unlocked([&] { return Slot::find(inputs[i].first, inputs[i].second.bytes, SlotKind::Input); }),
                      {}};
        for (const py::handle value : values[i])
            factor.values.push_back(Assignment::of(factor.slot, py::reinterpret_borrow<py::object>(value)));
        factors.push_back(std::move(factor));
    }
    const bool isOrdered = unlocked([&] { return Study{session, Tarn::Sweep{}}.orderReason({}).has_value(); });
    Sweep sweep{session, std::move(factors)};
    Progress progress;
    struct Logging {
        ~Logging() { logMessages(); }
    } logging;
    serve([&](const Orla::VCancellation& cancellation) { sweep.run(isOrdered ? 1 : jobs, cancellation, progress); },
          Orla::VCancellation{}, progress, report);
    if (const std::optional<Sweep::Failure>& failure = sweep.failure()) {
        if (failure->isRefusal)
            throw py::value_error(failure->reason);
        return py::make_tuple(py::list(), py::make_tuple(failure->number, toStr(failure->reason)));
    }
    py::list table;
    for (std::size_t number = 0; number < sweep.rows().size(); ++number) {
        const Rows& rows = sweep.rows()[number];
        for (std::size_t step = 0; step < rows.size(); ++step) {
            py::list row;
            row.append(number);
            row.append(step);
            for (const StrongPtr<VValueBase>& value : rows[step])
                row.append(toPython(value, network));
            table.append(row);
        }
    }
    return py::make_tuple(table, py::none());
}

} // namespace

void bindStudies(py::module_& module)
{
    module.def("sweep", sweep);
}

} // namespace Tarn::Python
