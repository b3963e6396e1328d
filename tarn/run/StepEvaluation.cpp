#include <tarn/run/StepEvaluation.hpp>

#include <tarn/run/Workers.hpp>

#include <trellis/VScheduler.hpp>

#include <loam/ScopeExit.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

namespace Tarn {

namespace {

using Orla::VCancellation;

// Steps that are evaluated in order before it is decided whether the others can be concurrent: the
// first updates of objects and the first ones that change something.
constexpr std::uint64_t FirstSteps = 2;

// Below this number, further contexts cost more than they gain.
constexpr std::uint64_t FewestConcurrent = 4;

constexpr std::uint64_t LongestBlock = 64;
constexpr std::uint64_t BlocksPerThread = 4;

constexpr std::chrono::milliseconds CancellationDelay{50};

bool evaluateNext(Context& context, const StepOptions& options, const VCancellation& cancellation)
{
    return options.evaluateStep ? options.evaluateStep(context, cancellation) : context.evaluateStep(cancellation);
}

// Returns why later steps cannot be evaluated independently of the steps so far; empty if they can.
std::string historyOf(const Context& context)
{
    if (context.hasEvents())
        return "events are played";
    const std::optional<Orla::VHistory> history = Orla::VScheduler::history(context.pool());
    return history ? history->text() : std::string();
}

// Consecutive steps that one thread evaluates, and the step before them.
struct Block {
    std::optional<Row> before; // row of the step before, unless the context came from there
    std::vector<Row> rows;
    std::string reason; // why the rows may differ from those of an evaluation in order; else empty
};

// The steps [begin, end), evaluated by several threads and passed on in order.
class ConcurrentSteps {
public:
    ConcurrentSteps(std::uint64_t begin, std::uint64_t end, const StepOptions& options,
                    const VCancellation& cancellation) noexcept
        : m_begin{begin}
        , m_end{end}
        , m_blockSize{std::clamp<std::uint64_t>((end - begin) / (options.threads * BlocksPerThread), 1, LongestBlock)}
        , m_options{options}
        , m_cancellation{cancellation}
    {
    }

    /// Returns the reason why the evaluation ended early; empty if it is complete or cancelled.
    /// `lastRow` is the row of the step before the first one, and then of the last one received.
    std::string run(Row& lastRow)
    {
        Workers workers{m_options.threads, [this] { work(); }, [this] { stop(); }};
        std::string reason;
        {
            const Loam::ScopeExit end{[this] { stop(); }};
            reason = collect(lastRow);
        }
        workers.join();
        return reason;
    }

    std::uint64_t received() const noexcept { return m_received; }

private:
    std::uint64_t blockCount() const noexcept { return (m_end - m_begin + m_blockSize - 1) / m_blockSize; }

    void stop()
    {
        const std::lock_guard lock{m_mutex};
        m_isStopped = true;
        m_changed.notify_all();
    }

    bool isStopped()
    {
        const std::lock_guard lock{m_mutex};
        return m_isStopped;
    }

    void work()
    {
        std::optional<Context> context;
        std::uint64_t position = 0; // the step that follows the last one of the context
        for (std::uint64_t number = m_next++; number < blockCount(); number = m_next++) {
            if (!context) {
                context.emplace(m_options.makeContext());
                context->setExecutor(nullptr);
            }
            const std::uint64_t begin = m_begin + number * m_blockSize;
            std::optional<Block> block = evaluateBlock(*context, begin, position);
            if (!block)
                return;
            position = begin + block->rows.size();
            const std::lock_guard lock{m_mutex};
            m_done.emplace(number, *std::move(block));
            m_changed.notify_all();
        }
    }

    // Returns nothing if the evaluation was cancelled or stopped.
    std::optional<Block> evaluateBlock(Context& context, std::uint64_t begin, std::uint64_t position)
    {
        const std::uint64_t end = std::min(begin + m_blockSize, m_end);
        Block block;
        // An evaluation that starts elsewhere first has to reach the state before the block. Its
        // row also shows whether the results depend on the steps before.
        if (position != begin)
            context.skipTo(begin - 1);
        for (std::uint64_t step = position != begin ? begin - 1 : begin; step < end; ++step) {
            if (isStopped() || m_cancellation.isCancelled())
                return std::nullopt;
            if (context.evaluateStep(m_cancellation)) {
                Row row = context.row();
                if (step < begin)
                    block.before = std::move(row);
                else
                    block.rows.push_back(std::move(row));
            } else if (m_cancellation.isCancelled()) {
                return std::nullopt;
            }
            if (!context.summary().isFine())
                block.reason = "an update fails";
            else
                block.reason = historyOf(context);
            if (!block.reason.empty())
                break;
        }
        return block;
    }

    std::string collect(Row& lastRow)
    {
        for (std::uint64_t number = 0; number < blockCount(); ++number) {
            std::unique_lock lock{m_mutex};
            // A signal that cancels the evaluation does not notify.
            while (!m_done.contains(number) && !m_isStopped && !m_cancellation.isCancelled())
                m_changed.wait_for(lock, CancellationDelay);
            const auto found = m_done.find(number);
            if (found == m_done.end())
                return {};
            const Block block = std::move(found->second);
            m_done.erase(found);
            lock.unlock();
            const std::uint64_t first = m_begin + number * m_blockSize;
            if (block.before && block.reason.empty() && *block.before != lastRow)
                return "the results of step " + std::to_string(first - 1) + " depend on earlier steps";
            if (!block.reason.empty())
                return block.reason;
            for (std::size_t i = 0; i < block.rows.size(); ++i) {
                if (m_options.receive)
                    m_options.receive(first + i, block.rows[i]);
                ++m_received;
            }
            lastRow = block.rows.back();
        }
        return {};
    }

    const std::uint64_t m_begin;
    const std::uint64_t m_end;
    const std::uint64_t m_blockSize;
    const StepOptions& m_options;
    const VCancellation& m_cancellation;
    std::atomic<std::uint64_t> m_next{0}; // block
    std::uint64_t m_received = 0;         // rows
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<std::uint64_t, Block> m_done; // blocks that were not received yet
    bool m_isStopped = false;
};

// Evaluates the steps from `FirstSteps` on in several threads, and the last one in `context` too.
// Returns the reason why an evaluation in order is needed; empty if the evaluation is complete or
// was cancelled. Adds the number of rows received to `received`.
std::string evaluateConcurrently(Context& context, const StepOptions& options, const VCancellation& cancellation,
                                 std::uint64_t count, Row lastRow, std::uint64_t& received)
{
    ConcurrentSteps steps{FirstSteps, count - 1, options, cancellation};
    std::string reason = steps.run(lastRow);
    received += steps.received();
    if (!reason.empty() || received < count - 1) {
        context.skipTo(received);
        return reason;
    }
    context.skipTo(count - 2);
    if (!context.evaluateStep(cancellation))
        return cancellation.isCancelled() ? std::string() : "an update fails";
    if (context.row() != lastRow)
        return "the results of step " + std::to_string(count - 2) + " depend on earlier steps";
    if (!context.evaluateStep(cancellation))
        return cancellation.isCancelled() ? std::string() : "an update fails";
    const Row row = context.row();
    if (!context.summary().isFine())
        return "an update fails";
    reason = historyOf(context);
    if (reason.empty()) {
        if (options.receive)
            options.receive(count - 1, row);
        ++received;
    }
    return reason;
}

} // namespace

bool evaluateSteps(Context& context, const StepOptions& options, const VCancellation& cancellation)
{
    const Loam::Result<std::uint64_t> counted = context.stepCount();
    if (!counted)
        return context.evaluateStep(cancellation); // notes the reason in the summary
    const std::uint64_t count = *counted;
    bool mayBeConcurrent = options.threads > 1 && count >= FirstSteps + FewestConcurrent;
    std::uint64_t received = 0;
    for (std::uint64_t step = 0; step < count;) {
        if (!evaluateNext(context, options, cancellation))
            return false;
        const Row row = context.row();
        if (step == received) {
            if (options.receive)
                options.receive(step, row);
            ++received;
        }
        ++step;
        if (step != FirstSteps || !std::exchange(mayBeConcurrent, false))
            continue;
        std::string reason = context.summary().isFine() ? historyOf(context) : "an update fails";
        if (reason.empty()) {
            reason = evaluateConcurrently(context, options, cancellation, count, row, received);
            if (reason.empty() && received == count)
                return true;
            if (reason.empty())
                return context.evaluateStep(cancellation); // notes the cancellation in the summary
            context = options.makeContext();
            step = 0;
        }
        if (options.reportOrder)
            options.reportOrder(reason);
    }
    return true;
}

} // namespace Tarn
