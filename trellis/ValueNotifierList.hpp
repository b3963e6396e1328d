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

    /// The value of \p source changed in \p pool; a null pool means the initial
    /// value that new pools start from. Listeners may be added and removed, and
    /// objects created and destroyed, from here. Called in the thread that evaluates
    /// the pool.
    virtual void valueChanged(const ValueNotifierList& source, const StrongPtr<ValuePool>& pool) = 0;
};

/// Pools, held weakly.
class TRELLIS_API PoolList {
public:
    /// Prunes expired entries only when the vector must reallocate, so pruning stays
    /// amortized O(1) and a list that sees a million pools come and go stays small.
    void add(const WeakPtrImpl<ValuePool>& pool);

    /// False for an empty list.
    bool endsWith(const StrongPtr<ValuePool>& pool) const;

    /// The living pools in the order in which they were added.
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

/// The listeners of a parameter, and the pools that have a value of their own.
class TRELLIS_API ValueNotifierList : public Loam::ReferenceBase<ValueNotifierList> {
public:
    ~ValueNotifierList() override;

    /// Notifies every listener that the initial value changed.
    virtual void touch() const;

    /// Adds a listener, held weakly. Returns false if it was added before. One that
    /// is added during a notification is called from the next notification on.
    bool addListener(const StrongPtr<VValueListener>& listener);

    /// Returns false if it was not added. One that is removed during a notification
    /// is not called any more.
    bool removeListener(const VValueListener& listener);

    bool hasListeners() const noexcept { return m_listeners != nullptr; }

    /// Calls every listener once.
    void notifyListeners(const StrongPtr<ValuePool>& pool) const
    {
        if (m_listeners)
            callListeners(pool);
    }

    /// Notes that \p pool has a value of its own ("shadow" of the initial value).
    /// Constant, because it does not change the value. May be called by several
    /// threads at once.
    void addShadow(const StrongPtr<ValuePool>& pool) const;

    /// Adds the living shadows of \p other.
    void copyShadows(const ValueNotifierList& other) const;

    /// The living pools that were noted, in that order.
    std::vector<StrongPtr<ValuePool>> shadows() const;

protected:
    ValueNotifierList();

private:
    struct Listeners;

    void callListeners(const StrongPtr<ValuePool>& pool) const;

    std::unique_ptr<Listeners> m_listeners;      // most parameters have none
    mutable std::unique_ptr<PoolList> m_shadows; // guarded by a lock that all lists share
};

} // namespace Orla
