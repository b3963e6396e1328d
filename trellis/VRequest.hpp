#pragma once

#include <trellis/Export.hpp>
#include <trellis/ValuePool.hpp>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace Orla {

class VSlot;

/// Cancels an evaluation. Copies belong to the same evaluation. May be used from another
/// thread or a signal handler.
class VCancellation {
public:
    VCancellation() : m_cancelled{std::make_shared<std::atomic<bool>>(false)} {}

    void cancel() noexcept { m_cancelled->store(true, std::memory_order_relaxed); }
    bool isCancelled() const noexcept { return m_cancelled->load(std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> m_cancelled;
};

/// The context of an object's update: the pool, what changed in it, a way to report progress,
/// and a way to find out whether the evaluation was cancelled.
///
/// A long update calls `isCancelled` from time to time and returns if it is true. Its outputs
/// then do not count as results, and the object stays due.
class TRELLIS_API VRequest {
public:
    /// Receives the progress as a fraction between 0 and 1. While objects of one pool run
    /// concurrently, several threads call it, one at a time.
    using Progress = std::function<void(double fraction)>;

    explicit VRequest(const StrongPtr<ValuePool>& pool, Progress progress = {});
    VRequest(const StrongPtr<ValuePool>& pool, Progress progress, VCancellation cancellation);

    const StrongPtr<ValuePool>& valuePool() const noexcept { return m_pool; }

    bool isCancelled() const noexcept { return m_isCancelled || (m_cancellation && m_cancellation->isCancelled()); }
    void cancel() noexcept;

    /// Returns a handle with which another thread may cancel the evaluation.
    const VCancellation& cancellation() const;

    /// Reports progress. \p fraction is clamped to [0,1]; NaN counts as 0.
    void reportProgress(double fraction) const;

    /// Returns true if the running object's \p input was written or reconnected since the
    /// object's last successful update in this pool, or if there was no successful update yet.
    /// An input that reads a component counts as changed if any part of the value was written.
    /// Returns false for other objects' slots and outside updates.
    bool hasChanged(const VSlot& input) const;

    /// Returns true if the value of the running object's \p input comes from a failed update,
    /// or was not computed because of one. Only objects that call `acceptsFailedInputs` run
    /// with failed inputs.
    bool hasFailed(const VSlot& input) const;

    /// As above, for typed slots.
    template<class Slot>
        requires requires(const Slot& input) { input.slot(); }
    bool hasChanged(const Slot& input) const
    {
        return input.slot() && hasChanged(*input.slot());
    }

    template<class Slot>
        requires requires(const Slot& input) { input.slot(); }
    bool hasFailed(const Slot& input) const
    {
        return input.slot() && hasFailed(*input.slot());
    }

private:
    StrongPtr<ValuePool> m_pool;
    Progress m_progress;
    mutable std::optional<VCancellation> m_cancellation; // created on demand
    bool m_isCancelled = false;
};

} // namespace Orla
