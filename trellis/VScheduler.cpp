#include <trellis/VScheduler.hpp>

#include <trellis/NetworkOrder.hpp>
#include <trellis/PoolRoot.hpp>
#include <trellis/VActionNotifier.hpp>

#include <exception>
#include <limits>
#include <utility>

namespace Orla {

namespace {

void reportFailure(const VObject& object, const std::string& what)
{
    VActionNotifier::Warning(object.describe() + " failed: " + what);
}

// Also what is no std::exception is caught here: an object's mistake must not
// take the others with it.
bool updateSafely(VObject& object, VRequest& request, double precision)
{
    try {
        if (object.update(request, precision))
            return true;
        // Giving up when it is told to is no failure.
        if (!request.isCancelled())
            reportFailure(object, "its update returned false");
    } catch (const std::exception& error) {
        reportFailure(object, error.what());
    } catch (const char* message) {
        reportFailure(object, message ? message : "");
    } catch (const std::string& message) {
        reportFailure(object, message);
    } catch (...) {
        reportFailure(object, "something was thrown that is no std::exception");
    }
    return false;
}

void reportLoop(VSlotContainer& container)
{
    std::string members;
    for (VSlotContainer* member : NetworkOrder::loopOf(container))
        members += (members.empty() ? "" : ", ") + member->describe();
    VActionNotifier::Warning("A loop did not settle and was stopped after "
                             + std::to_string(VScheduler::MaximalRounds) + " rounds: " + members);
}

} // namespace

VScheduler::Observer::~Observer() = default;

bool VScheduler::schedule(const StrongPtr<VObject>& object, double precision, const StrongPtr<ValuePool>& pool)
{
    if (!object || !pool || !object->isRequestProcessingEnabled() || !pool->root().m_data)
        return false;
    VScope& scope = pool->root().m_data->scope(*object);
    scope.m_precision = precision;
    scope.makeDue(Observer::Cause::Scheduled);
    return true;
}

std::size_t VScheduler::scheduleAll(const StrongPtr<ValuePool>& pool)
{
    struct All final : VManagedObjectIterator {
        bool apply(const StrongPtr<VManagedObject>& managed) override
        {
            if (schedule(StrongPtr<VObject>(managed), 0, pool))
                ++count;
            return true;
        }

        StrongPtr<ValuePool> pool;
        std::size_t count = 0;
    } all;
    all.pool = pool;
    // Queues sort by order, so that it should stand before they are filled.
    NetworkOrder::update();
    VManagedObject::traverse(all, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    return all.count;
}

bool VScheduler::isDue(const StrongPtr<VObject>& object, const StrongPtr<ValuePool>& pool)
{
    if (!object || !pool || !pool->root().m_data)
        return false;
    StrongPtr<VScope>* scope = pool->root().m_data->scopes.find(object->m_id);
    return scope && (*scope)->m_due;
}

bool VScheduler::isDue(const StrongPtr<ValuePool>& pool)
{
    return pool && pool->root().m_data && !pool->root().m_data->due.empty();
}

bool VScheduler::observe(const StrongPtr<ValuePool>& pool, Observer* observer)
{
    if (!pool || !pool->root().m_data)
        return false;
    pool->root().m_data->observer = observer;
    return true;
}

VScheduler::Summary VScheduler::run(const StrongPtr<ValuePool>& pool)
{
    if (!isDue(pool))
        return {};
    VRequest request(pool);
    return run(request);
}

VScheduler::Summary VScheduler::run(VRequest& request)
{
    Summary summary;
    if (!isDue(request.valuePool()))
        return summary;
    // The pool must outlive the pass, whatever objects do with their pointers; the
    // request may know it through one of its scopes alone.
    const StrongPtr<ValuePool> pool = WeakPtrImpl<ValuePool>(&request.valuePool()->root()).lock();
    PoolRoot& root = *pool->m_data;
    if (root.running) {
        summary.outcome = Outcome::Busy;
        return summary;
    }

    struct Pass {
        explicit Pass(PoolRoot& theRoot) : root{theRoot}
        {
            root.running = true;
            ++root.pass;
        }
        ~Pass()
        {
            root.running = false;
            root.startRound();
        }
        PoolRoot& root;
    } pass{root};

    // Ends also if somebody throws who hears of a failure.
    struct Updating {
        explicit Updating(VScope& theScope) : scope{theScope} { scope.m_updating = true; }
        ~Updating() { scope.m_updating = false; }
        VScope& scope;
    };

    while (!root.due.empty() || root.startRound()) {
        if (request.isCancelled()) {
            summary.outcome = Outcome::Cancelled;
            return summary;
        }
        if (!NetworkOrder::isUpToDate()) {
            NetworkOrder::update();
            root.startRound();
        }
        if (!root.nextRound.empty() && root.due.frontOrder() > root.roundEnd)
            root.startRound();

        VScope& next = root.due.pop();
        if (next.m_container->m_order > next.m_dueOrder) {
            // A connection was made since it was queued.
            next.enqueue();
            continue;
        }
        next.m_due = false;
        root.loopPosition = next.m_container->m_inLoop ? std::int64_t{next.m_dueOrder} : -1;

        const StrongPtr<VScope> scope = WeakPtrImpl<VScope>(&next).lock();
        const StrongPtr<VObject> object = WeakPtrImpl<VObject>(scope->m_container->m_object).lock();
        if (!object)
            continue; // on its way out
        if (scope->m_pass != root.pass) {
            scope->m_pass = root.pass;
            scope->m_runs = 0;
        }
        if (scope->m_runs >= MaximalRounds) {
            // The loop as a whole ends here; its members that are still due are
            // passed over without another word.
            if (scope->m_runs == MaximalRounds) {
                ++summary.stopped;
                for (VSlotContainer* member : NetworkOrder::loopOf(*object)) {
                    VScope& stopped = root.scope(*member);
                    stopped.m_pass = root.pass;
                    stopped.m_runs = MaximalRounds + 1;
                }
                reportLoop(*object);
            }
            continue;
        }
        ++scope->m_runs;

        scope->completeVariables();
        const double precision = std::exchange(scope->m_precision, 0.0);
        bool succeeded = false;
        if (root.observer) [[unlikely]]
            root.observer->began(*object);
        {
            const Updating updating{*scope};
            succeeded = updateSafely(*object, request, precision);
        }
        if (root.observer) [[unlikely]]
            root.observer->ended(*object, request.isCancelled() ? Observer::Result::Cancelled
                                          : succeeded           ? Observer::Result::Succeeded
                                                                : Observer::Result::Failed);
        ++summary.updates;
        if (request.isCancelled()) {
            // What it wrote may be half of the result.
            scope->m_precision = precision;
            scope->makeDue(Observer::Cause::Cancelled);
            summary.outcome = Outcome::Cancelled;
            return summary;
        }
        if (!succeeded)
            ++summary.failures;
    }
    return summary;
}

} // namespace Orla
