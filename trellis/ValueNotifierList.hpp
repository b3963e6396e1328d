#pragma once

#include <trellis/Export.hpp>

#include <loam/StrongPtr.hpp>

#include <memory>
#include <vector>

namespace Orla {

using Loam::StrongPtr;
using Loam::WeakPtrImpl;

class ValueNotifierList;
class ValuePool;

/// Is notified of changes of the values that it listens to.
class TRELLIS_API VValueListener : public Loam::ReferenceBase<VValueListener> {
public:
    ~VValueListener() override;

    /// Called when the value of \p source changes in \p pool; a null pool means the initial
    /// value of new pools. May add and remove listeners, and create and destroy objects.
    /// Called in the thread that evaluates the pool.
    virtual void valueChanged(const ValueNotifierList& source, const StrongPtr<ValuePool>& pool) = 0;
};

/// A list of weakly held pools.
class TRELLIS_API PoolList {
public:
    /// Adds a pool. Prunes expired entries only when the vector must reallocate, so pruning
    /// stays amortized O(1) and a list stays small while millions of pools are created and
    /// destroyed.
    void add(const WeakPtrImpl<ValuePool>& pool);

    /// Returns true if \p pool is the last entry; false for an empty list.
    bool endsWith(const StrongPtr<ValuePool>& pool) const;

    /// Returns the living pools in the order in which they were added.
    std::vector<StrongPtr<ValuePool>> alive() const;

    /// Calls \p function for each living pool; allocates nothing.
    template<class Function>
    void forEachAlive(Function&& function) const
    {
        for (const WeakPtrImpl<ValuePool>& entry : m_pools) {
            if (const StrongPtr<ValuePool> pool = entry.lock())
                function(pool);
        }
    }

private:
    std::vector<WeakPtrImpl<ValuePool>> m_pools;
};

/// The listeners of a parameter, and the pools that have their own value.
class TRELLIS_API ValueNotifierList : public Loam::ReferenceBase<ValueNotifierList> {
public:
    ~ValueNotifierList() override;

    /// Notifies every listener that the initial value changed.
    virtual void touch() const;

    /// Adds a listener, which is held weakly. Returns false if it was added before. A listener
    /// that is added during a notification is called from the next notification on.
    bool addListener(const StrongPtr<VValueListener>& listener);

    /// Removes a listener. Returns false if it was not added. A listener that is removed
    /// during a notification is no longer called.
    bool removeListener(const VValueListener& listener);

    bool hasListeners() const noexcept { return m_listeners != nullptr; }

    /// Calls every listener once.
    void notifyListeners(const StrongPtr<ValuePool>& pool) const
    {
        if (m_listeners)
            callListeners(pool);
    }

    /// Records that \p pool has its own value, a "shadow" of the initial value. Const, because
    /// it does not change the value. Several threads may call it at the same time.
    void addShadow(const StrongPtr<ValuePool>& pool) const;

    /// Adds the living shadows of \p other.
    void copyShadows(const ValueNotifierList& other) const;

    /// Returns the living shadows in the order in which they were added.
    std::vector<StrongPtr<ValuePool>> shadows() const;

protected:
    ValueNotifierList();

private:
    struct Listeners;

    void callListeners(const StrongPtr<ValuePool>& pool) const;

    std::unique_ptr<Listeners> m_listeners;      // most parameters have none
    mutable std::unique_ptr<PoolList> m_shadows; // guarded by a lock shared by all lists
};

} // namespace Orla
