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
    /// nothing is. An update that throws is reported through
    /// `VActionNotifier::Warning` with the object's name; others go on.
    static Summary run(VRequest& request);

    /// As above, without progress or cancellation.
    static Summary run(const StrongPtr<ValuePool>& pool);
};

} // namespace Orla
