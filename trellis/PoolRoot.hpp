#pragma once

#include <trellis/IdTable.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/ValuePool.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orla {

class VObject;
class VScope;
class VSlotContainer;

/// The objects that are due in one pool, by evaluation order and then in the
/// order in which they became due.
class DueQueue {
public:
    bool empty() const noexcept { return m_nearCount == 0 && m_farOrders.empty(); }

    void push(VScope& scope, std::uint32_t order);

    /// The next one, taken out.
    /// \pre The queue is not empty.
    VScope& pop();

    /// The order of the next one.
    /// \pre The queue is not empty.
    std::uint32_t frontOrder() const noexcept;

    /// \pre \p scope is in the queue.
    void remove(VScope& scope);

private:
    // The due objects of one order number, linked through the scopes themselves.
    struct Bucket {
        VScope* first = nullptr;
        VScope* last = nullptr;

        void append(VScope& scope) noexcept;
        void unlink(VScope& scope) noexcept;
    };

    struct NearBucket : Bucket {
        std::uint32_t order = 0;
    };

    std::size_t nearest() const noexcept;
    bool isFarNext(std::size_t nearest) const noexcept;
    void dropNear(std::size_t index) noexcept;
    void dropEmptyFar();

    // In a pass nearly everything that becomes due follows one of a few orders, so
    // a few buckets at hand serve nearly all; the others are found by number.
    static constexpr std::size_t NearBuckets = 4;
    NearBucket m_near[NearBuckets];
    std::size_t m_nearCount = 0;
    IdTable<Bucket> m_far;                  // by order number + 1
    std::vector<std::uint32_t> m_farOrders; // heap of its numbers, smallest first
};

/// Everything that a pool holds beyond its own name table: the index of its
/// variables, the scopes of containers, and who is due.
class PoolRoot {
public:
    PoolRoot(ValuePool& pool, std::string name);

    VScope& scope(VSlotContainer& container);

    /// A scope of no container in which the name \p variable is free.
    StrongPtr<ValuePool> looseScope(const std::string& variable);

    /// Queues those that wait for the next round; false if nobody does.
    bool startRound();

    /// Lets go of the scopes; the pool is about to go.
    void close();

    /// Takes the container's scopes out of all pools; the container is about to go.
    static void forgetContainer(VSlotContainer& container);

    ValuePool& pool;
    const std::string name;
    const std::uint64_t id; // never reused

    struct Variable {
        StrongPtr<VValueBase> value;
        ValuePool* place = nullptr; // the pool or scope that has its name, null once that is gone
    };

    IdTable<Variable> variables;       // by parameter
    IdTable<StrongPtr<VScope>> scopes; // by container
    std::vector<StrongPtr<ValuePool>> looseScopes;
    DueQueue due;
    // Members of loops that became due at or before the one that runs. They wait
    // until those behind it had their turn, or two members could keep the others
    // from ever running.
    DueQueue nextRound;
    std::int64_t loopPosition = -1;          // order of the member of a loop that runs
    std::uint32_t roundEnd = ~std::uint32_t{0}; // what comes behind this must wait for the next round
    std::uint64_t pass = 0;
    bool running = false;
    VScheduler::Observer* observer = nullptr;
};

/// A container's part of a pool: its variables, and how its evaluation stands.
class VScope final : public ValuePool {
public:
    VScope(ValuePool& root, VSlotContainer& container);
    ~VScope() override;

    VScope* nextOfContainer() const noexcept { return m_next; }

    /// Queues the container's object for evaluation unless it is queued already.
    void makeDue();

    /// As above, and tells the pool's observer, if there is one, why.
    void makeDue(VScheduler::Observer::Cause cause, const VParameter* changed = nullptr);

    /// Moves a container that is queued to the place of its present order.
    void requeue();

    /// Gives each input and output its variable.
    void completeVariables();

    /// A scope in which the parameter's name is free; usually this one.
    ValuePool& placeFor(const VParameter& parameter);

private:
    friend class DueQueue;
    friend class PoolRoot;
    friend class VParameter;
    friend class VScheduler;

    void enqueue();
    void dequeue();
    void enlist();
    void delist() noexcept;
    void leaveRoot() noexcept;

    // What running the container needs stands together.
    VSlotContainer* m_container;
    VScope* m_nextDue = nullptr; // among the due ones of the same order number
    VScope* m_previousDue = nullptr;
    double m_precision = 0;
    std::uint64_t m_pass = 0; // the last evaluation that ran the object
    std::uint32_t m_runs = 0; // how often it did
    std::uint32_t m_dueOrder = 0;
    std::uint32_t m_layout = 0; // of the container, when the variables were completed
    bool m_due = false;
    bool m_waits = false; // due in the next round
    bool m_updating = false;
    bool m_enlisted = false;

    VScope* m_next = nullptr; // among the container's scopes
    VScope* m_previous = nullptr;

    // An input and an output of one object may bear the same name.
    StrongPtr<ValuePool> m_overflow;
};

} // namespace Orla
