#pragma once

#include <trellis/Export.hpp>
#include <trellis/ValuePool.hpp>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace Orla {

class VSlot;

/// Ends an evaluation early; copies belong to the same evaluation. May be used
/// from another thread or a signal handler.
class VCancellation {
public:
    VCancellation() : m_cancelled{std::make_shared<std::atomic<bool>>(false)} {}

    void cancel() noexcept { m_cancelled->store(true, std::memory_order_relaxed); }
    bool isCancelled() const noexcept { return m_cancelled->load(std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> m_cancelled;
};

/// What an object's update works on: the pool, what changed in it, a way to report
/// progress, and a way to find out that the result is not wanted any more.
///
/// An update that takes long calls `isCancelled` now and then and returns when it is
/// true; its outputs do not count as results then, and the object stays due.
class TRELLIS_API VRequest {
public:
    /// Called with the progress as a fraction between 0 and 1. While objects of one pool
    /// run concurrently, it is called by several threads, one at a time.
    using Progress = std::function<void(double fraction)>;

    explicit VRequest(const StrongPtr<ValuePool>& pool, Progress progress = {});
    VRequest(const StrongPtr<ValuePool>& pool, Progress progress, VCancellation cancellation);

    const StrongPtr<ValuePool>& valuePool() const noexcept { return m_pool; }

    bool isCancelled() const noexcept { return m_isCancelled || (m_cancellation && m_cancellation->isCancelled()); }
    void cancel() noexcept;

    /// To hand to another thread, which may cancel the evaluation with it.
    const VCancellation& cancellation() const;

    /// \p fraction is clamped to [0,1]; NaN counts as 0.
    void reportProgress(double fraction) const;

    /// True if the value of the running object's \p input was written, or the input was
    /// reconnected, since the object's last successful update in this pool; true for all
    /// inputs before the first one. An input that reads a component counts as changed
    /// when any part of the value was written. False for other objects' slots and
    /// outside of updates.
    bool hasChanged(const VSlot& input) const;

    /// True if the value of the running object's \p input comes from an update that
    /// failed, or was not computed for that reason. Only objects that call
    /// `acceptsFailedInputs` run with such values.
    bool hasFailed(const VSlot& input) const;

    /// As above, for typed slots.
    template<class Slot>
        requires requires(const Slot& input)
        {
            input.slot();
        }
    bool hasChanged(const Slot& input) const { return input.slot() && hasChanged(*input.slot()); }

    template<class Slot>
        requires requires(const Slot& input)
        {
            input.slot();
        }
    bool hasFailed(const Slot& input) const { return input.slot() && hasFailed(*input.slot()); }

private:
    StrongPtr<ValuePool> m_pool;
    Progress m_progress;
    mutable std::optional<VCancellation> m_cancellation; // made when it is asked for
    bool m_isCancelled = false;
};

} // namespace Orla
