#include <trellis/ValueNotifierList.hpp>

#include <trellis/detail/FrameHooks.hpp>

#include <algorithm>
#include <cstdint>
#include <mutex>

namespace Orla {

namespace {

// A shadow is added once per parameter and pool, so one lock for all lists is enough.
std::mutex& shadowsMutex()
{
    static std::mutex& theMutex = *new std::mutex; // parameters may outlive static objects
    return theMutex;
}

} // namespace

// Several threads may notify the listeners of one parameter at the same time, each for its own
// pool.
struct ValueNotifierList::Listeners {
    struct Entry {
        WeakPtrImpl<VValueListener> listener;
        std::uint64_t number = 0; // differs after a listener is removed and added again
    };

    std::mutex mutex;
    std::vector<Entry> entries;
    std::uint64_t lastNumber = 0;
};

VValueListener::~VValueListener() = default;

ValueNotifierList::ValueNotifierList() = default;

ValueNotifierList::~ValueNotifierList() = default;

void ValueNotifierList::touch() const
{
    notifyListeners(nullptr);
}

bool ValueNotifierList::addListener(const StrongPtr<VValueListener>& listener)
{
    if (!listener)
        return false;
    if (!m_listeners) {
        m_listeners = std::make_unique<Listeners>();
        Detail::FrameHooks::listenersChanged(*this);
    }
    const std::lock_guard lock{m_listeners->mutex};
    auto& entries = m_listeners->entries;
    const auto isSame = [&](const Listeners::Entry& entry) { return entry.listener == listener; };
    if (std::ranges::any_of(entries, isSame))
        return false;
    entries.push_back({listener, ++m_listeners->lastNumber});
    return true;
}

bool ValueNotifierList::removeListener(const VValueListener& listener)
{
    if (!m_listeners)
        return false;
    const std::lock_guard lock{m_listeners->mutex};
    return std::erase_if(m_listeners->entries,
                         [&listener](const Listeners::Entry& entry) {
                             return entry.listener.referenceBlock() == &listener.referenceBlock();
                         })
           > 0;
}

void ValueNotifierList::callListeners(const StrongPtr<ValuePool>& pool) const
{
    // A listener may release the last pointer to this list.
    const StrongPtr<const ValueNotifierList> keepAlive = WeakPtrImpl<const ValueNotifierList>(this).lock();
    std::vector<Listeners::Entry> entries;
    {
        const std::lock_guard lock{m_listeners->mutex};
        std::erase_if(m_listeners->entries, [](const Listeners::Entry& entry) { return entry.listener.expired(); });
        entries = m_listeners->entries;
    }
    for (const Listeners::Entry& entry : entries) {
        StrongPtr<VValueListener> listener;
        {
            const std::lock_guard lock{m_listeners->mutex};
            if (std::ranges::find(m_listeners->entries, entry.number, &Listeners::Entry::number)
                != m_listeners->entries.end())
                listener = entry.listener.lock();
        }
        if (listener)
            listener->valueChanged(*this, pool);
    }
}

void ValueNotifierList::addShadow(const StrongPtr<ValuePool>& pool) const
{
    if (!pool)
        return;
    const std::lock_guard lock{shadowsMutex()};
    if (!m_shadows)
        m_shadows = std::make_unique<PoolList>();
    if (!m_shadows->endsWith(pool))
        m_shadows->add(pool);
}

void ValueNotifierList::copyShadows(const ValueNotifierList& other) const
{
    for (const StrongPtr<ValuePool>& pool : other.shadows())
        addShadow(pool);
}

std::vector<StrongPtr<ValuePool>> ValueNotifierList::shadows() const
{
    const std::lock_guard lock{shadowsMutex()};
    return m_shadows ? m_shadows->alive() : std::vector<StrongPtr<ValuePool>>{};
}

void PoolList::add(const WeakPtrImpl<ValuePool>& pool)
{
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
    forEachAlive([&alive](const StrongPtr<ValuePool>& pool) { alive.push_back(pool); });
    return alive;
}

} // namespace Orla
