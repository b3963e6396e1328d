#include <trellis/detail/Update.hpp>

#include <trellis/VActionNotifier.hpp>

#include <loam/AtomicCount.hpp>

#include <exception>
#include <utility>

namespace Orla::Detail {

void Update::release() noexcept
{
    if (m_frame.m_isDead && !m_frame.m_isDue)
        m_pool.freeFrame(m_frame);
    // Released last, because these may be the last owners of the object.
    m_pool.releaseHeldObjects();
    if (m_hold)
        m_hold->releaseStrong();
}

bool Update::prepareCarefully()
{
    if (m_frame.m_isStale) [[unlikely]] {
        m_frame.m_missedRun = false; // it runs now, unless it still waits
        try {
            m_pool.complete(m_frame);
        } catch (...) {
            m_pool.makeDue(m_frame);
            throw;
        }
    }
    if (m_frame.m_isWaiting) [[unlikely]] {
        m_frame.m_missedRun = true;
        return false;
    }
    if (m_frame.m_needsHold) {
        // The object itself must not be touched: another thread may be destroying it.
        Loam::ReferenceBlock* const block = m_frame.m_container->wiring().block;
        if (!block || !block->tryAddStrong())
            return false;
        m_hold = block;
    }
    if (m_frame.m_acceptsFailed) [[unlikely]]
        m_pool.markMissing(m_frame);
    m_keepsState = m_frame.m_keepsState;
    m_precision = m_pool.takePrecision(m_frame);
    return true;
}

// Waits until no other thread runs the object.
bool Update::takeTurn()
{
    static thread_local const char mark = 0;
    std::atomic<const void*>& runner = const_cast<VSlotContainer*>(m_frame.m_container)->wiring().runner;
    const void* expected = nullptr;
    while (!runner.compare_exchange_strong(expected, &mark)) {
        if (expected == &mark)
            return true; // an outer update of this thread has the turn
        m_pool.network()->gate.waitUntil([&runner] { return !runner.load(); });
        if (m_frame.m_isDead)
            return false;
        expected = nullptr;
    }
    m_hasTurn = true;
    return true;
}

void Update::giveTurn() noexcept
{
    if (!m_hasTurn)
        return;
    const_cast<VSlotContainer*>(m_frame.m_container)->wiring().runner.store(nullptr);
    if (!Loam::isSingleThreaded() && m_pool.network())
        m_pool.network()->gate.wake();
    m_hasTurn = false;
}

std::string Update::failure() const
{
    if (!m_thrown)
        return "its update returned false";
    try {
        std::rethrow_exception(m_thrown);
    } catch (const std::bad_alloc&) {
        return "out of memory";
    } catch (const std::exception& error) {
        return error.what();
    } catch (const char* message) {
        return message ? message : "";
    } catch (const std::string& message) {
        return message;
    } catch (...) {
        return "it threw something other than a std::exception";
    }
}

void Update::concludeCarefully(Result result)
{
    if (m_frame.m_isDead)
        return;
    switch (result) {
    case Result::Skipped:
        break;
    case Result::Cancelled:
        // Its outputs may be incomplete.
        m_pool.setPrecision(m_frame, m_precision);
        m_pool.makeDue(m_frame, VObserver::Cause::Cancelled);
        break;
    case Result::Failed: {
        m_pool.fail(m_frame);
        const std::string reason = failure();
        m_pool.keepReason(m_frame, m_thrown ? reason : std::string{});
        VActionNotifier::Error(object().typeAndName() + " failed: " + reason);
        break;
    }
    case Result::Succeeded:
        m_frame.m_lastRun = m_startedAt + 1;
        if (m_frame.m_hasRewired) [[unlikely]]
            PoolState::forgetRewiring(m_frame);
        if (m_frame.m_hasFailed) [[unlikely]]
            m_pool.recover(m_frame);
    }
}

} // namespace Orla::Detail
