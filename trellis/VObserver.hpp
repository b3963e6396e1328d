#pragma once

#include <trellis/Export.hpp>

namespace Orla {

class VObject;
class VParameter;

/// Is notified of what runs in one pool, and why. Tracing tools derive from it. It is called
/// while objects run, so it should be quick. It must not throw, evaluate or connect anything.
/// All calls come from the thread that called `VScheduler::run` or wrote to the pool; their
/// order does not depend on the number of threads.
class TRELLIS_API VObserver {
public:
    enum class Cause {
        Scheduled, ///< `VScheduler::schedule` was called
        Changed,   ///< a parameter that it reads was written
        Connected, ///< inputs were added, removed or reconnected
        Cancelled  ///< its last update was cancelled
    };

    enum class Result { Succeeded, Failed, Cancelled };

    virtual ~VObserver();

    /// Called when \p object becomes due. \p changed is the parameter that was written; null
    /// with any other cause, and if the change was missed while waiting. \p precision is the
    /// number that the update would get.
    virtual void becameDue(const VObject& object, Cause cause, const VParameter* changed,
                           double precision) noexcept = 0;

    /// Called before the update of \p object or, if the update ran concurrently, before its
    /// changes are announced.
    virtual void began(const VObject& object) noexcept = 0;

    /// Called when the update that began last has ended.
    virtual void ended(const VObject& object, Result result) noexcept = 0;

    /// Called when \p object starts to wait: it reads, directly or indirectly, an output of a
    /// failed object, and does not run until that object succeeds. The default does nothing.
    virtual void startedWaiting(const VObject& object) noexcept;

    /// Called when \p object stops waiting. The default does nothing.
    virtual void stoppedWaiting(const VObject& object) noexcept;
};

} // namespace Orla
