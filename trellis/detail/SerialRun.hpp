#pragma once

#include <trellis/detail/Update.hpp>

#include <trellis/VScheduler.hpp>

namespace Orla::Detail {

/// One call of `VScheduler::run`: runs due objects one after the other. The caller holds a use
/// of the network.
class SerialRun {
public:
    SerialRun(PoolState& pool, VRequest& request);
    SerialRun(const SerialRun&) = delete;
    SerialRun& operator=(const SerialRun&) = delete;
    ~SerialRun();

    VScheduler::Summary run();

protected:
    /// Called between two updates. Lets other threads change the network, and brings the
    /// evaluation order up to date. Returns false if nothing is due or the request is
    /// cancelled.
    bool isThereMore()
    {
        m_network.gate.giveWay();
        if (m_pool.dueCount == 0)
            return false;
        if (m_request.isCancelled()) [[unlikely]] {
            m_summary.outcome = VScheduler::Outcome::Cancelled;
            return false;
        }
        if (!m_network.order.isUpToDate()) [[unlikely]]
            updateOrder();
        return true;
    }

    /// Returns the next object to run; null if nothing is due.
    VFrame* next()
    {
        if (!m_pool.nextRound.empty()) [[unlikely]]
            startRoundIfDue();
        VFrame* const frame = m_pool.nextDue();
        if (frame)
            m_pool.enterLoop(*frame);
        return frame;
    }

    /// Runs the object of a frame that left the queue. Returns false if the run ends.
    bool runOne(VFrame& frame)
    {
        return runOne(frame, [](VFrame&) {});
    }

    /// As above, but calls \p returned with the frame when the update has returned.
    template<class Function>
    bool runOne(VFrame& frame, Function&& returned)
    {
        Update update{frame};
        if (!update.prepare() || !countRun(frame))
            return true;
        if (m_pool.observer) [[unlikely]]
            m_pool.observer->began(update.object());
        const Update::Result result = update.call(m_pool.pool(), m_request);
        returned(frame);
        return finish(update, result);
    }

    /// Counts a run of the frame's object. Returns false if the object is part of a loop
    /// that was stopped.
    bool countRun(VFrame& frame)
    {
        if (m_pool.countRun(frame)) [[likely]]
            return true;
        stopLoop(frame);
        return false;
    }

    /// Counts and concludes the update. Returns false if the run ends.
    bool finish(Update& update, Update::Result result)
    {
        if (result == Update::Result::Skipped)
            return true;
        if (m_pool.observer) [[unlikely]]
            reportEnd(update, result);
        ++m_summary.updates;
        m_summary.failures += result == Update::Result::Failed;
        update.conclude(result);
        if (result != Update::Result::Cancelled) [[likely]]
            return true;
        m_summary.outcome = VScheduler::Outcome::Cancelled;
        return false;
    }

    PoolState& m_pool;
    NetworkCore& m_network;
    VRequest& m_request;
    VScheduler::Summary m_summary;

private:
    void updateOrder();
    void startRoundIfDue();
    void reportEnd(const Update& update, Update::Result result);
    void stopLoop(VFrame& frame);

    const Loam::Ageable::Ticks m_ticks;
    const CurrentScope m_current;
};

} // namespace Orla::Detail
