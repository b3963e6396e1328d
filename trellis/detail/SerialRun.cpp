#include <trellis/detail/SerialRun.hpp>

#include <trellis/VActionNotifier.hpp>

#include <string>

namespace Orla::Detail {

SerialRun::SerialRun(PoolState& pool, VRequest& request)
    : m_pool{pool}, m_network{*pool.network()}, m_request{request}, m_current{m_network}
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

void SerialRun::updateOrder()
{
    const ChangeScope change{m_network};
    m_network.updateOrder();
    m_pool.startRound();
}

// Starts the next round of a loop unless other objects come before it.
void SerialRun::startRoundIfDue()
{
    const VFrame* const first = m_pool.peekDue();
    if (!first || m_pool.isBehindRound(*first))
        m_pool.startRound();
}

void SerialRun::reportEnd(const Update& update, Update::Result result)
{
    m_pool.observer->ended(update.object(), result == Update::Result::Succeeded ? VObserver::Result::Succeeded
                                            : result == Update::Result::Failed  ? VObserver::Result::Failed
                                                                                : VObserver::Result::Cancelled);
}

// Stops the whole loop; its members that are still due are skipped.
void SerialRun::stopLoop(VFrame& frame)
{
    if (m_pool.isStopped(frame))
        return;
    ++m_summary.stopped;
    const std::string rounds = std::to_string(VScheduler::MaximalRounds) + " rounds";
    std::string members;
    {
        const ChangeScope change{m_network};
        std::vector<VFrame*> stopped;
        auto& container = const_cast<VSlotContainer&>(*frame.container());
        for (VSlotContainer* member : EvaluationOrder::loopOf(container)) {
            members += (members.empty() ? "" : ", ") + member->typeAndName();
            if (VFrame* const memberFrame = m_pool.frame(*member))
                stopped.push_back(memberFrame);
        }
        m_pool.stop(stopped, "its loop did not settle in " + rounds);
    }
    VActionNotifier::Error("A loop did not settle and was stopped after " + rounds + ": " + members);
}

} // namespace Orla::Detail
