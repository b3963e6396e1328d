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

/// Hears of changes of the values that it listens to.
class TRELLIS_API VValueListener : public Loam::ReferenceBase<VValueListener> {
public:
    ~VValueListener() override;

    /// The value of \p source changed in \p pool; a null pool means the initial
    /// value that new pools start from. Listeners may be added and removed, and
    /// objects made and destroyed, from here.
    virtual void valueChanged(const ValueNotifierList& source, const StrongPtr<ValuePool>& pool) = 0;
};

/// Pools, held weakly. Dead ones are dropped when they could be half of the list,
/// so that something which sees a million pools come and go stays small.
class TRELLIS_API PoolList {
public:
    void add(const WeakPtrImpl<ValuePool>& pool);

    /// False for an empty list.
    bool endsWith(const StrongPtr<ValuePool>& pool) const;

    /// Those that are alive, in the order in which they were added.
    std::vector<StrongPtr<ValuePool>> alive() const;

private:
    std::vector<WeakPtrImpl<ValuePool>> m_pools;
};

/// Who wants to know of a parameter's changes, and which pools have their own
/// value of it.
class TRELLIS_API ValueNotifierList : public Loam::ReferenceBase<ValueNotifierList> {
public:
    ~ValueNotifierList() override;

    /// Tells every listener that the initial value changed.
    virtual void touch() const;

    /// Adds a listener, held weakly; false if it is in already. One that is added
    /// during a notification hears from the next one on.
    bool addListener(const StrongPtr<VValueListener>& listener);

    /// False if it is not in. One that is removed during a notification hears
    /// nothing more of it.
    bool removeListener(const VValueListener& listener);

    /// Notes that \p pool has a value of its own ("shadow" of the initial
    /// value). Constant, because it does not change what the parameter says.
    void addShadow(const StrongPtr<ValuePool>& pool) const;

    /// Adds the living shadows of \p other to this one's.
    void copyShadows(const ValueNotifierList& other) const;

    /// The pools alive that were noted, in that order.
    std::vector<StrongPtr<ValuePool>> shadows() const;

protected:
    ValueNotifierList() = default;

    /// Calls every listener once.
    void notifyListeners(const StrongPtr<ValuePool>& pool) const
    {
        if (m_listeners)
            callListeners(pool);
    }

private:
    struct Listeners {
        std::vector<WeakPtrImpl<VValueListener>> entries;
        unsigned notifying = 0;
    };

    void callListeners(const StrongPtr<ValuePool>& pool) const;

    std::unique_ptr<Listeners> m_listeners; // most parameters have none
    mutable PoolList m_shadows;
};

} // namespace Orla
