#pragma once

#include <trellis/Export.hpp>
#include <trellis/VManagedObject.hpp>

#include <cstddef>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Orla {

class VFileObserver;

/// A set of objects that can see each other, with its own registry, providers and
/// evaluation order.
///
/// An object belongs to the network that is current in the thread that creates it: the
/// network of the innermost `Scope`, else the default network of the process. Objects of
/// different networks cannot be connected.
///
///     Orla::VNetwork network{"/data/quakes"};
///     const Orla::VNetwork::Scope scope{network};
///     const auto reader = Orla::VObject::createObject("QuakeReader", "reader");
///
/// # Threads
///
/// - Different networks may be used in different threads without restriction.
/// - Several threads may use different pools of one network at the same time: set inputs,
///   evaluate, read outputs. Only one thread may use a pool at a time.
/// - Values, objects and registrations may be created in any thread.
/// - Adding, removing, connecting or destroying objects and slots requires exclusive access
///   to the network. The functions that do so take a `Change` themselves; hold one to
///   combine several of them into one step, to add listeners and to set initial values.
///   Evaluations in other threads wait between two updates. An update may change its
///   network even while other threads evaluate it.
/// - Outside `VScheduler::run`, hold a `Use` while working with pools or slots if another
///   thread may change the network.
/// - Do not change a network while holding a `Change` of another one, unless all threads
///   take them in the same order.
class TRELLIS_API VNetwork {
public:
    /// Relative file names start at \p folder; empty means the working directory.
    explicit VNetwork(std::string folder = {});
    VNetwork(const VNetwork&) = delete;
    VNetwork& operator=(const VNetwork&) = delete;

    /// Removes all objects, connections, variables and queue entries of the network. Objects
    /// with other owners survive without connections and can no longer be connected or
    /// evaluated. An object whose update is running, in any thread, is released when the
    /// update has returned.
    ~VNetwork();

    /// Returns the network of objects that are created outside any `Scope`.
    static VNetwork& defaultNetwork();

    /// Returns the network in which this thread currently creates objects.
    static VNetwork& current();

    /// Makes a network current in this thread for the scope's lifetime. Scopes nest.
    class TRELLIS_API Scope {
    public:
        explicit Scope(VNetwork& network) noexcept;
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope();

    private:
        StrongPtr<Detail::NetworkCore> m_network;
        Detail::NetworkCore* m_previous;
    };

    /// Gives this thread exclusive access to a network, in order to change it; see "Threads".
    /// Waits until all other threads are between two updates. Changes nest.
    class TRELLIS_API Change {
    public:
        explicit Change(VNetwork& network);
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;
        ~Change();

    private:
        StrongPtr<Detail::NetworkCore> m_network;
    };

    /// Prevents other threads from changing a network while this thread uses it; see
    /// "Threads". Uses nest; `VScheduler::run` takes one.
    class TRELLIS_API Use {
    public:
        explicit Use(VNetwork& network);
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();

    private:
        StrongPtr<Detail::NetworkCore> m_network;
    };

    /// Returns the folder at which relative file names in the objects' inputs start; empty
    /// means the working directory.
    const std::string& folder() const noexcept { return m_folder; }
    void setFolder(std::string folder) { m_folder = std::move(folder); }

    /// Returns \p fileName, prefixed with the folder if it is relative. The file need not
    /// exist.
    std::string resolve(const std::string& fileName) const;

    /// Returns the path of a file that is read: \p fileName in the network's folder if it is
    /// there, else in the first of the data folders that has it, else as `resolve`.
    std::string findFile(const std::string& fileName) const;

    const std::vector<std::string>& dataFolders() const noexcept { return m_dataFolders; }
    void setDataFolders(std::vector<std::string> folders) { m_dataFolders = std::move(folders); }

    /// The observer is notified of the files that objects read and write; null, the default,
    /// removes it. Set it while no object runs, and remove it before destroying it.
    VFileObserver* fileObserver() const noexcept { return m_fileObserver; }
    void setFileObserver(VFileObserver* observer) noexcept { m_fileObserver = observer; }

    /// Returns the number of registered objects.
    std::size_t objectCount() const;

    /// As `VManagedObject::find` and `VManagedObject::forEachObject`, for this network.
    StrongPtr<VManagedObject> find(const std::string& name) const;

    template<class T = VManagedObject, class Function>
    bool forEachObject(Function&& function) const
    {
        const Scope scope{const_cast<VNetwork&>(*this)};
        return VManagedObject::forEachObject<T>(function);
    }

    /// Returns the network's unique object of \p kind, or null. It is held weakly.
    StrongPtr<VManagedObject> uniqueObject(const std::type_info& kind) const;
    void setUniqueObject(const std::type_info& kind, const StrongPtr<VManagedObject>& object);

private:
    friend class VManagedObject;

    explicit VNetwork(Detail::NetworkCore& core);
    void removeAll();

    StrongPtr<Detail::NetworkCore> m_core;
    std::string m_folder;
    std::vector<std::string> m_dataFolders;
    VFileObserver* m_fileObserver = nullptr;
};

} // namespace Orla
