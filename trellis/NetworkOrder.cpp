#include <trellis/NetworkOrder.hpp>

#include <trellis/PoolRoot.hpp>
#include <trellis/VSlotContainer.hpp>

#include <algorithm>

namespace Orla {

namespace {

// The containers whose order must be worked out. At exit it may go before the
// last of them do.
struct Pending {
    ~Pending() { isGone = true; }

    std::vector<VSlotContainer*> containers;
    static inline constinit bool isGone = false;
};

std::vector<VSlotContainer*>& pending()
{
    static Pending thePending;
    return thePending.containers;
}

// Calls `function` for each container that reads something that `container`
// writes; more than once if it reads several things.
template<class Function>
void forEachReader(const VSlotContainer& container, Function&& function)
{
    const auto visit = [&](const VSlot& slot) {
        for (VSlot* reader : slot.ownParameter()->readers()) {
            if (reader->container())
                function(*reader->container());
        }
    };
    for (const StrongPtr<VSlot>& slot : container.outputs()) {
        if (slot->hasFlag(VSlot::Output))
            visit(*slot);
    }
    for (const StrongPtr<VSlot>& slot : container.inputs()) {
        if (!slot->ownsParameter())
            continue;
        for (VSlot* reader : slot->ownParameter()->readers()) {
            if (reader != slot.get() && reader->container())
                function(*reader->container());
        }
    }
}

// Calls `function` for each container that `container` reads.
template<class Function>
void forEachSource(const VSlotContainer& container, Function&& function)
{
    for (const StrongPtr<VSlot>& slot : container.inputs()) {
        if (!slot->readsOthers())
            continue;
        if (const StrongPtr<VSlotContainer> source = slot->parameter()->owner())
            function(*source);
    }
}

} // namespace

/// Finds the loops among the containers that can be reached from some start:
/// Tarjan's strongly connected components, "Depth-first search and linear graph
/// algorithms" (1972), with a stack of its own instead of recursion, so that
/// the length of a chain does not matter.
class NetworkOrder::Search {
public:
    using Component = std::vector<VSlotContainer*>;

    ~Search()
    {
        for (const Node& node : m_nodes)
            node.container->m_mark = 0;
    }

    void visit(VSlotContainer& start)
    {
        if (start.m_mark != 0)
            return;
        open(start);
        while (!m_path.empty()) {
            Step& step = m_path.back();
            Node& node = m_nodes[step.node];
            if (step.next == step.readers.size()) {
                close();
                continue;
            }
            VSlotContainer& reader = *step.readers[step.next++];
            if (reader.m_mark == 0) {
                open(reader);
            } else {
                const Node& seen = m_nodes[reader.m_mark - 1];
                if (seen.onStack)
                    node.low = std::min(node.low, reader.m_mark - 1);
            }
        }
    }

    /// In reverse order: those that read come before those that they read.
    std::vector<Component>& components() noexcept { return m_components; }

    bool wasVisited(const VSlotContainer& container) const noexcept { return container.m_mark != 0; }

private:
    struct Node {
        VSlotContainer* container;
        std::uint32_t low;
        bool onStack;
    };

    struct Step {
        std::uint32_t node;
        std::size_t next;
        std::vector<VSlotContainer*> readers;
    };

    void open(VSlotContainer& container)
    {
        const auto index = static_cast<std::uint32_t>(m_nodes.size());
        m_nodes.push_back({&container, index, true});
        container.m_mark = index + 1;
        m_stack.push_back(index);
        Step& step = m_path.emplace_back(Step{index, 0, {}});
        forEachReader(container, [&step](VSlotContainer& reader) { step.readers.push_back(&reader); });
    }

    void close()
    {
        const std::uint32_t index = m_path.back().node;
        m_path.pop_back();
        const Node& node = m_nodes[index];
        if (!m_path.empty()) {
            Node& parent = m_nodes[m_path.back().node];
            parent.low = std::min(parent.low, node.low);
        }
        if (node.low != index)
            return;
        Component component;
        std::uint32_t member = 0;
        do {
            member = m_stack.back();
            m_stack.pop_back();
            m_nodes[member].onStack = false;
            component.push_back(m_nodes[member].container);
        } while (member != index);
        // In the order in which they were reached.
        std::ranges::sort(component, {}, &VSlotContainer::m_mark);
        m_components.push_back(std::move(component));
    }

    std::vector<Node> m_nodes;
    std::vector<std::uint32_t> m_stack;
    std::vector<Step> m_path;
    std::vector<Component> m_components;
};

// Puts the members of a loop into the order in which they run after `entry`:
// each behind those that it reads, the connections that close the loop apart.
void NetworkOrder::orderLoop(std::vector<VSlotContainer*>& loop, VSlotContainer& entry)
{
    struct Step {
        VSlotContainer* container;
        std::size_t next;
        std::vector<VSlotContainer*> readers;
    };
    std::vector<Step> path;
    std::vector<VSlotContainer*> finished;
    const auto open = [&path](VSlotContainer& container) {
        container.m_mark |= Ordered;
        Step& step = path.emplace_back(Step{&container, 0, {}});
        forEachReader(container, [&step](VSlotContainer& reader) {
            if ((reader.m_mark & InThisComponent) != 0)
                step.readers.push_back(&reader);
        });
    };
    open(entry);
    while (!path.empty()) {
        Step& step = path.back();
        if (step.next == step.readers.size()) {
            finished.push_back(step.container);
            path.pop_back();
        } else if (VSlotContainer& reader = *step.readers[step.next++]; (reader.m_mark & Ordered) == 0) {
            open(reader);
        }
    }
    for (VSlotContainer* container : loop)
        container->m_mark &= ~Ordered;
    loop.assign(finished.rbegin(), finished.rend());
}

void NetworkOrder::inputChanged(VSlotContainer& container, const VSlot* slot)
{
    if (container.m_pendingPlace != 0)
        return;
    // The usual case, a network that is built from its sources on: the order
    // stands already. In a loop every change may open it.
    if (!container.m_inLoop) {
        if (!slot || !slot->readsOthers())
            return;
        const StrongPtr<VSlotContainer> source = slot->parameter()->owner();
        if (source && source->m_pendingPlace == 0 && source->m_orderAfter < container.m_order)
            return;
    }
    note(container);
}

void NetworkOrder::note(VSlotContainer& container)
{
    if (container.m_pendingPlace != 0 || Pending::isGone)
        return;
    pending().push_back(&container);
    container.m_pendingPlace = pending().size();
}

void NetworkOrder::forget(VSlotContainer& container)
{
    // The loop may be open without it.
    if (container.m_inLoop)
        forEachReader(container, [](VSlotContainer& reader) { note(reader); });
    if (container.m_pendingPlace == 0 || Pending::isGone)
        return;
    pending().back()->m_pendingPlace = container.m_pendingPlace;
    pending()[container.m_pendingPlace - 1] = pending().back();
    pending().pop_back();
    container.m_pendingPlace = 0;
}

bool NetworkOrder::isUpToDate() noexcept
{
    return Pending::isGone || pending().empty();
}

void NetworkOrder::update()
{
    if (isUpToDate())
        return;
    Search search;
    for (VSlotContainer* container : pending()) {
        container->m_pendingPlace = 0;
        search.visit(*container);
    }
    pending().clear();

    std::vector<Search::Component>& components = search.components();
    for (auto component = components.rbegin(); component != components.rend(); ++component) {
        const bool isLoop = component->size() > 1;
        for (VSlotContainer* container : *component)
            container->m_mark |= InThisComponent;
        std::uint32_t order = 0;
        VSlotContainer* entry = nullptr;
        for (VSlotContainer* container : *component) {
            forEachSource(*container, [&](const VSlotContainer& source) {
                if ((source.m_mark & InThisComponent) != 0)
                    return;
                order = std::max(order, source.m_orderAfter + 1);
                if (!entry)
                    entry = container;
            });
        }
        if (isLoop)
            orderLoop(*component, entry ? *entry : *component->front());
        const std::uint32_t after = order + static_cast<std::uint32_t>(component->size()) - 1;
        for (VSlotContainer* container : *component) {
            const bool isEarlier = order < container->m_order;
            container->m_order = order++;
            // Whoever is due would run behind readers that queue up from now on.
            for (VScope* scope = isEarlier ? container->m_scopes : nullptr; scope; scope = scope->nextOfContainer())
                scope->requeue();
            container->m_orderAfter = after;
            container->m_inLoop = isLoop;
        }
        for (VSlotContainer* container : *component)
            container->m_mark &= ~InThisComponent;
    }
}

std::vector<VSlotContainer*> NetworkOrder::loopOf(VSlotContainer& container)
{
    Search search;
    search.visit(container);
    // The start of a search lies in the component that is closed last.
    return search.components().back();
}

} // namespace Orla
