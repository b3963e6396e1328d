#pragma once

#include <trellis/Export.hpp>
#include <trellis/VManagedObjectBase.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace Orla {

class VManagedObject;
class VNetwork;

namespace Detail {
class NetworkCore;
class NetworkObjects;
} // namespace Detail

/// Visits managed objects; see `VManagedObject::traverse`.
class TRELLIS_API VManagedObjectIterator {
public:
    virtual ~VManagedObjectIterator();

    /// Returns false to end the traversal.
    virtual bool apply(const StrongPtr<VManagedObject>& object) = 0;
};

/// An object with a name and a level. Its network's registry owns it once it is announced.
///
/// An object belongs to the network that is current in the thread that creates it; see
/// `VNetwork`. `traverse`, `forEachObject`, `find` and `count` use the caller's current
/// network; in an update, that is the network being evaluated.
class TRELLIS_API VManagedObject : public virtual VManagedObjectBase {
public:
    /// Traversals visit objects with a lower \p level first.
    VManagedObject(const std::string& name, int level);
    ~VManagedObject() override;

    const std::string& Name() const noexcept { return m_name; }
    int level() const noexcept { return m_level; }

    /// Returns the object's network; null once the network is destroyed.
    VNetwork* network() const noexcept;

    /// Adds \p object to the registry of its network, which keeps it alive until it is
    /// removed. Does not announce it; `VObject::finishCreation` does both. Returns false if
    /// the pointer is null, the object is already registered, or the network was destroyed.
    static bool add(const StrongPtr<VManagedObject>& object);

    /// Removes \p object from the registry of its network and releases it. An object whose
    /// update is running is released when the update has returned. Returns false if it is not
    /// registered.
    static bool remove(const StrongPtr<VManagedObject>& object);

    /// Gives \p object another name, which other objects may have too. Waits as other changes of
    /// the network do, so threads that read names of objects meanwhile need a `VNetwork::Use`.
    /// Copies of the name that classes keep do not change. Returns false if the pointer is null.
    static bool rename(const StrongPtr<VManagedObject>& object, std::string name);

    /// Visits the registered objects with levels from \p from to \p to inclusive, sorted by
    /// level and then by the order of registration. Objects may be added and removed
    /// meanwhile; removed objects and new ones are not visited. Returns false if a visit ended
    /// the traversal.
    static bool traverse(VManagedObjectIterator& iterator, int from, int to);

    /// As above, but calls \p function with each object of class \p T. If it returns `bool`,
    /// false ends the traversal.
    template<class T = VManagedObject, class Function>
    static bool forEachObject(Function&& function, int from = std::numeric_limits<int>::min(),
                              int to = std::numeric_limits<int>::max());

    /// Returns the first registered object of that name in traversal order, or null.
    static StrongPtr<VManagedObject> find(const std::string& name);

    /// Returns the number of registered objects.
    static std::size_t count();

    bool isRegistered() const noexcept { return m_sequence != 0; }

    /// Returns true if traversals visit this object before \p other.
    /// \pre Both are registered in the same network.
    bool isTraversedBefore(const VManagedObject& other) const noexcept
    {
        return m_level != other.m_level ? m_level < other.m_level : m_sequence < other.m_sequence;
    }

private:
    friend class Detail::NetworkObjects;

    std::string m_name;
    Detail::NetworkCore* m_network; // owned
    std::uint64_t m_sequence = 0;   // number of its registration; 0 if it is not registered
    int m_level;
    std::uint32_t m_place = 0; // index among the registry's objects of this level
};

template<class T, class Function>
bool VManagedObject::forEachObject(Function&& function, int from, int to)
{
    struct Visit final : VManagedObjectIterator {
        explicit Visit(Function& theFunction) : function{theFunction} {}

        bool apply(const StrongPtr<VManagedObject>& managed) override
        {
            const StrongPtr<T> object(managed);
            if (!object)
                return true;
            if constexpr (std::is_same_v<std::invoke_result_t<Function&, const StrongPtr<T>&>, bool>) {
                return function(object);
            } else {
                function(object);
                return true;
            }
        }

        Function& function;
    } visit{function};
    return traverse(visit, from, to);
}

} // namespace Orla
