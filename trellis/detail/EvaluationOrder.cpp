#include <trellis/detail/EvaluationOrder.hpp>

#include <trellis/detail/FrameHooks.hpp>

#include <trellis/VSlotContainer.hpp>

#include <algorithm>
#include <new>

namespace Orla::Detail {

namespace {

// Calls `function` for each container that reads something that `container` writes, once per
// reading slot.
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

// Calls `function` for each container that `container` reads, once per slot.
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

/// Finds the loops among the containers that can be reached from some start: Tarjan's strongly
/// connected components, "Depth-first search and linear graph algorithms" (1972). Uses an
/// explicit stack instead of recursion, so long chains are safe.
class EvaluationOrder::Search {
public:
    using Component = std::vector<VSlotContainer*>;

    ~Search()
    {
        for (const Node& node : m_nodes)
            node.container->wiring().mark = 0;
    }

    void visit(VSlotContainer& start)
    {
        if (start.wiring().mark != 0)
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
            if (reader.wiring().mark == 0) {
                open(reader);
            } else {
                const Node& seen = m_nodes[reader.wiring().mark - 1];
                if (seen.onStack)
                    node.low = std::min(node.low, reader.wiring().mark - 1);
            }
        }
    }

    /// In reverse order: readers come before what they read.
    std::vector<Component>& components() noexcept { return m_components; }

    bool wasVisited(const VSlotContainer& container) const noexcept { return container.wiring().mark != 0; }

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
        container.wiring().mark = index + 1;
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
        std::ranges::sort(component, {}, [](VSlotContainer* each) { return each->wiring().mark; });
        m_components.push_back(std::move(component));
    }

    std::vector<Node> m_nodes;
    std::vector<std::uint32_t> m_stack;
    std::vector<Step> m_path;
    std::vector<Component> m_components;
};

// Sorts the members of a loop into the order in which they run, starting with `entry`: each
// follows those that it reads, except through the connections that close the loop.
void EvaluationOrder::orderLoop(std::vector<VSlotContainer*>& loop, VSlotContainer& entry)
{
    struct Step {
        VSlotContainer* container;
        std::size_t next;
        std::vector<VSlotContainer*> readers;
    };
    std::vector<Step> path;
    std::vector<VSlotContainer*> finished;
    const auto open = [&path](VSlotContainer& container) {
        container.wiring().mark |= Ordered;
        Step& step = path.emplace_back(Step{&container, 0, {}});
        forEachReader(container, [&step](VSlotContainer& reader) {
            if ((reader.wiring().mark & InThisComponent) != 0)
                step.readers.push_back(&reader);
        });
    };
    open(entry);
    while (!path.empty()) {
        Step& step = path.back();
        if (step.next == step.readers.size()) {
            finished.push_back(step.container);
            path.pop_back();
        } else if (VSlotContainer& reader = *step.readers[step.next++]; (reader.wiring().mark & Ordered) == 0) {
            open(reader);
        }
    }
    for (VSlotContainer* container : loop)
        container->wiring().mark &= ~Ordered;
    loop.assign(finished.rbegin(), finished.rend());
}

void EvaluationOrder::inputChanged(VSlotContainer& container, const VSlot* slot) noexcept
{
    const ContainerWiring& wiring = container.wiring();
    if (wiring.pendingPlace != 0)
        return;
    // Networks are usually built starting from their sources; the order is then already right.
    // In a loop, any change may open the loop.
    if (!wiring.inLoop) {
        if (!slot || !slot->readsOthers())
            return;
        const StrongPtr<VSlotContainer> source = slot->parameter()->owner();
        if (source && source->wiring().pendingPlace == 0 && source->wiring().orderAfter < wiring.order)
            return;
    }
    note(container);
}

void EvaluationOrder::note(VSlotContainer& container) noexcept
{
    if (container.wiring().pendingPlace != 0)
        return;
    try {
        m_pending.push_back(&container);
        container.wiring().pendingPlace = static_cast<std::uint32_t>(m_pending.size());
    } catch (const std::bad_alloc&) {
        m_mustStartOver = true;
    }
}

void EvaluationOrder::forget(VSlotContainer& container) noexcept
{
    // The loop may be open without the container.
    if (container.wiring().inLoop)
        forEachReader(container, [this](VSlotContainer& reader) { note(reader); });
    std::uint32_t& place = container.wiring().pendingPlace;
    if (place == 0)
        return;
    m_pending.back()->wiring().pendingPlace = place;
    m_pending[place - 1] = m_pending.back();
    m_pending.pop_back();
    place = 0;
    if (m_pending.empty())
        m_pending = {};
}

void EvaluationOrder::update(const std::vector<VSlotContainer*>& all)
{
    if (isUpToDate())
        return;
    const bool startsOver = m_mustStartOver;
    m_mustStartOver = true; // until everything has succeeded
    {
        Search search;
        for (VSlotContainer* container : startsOver ? all : m_pending) {
            // Close the gaps here, because evaluations in several threads must not.
            static_cast<void>(container->inputs().begin());
            static_cast<void>(container->outputs().begin());
            search.visit(*container);
        }
        apply(search);
    }
    for (VSlotContainer* container : m_pending)
        container->wiring().pendingPlace = 0;
    m_pending = {};
    m_mustStartOver = false;
}

void EvaluationOrder::apply(Search& search)
{
    std::vector<Search::Component>& components = search.components();
    for (auto component = components.rbegin(); component != components.rend(); ++component) {
        const bool isLoop = component->size() > 1;
        for (VSlotContainer* container : *component)
            container->wiring().mark |= InThisComponent;
        std::uint32_t order = 0;
        VSlotContainer* entry = nullptr;
        for (VSlotContainer* container : *component) {
            forEachSource(*container, [&](const VSlotContainer& source) {
                if ((source.wiring().mark & InThisComponent) != 0)
                    return;
                order = std::max(order, source.wiring().orderAfter + 1);
                if (!entry)
                    entry = container;
            });
        }
        if (isLoop)
            orderLoop(*component, entry ? *entry : *component->front());
        const std::uint32_t after = order + static_cast<std::uint32_t>(component->size()) - 1;
        for (VSlotContainer* container : *component) {
            ContainerWiring& wiring = container->wiring();
            const bool changed = wiring.order != order || wiring.inLoop != isLoop;
            wiring.order = order++;
            wiring.orderAfter = after;
            wiring.inLoop = isLoop;
            wiring.mark &= ~InThisComponent;
            if (changed)
                FrameHooks::orderChanged(*container);
        }
    }
}

std::vector<VSlotContainer*> EvaluationOrder::loopOf(VSlotContainer& container)
{
    Search search;
    search.visit(container);
    // The start of a search belongs to the component that is closed last.
    return search.components().back();
}

} // namespace Orla::Detail
