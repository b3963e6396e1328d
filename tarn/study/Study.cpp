#include <tarn/study/Study.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/run/Workers.hpp>
#include <tarn/study/CaseEvaluation.hpp>
#include <tarn/study/CaseQueue.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VHistory.hpp>
#include <trellis/VNetwork.hpp>

#include <algorithm>
#include <chrono>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace Tarn {

using Orla::StrongPtr;

namespace {

// Calls the function once per text.
std::function<void(const std::string&)> oncePerText(std::function<void(const std::string&)> function)
{
    if (!function)
        return {};
    struct Known {
        std::mutex mutex;
        std::set<std::string> texts;
    };
    return [known = std::make_shared<Known>(), function = std::move(function)](const std::string& text) {
        const std::lock_guard lock{known->mutex};
        if (known->texts.insert(text).second)
            function(text);
    };
}

// The number of cases that a thread takes at a time. Threads that take very short cases one by one
// would wait for each other.
class BatchSize {
public:
    std::size_t next()
    {
        const Clock::time_point now = Clock::now();
        if (m_size == 0)
            m_size = 1;
        else if (now - m_last < Wanted / 2)
            m_size = std::min(2 * m_size, Most);
        else if (now - m_last > Wanted)
            m_size = std::max<std::size_t>(m_size / 2, 1);
        m_last = now;
        return m_size;
    }

    // Returns true if the cases of this batch take longer than expected.
    bool isLate() const { return Clock::now() - m_last > Wanted; }

private:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::milliseconds Wanted{2};
    static constexpr std::size_t Most = 16; // long cases that follow would keep one thread busy

    std::size_t m_size = 0;
    Clock::time_point m_last;
};

unsigned threadsFor(unsigned jobs) noexcept
{
    return jobs > 0 ? jobs : TaskExecutor::cores();
}

} // namespace

CaseExchange::~CaseExchange() = default;

Study::Study(const Session& session, Sweep sweep) : m_session{session}, m_sweep{std::move(sweep)}
{
}

void Study::check(Faults& faults) const
{
    const Orla::VNetwork::Scope scope{m_session.network()};
    for (const Sweep::Factor& factor : m_sweep.factors()) {
        for (std::size_t i = 0; i < factor.rows.front().size(); ++i) {
            const std::string& name = m_sweep.inputs()[factor.firstInput + i];
            const Loam::Result<StrongPtr<Orla::VSlot>> input = m_session.core()->findInput(name);
            if (!input) {
                faults.add(FaultKind::Option, "cannot vary " + inQuotes(name) + ": " + input.reason());
                continue;
            }
            if ((*input)->isConnected()) {
                faults.add(FaultKind::Option, "cannot vary " + inQuotes(name)
                                                  + ": the input is connected, so a value would have no effect");
                continue;
            }
            std::set<std::string> checked;
            for (const std::vector<std::string>& row : factor.rows) {
                if (!checked.insert(row[i]).second)
                    continue;
                if (const auto value = m_session.core()->valueOfText(*input, row[i]); !value)
                    faults.add(FaultKind::Option, "cannot vary " + inQuotes(name) + ": " + value.reason());
            }
        }
    }
}

std::optional<std::string> Study::orderReason(const StudyOptions& options) const
{
    const Orla::VNetwork::Scope scope{m_session.network()};
    for (const StrongPtr<Orla::VManagedObject>& each : announcedObjects()) {
        const auto* const object = dynamic_cast<const Orla::VObject*>(each.get());
        // Events change the members of objects that depend on them only then, such as a hot key.
        if (object && object->isInOnePool() && (object->hasHistory() || !options.events.empty()))
            return Orla::VHistory{Orla::VHistory::Cause::KeepsState, object->Name(), {}}.text();
    }
    return std::nullopt;
}

bool Study::run(const StudyOptions& options, std::function<void(CaseResult)> receive,
                const Orla::VCancellation& cancellation) const
{
    CaseQueue queue{m_sweep.caseCount(), std::move(receive)};
    run(options, queue, cancellation);
    return !cancellation.isCancelled();
}

void Study::run(const StudyOptions& options, CaseExchange& exchange, const Orla::VCancellation& cancellation) const
{
    const unsigned wanted = options.jobs ? threadsFor(*options.jobs) : 1;
    const std::function<void(const std::string&)> reportOrder = oncePerText(options.reportOrder);
    unsigned caseThreads = static_cast<unsigned>(std::min<std::uint64_t>(wanted, m_sweep.caseCount()));
    if (caseThreads > 1) {
        if (const std::optional<std::string> reason = orderReason(options)) {
            if (reportOrder)
                reportOrder(*reason);
            caseThreads = 1;
        }
    }
    CaseEvaluation::Options each{.printed = options.printed,
                                 .events = options.events,
                                 .stepThreads = wanted / caseThreads,
                                 .reportOrder = reportOrder};
    if (options.jobs)
        each.helpers = each.stepThreads - 1;
    const auto work = [&] {
        CaseEvaluation evaluation{m_session, m_sweep, each};
        BatchSize size;
        while (!cancellation.isCancelled()) {
            const std::vector<std::uint64_t> numbers = exchange.next(size.next());
            if (numbers.empty())
                return;
            std::vector<CaseResult> results;
            for (const std::uint64_t number : numbers) {
                CaseResult result = evaluation.evaluate(number, cancellation);
                if (result.isCancelled)
                    break;
                results.push_back(std::move(result));
                // A journal must not lose the results before a long case.
                if (size.isLate())
                    exchange.deliver(std::exchange(results, {}));
            }
            if (!results.empty())
                exchange.deliver(std::move(results));
        }
    };
    if (caseThreads == 1) {
        work();
        return;
    }
    Workers workers{caseThreads, work, [&exchange] { exchange.end(); }};
    workers.join();
}

} // namespace Tarn
