#include <trellis/PoolRoot.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VSlotContainer.hpp>

#include <algorithm>
#include <functional>

namespace Orla {

namespace {

std::uint64_t nextPoolId()
{
    static std::uint64_t last = 0;
    return ++last;
}

} // namespace

void DueQueue::Bucket::append(VScope& scope) noexcept
{
    scope.m_nextDue = nullptr;
    scope.m_previousDue = last;
    (last ? last->m_nextDue : first) = &scope;
    last = &scope;
}

void DueQueue::Bucket::unlink(VScope& scope) noexcept
{
    (scope.m_previousDue ? scope.m_previousDue->m_nextDue : first) = scope.m_nextDue;
    (scope.m_nextDue ? scope.m_nextDue->m_previousDue : last) = scope.m_previousDue;
}

void DueQueue::push(VScope& scope, std::uint32_t order)
{
    scope.m_dueOrder = order;
    for (std::size_t i = 0; i < m_nearCount; ++i) {
        if (m_near[i].order == order) {
            m_near[i].append(scope);
            return;
        }
    }
    Bucket* bucket = m_far.find(order + std::uint64_t{1});
    if (!bucket && m_nearCount < NearBuckets) {
        NearBucket& fresh = m_near[m_nearCount++];
        fresh.order = order;
        bucket = &fresh;
    } else if (!bucket) {
        bucket = &m_far[order + std::uint64_t{1}];
        m_farOrders.push_back(order);
        std::ranges::push_heap(m_farOrders, std::greater{});
    }
    bucket->append(scope);
}

std::size_t DueQueue::nearest() const noexcept
{
    std::size_t nearest = 0;
    for (std::size_t i = 1; i < m_nearCount; ++i) {
        if (m_near[i].order < m_near[nearest].order)
            nearest = i;
    }
    return nearest;
}

bool DueQueue::isFarNext(std::size_t nearest) const noexcept
{
    return m_nearCount == 0 || (!m_farOrders.empty() && m_farOrders.front() < m_near[nearest].order);
}

std::uint32_t DueQueue::frontOrder() const noexcept
{
    const std::size_t near = nearest();
    return isFarNext(near) ? m_farOrders.front() : m_near[near].order;
}

VScope& DueQueue::pop()
{
    const std::size_t nearest = this->nearest();
    if (isFarNext(nearest)) {
        Bucket& bucket = *m_far.find(m_farOrders.front() + std::uint64_t{1});
        VScope& scope = *bucket.first;
        bucket.unlink(scope);
        dropEmptyFar();
        return scope;
    }
    VScope& scope = *m_near[nearest].first;
    m_near[nearest].unlink(scope);
    if (!m_near[nearest].first)
        dropNear(nearest);
    return scope;
}

void DueQueue::remove(VScope& scope)
{
    // An order number has its bucket either at hand or in the table.
    for (std::size_t i = 0; i < m_nearCount; ++i) {
        if (m_near[i].order == scope.m_dueOrder) {
            m_near[i].unlink(scope);
            if (!m_near[i].first)
                dropNear(i);
            return;
        }
    }
    m_far.find(scope.m_dueOrder + std::uint64_t{1})->unlink(scope);
    dropEmptyFar();
}

void DueQueue::dropNear(std::size_t index) noexcept
{
    m_near[index] = m_near[--m_nearCount];
    m_near[m_nearCount] = NearBucket{};
}

// A bucket that runs empty behind the front stays until it comes to the front,
// so that the front bucket always has somebody.
void DueQueue::dropEmptyFar()
{
    while (!m_farOrders.empty() && !m_far.find(m_farOrders.front() + std::uint64_t{1})->first) {
        m_far.erase(m_farOrders.front() + std::uint64_t{1});
        std::ranges::pop_heap(m_farOrders, std::greater{});
        m_farOrders.pop_back();
    }
}

PoolRoot::PoolRoot(ValuePool& thePool, std::string theName)
    : pool{thePool}, name{std::move(theName)}, id{nextPoolId()}
{
}

bool PoolRoot::startRound()
{
    loopPosition = -1;
    roundEnd = ~std::uint32_t{0};
    if (nextRound.empty())
        return false;
    while (!nextRound.empty())
        nextRound.pop().enqueue();
    return true;
}

// Scopes that somebody still holds must not look for the pool.
void PoolRoot::close()
{
    for (const StrongPtr<VScope>& scope : scopes.release())
        scope->leaveRoot();
    for (const StrongPtr<ValuePool>& scope : looseScopes)
        scope->m_root = scope.get();
}

StrongPtr<ValuePool> PoolRoot::looseScope(const std::string& variable)
{
    for (const StrongPtr<ValuePool>& scope : looseScopes) {
        if (!scope->findName(variable))
            return scope;
    }
    return looseScopes.emplace_back(new ValuePool(ValuePool::Scope{}, pool));
}

VScope& PoolRoot::scope(VSlotContainer& container)
{
    if (container.m_cachedPool == id)
        return *container.m_cachedScope;
    StrongPtr<VScope>* found = scopes.find(container.m_id);
    if (!found) {
        StrongPtr<VScope> made(new VScope(pool, container));
        found = &scopes[container.m_id];
        *found = std::move(made);
        (*found)->enlist();
    }
    container.m_cachedPool = id;
    container.m_cachedScope = found->get();
    return **found;
}

void PoolRoot::forgetContainer(VSlotContainer& container)
{
    while (VScope* scope = container.m_scopes) {
        PoolRoot& root = *scope->root().m_data;
        if (scope->m_due) {
            scope->dequeue();
            scope->m_due = false;
        }
        const WeakPtrImpl<VScope> weak(scope);
        const StrongPtr<VScope> keepAlive = weak.lock();
        root.scopes.erase(container.m_id);
        keepAlive->leaveRoot();
    }
    container.m_cachedPool = 0;
    container.m_cachedScope = nullptr;
}

VScope::VScope(ValuePool& root, VSlotContainer& container) : ValuePool(Scope{}, root), m_container{&container}
{
}

VScope::~VScope()
{
    leaveRoot();
}

// The variables of parameters that others still read stay in the pool's index.
void VScope::leaveRoot() noexcept
{
    delist();
    if (m_root == this)
        return;
    for (const Variable& variable : m_variables) {
        if (PoolRoot::Variable* entry = m_root->m_data->variables.find(variable.parameter);
            entry && entry->place == this)
            entry->place = nullptr;
    }
    m_root = this;
    if (m_overflow)
        static_cast<VScope*>(m_overflow.get())->leaveRoot();
}

void VScope::enlist()
{
    m_next = m_container->m_scopes;
    if (m_next)
        m_next->m_previous = this;
    m_container->m_scopes = this;
    m_enlisted = true;
}

void VScope::delist() noexcept
{
    if (!m_container)
        return;
    if (m_container->m_cachedScope == this) {
        m_container->m_cachedPool = 0;
        m_container->m_cachedScope = nullptr;
    }
    if (m_enlisted) {
        (m_previous ? m_previous->m_next : m_container->m_scopes) = m_next;
        if (m_next)
            m_next->m_previous = m_previous;
        m_next = nullptr;
        m_previous = nullptr;
        m_enlisted = false;
    }
    m_container = nullptr;
}

void VScope::makeDue()
{
    if (m_due || !m_container || !m_container->m_isEvaluated)
        return;
    m_due = true;
    enqueue();
}

void VScope::makeDue(VScheduler::Observer::Cause cause, const VParameter* changed)
{
    const bool wasDue = m_due;
    makeDue();
    if (VScheduler::Observer* const observer = root().m_data->observer; observer && m_due && !wasDue)
        observer->becameDue(*m_container->m_object, cause, changed, m_precision);
}

void VScope::enqueue()
{
    PoolRoot& data = *root().m_data;
    const std::uint32_t order = m_container->m_order;
    m_waits = m_container->m_inLoop && order <= data.loopPosition;
    if (m_waits)
        data.roundEnd = std::min(data.roundEnd, m_container->m_orderAfter);
    (m_waits ? data.nextRound : data.due).push(*this, order);
}

void VScope::dequeue()
{
    PoolRoot& data = *root().m_data;
    (m_waits ? data.nextRound : data.due).remove(*this);
}

void VScope::requeue()
{
    if (!m_due)
        return;
    dequeue();
    enqueue();
}

void VScope::completeVariables()
{
    if (m_layout == m_container->m_layout)
        return;
    const std::uint32_t layout = m_container->m_layout;
    const StrongPtr<ValuePool> pool = WeakPtrImpl<ValuePool>(&root()).lock();
    for (const VSlotSet* slots : {&m_container->m_inputs, &m_container->m_outputs}) {
        for (std::size_t i = 0; i < slots->size(); ++i)
            (*slots)[i]->parameter()->getLocalValue(pool);
    }
    m_layout = layout;
}

ValuePool& VScope::placeFor(const VParameter& parameter)
{
    ValuePool* place = this;
    StrongPtr<ValuePool>* overflow = &m_overflow;
    while (place->findName(parameter.Name())) {
        if (!*overflow)
            *overflow = StrongPtr<ValuePool>(new VScope(root(), *m_container));
        place = overflow->get();
        overflow = &static_cast<VScope*>(place)->m_overflow;
    }
    return *place;
}

} // namespace Orla
