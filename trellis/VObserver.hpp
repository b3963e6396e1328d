#pragma once

#include <trellis/Export.hpp>

namespace Orla {

class VObject;
class VParameter;

/// Is notified of what runs in one pool, and why: tracing tools derive from it. Called
/// while objects run, so it should be quick. It must not throw, evaluate or connect
/// anything. All calls come from the thread that called `VScheduler::run`, or wrote to
/// the pool, in the same order however many threads evaluate.
class TRELLIS_API VObserver {
public:
    enum class Cause {
        Scheduled, ///< `VScheduler::schedule` was called, with a number
        Changed,   ///< a parameter that it reads was written
        Connected, ///< inputs were added, removed or reconnected
        Cancelled  ///< its last update was cancelled
    };

    enum class Result { Succeeded, Failed, Cancelled };

    virtual ~VObserver();

    /// \p object, which was not due, is due now. \p changed is the parameter
    /// that was written, null with any other cause; \p precision is the number
    /// that its update would get.
    virtual void becameDue(const VObject& object, Cause cause, const VParameter* changed,
                           double precision) noexcept = 0;

    /// The update of \p object starts when this returns.
    virtual void began(const VObject& object) noexcept = 0;

    /// The update that began last has ended.
    virtual void ended(const VObject& object, Result result) noexcept = 0;

    /// \p object waits from now on: it reads, directly or not, an output of an object
    /// that failed, and does not run until that object succeeds. The default does
    /// nothing.
    virtual void startedWaiting(const VObject& object) noexcept;

    /// \p object does not wait any more. The default does nothing.
    virtual void stoppedWaiting(const VObject& object) noexcept;
};

} // namespace Orla
