#include <trellis/detail/SerialRun.hpp>

#include <trellis/VActionNotifier.hpp>

#include <string>

namespace Orla::Detail {

SerialRun::SerialRun(PoolState& pool, VRequest& request)
    : m_pool{pool}
    , m_network{*pool.network()}
    , m_request{request}
    , m_use{m_network}
    , m_current{m_network}
{
    m_pool.isRunning = true;
    m_pool.beginPass();
}

SerialRun::~SerialRun()
{
    m_pool.isRunning = false;
    m_pool.startRound();
}

VScheduler::Summary SerialRun::run()
{
    if (m_pool.hasPending)
        m_pool.announcePending();
    while (isThereMore()) {
        VFrame* const frame = next();
        if (frame && !runOne(*frame))
            break;
    }
    m_summary.waiting = m_pool.waitingCount;
    return m_summary;
}

bool SerialRun::isThereMore()
{
    m_network.gate.giveWay();
    if (m_pool.dueCount == 0)
        return false;
    if (m_request.isCancelled()) {
        m_summary.outcome = VScheduler::Outcome::Cancelled;
        return false;
    }
    if (!m_network.order.isUpToDate()) [[unlikely]] {
        const ChangeScope change{m_network};
        m_network.updateOrder();
        m_pool.startRound();
    }
    return true;
}

VFrame* SerialRun::next()
{
    if (!m_pool.nextRound.empty()) [[unlikely]] {
        const VFrame* const first = m_pool.peekDue();
        if (!first || m_pool.isBehindRound(*first))
            m_pool.startRound();
    }
    VFrame* const frame = m_pool.nextDue();
    if (frame)
        m_pool.enterLoop(*frame);
    return frame;
}

bool SerialRun::countRun(VFrame& frame)
{
    if (!m_pool.countRun(frame)) [[unlikely]] {
        stopLoop(frame);
        return false;
    }
    return true;
}

bool SerialRun::runOne(VFrame& frame)
{
    Update update{frame};
    if (!update.prepare() || !countRun(frame))
        return true;
    if (m_pool.observer) [[unlikely]]
        m_pool.observer->began(update.object());
    const Update::Result result = update.call(m_pool.pool(), m_request);
    return finish(update, result);
}

bool SerialRun::finish(Update& update, Update::Result result)
{
    if (result == Update::Result::Skipped)
        return true;
    if (m_pool.observer) [[unlikely]]
        m_pool.observer->ended(update.object(), result == Update::Result::Succeeded ? VObserver::Result::Succeeded
                                                : result == Update::Result::Failed  ? VObserver::Result::Failed
                                                                                    : VObserver::Result::Cancelled);
    ++m_summary.updates;
    if (result == Update::Result::Failed) [[unlikely]]
        ++m_summary.failures;
    update.conclude(result);
    if (result == Update::Result::Cancelled) [[unlikely]] {
        m_summary.outcome = VScheduler::Outcome::Cancelled;
        return false;
    }
    return true;
}

// The loop as a whole ends here; its members that are still due are skipped.
void SerialRun::stopLoop(VFrame& frame)
{
    if (m_pool.isStopped(frame))
        return;
    ++m_summary.stopped;
    std::string members;
    {
        const ChangeScope change{m_network};
        auto& container = const_cast<VSlotContainer&>(*frame.container());
        for (VSlotContainer* member : EvaluationOrder::loopOf(container)) {
            members += (members.empty() ? "" : ", ") + member->describe();
            if (VFrame* const stopped = m_pool.frame(*member))
                m_pool.stop(*stopped);
        }
    }
    VActionNotifier::Warning("A loop did not settle and was stopped after "
                             + std::to_string(VScheduler::MaximalRounds) + " rounds: " + members);
}

} // namespace Orla::Detail
