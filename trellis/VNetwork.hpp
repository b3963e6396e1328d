#pragma once

#include <trellis/Export.hpp>
#include <trellis/VManagedObject.hpp>

#include <cstddef>
#include <string>
#include <typeinfo>
#include <utility>

namespace Orla {

/// A set of objects that can see each other, with its own registry, providers and
/// evaluation order.
///
/// Objects belong to the network that is current in the thread that creates them: that
/// of the innermost `Scope`, else the default network of the process. Objects of
/// different networks cannot be connected.
///
///     Orla::VNetwork network{"/data/quakes"};
///     const Orla::VNetwork::Scope scope{network};
///     const auto reader = Orla::VObject::createObject("QuakeReader", "reader");
///
/// # Threads
///
/// - Different networks may be used in different threads without restriction.
/// - Different pools of one network may be used in different threads at the same time:
///   set inputs, evaluate, read outputs. One pool is used by one thread at a time.
/// - Values, objects and registrations may be created in any thread.
/// - Adding, removing, connecting or destroying objects and slots keeps the network to the
///   calling thread. The functions that do so take a `Change` themselves; hold one around
///   several of them to make them one step, and around adding listeners and setting
///   initial values. Evaluations in other threads wait between two updates. An update may
///   change its network, also while other threads evaluate it.
/// - Outside of `VScheduler::run`, a thread that works with pools or slots while another
///   thread may change the network holds a `Use`.
/// - Do not change a network while holding a `Change` of another one, unless all threads
///   take them in the same order.
class TRELLIS_API VNetwork {
public:
    /// \p folder is where relative file names start; empty for the working directory.
    explicit VNetwork(std::string folder = {});
    VNetwork(const VNetwork&) = delete;
    VNetwork& operator=(const VNetwork&) = delete;

    /// Removes all objects, connections, variables and queue entries of the network.
    /// Objects that others still hold live on without connections; they can be neither
    /// connected nor evaluated any more. An object that is being updated, in this thread
    /// or another one, is released when its update has returned.
    ~VNetwork();

    /// The network of objects that are created without naming one.
    static VNetwork& defaultNetwork();

    /// The network in which this thread creates objects now.
    static VNetwork& current();

    /// Makes a network the current one of this thread as long as it lives. Scopes nest.
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

    /// Keeps a network to this thread, which may change it; see "Threads". Waits until
    /// all other threads are between two updates. Changes nest.
    class TRELLIS_API Change {
    public:
        explicit Change(VNetwork& network);
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;
        ~Change();

    private:
        StrongPtr<Detail::NetworkCore> m_network;
    };

    /// Keeps other threads from changing a network while this thread uses it; see
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

    /// Where relative file names in the inputs of the network's objects start; empty for
    /// the working directory.
    const std::string& folder() const noexcept { return m_folder; }
    void setFolder(std::string folder) { m_folder = std::move(folder); }

    /// \p fileName, put behind the folder if it is relative. The file need not exist.
    std::string resolve(const std::string& fileName) const;

    /// How many objects are registered.
    std::size_t objectCount() const;

    /// As `VManagedObject::find` and `VManagedObject::forEachObject`, for this network.
    StrongPtr<VManagedObject> find(const std::string& name) const;

    template<class T = VManagedObject, class Function>
    bool forEachObject(Function&& function) const
    {
        const Scope scope{const_cast<VNetwork&>(*this)};
        return VManagedObject::forEachObject<T>(function);
    }

    /// The network's one object of \p kind, or null; held weakly.
    StrongPtr<VManagedObject> uniqueObject(const std::type_info& kind) const;
    void setUniqueObject(const std::type_info& kind, const StrongPtr<VManagedObject>& object);

private:
    friend class VManagedObject;

    explicit VNetwork(Detail::NetworkCore& core);
    void removeAll();

    StrongPtr<Detail::NetworkCore> m_core;
    std::string m_folder;
};

} // namespace Orla
