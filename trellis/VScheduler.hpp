#pragma once

#include <trellis/Export.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VRequest.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Orla {

/// Runs the objects that are due, in an order that follows the connections.
///
/// In a network without loops an object runs at most once a pass however many of
/// its inputs changed, and an object none of whose inputs changed does not run.
/// A loop is run until nothing changes.
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
    };

    /// Hears what runs in one pool, and why: tracing tools derive from it. It is called
    /// while objects run, so that it should be quick; it must not throw, and neither
    /// evaluate nor connect anything.
    class TRELLIS_API Observer {
    public:
        enum class Cause {
            Scheduled, ///< somebody asked for it, with a number
            Changed,   ///< a parameter that it reads was written
            Connected, ///< inputs were added, removed or connected anew
            Cancelled  ///< its last update was cancelled
        };

        enum class Result { Succeeded, Failed, Cancelled };

        virtual ~Observer();

        /// \p object, which was not due, is due now. \p changed is the parameter
        /// that was written, null with any other cause; \p precision is the number
        /// that its update would get.
        virtual void becameDue(const VObject& object, Cause cause, const VParameter* changed,
                               double precision) noexcept = 0;

        /// The update of \p object starts when this returns.
        virtual void began(const VObject& object) noexcept = 0;

        /// The update that began last has ended.
        virtual void ended(const VObject& object, Result result) noexcept = 0;
    };

    /// An object that has run this often in one pass is part of a loop that does
    /// not settle.
    static constexpr unsigned MaximalRounds = 100;

    /// Makes \p object due in \p pool; \p precision is handed to its update. False
    /// for a null pointer and for an object whose processing is not enabled.
    static bool schedule(const StrongPtr<VObject>& object, double precision, const StrongPtr<ValuePool>& pool);

    /// Makes every announced object due in \p pool, as a new pool needs it;
    /// returns how many.
    static std::size_t scheduleAll(const StrongPtr<ValuePool>& pool);

    static bool isDue(const StrongPtr<VObject>& object, const StrongPtr<ValuePool>& pool);

    /// True if any object is due in \p pool.
    static bool isDue(const StrongPtr<ValuePool>& pool);

    /// Runs what is due in the request's pool, and what becomes due by it, until
    /// nothing is. An update that throws or returns false is reported through
    /// `VActionNotifier::Warning` with the object's name; others go on.
    static Summary run(VRequest& request);

    /// As above, without progress or cancellation.
    static Summary run(const StrongPtr<ValuePool>& pool);

    /// From now on \p observer hears what happens in \p pool, instead of the one
    /// before; null for nobody. It must be taken out before it goes. False for a
    /// null pool.
    static bool observe(const StrongPtr<ValuePool>& pool, Observer* observer);
};

} // namespace Orla
