#pragma once

#include <trellis/Export.hpp>
#include <trellis/VHistory.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VObserver.hpp>
#include <trellis/VRequest.hpp>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orla {

class VExecutor;

/// Runs due objects in an order that follows the connections.
///
/// In a network without loops, an object runs at most once per pass, however many of its
/// inputs changed. An object does not run if none of its inputs changed. A loop runs until
/// nothing changes. If it has not settled after `MaximalRounds`, its members count as failed
/// until one of them becomes due again; then all of them run.
///
/// After an update has failed, the objects that read its outputs, directly or indirectly,
/// wait: they do not run until it succeeds, and their own outputs do not count as results. An
/// object may accept failed inputs (`VSlotContainer::acceptsFailedInputs`), and an output may
/// stay valid (`VSlot::StaysValid`).
///
/// See `VNetwork` for the rules for threads.
class TRELLIS_API VScheduler {
public:
    enum class Outcome {
        Done,      ///< nothing is due
        Cancelled, ///< the request was cancelled; objects that did not run stay due
        Busy       ///< the pool is already being evaluated: an update tried to run its own pool
    };

    struct Summary {
        Outcome outcome = Outcome::Done;
        std::size_t updates = 0;  ///< updates that ran
        std::size_t failures = 0; ///< updates that threw or returned false
        std::size_t stopped = 0;  ///< loops that did not settle
        std::size_t waiting = 0;  ///< objects that still wait for a failed object at the end
    };

    /// The state of an object in a pool. Its outputs are results if it is `UpToDate`.
    enum class State {
        NotRun,   ///< it has never run and is not due
        Due,      ///< it runs in the next evaluation
        UpToDate, ///< its last update succeeded
        Failed,   ///< its last update failed, or its loop did not settle
        Waiting   ///< it reads a failed object, directly or indirectly
    };

    using Observer = VObserver;

    /// The number of runs of an object per pass after which its loop counts as not settling.
    static constexpr unsigned MaximalRounds = 100;

    /// Makes \p object due in \p pool; \p precision is passed to its update. Returns false if
    /// a pointer is null, the object's request processing is not enabled, or the pool belongs
    /// to another network.
    static bool schedule(const StrongPtr<VObject>& object, double precision, const StrongPtr<ValuePool>& pool);

    /// Makes every announced object of the pool's network due in \p pool; a new pool needs
    /// this. Returns the number of objects. A pool that has not been used yet joins the
    /// current network.
    static std::size_t scheduleAll(const StrongPtr<ValuePool>& pool);

    /// Makes \p object due in \p pool as if it had never run there: its outputs have their initial
    /// values, and all its inputs count as changed. The readers of its outputs are not notified
    /// before it runs; restart them too if their results depend on earlier updates. Returns false
    /// as `schedule` does. Do not call it during an evaluation of the pool.
    static bool restart(const StrongPtr<VObject>& object, const StrongPtr<ValuePool>& pool);

    static bool isDue(const StrongPtr<VObject>& object, const StrongPtr<ValuePool>& pool);

    /// Returns true if any object is due in \p pool.
    static bool isDue(const StrongPtr<ValuePool>& pool);

    static State stateOf(const VObject& object, const StrongPtr<ValuePool>& pool);

    /// Returns the failed objects that \p object waits for in \p pool, nearest first.
    /// Destroyed objects are not included. Empty if \p object does not wait.
    static std::vector<StrongPtr<VObject>> waitingFor(const VObject& object, const StrongPtr<ValuePool>& pool);

    /// An object whose last update in a pool failed.
    struct Failure {
        StrongPtr<VObject> object;
        std::string reason; ///< the message of the exception; empty if the update returned false
    };

    /// Returns the objects whose last update in \p pool failed, in evaluation order.
    static std::vector<Failure> failures(const StrongPtr<ValuePool>& pool);

    /// Returns the number of objects that wait for \p object in \p pool, directly or
    /// indirectly.
    static std::size_t countWaiting(const VObject& object, const StrongPtr<ValuePool>& pool);

    /// Returns why results in \p pool may depend on its earlier evaluations, for one object; or
    /// nothing if the objects whose updates have run depend on their inputs only. A host may
    /// evaluate such inputs, for example the steps of a time, in any order and in different
    /// pools.
    ///
    /// Objects declare it, or it is noticed: an update reads an output of its own object through
    /// `VOutput` before it has written the output, changes an input of its own object, or calls
    /// `VObject::resultFile`. An update that does something else whose result lasts is not
    /// noticed; its object calls `dependsOnEarlierUpdates` or `keepsState`.
    static std::optional<VHistory> history(const StrongPtr<ValuePool>& pool);

    /// Runs the due objects of the request's pool, and those that become due, until none is
    /// due. An update that throws or returns false is reported through
    /// `VActionNotifier::Error` with the object's name; objects that do not read its outputs
    /// run as usual.
    static Summary run(VRequest& request);

    /// As above, without progress or cancellation.
    static Summary run(const StrongPtr<ValuePool>& pool);

    /// As above, but runs independent objects concurrently, in this thread and in the threads
    /// of \p executor. The values, and the order in which listeners, observers and action
    /// notifiers are notified, are those of a serial run; they are notified in this thread,
    /// after the update has returned. A running object may use its own inputs and outputs, and
    /// schedule objects. A listener may write to any object; while values in the pool have
    /// listeners, objects therefore run concurrently only if they have the same evaluation
    /// order.
    ///
    /// Exceptions of \p executor are rethrown after the started updates have ended; objects
    /// that did not run stay due.
    static Summary run(VRequest& request, VExecutor& executor);

    /// Replaces the pool's observer; null removes it. Remove an observer before destroying
    /// it. Returns false for a null pool.
    static bool observe(const StrongPtr<ValuePool>& pool, Observer* observer);

    /// Copies the objects whose updates are running in any thread to \p objects, and returns
    /// their number. The innermost one of this thread is the first; if this thread runs none,
    /// the order is arbitrary. For reports on a hang or a crash: it may be called in a signal
    /// handler, and objects of other threads may end at any time.
    static std::size_t running(std::span<const VObject*> objects) noexcept;

    /// Returns the innermost object whose update is running in this thread, or null. It may be
    /// called in a signal handler.
    static const VObject* runningInThisThread() noexcept;
};

} // namespace Orla
