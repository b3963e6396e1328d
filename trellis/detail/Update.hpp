#pragma once

#include <trellis/detail/PoolState.hpp>
#include <trellis/detail/RunningObjects.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VRequest.hpp>

#include <atomic>
#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace Orla::Detail {

/// One update of one object in one pool, starting when its frame leaves the queue. Keeps the
/// frame and the object alive.
class Update {
public:
    enum class Result { Succeeded, Failed, Cancelled, Skipped };

    explicit Update(VFrame& frame) noexcept : m_frame{frame}, m_pool{*frame.m_pool} { m_frame.m_isUpdating = true; }
    Update(const Update&) = delete;
    Update& operator=(const Update&) = delete;

    ~Update()
    {
        m_frame.m_isUpdating = false;
        if (m_frame.m_isDead || m_hold || !m_pool.heldObjects.empty()) [[unlikely]]
            release();
    }

    /// Resolves the frame's cells and takes what the update needs. Returns false if the object
    /// does not run because it waits for another one or is being destroyed.
    /// \throw std::bad_alloc; the object is due again.
    bool prepare() { return !m_frame.needsPreparation() || prepareCarefully(); }

    /// Calls the object's update, with \p pool as the request's pool.
    Result call(ValuePool& pool, VRequest& request) noexcept
    {
        if (m_frame.m_isDead || (m_keepsState && !takeTurn())) [[unlikely]]
            return Result::Skipped;
        m_startedAt = Ageable::now();
        VFrame* const outer = std::exchange(pool.m_running, &m_frame);
        const std::uint64_t outerWritten = std::exchange(pool.m_written, 0);
        std::atomic<const VObject*>& running = RunningObjects::ofThisThread();
        const VObject* const outerObject = running.load(std::memory_order_relaxed);
        running.store(m_frame.m_object, std::memory_order_relaxed);
        bool succeeded = false;
        try {
            succeeded = m_frame.m_object->update(request, m_precision);
        } catch (...) {
            // A failing object must not end the evaluation of the others.
            m_thrown = std::current_exception();
        }
        running.store(outerObject, std::memory_order_relaxed);
        pool.m_running = outer;
        pool.m_written = outerWritten;
        if (m_hasTurn) [[unlikely]]
            giveTurn();
        if (request.isCancelled()) [[unlikely]]
            return Result::Cancelled;
        return succeeded ? Result::Succeeded : Result::Failed;
    }

    /// Applies the result to the pool: the object succeeded, failed, or is due again.
    /// \throw anything that an action notifier throws when it is notified of a failure.
    void conclude(Result result)
    {
        if (result == Result::Succeeded && !m_frame.m_isDead && !m_frame.m_hasRewired && !m_frame.m_hasFailed)
            [[likely]]
            m_frame.m_lastRun = m_startedAt + 1;
        else
            concludeCarefully(result);
    }

    /// Marks the current values as seen by the object, if its update succeeds.
    void knowValuesOfNow() noexcept { m_startedAt = Ageable::now(); }

    VFrame& frame() const noexcept { return m_frame; }
    VObject& object() const noexcept { return *m_frame.m_object; }
    double precision() const noexcept { return m_precision; }

private:
    bool prepareCarefully();
    void concludeCarefully(Result result);
    void release() noexcept;
    std::string failure() const;
    bool takeTurn();
    void giveTurn() noexcept;

    VFrame& m_frame;
    PoolState& m_pool;
    Loam::ReferenceBlock* m_hold = nullptr; // of an object that no registry keeps alive
    std::exception_ptr m_thrown;
    double m_precision = 0;
    Loam::Ageable::Age m_startedAt = 0;
    bool m_keepsState = false;
    bool m_hasTurn = false; // of an object that runs in one pool at a time
};

} // namespace Orla::Detail
