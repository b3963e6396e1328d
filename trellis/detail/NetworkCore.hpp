#pragma once

#include <trellis/detail/EvaluationOrder.hpp>
#include <trellis/detail/Gate.hpp>

#include <loam/ReferenceBase.hpp>
#include <loam/StrongPtr.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Orla {

class VNetwork;
class VSlotContainer;

namespace Detail {

/// Data that the objects of one network share: the gate, the list of slot containers and their
/// evaluation order. Containers and pools share ownership, so it may outlive the network.
class NetworkCore final : public Loam::ReferenceBase<NetworkCore> {
public:
    /// Data that higher layers keep for a network.
    class Extension {
    public:
        virtual ~Extension();
    };

    NetworkCore();
    ~NetworkCore() override;

    /// Returns the network in which this thread creates objects: the network of the innermost
    /// scope, else the default network.
    static NetworkCore& current() noexcept;
    static NetworkCore& defaultCore();

    /// Returns all networks that have not been destroyed and keeps them alive.
    static std::vector<Loam::StrongPtr<NetworkCore>> all();

    /// Makes \p core the current network of this thread; null selects the default one. Returns
    /// the previous one.
    static NetworkCore* exchangeCurrent(NetworkCore* core) noexcept;

    /// Adds a container. Returns its index, which is unique in the network.
    std::uint32_t add(VSlotContainer& container);
    void remove(VSlotContainer& container) noexcept;

    /// Returns the living containers and keeps them alive.
    std::vector<Loam::StrongPtr<VSlotContainer>> containers() const;

    /// Brings the evaluation order up to date.
    /// \pre The caller has exclusive access to the network.
    void updateOrder();

    /// Returns true once the network is destroyed; its remaining objects are detached.
    bool isClosed() const noexcept { return m_closed.load(std::memory_order_acquire); }
    void close() noexcept { m_closed.store(true, std::memory_order_release); }

    Gate gate;
    EvaluationOrder order;
    std::unique_ptr<Extension> extension;
    std::atomic<VNetwork*> network{nullptr}; // null before the network is created and after it is destroyed

private:
    mutable std::mutex m_mutex;
    std::vector<VSlotContainer*> m_containers; // null where an index is free
    std::vector<std::uint32_t> m_free;
    std::atomic<bool> m_closed{false};
};

/// Makes a network current in this thread for the scope's lifetime.
class CurrentScope {
public:
    explicit CurrentScope(NetworkCore& core) noexcept : m_previous{NetworkCore::exchangeCurrent(&core)} {}
    CurrentScope(const CurrentScope&) = delete;
    CurrentScope& operator=(const CurrentScope&) = delete;
    ~CurrentScope() { NetworkCore::exchangeCurrent(m_previous); }

private:
    NetworkCore* m_previous;
};

/// Gives this thread exclusive access to a network, to change connections, slots or objects.
class ChangeScope {
public:
    explicit ChangeScope(NetworkCore& core) : m_gate{core.gate} { m_gate.beginChange(); }
    ChangeScope(const ChangeScope&) = delete;
    ChangeScope& operator=(const ChangeScope&) = delete;
    ~ChangeScope() { m_gate.endChange(); }

private:
    Gate& m_gate;
};

/// Prevents other threads from changing a network while this thread uses it.
class UseScope {
public:
    explicit UseScope(NetworkCore& core) : m_gate{core.gate} { m_gate.enter(); }
    UseScope(const UseScope&) = delete;
    UseScope& operator=(const UseScope&) = delete;
    ~UseScope() { m_gate.leave(); }

private:
    Gate& m_gate;
};

} // namespace Detail

} // namespace Orla
