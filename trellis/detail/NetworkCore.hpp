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

/// What the objects of one network share: the gate, the list of slot containers and
/// their evaluation order. Containers and pools hold it, so that it outlives the
/// network where they do.
class NetworkCore final : public Loam::ReferenceBase<NetworkCore> {
public:
    /// What the layers above keep for a network.
    class Extension {
    public:
        virtual ~Extension();
    };

    NetworkCore() = default;
    ~NetworkCore() override;

    /// The network in which this thread creates objects: that of the innermost scope,
    /// else the default one.
    static NetworkCore& current() noexcept;
    static NetworkCore& defaultCore();

    /// Makes \p core the current network of this thread, null for the default one;
    /// returns the previous one.
    static NetworkCore* exchangeCurrent(NetworkCore* core) noexcept;

    /// Adds a container; returns its index, which is unique among those of the network.
    std::uint32_t add(VSlotContainer& container);
    void remove(VSlotContainer& container) noexcept;

    /// The living containers, kept alive by the result.
    std::vector<Loam::StrongPtr<VSlotContainer>> containers() const;

    /// Brings the evaluation order up to date. The caller keeps the network to itself.
    void updateOrder();

    /// True once the network was destroyed; its remaining objects are on their own.
    bool isClosed() const noexcept { return m_closed.load(std::memory_order_acquire); }
    void close() noexcept { m_closed.store(true, std::memory_order_release); }

    Gate gate;
    EvaluationOrder order;
    std::unique_ptr<Extension> extension;
    std::atomic<VNetwork*> network{nullptr}; // null before the network is made, and once it is destroyed

private:
    mutable std::mutex m_mutex;
    std::vector<VSlotContainer*> m_containers; // null where an index is free
    std::vector<std::uint32_t> m_free;
    std::atomic<bool> m_closed{false};
};

/// Makes a network the current one of this thread.
class CurrentScope {
public:
    explicit CurrentScope(NetworkCore& core) noexcept : m_previous{NetworkCore::exchangeCurrent(&core)} {}
    CurrentScope(const CurrentScope&) = delete;
    CurrentScope& operator=(const CurrentScope&) = delete;
    ~CurrentScope() { NetworkCore::exchangeCurrent(m_previous); }

private:
    NetworkCore* m_previous;
};

/// Keeps a network to this thread while it changes connections, slots or objects.
class ChangeScope {
public:
    explicit ChangeScope(NetworkCore& core) : m_gate{core.gate} { m_gate.beginChange(); }
    ChangeScope(const ChangeScope&) = delete;
    ChangeScope& operator=(const ChangeScope&) = delete;
    ~ChangeScope() { m_gate.endChange(); }

private:
    Gate& m_gate;
};

/// Keeps other threads from changing a network while this thread uses it.
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
