#include <trellis/VScheduler.hpp>

#include <trellis/detail/ConcurrentRun.hpp>

#include <trellis/VExecutor.hpp>

#include <algorithm>
#include <optional>

namespace Orla {

using Detail::PoolState;

static_assert(VScheduler::MaximalRounds == PoolState::MaximalRuns);

namespace {

PoolState* stateOf(const StrongPtr<ValuePool>& pool) noexcept
{
    return pool ? pool->state() : nullptr;
}

VFrame* frameOf(const VObject& object, const StrongPtr<ValuePool>& pool) noexcept
{
    PoolState* const state = stateOf(pool);
    return state ? state->findFrame(object) : nullptr;
}

// Prevents other threads from removing frames of the pool during its lifetime.
class PoolUse {
public:
    explicit PoolUse(const StrongPtr<ValuePool>& pool)
    {
        const PoolState* const state = stateOf(pool);
        if (state && state->network())
            m_use.emplace(*state->network());
    }

private:
    std::optional<Detail::UseScope> m_use;
};

} // namespace

bool VScheduler::schedule(const StrongPtr<VObject>& object, double precision, const StrongPtr<ValuePool>& pool)
{
    if (!object || !object->isRequestProcessingEnabled() || !pool || !pool->root())
        return false;
    PoolState& state = pool->stateOrNew();
    const Detail::UseScope use{*object->wiring().network};
    VFrame* const frame = state.frame(*object);
    if (!frame)
        return false;
    state.schedule(*frame, precision);
    return true;
}

bool VScheduler::restart(const StrongPtr<VObject>& object, const StrongPtr<ValuePool>& pool)
{
    if (!schedule(object, 0, pool))
        return false;
    const PoolUse use{pool};
    if (VFrame* const frame = frameOf(*object, pool))
        PoolState::forgetResults(*frame);
    return true;
}

std::size_t VScheduler::scheduleAll(const StrongPtr<ValuePool>& pool)
{
    if (!pool || !pool->root())
        return 0;
    Detail::NetworkCore* network = pool->stateOrNew().network();
    if (!network || network->isClosed())
        network = &Detail::NetworkCore::current();
    const StrongPtr<Detail::NetworkCore> keepAlive(network);
    // Queues sort by order number, so the numbers must be right before queues are filled.
    if (!network->order.isUpToDate()) {
        const Detail::ChangeScope change{*network};
        network->updateOrder();
    }
    const Detail::CurrentScope current{*network};
    const Detail::UseScope use{*network};
    std::size_t count = 0;
    VManagedObject::forEachObject<VObject>(
        [&](const StrongPtr<VObject>& object) { count += schedule(object, 0, pool); });
    return count;
}

bool VScheduler::isDue(const StrongPtr<VObject>& object, const StrongPtr<ValuePool>& pool)
{
    const PoolUse use{pool};
    const VFrame* const frame = object ? frameOf(*object, pool) : nullptr;
    return frame && PoolState::isDue(*frame);
}

bool VScheduler::isDue(const StrongPtr<ValuePool>& pool)
{
    const PoolUse use{pool};
    const PoolState* const state = Orla::stateOf(pool);
    return state && state->dueCount > 0;
}

VScheduler::State VScheduler::stateOf(const VObject& object, const StrongPtr<ValuePool>& pool)
{
    const PoolUse use{pool};
    const VFrame* const frame = frameOf(object, pool);
    return frame ? PoolState::stateOf<State>(*frame) : State::NotRun;
}

std::vector<StrongPtr<VObject>> VScheduler::waitingFor(const VObject& object, const StrongPtr<ValuePool>& pool)
{
    std::vector<StrongPtr<VObject>> failed;
    const PoolUse use{pool};
    PoolState* const state = Orla::stateOf(pool);
    VFrame* const frame = frameOf(object, pool);
    if (!frame)
        return failed;
    for (VObject* each : state->failedSources(*frame))
        failed.push_back(WeakPtrImpl<VObject>(each).lock());
    std::erase(failed, nullptr);
    return failed;
}

std::vector<VScheduler::Failure> VScheduler::failures(const StrongPtr<ValuePool>& pool)
{
    std::vector<Failure> failures;
    const PoolUse use{pool};
    PoolState* const state = Orla::stateOf(pool);
    if (!state)
        return failures;
    for (VFrame* const frame : state->failedFrames()) {
        if (StrongPtr<VObject> object = WeakPtrImpl<VObject>(Detail::PoolState::objectOf(*frame)).lock())
            failures.push_back({std::move(object), state->reasonOf(*frame)});
    }
    return failures;
}

std::size_t VScheduler::countWaiting(const VObject& object, const StrongPtr<ValuePool>& pool)
{
    const PoolUse use{pool};
    VFrame* const frame = frameOf(object, pool);
    return frame ? Orla::stateOf(pool)->countWaiting(*frame) : 0;
}

std::optional<VHistory> VScheduler::history(const StrongPtr<ValuePool>& pool)
{
    const PoolUse use{pool};
    Detail::PoolState* const state = Orla::stateOf(pool);
    return state ? state->history() : std::nullopt;
}

bool VScheduler::observe(const StrongPtr<ValuePool>& pool, Observer* observer)
{
    if (!pool || !pool->root())
        return false;
    pool->stateOrNew().observer = observer;
    return true;
}

VScheduler::Summary VScheduler::run(const StrongPtr<ValuePool>& pool)
{
    VRequest request(pool);
    return run(request);
}

namespace {

// Runs the pool with a `Run`, unless nothing is due or the pool is already running.
template<class Run, class... Arguments>
VScheduler::Summary runWith(VRequest& request, Arguments&... arguments)
{
    VScheduler::Summary summary;
    PoolState* const state = stateOf(request.valuePool());
    if (!state || !state->network())
        return summary;
    // Keep both alive during the run, even if objects release their pointers.
    const StrongPtr<ValuePool> pool = request.valuePool()->root();
    const StrongPtr<Detail::NetworkCore> network(state->network());
    const Detail::UseScope use{*network};
    if (state->dueCount == 0 && !state->hasPending) {
        summary.waiting = state->waitingCount;
        return summary;
    }
    if (state->isRunning) {
        summary.outcome = VScheduler::Outcome::Busy;
        return summary;
    }
    return Run{*state, request, arguments...}.run();
}

} // namespace

VScheduler::Summary VScheduler::run(VRequest& request)
{
    return runWith<Detail::SerialRun>(request);
}

VScheduler::Summary VScheduler::run(VRequest& request, VExecutor& executor)
{
    if (executor.concurrency() == 0)
        return run(request);
    return runWith<Detail::ConcurrentRun>(request, executor);
}

std::size_t VScheduler::running(std::span<const VObject*> objects) noexcept
{
    return Detail::RunningObjects::list(objects);
}

const VObject* VScheduler::runningInThisThread() noexcept
{
    return Detail::RunningObjects::inThisThread();
}

} // namespace Orla
