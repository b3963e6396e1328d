#pragma once

#include <trellis/Export.hpp>
#include <trellis/VManagedObjectBase.hpp>

#include <cstddef>
#include <string>

namespace Orla {

class VManagedObject;

/// Visits managed objects; see `VManagedObject::traverse`.
class TRELLIS_API VManagedObjectIterator {
public:
    virtual ~VManagedObjectIterator();

    /// Returns false to end the traversal.
    virtual bool apply(const StrongPtr<VManagedObject>& object) = 0;
};

/// An object with a name and a level that the registry of the process knows once
/// it was announced.
class TRELLIS_API VManagedObject : public virtual VManagedObjectBase {
public:
    VManagedObject(const std::string& name, int level);
    ~VManagedObject() override;

    const std::string& Name() const noexcept { return m_name; }
    int level() const noexcept { return m_level; }

    /// Puts \p object into the registry, which keeps it alive until it is
    /// removed. False for a null pointer and for one that is in already.
    static bool add(const StrongPtr<VManagedObject>& object);

    /// Takes \p object out of the registry and lets it go; false if it is not in.
    static bool remove(const StrongPtr<VManagedObject>& object);

    /// Visits the registered objects whose level is between \p from and \p to,
    /// both included, by level and then in the order in which they were added.
    /// Objects may be added and removed meanwhile: those removed are not visited
    /// any more, those added are not visited yet. False if a visit ended it.
    static bool traverse(VManagedObjectIterator& iterator, int from, int to);

    /// The registered object of that name that was added first, or null.
    static StrongPtr<VManagedObject> find(const std::string& name);

    /// How many objects are registered.
    static std::size_t count();

    bool isRegistered() const noexcept { return m_registered; }

private:
    friend class ManagedObjectRegistry;

    std::string m_name;
    int m_level;
    bool m_registered = false;
    std::size_t m_place = 0; // in the registry, among those of its level
};

} // namespace Orla
