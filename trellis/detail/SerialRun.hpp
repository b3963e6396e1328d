#pragma once

#include <trellis/detail/Update.hpp>

#include <trellis/VScheduler.hpp>

namespace Orla::Detail {

/// One call of `VScheduler::run`: runs due objects one after the other.
class SerialRun {
public:
    SerialRun(PoolState& pool, VRequest& request);
    SerialRun(const SerialRun&) = delete;
    SerialRun& operator=(const SerialRun&) = delete;
    ~SerialRun();

    VScheduler::Summary run();

protected:
    /// Between two updates: lets other threads change the network, and brings the
    /// evaluation order up to date. Returns false if nothing is due or the request is
    /// cancelled.
    bool isThereMore();

    /// The next object to run, or null if the loops start another round first.
    VFrame* next();

    /// Runs the object of a frame that left the queue. Returns false if the run ends.
    bool runOne(VFrame& frame);

    /// Counts a run of the frame's object. Returns false if the object is part of a loop
    /// that was stopped.
    bool countRun(VFrame& frame);

    /// Counts what the update did, and concludes it. Returns false if the run ends.
    bool finish(Update& update, Update::Result result);

    PoolState& m_pool;
    NetworkCore& m_network;
    VRequest& m_request;
    VScheduler::Summary m_summary;

private:
    void stopLoop(VFrame& frame);

    const UseScope m_use;
    const Loam::Ageable::Ticks m_ticks;
    const CurrentScope m_current;
};

} // namespace Orla::Detail
