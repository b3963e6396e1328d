#pragma once

#include <trellis/Export.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VObserver.hpp>
#include <trellis/VRequest.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Orla {

class VExecutor;

/// Runs the objects that are due, in an order that follows the connections.
///
/// In a network without loops an object runs at most once per pass however many of
/// its inputs changed, and an object none of whose inputs changed does not run.
/// A loop is run until nothing changes.
///
/// After an update has failed, the objects that read its outputs, directly or not, wait:
/// they do not run until it succeeds, and their own outputs do not count as results.
/// An object may accept failed inputs (`VSlotContainer::acceptsFailedInputs`), and an
/// output may stay valid (`VSlot::StaysValid`).
///
/// What several threads may do is described at `VNetwork`.
class TRELLIS_API VScheduler {
public:
    enum class Outcome {
        Done,      ///< nothing is due any more
        Cancelled, ///< the request was cancelled; what was not done stays due
        Busy       ///< the pool is being evaluated already: an update asked for its own pool
    };

    struct Summary {
        Outcome outcome = Outcome::Done;
        std::size_t updates = 0;  ///< updates that ran
        std::size_t failures = 0; ///< of these, those that threw or returned false
        std::size_t stopped = 0;  ///< loops that did not settle
        std::size_t waiting = 0;  ///< objects that wait at the end for one that failed
    };

    /// How up to date an object is in a pool. Its outputs are results if it is `UpToDate`.
    enum class State {
        NotRun,   ///< it has never run, and is not due
        Due,      ///< it runs in the next evaluation
        UpToDate, ///< its last update succeeded
        Failed,   ///< its last update failed
        Waiting   ///< it reads, directly or not, an object that failed
    };

    using Observer = VObserver;

    /// An object that has run this often in one pass is part of a loop that does
    /// not settle.
    static constexpr unsigned MaximalRounds = 100;

    /// Makes \p object due in \p pool; \p precision is handed to its update. Returns false
    /// for a null pointer, for an object whose processing is not enabled, and for a pool
    /// of another network.
    static bool schedule(const StrongPtr<VObject>& object, double precision, const StrongPtr<ValuePool>& pool);

    /// Makes every announced object of the pool's network due in \p pool, as a new pool
    /// needs it; returns how many. A pool that has not been used yet takes the current
    /// network.
    static std::size_t scheduleAll(const StrongPtr<ValuePool>& pool);

    static bool isDue(const StrongPtr<VObject>& object, const StrongPtr<ValuePool>& pool);

    /// True if any object is due in \p pool.
    static bool isDue(const StrongPtr<ValuePool>& pool);

    static State stateOf(const VObject& object, const StrongPtr<ValuePool>& pool);

    /// The objects that failed and that \p object waits for in \p pool, nearest first;
    /// empty if it does not wait, and if an object that it waits for was destroyed.
    static std::vector<StrongPtr<VObject>> waitingFor(const VObject& object, const StrongPtr<ValuePool>& pool);

    /// Runs what is due in the request's pool, and what becomes due by it, until
    /// nothing is. An update that throws or returns false is reported through
    /// `VActionNotifier::Warning` with the object's name; objects that do not read its
    /// outputs run as usual.
    static Summary run(VRequest& request);

    /// As above, without progress or cancellation.
    static Summary run(const StrongPtr<ValuePool>& pool);

    /// As above, and runs objects that do not depend on each other concurrently, in this
    /// thread and in those of \p executor. Values, and the order in which listeners,
    /// observers and action notifiers are notified, are the same as without it; they are
    /// notified in this thread, after the update has returned. While an object runs, it
    /// may use its own inputs and outputs, and schedule objects. A listener may write to
    /// any object; while values in the pool have listeners, objects therefore run
    /// concurrently only if they have the same evaluation order.
    ///
    /// What \p executor throws reaches the caller after the updates that were started
    /// have ended; what was not run stays due.
    static Summary run(VRequest& request, VExecutor& executor);

    /// Replaces the pool's observer; null removes it. Remove an observer before destroying
    /// it. Returns false for a null pool.
    static bool observe(const StrongPtr<ValuePool>& pool, Observer* observer);
};

} // namespace Orla
