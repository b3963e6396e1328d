#pragma once

#include <trellis/detail/NetworkCore.hpp>

#include <trellis/VManagedObject.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <typeindex>
#include <utility>
#include <vector>

namespace Orla {

class VCreationPreferences;
class VObject;

namespace Detail {

/// Is notified of the objects that the registry of a network gets and loses.
class RegistryWatcher : public Loam::ReferenceBase<RegistryWatcher> {
public:
    ~RegistryWatcher() override;
    virtual void objectAdded(const StrongPtr<VManagedObject>& object) = 0;
    virtual void objectRemoved(const StrongPtr<VManagedObject>& object) = 0;
};

/// The announced objects of one network, and the directory in which providers are
/// found. A lock guards the tables; it is not held while objects are visited.
class NetworkObjects final : public NetworkCore::Extension {
public:
    /// Where an object is in the order of traversal.
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

    /// Null if the network has no objects and never had.
    static NetworkObjects* find(NetworkCore& network) noexcept;

    /// Returns false if it is registered already, or the network is closed.
    bool add(const StrongPtr<VManagedObject>& object);

    /// Hands the registry's share in owning the object to the caller; null if it is not
    /// registered.
    StrongPtr<VManagedObject> remove(VManagedObject& object) noexcept;

    StrongPtr<VManagedObject> find(const std::string& name) const;
    std::size_t count() const;

    /// The objects with levels from \p from to \p to, in the order of traversal.
    std::vector<Entry> objects(int from, int to) const;

    /// The objects whose preferences may contain \p word, in the order of traversal.
    std::vector<Entry> objectsWithPreference(const std::string& word) const;

    /// True if the object is registered since the entry was made.
    bool isCurrent(const Entry& entry) const;

    /// Removes and returns all objects in the order of traversal; nothing can be added
    /// afterwards.
    std::vector<StrongPtr<VManagedObject>> close();

    void addWatcher(const StrongPtr<RegistryWatcher>& watcher);
    std::vector<StrongPtr<RegistryWatcher>> watchers() const;

    /// The exchange of poly-outputs for a class of requesters; see `VPolyConnection`.
    Loam::WeakPtrImpl<RegistryWatcher>& exchange(const void* requesters) { return m_exchanges[requesters]; }

    /// The one object of its kind, or null.
    StrongPtr<VManagedObject> uniqueObject(const std::type_info& kind) const;
    void setUniqueObject(const std::type_info& kind, const StrongPtr<VManagedObject>& object);

    /// Types of providers that are being created for an object that lacks one.
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

    // The directory: words of preferences, and those objects whose preferences are of a
    // class of their own, which may contain any word.
    using Positions = std::map<Position, VManagedObject*>;
    mutable std::map<std::string, Positions, std::less<>> m_words;
    mutable Positions m_unsorted;
    mutable std::uint64_t m_seenChanges = 0; // of preferences, when the directory was made

    std::vector<Loam::WeakPtrImpl<RegistryWatcher>> m_watchers;
    std::map<const void*, Loam::WeakPtrImpl<RegistryWatcher>> m_exchanges;
    std::map<std::type_index, Loam::WeakPtrImpl<VManagedObject>> m_uniqueObjects;
};

} // namespace Detail

} // namespace Orla
