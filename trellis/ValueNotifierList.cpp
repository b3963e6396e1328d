#include <trellis/ValueNotifierList.hpp>

#include <trellis/ValuePool.hpp>

#include <algorithm>

namespace Orla {

VValueListener::~VValueListener() = default;

ValueNotifierList::~ValueNotifierList() = default;

void ValueNotifierList::touch() const
{
    notifyListeners(nullptr);
}

bool ValueNotifierList::addListener(const StrongPtr<VValueListener>& listener)
{
    if (!listener)
        return false;
    if (!m_listeners)
        m_listeners = std::make_unique<Listeners>();
    auto& entries = m_listeners->entries;
    if (std::ranges::find(entries, WeakPtrImpl<VValueListener>(listener)) != entries.end())
        return false;
    entries.emplace_back(listener);
    return true;
}

bool ValueNotifierList::removeListener(const VValueListener& listener)
{
    if (!m_listeners)
        return false;
    auto& entries = m_listeners->entries;
    const auto found = std::ranges::find_if(entries, [&listener](const WeakPtrImpl<VValueListener>& entry) {
        return entry.referenceBlock() == &listener.referenceBlock();
    });
    if (found == entries.end())
        return false;
    // Positions must not move while a notification walks over them.
    if (m_listeners->notifying > 0)
        found->reset();
    else
        entries.erase(found);
    return true;
}

void ValueNotifierList::callListeners(const StrongPtr<ValuePool>& pool) const
{
    // A listener may let the last pointer to this list go.
    const StrongPtr<const ValueNotifierList> keepAlive = WeakPtrImpl<const ValueNotifierList>(this).lock();
    struct Visit {
        explicit Visit(Listeners& theListeners) : listeners{theListeners} { ++listeners.notifying; }
        ~Visit()
        {
            if (--listeners.notifying == 0)
                std::erase_if(listeners.entries, [](const auto& entry) { return entry.expired(); });
        }
        Listeners& listeners;
    } visit{*m_listeners};
    const std::size_t count = visit.listeners.entries.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (const StrongPtr<VValueListener> listener = visit.listeners.entries[i].lock())
            listener->valueChanged(*this, pool);
    }
}

void ValueNotifierList::addShadow(const StrongPtr<ValuePool>& pool) const
{
    if (pool && !m_shadows.endsWith(pool))
        m_shadows.add(pool);
}

void ValueNotifierList::copyShadows(const ValueNotifierList& other) const
{
    for (const StrongPtr<ValuePool>& pool : other.shadows())
        addShadow(pool);
}

std::vector<StrongPtr<ValuePool>> ValueNotifierList::shadows() const
{
    return m_shadows.alive();
}

void PoolList::add(const WeakPtrImpl<ValuePool>& pool)
{
    // Full is when the memory is: looking for dead ones costs no more than moving.
    if (m_pools.size() == m_pools.capacity()) {
        std::erase_if(m_pools, [](const WeakPtrImpl<ValuePool>& entry) { return entry.expired(); });
        m_pools.reserve(std::max<std::size_t>(1, 2 * m_pools.size()));
    }
    m_pools.push_back(pool);
}

bool PoolList::endsWith(const StrongPtr<ValuePool>& pool) const
{
    return !m_pools.empty() && m_pools.back() == pool;
}

std::vector<StrongPtr<ValuePool>> PoolList::alive() const
{
    std::vector<StrongPtr<ValuePool>> alive;
    alive.reserve(m_pools.size());
    for (const WeakPtrImpl<ValuePool>& entry : m_pools) {
        if (StrongPtr<ValuePool> pool = entry.lock())
            alive.push_back(std::move(pool));
    }
    return alive;
}

} // namespace Orla
