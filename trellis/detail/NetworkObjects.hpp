#pragma once

#include <trellis/detail/NetworkCore.hpp>

#include <trellis/VManagedObject.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <typeindex>
#include <utility>
#include <vector>

namespace Orla {

class VCreationPreferences;
class VObject;

namespace Detail {

/// Is notified when objects are added to or removed from the registry of a network.
class RegistryWatcher : public Loam::ReferenceBase<RegistryWatcher> {
public:
    ~RegistryWatcher() override;
    virtual void objectAdded(const StrongPtr<VManagedObject>& object) = 0;
    virtual void objectRemoved(const StrongPtr<VManagedObject>& object) = 0;
};

/// The announced objects of one network, and the directory for finding providers. A lock
/// guards the tables; it is not held while objects are visited.
class NetworkObjects final : public NetworkCore::Extension {
public:
    /// The position of an object in the traversal order.
    struct Position {
        int level = 0;
        std::uint64_t sequence = 0;

        friend auto operator<=>(const Position&, const Position&) = default;
    };

    struct Entry {
        StrongPtr<VManagedObject> object;
        std::uint64_t sequence = 0;
    };

    static NetworkObjects& of(NetworkCore& network);

    /// Returns null if the network has never had objects.
    static NetworkObjects* find(NetworkCore& network) noexcept;

    /// Adds an object. Returns false if it is already registered or the network is closed.
    bool add(const StrongPtr<VManagedObject>& object);

    /// Removes an object and returns the registry's owning pointer; null if it is not
    /// registered.
    StrongPtr<VManagedObject> remove(VManagedObject& object) noexcept;

    /// Exchanges the object's name, whether it is registered or not, with \p name.
    void rename(VManagedObject& object, std::string& name) noexcept;

    /// Returns the first object of that name in traversal order, or null.
    StrongPtr<VManagedObject> find(const std::string& name) const;
    std::size_t count() const;

    /// Returns the objects with levels from \p from to \p to in traversal order.
    std::vector<Entry> objects(int from, int to) const;

    /// Returns the objects whose preferences may contain \p word, in traversal order.
    std::vector<Entry> objectsWithPreference(const std::string& word) const;

    /// Returns true if the object has stayed registered since the entry was created.
    bool isCurrent(const Entry& entry) const;

    /// Removes and returns all objects in traversal order. No object can be added afterwards.
    std::vector<StrongPtr<VManagedObject>> close();

    void addWatcher(const StrongPtr<RegistryWatcher>& watcher);
    std::vector<StrongPtr<RegistryWatcher>> watchers() const;

    /// Returns the exchange of poly-outputs for a class of requesters; see `VPolyConnection`.
    Loam::WeakPtrImpl<RegistryWatcher>& exchange(const void* requesters) { return m_exchanges[requesters]; }

    /// Returns the unique object of \p kind, or null.
    StrongPtr<VManagedObject> uniqueObject(const std::type_info& kind) const;
    void setUniqueObject(const std::type_info& kind, const StrongPtr<VManagedObject>& object);

    /// Types of the providers that are currently being created.
    std::vector<std::string> beingProvided;

private:
    struct Level {
        std::vector<Entry> objects; // null where an object was removed
        std::size_t gaps = 0;
    };

    static const VCreationPreferences* preferencesOf(const VManagedObject& object);
    void enterDirectory(const Entry& entry) const;
    void leaveDirectory(const VManagedObject& object, Position position) const noexcept;
    void refreshDirectory() const;

    mutable std::mutex m_mutex;
    std::map<int, Level> m_levels;
    std::size_t m_count = 0;
    std::uint64_t m_sequence = 0;
    bool m_isClosed = false;

    // The directory: objects by the words of their preferences, and objects whose preferences
    // have a derived class and may contain any word.
    using Positions = std::map<Position, VManagedObject*>;
    mutable std::map<std::string, Positions, std::less<>> m_words;
    mutable Positions m_unsorted;
    mutable std::uint64_t m_seenChanges = 0; // of preferences, when the directory was built

    // The objects by name and traversal order, from the first search on; few networks are
    // searched. The keys refer to the names that the objects own.
    using Names = std::map<std::pair<std::string_view, Position>, VManagedObject*>;
    mutable std::optional<Names> m_names;

    std::vector<Loam::WeakPtrImpl<RegistryWatcher>> m_watchers;
    std::map<const void*, Loam::WeakPtrImpl<RegistryWatcher>> m_exchanges;
    std::map<std::type_index, Loam::WeakPtrImpl<VManagedObject>> m_uniqueObjects;
};

} // namespace Detail

} // namespace Orla
