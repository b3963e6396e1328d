#pragma once

#include <trellis/Export.hpp>
#include <trellis/ValuePool.hpp>

#include <atomic>
#include <functional>
#include <memory>

namespace Orla {

/// Ends an evaluation early; copies stand for the same evaluation. May be used
/// from another thread or a signal handler.
class VCancellation {
public:
    VCancellation() : m_cancelled{std::make_shared<std::atomic<bool>>(false)} {}

    void cancel() noexcept { m_cancelled->store(true, std::memory_order_relaxed); }
    bool isCancelled() const noexcept { return m_cancelled->load(std::memory_order_relaxed); }

private:
    std::shared_ptr<std::atomic<bool>> m_cancelled;
};

/// What an object's update is asked to work on: the pool, a way to say how far
/// it is, and a way to be told that nobody wants the result any more.
///
/// An update that takes long asks `isCancelled` now and then and returns when
/// it says so; what it had written is not taken for good, and the object stays
/// due.
class TRELLIS_API VRequest {
public:
    /// Hears of progress as a fraction between 0 and 1.
    using Progress = std::function<void(double fraction)>;

    explicit VRequest(const StrongPtr<ValuePool>& pool, Progress progress = {}, VCancellation cancellation = {});

    const StrongPtr<ValuePool>& valuePool() const noexcept { return m_pool; }

    bool isCancelled() const noexcept { return m_cancellation.isCancelled(); }
    void cancel() noexcept { m_cancellation.cancel(); }
    const VCancellation& cancellation() const noexcept { return m_cancellation; }

    /// \p fraction is brought into [0,1]; NaN counts as 0.
    void reportProgress(double fraction) const;

private:
    StrongPtr<ValuePool> m_pool;
    Progress m_progress;
    VCancellation m_cancellation;
};

} // namespace Orla
