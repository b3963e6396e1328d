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

/// An object with a name and a level that the registry of its network owns once
/// it was announced.
///
/// An object belongs to the network that is current in the thread that creates it; see
/// `VNetwork`. The static functions refer to the current network of the caller, which
/// in an update is the network that is evaluated.
class TRELLIS_API VManagedObject : public virtual VManagedObjectBase {
public:
    /// \p level is the place of the object in traversals: lower levels come first.
    VManagedObject(const std::string& name, int level);
    ~VManagedObject() override;

    const std::string& Name() const noexcept { return m_name; }
    int level() const noexcept { return m_level; }

    /// The object's network; null once it was destroyed.
    VNetwork* network() const noexcept;

    /// Puts \p object into the registry of its network, which keeps it alive until it is
    /// removed. Announces nothing: `VObject::finishCreation` does both. Returns false for
    /// a null pointer and for an object that is registered already.
    static bool add(const StrongPtr<VManagedObject>& object);

    /// Removes \p object from the registry of its network and releases it. An object that
    /// is being updated is released when its update has returned. Returns false if it is
    /// not registered.
    static bool remove(const StrongPtr<VManagedObject>& object);

    /// Visits the registered objects whose level is between \p from and \p to,
    /// both included, by level and then in the order in which they were added.
    /// Objects may be added and removed meanwhile: those removed are not visited
    /// any more, those added are not visited yet. Returns false if a visit ended it.
    static bool traverse(VManagedObjectIterator& iterator, int from, int to);

    /// As above for all objects of class \p T: calls \p function with each, until it
    /// returns false if it returns `bool`.
    template<class T = VManagedObject, class Function>
    static bool forEachObject(Function&& function, int from = std::numeric_limits<int>::min(),
                              int to = std::numeric_limits<int>::max());

    /// The registered object of that name that was added first, or null.
    static StrongPtr<VManagedObject> find(const std::string& name);

    /// How many objects are registered.
    static std::size_t count();

    bool isRegistered() const noexcept { return m_sequence != 0; }

    /// True if traversals visit this object before \p other, both being registered in one
    /// network.
    bool isTraversedBefore(const VManagedObject& other) const noexcept
    {
        return m_level != other.m_level ? m_level < other.m_level : m_sequence < other.m_sequence;
    }

private:
    friend class Detail::NetworkObjects;

    std::string m_name;
    Detail::NetworkCore* m_network; // owned
    std::uint64_t m_sequence = 0;   // of its registration; 0 while it is not registered
    int m_level;
    std::uint32_t m_place = 0; // in the registry, among those of its level
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
