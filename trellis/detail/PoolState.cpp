#include <trellis/detail/PoolState.hpp>

#include <trellis/VParameter.hpp>
#include <trellis/VSlot.hpp>
#include <trellis/VSlotContainer.hpp>
#include <trellis/VValueComponents.hpp>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>
#include <optional>
#include <unordered_set>
#include <utility>

namespace Orla {

using Detail::PoolState;

namespace {

// Up to this size, a linear search is faster than a table.
constexpr std::size_t FewVariables = 16;

// A frame's cells beyond this number are stored separately.
constexpr std::uint32_t MostInlineCells = 255;

// Returns true if the slot's cells hold the variables of its parameter.
bool isHome(const VSlot& slot) noexcept
{
    const VParameter& parameter = *slot.parameter();
    return parameter.slot() == &slot && slot.member().empty() && slot.place().cell != VSlotPlace::NoCell;
}

// Returns the slot whose cells hold the parameter's variables; null if the pools hold them.
const VSlot* homeSlot(const VParameter& parameter) noexcept
{
    const VSlot* const slot = parameter.slot();
    const bool isKept = slot && slot->parameter().get() == &parameter && slot->container() && isHome(*slot);
    return isKept ? slot : nullptr;
}

// Returns true if an input of the container is connected to an output of the same container.
bool readsItself(const VSlotContainer& container)
{
    for (const StrongPtr<VSlot>& input : container.inputs()) {
        const VSlot* const source = input->isConnected() ? input->parameter()->slot() : nullptr;
        if (source && source->container() == &container)
            return true;
    }
    return false;
}

// Returns true for an output whose value does not count after its object has failed.
bool isResult(const VSlot& slot) noexcept
{
    return slot.hasFlag(VSlot::Output) && !slot.hasFlag(VSlot::StaysValid);
}

// Calls `function` for each slot of the container that has a cell.
template<class Function>
void forEachCell(const VSlotContainer& container, Function&& function)
{
    container.inputs().forEach(function);
    container.outputs().forEach([&](VSlot& slot) {
        if (slot.hasFlag(VSlot::Output))
            function(slot);
    });
}

} // namespace

namespace Detail {

Recorder::~Recorder() = default;

RunMemory::~RunMemory() = default;

PoolState::~PoolState()
{
    for (ValuePool* view : m_views)
        view->m_state = nullptr;
    std::vector<VFrame*> frames;
    if (m_network) {
        // The network must not change while the frames are removed from their containers.
        bool isUse = true;
        try {
            m_network->gate.enter();
        } catch (const std::bad_alloc&) {
            m_network->gate.beginChange();
            isUse = false;
        }
        frames = std::exchange(m_frames, {});
        for (VFrame* frame : frames) {
            if (!frame)
                continue;
            ContainerWiring& wiring = const_cast<VSlotContainer*>(frame->m_container)->wiring();
            const std::lock_guard lock{wiring.framesLock};
            wiring.frames.back()->m_place = frame->m_place;
            wiring.frames.removeAt(frame->m_place);
        }
        if (isUse)
            m_network->gate.leave();
        else
            m_network->gate.endChange();
    }
    // Values may be the last owners of objects, which no longer have frames here.
    for (DueQueue* queue : {&due, &nextRound}) {
        while (!queue->empty()) {
            VFrame& frame = queue->pop();
            if (frame.m_isDead)
                freeFrame(frame);
        }
    }
    for (VFrame* frame : frames) {
        if (frame)
            freeFrame(*frame);
    }
}

NetworkCore* PoolState::network() const noexcept
{
    return m_network.get();
}

std::size_t PoolState::homeOf(const VSlotContainer& container) const noexcept
{
    // Multiplication spreads consecutive indices over the table.
    const std::uint64_t hash = container.wiring().index * std::uint64_t{0x9E3779B97F4A7C15};
    return static_cast<std::size_t>(hash >> 32) & (m_frames.size() - 1);
}

VFrame* PoolState::findFrame(const VSlotContainer& container) noexcept
{
    if (m_frames.empty())
        return nullptr;
    for (std::size_t place = homeOf(container);; place = (place + 1) & (m_frames.size() - 1)) {
        VFrame* const frame = m_frames[place];
        if (!frame || frame->m_container == &container)
            return frame;
    }
}

bool PoolState::bind(VSlotContainer& container) noexcept
{
    NetworkCore* const network = container.wiring().network;
    if (m_network.get() == network)
        return !network->isClosed();
    if (network->isClosed() || (m_network && !m_network->isClosed()))
        return false;
    m_network = StrongPtr<NetworkCore>(network);
    return true;
}

VFrame* PoolState::frame(VSlotContainer& container)
{
    const auto lock = lockTables();
    if (VFrame* const found = findFrame(container))
        return found;
    return makeFrame(container);
}

VFrame* PoolState::makeFrame(VSlotContainer& container)
{
    if (!bind(container))
        return nullptr;
    const UseScope use{*m_network};
    if ((m_frameCount + 1) * 4 > m_frames.size() * 3) {
        std::vector<VFrame*> old =
            std::exchange(m_frames, std::vector<VFrame*>(std::max<std::size_t>(4, 2 * m_frames.size())));
        for (VFrame* each : old) {
            if (!each)
                continue;
            std::size_t place = homeOf(*each->m_container);
            while (m_frames[place])
                place = (place + 1) & (m_frames.size() - 1);
            m_frames[place] = each;
        }
    }
    ContainerWiring& wiring = container.wiring();
    const std::uint32_t cells = std::min(wiring.cells, MostInlineCells);
    void* const memory = ::operator new(sizeof(VFrame) + cells * (sizeof(VFrame::Cell) + sizeof(std::uint16_t)));
    auto* const frame = ::new (memory) VFrame;
    std::memset(static_cast<void*>(frame + 1), 0, cells * (sizeof(VFrame::Cell) + sizeof(std::uint16_t)));
    frame->m_container = &container;
    frame->m_object = wiring.object;
    frame->m_pool = this;
    frame->m_inlineCells = static_cast<std::uint8_t>(cells);
    try {
        const std::lock_guard lock{wiring.framesLock};
        frame->m_place = static_cast<std::uint32_t>(wiring.frames.size());
        wiring.frames.push_back(frame);
    } catch (...) {
        ::operator delete(memory);
        throw;
    }
    readSwitches(*frame);
    std::size_t place = homeOf(container);
    while (m_frames[place])
        place = (place + 1) & (m_frames.size() - 1);
    m_frames[place] = frame;
    ++m_frameCount;
    return frame;
}

void PoolState::readSwitches(VFrame& frame) noexcept
{
    const ContainerWiring& wiring = frame.m_container->wiring();
    frame.m_pool->m_isFreeOfDeclarations = false;
    frame.m_object = wiring.object;
    frame.m_order = wiring.order;
    frame.m_isInLoop = wiring.inLoop;
    frame.m_isEvaluated = wiring.isEvaluated && wiring.object;
    frame.m_needsHold = !wiring.isAnnounced;
    frame.m_keepsState = wiring.keepsState;
    frame.m_acceptsFailed = wiring.acceptsFailed;
    frame.m_runsInTurn = wiring.inLoop || wiring.runsInTurn;
}

void PoolState::growCells(VFrame& frame, std::uint32_t count)
{
    if (count <= frame.m_inlineCells)
        return;
    const std::uint32_t wanted = count - frame.m_inlineCells;
    auto* const old = static_cast<VFrame::MoreCells*>(frame.m_more);
    if (old && old->count >= wanted)
        return;
    const std::uint32_t size = std::max(wanted, old ? 2 * old->count : 0);
    auto* const more =
        static_cast<VFrame::MoreCells*>(::operator new(sizeof(VFrame::MoreCells) + size * sizeof(VFrame::WideCell)));
    more->count = size;
    for (std::uint32_t i = 0; i < size; ++i)
        ::new (more->cells() + i) VFrame::WideCell{};
    if (old) {
        std::copy_n(old->cells(), old->count, more->cells());
        ::operator delete(old);
    }
    frame.m_more = more;
}

void PoolState::forgetReaders(VFrame& frame, std::uint32_t cell) noexcept
{
    std::uint16_t& bits = frame.flags(cell);
    if ((bits & VFrame::ManyReaders) != 0)
        ::operator delete(frame.cell(cell).link);
    if ((bits & (VFrame::ManyReaders | VFrame::OneReader)) != 0)
        frame.cell(cell).link = nullptr;
    bits = static_cast<std::uint16_t>(bits & ~(VFrame::ManyReaders | VFrame::OneReader | VFrame::KnowsReaders));
}

void PoolState::releaseCell(VFrame& frame, std::uint32_t cell) noexcept
{
    forgetReaders(frame, cell);
    std::uint16_t& bits = frame.flags(cell);
    const bool owns = (bits & (VFrame::Owned | VFrame::Part)) != 0;
    bits = static_cast<std::uint16_t>(bits & VFrame::Rewired);
    frame.cell(cell).link = nullptr;
    // Released last, because the value may be the last owner of something that uses this pool.
    VValueBase* const value = std::exchange(frame.cell(cell).value, nullptr);
    if (value && owns)
        value->referenceBlock().releaseStrong();
}

void PoolState::freeFrame(VFrame& frame) noexcept
{
    if (frame.m_hasFailed)
        m_reasons.erase(&frame);
    const std::uint32_t count = frame.cellCount();
    for (std::uint32_t cell = 0; cell < count; ++cell)
        releaseCell(frame, cell);
    ::operator delete(frame.m_more);
    frame.~VFrame();
    ::operator delete(static_cast<void*>(&frame));
}

void PoolState::removeFromTable(const VFrame& frame) noexcept
{
    const std::size_t mask = m_frames.size() - 1;
    std::size_t hole = homeOf(*frame.m_container);
    while (m_frames[hole] != &frame)
        hole = (hole + 1) & mask;
    for (std::size_t place = (hole + 1) & mask; m_frames[place]; place = (place + 1) & mask) {
        // A frame may move into the hole unless its home lies after the hole.
        if (((place - homeOf(*m_frames[place]->m_container)) & mask) >= ((place - hole) & mask)) {
            m_frames[hole] = m_frames[place];
            hole = place;
        }
    }
    m_frames[hole] = nullptr;
    if (--m_frameCount == 0)
        m_frames = {};
}

// The caller removes the frame from the container's list.
void PoolState::dropFrame(VFrame& frame) noexcept
{
    if (frame.m_isWaiting)
        --waitingCount;
    removeFromTable(frame);
    if (frame.m_hasPrecision)
        m_precisions.erase(keyOf(&frame));
    frame.m_isDead = true;
    if (frame.m_isDue) {
        --dueCount;
        ++m_deadCount;
    }
    if (frame.m_isUpdating) {
        // The update continues with its current values.
        const std::uint32_t count = frame.cellCount();
        for (std::uint32_t cell = 0; cell < count; ++cell) {
            forgetReaders(frame, cell);
            frame.flags(cell) |= VFrame::KnowsReaders;
            if (frame.cell(cell).value && (frame.flags(cell) & (VFrame::Owned | VFrame::Part)) == 0) {
                frame.cell(cell).value->referenceBlock().addStrong();
                frame.flags(cell) |= VFrame::Part;
            }
            frame.cell(cell).link = nullptr;
        }
    } else if (!frame.m_isDue) {
        freeFrame(frame);
    }
    if (m_deadCount > 0 && dueCount == 0) {
        // All queued frames are dead.
        for (DueQueue* queue : {&due, &nextRound}) {
            while (!queue->empty())
                discard(queue->pop());
        }
    }
}

void PoolState::noteHistory(const VFrame& frame, VHistory::Cause cause, std::uint32_t cell) noexcept
{
    const std::string* const name = frame.m_container->wiring().name;
    if (!name || m_hasHistory.load(std::memory_order_acquire))
        return;
    try {
        const bool isAboutSlot = cause == VHistory::Cause::ReadsOutput || cause == VHistory::Cause::ChangesInput;
        const VParameter* const parameter = isAboutSlot ? parameterOf(frame, cell) : nullptr;
        auto noted = std::make_unique<VHistory>(VHistory{cause, *name, parameter ? parameter->Name() : std::string()});
        const std::lock_guard lock{m_historyLock};
        if (m_history)
            return;
        m_history = std::move(noted);
        m_hasHistory.store(true, std::memory_order_release);
    } catch (const std::bad_alloc&) {
        // The next update notes it again.
    }
}

std::optional<VHistory> PoolState::history()
{
    if (m_hasHistory.load(std::memory_order_acquire))
        return *m_history;
    if (m_isFreeOfDeclarations)
        return std::nullopt;
    const VFrame* first = nullptr;
    forEachFrame([&first](const VFrame& frame) {
        const ContainerWiring& wiring = frame.m_container->wiring();
        const auto isLoop = [&] { return wiring.inLoop || readsItself(*frame.m_container); };
        if (frame.m_isEvaluated && (!first || frame.m_order < first->m_order) && (wiring.hasHistory || isLoop()))
            first = &frame;
    });
    m_isFreeOfDeclarations = !first;
    if (!first)
        return std::nullopt;
    const ContainerWiring& wiring = first->m_container->wiring();
    const auto cause = !wiring.hasHistory  ? VHistory::Cause::Loop
                       : wiring.keepsState ? VHistory::Cause::KeepsState
                                           : VHistory::Cause::Declared;
    return VHistory{cause, *wiring.name};
}

void PoolState::unlinkCell(VFrame& frame, std::uint32_t cell) noexcept
{
    if (!frame.m_isDead && frame.hasCell(cell))
        releaseCell(frame, cell);
}

void PoolState::forgetRewiring(VFrame& frame) noexcept
{
    for (std::uint32_t cell = 0; cell < frame.cellCount(); ++cell)
        frame.flags(cell) = static_cast<std::uint16_t>(frame.flags(cell) & ~VFrame::Rewired);
    frame.m_hasRewired = false;
}

void PoolState::releaseHeldObjects() noexcept
{
    // An object that is destroyed here may own others.
    while (!heldObjects.empty()) {
        const StrongPtr<VManagedObjectBase> released = std::move(heldObjects.back());
        heldObjects.pop_back();
    }
}

void PoolState::rewiredCell(VFrame& frame, std::uint32_t cell) noexcept
{
    PoolState& pool = of(frame);
    pool.unlinkCell(frame, cell);
    if (frame.hasCell(cell))
        frame.flags(cell) |= VFrame::Rewired;
    frame.m_hasRewired = true;
    frame.m_isStale = true;
}

// Values

VValueBase* PoolState::fillOwned(VFrame& frame, const VSlot& slot)
{
    const std::uint32_t index = slot.place().cell;
    growCells(frame, index + 1);
    if (VValueBase* const value = frame.cell(index).value)
        return value;
    const VParameter& parameter = *slot.parameter();
    const Variable* const stored = m_variables.find(keyOf(&parameter));
    const StrongPtr<VValueBase> value = stored ? stored->value : parameter.newValue();
    if (!value)
        return nullptr;
    if (VValueBase* const meanwhile = frame.cell(index).value)
        return meanwhile;
    value->referenceBlock().addStrong();
    frame.cell(index).value = value.get();
    std::uint16_t bits = static_cast<std::uint16_t>((frame.flags(index) & VFrame::Rewired) | VFrame::Owned);
    if (!parameter.isEnabled())
        bits |= VFrame::Off;
    if (parameter.hasListeners()) {
        bits |= VFrame::Heard;
        hasListeners = true;
    }
    frame.flags(index) = bits;
    m_variables.erase(keyOf(&parameter));
    return value.get();
}

void PoolState::resolve(VFrame& frame, const VSlot& slot)
{
    const std::uint32_t index = slot.place().cell;
    if (index == VSlotPlace::NoCell)
        return;
    growCells(frame, index + 1);
    if (isHome(slot)) {
        fillOwned(frame, slot);
        return;
    }
    if (frame.cell(index).value)
        return;
    const VParameter& parameter = *slot.parameter();
    const StrongPtr<VValueBase> value = make(parameter);
    if (!value)
        return;
    const VSlot* const home = homeSlot(parameter);
    VFrame* const source = home ? findFrame(*home->container()) : nullptr;
    const Variable* const stored = m_variables.find(keyOf(&parameter));
    std::uint16_t bits = frame.flags(index) & VFrame::Rewired;
    if (stored && stored->isFromFailed)
        bits |= VFrame::FromFailed;
    if (slot.member().empty()) {
        frame.cell(index).value = value.get();
    } else {
        const StrongPtr<VValueBase> part = slot.componentOf(*value);
        if (!part)
            return;
        part->referenceBlock().addStrong();
        frame.cell(index).value = part.get();
        bits |= VFrame::Part;
    }
    frame.flags(index) = bits;
    frame.cell(index).link = source;
}

void PoolState::complete(VFrame& frame)
{
    const VSlotContainer& container = *frame.m_container;
    growCells(frame, container.wiring().cells);
    m_isFreeOfDeclarations = false;
    frame.m_isStale = false;
    try {
        forEachCell(container, [&](VSlot& slot) { resolve(frame, slot); });
    } catch (...) {
        frame.m_isStale = true;
        throw;
    }
    updateWaiting(frame);
}

VValueBase* PoolState::find(const VParameter& parameter) noexcept
{
    const auto lock = lockTables();
    if (const VSlot* const home = homeSlot(parameter)) {
        const VFrame* const found = findFrame(*home->container());
        if (auto* const frame = const_cast<VFrame*>(found)) {
            const std::uint32_t cell = home->place().cell;
            if (frame->hasCell(cell)) {
                if (VValueBase* const value = frame->cell(cell).value)
                    return value;
            }
        }
    }
    const Variable* const stored = m_variables.find(keyOf(&parameter));
    return stored ? stored->value.get() : nullptr;
}

StrongPtr<VValueBase> PoolState::make(const VParameter& parameter)
{
    const auto lock = lockTables();
    if (const VSlot* const home = homeSlot(parameter)) {
        VFrame* const frame = this->frame(*home->container());
        return frame ? StrongPtr<VValueBase>(fillOwned(*frame, *home)) : nullptr;
    }
    if (VValueBase* const value = find(parameter))
        return StrongPtr<VValueBase>(value);
    // The own value of a connected input is stored by parameter, not by name.
    const StrongPtr<ValuePool> pool = m_pool->root();
    if (!parameter.slot() && !namedVariable(parameter.Name()))
        return parameter.createLocalVariable(pool);
    StrongPtr<VValueBase> value = parameter.newValue();
    if (!value)
        return nullptr;
    m_variables[keyOf(&parameter)].value = value;
    parameter.noteHolder(*m_pool);
    parameter.addShadow(pool);
    return value;
}

StrongPtr<VValueBase> PoolState::find(const VSlot& slot)
{
    const auto lock = lockTables();
    if (slot.container()) {
        if (VFrame* const frame = findFrame(*slot.container())) {
            // An update may reconnect its own inputs.
            if (frame->m_isStale && frame->m_isUpdating)
                complete(*frame);
            const std::uint32_t cell = slot.place().cell;
            if (frame->hasCell(cell)) {
                if (VValueBase* const value = frame->cell(cell).value)
                    return StrongPtr<VValueBase>(value);
            }
        }
    }
    VValueBase* const value = find(*slot.parameter());
    return value ? slot.componentOf(*value) : nullptr;
}

StrongPtr<VValueBase> PoolState::make(const VSlot& slot)
{
    const auto lock = lockTables();
    const StrongPtr<VValueBase> value = make(*slot.parameter());
    return value ? slot.componentOf(*value) : nullptr;
}

// Cells that refer to the variable's old value are resolved again.
void PoolState::replaceForReaders(const VParameter& parameter) noexcept
{
    for (const VSlot* reader : parameter.readers()) {
        if (!reader->container() || isHome(*reader))
            continue;
        VFrame* const frame = findFrame(*reader->container());
        if (!frame)
            continue;
        unlinkCell(*frame, reader->place().cell);
        frame->m_isStale = true;
    }
}

void PoolState::enter(const VParameter& parameter, const StrongPtr<VValueBase>& value)
{
    const auto lock = lockTables();
    enterName(parameter, value);
    const VSlot* const home = homeSlot(parameter);
    VFrame* const frame = home ? this->frame(*home->container()) : nullptr;
    if (!frame) {
        Variable& entry = m_variables[keyOf(&parameter)];
        // The old value may be the last owner of something that uses this pool.
        const StrongPtr<VValueBase> released = std::exchange(entry.value, value);
        entry.isFromFailed = false;
        if (released && released != value)
            replaceForReaders(parameter);
        return;
    }
    const std::uint32_t index = home->place().cell;
    if (!fillOwned(*frame, *home) || frame->cell(index).value == value.get())
        return;
    value->referenceBlock().addStrong();
    VValueBase* const old = std::exchange(frame->cell(index).value, value.get());
    frame->flags(index) = static_cast<std::uint16_t>(frame->flags(index) & ~(VFrame::Plain | VFrame::Typed));
    replaceForReaders(parameter);
    old->referenceBlock().releaseStrong();
}

const PoolState::NamedVariable* PoolState::namedVariable(const std::string& name) const
{
    if (m_names.size() <= FewVariables) {
        const auto found = std::ranges::find(m_names, name, &NamedVariable::name);
        return found == m_names.end() ? nullptr : &*found;
    }
    const auto found = m_nameIndex.find(name);
    return found == m_nameIndex.end() ? nullptr : &m_names[found->second];
}

StrongPtr<VValueBase> PoolState::findName(const std::string& name) const
{
    const auto lock = lockTables();
    const NamedVariable* const variable = namedVariable(name);
    return variable ? variable->value : nullptr;
}

void PoolState::enterName(const VParameter& parameter, const StrongPtr<VValueBase>& value)
{
    auto* const known = const_cast<NamedVariable*>(namedVariable(parameter.Name()));
    if (!known || known->parameter != &parameter)
        parameter.noteHolder(*m_pool);
    if (known) {
        known->parameter = &parameter;
        // Released last, because the old value's destructor may use this pool.
        const StrongPtr<VValueBase> released = std::exchange(known->value, value);
        return;
    }
    m_names.push_back({parameter.Name(), value, &parameter});
    try {
        if (m_names.size() == FewVariables + 1) {
            m_nameIndex.clear();
            for (std::size_t i = 0; i < m_names.size(); ++i)
                m_nameIndex.emplace(m_names[i].name, i);
        } else if (m_names.size() > FewVariables) {
            m_nameIndex.emplace(parameter.Name(), m_names.size() - 1);
        }
    } catch (...) {
        m_nameIndex.erase(parameter.Name());
        m_names.pop_back();
        throw;
    }
}

void PoolState::removeName(const VParameter& parameter) noexcept
{
    auto* const found = const_cast<NamedVariable*>(namedVariable(parameter.Name()));
    if (!found || found->parameter != &parameter)
        return; // the name belongs to another parameter now
    if (m_names.size() > FewVariables) {
        m_nameIndex.erase(found->name);
        if (found != &m_names.back())
            m_nameIndex.find(m_names.back().name)->second = static_cast<std::size_t>(found - m_names.data());
    }
    std::swap(*found, m_names.back());
    // The value may be the last owner of something that uses this pool.
    const NamedVariable released = std::move(m_names.back());
    m_names.pop_back();
}

void PoolState::forget(const VParameter& parameter) noexcept
{
    removeName(parameter);
    if (const Variable* const stored = m_variables.find(keyOf(&parameter))) {
        const StrongPtr<VValueBase> released = stored->value;
        m_variables.erase(keyOf(&parameter));
    }
}

void PoolState::forgetEverywhere(const VParameter& parameter) noexcept
{
    if (!parameter.m_holders)
        return;
    parameter.m_holders->forEachAlive([&parameter](const StrongPtr<ValuePool>& pool) {
        if (PoolState* const state = pool->state())
            state->forget(parameter);
    });
}

std::size_t PoolState::variableCount() noexcept
{
    const auto lock = lockTables();
    std::size_t count = m_variables.size();
    forEachFrame([&](VFrame& frame) {
        forEachCell(*frame.m_container, [&](VSlot& slot) {
            const std::uint32_t cell = slot.place().cell;
            if (frame.hasCell(cell))
                count += (frame.flags(cell) & VFrame::Owned) != 0;
        });
    });
    return count;
}

const VParameter* PoolState::parameterOf(const VFrame& frame, std::uint32_t cell) const noexcept
{
    const VParameter* found = nullptr;
    forEachCell(*frame.m_container, [&](const VSlot& slot) {
        if (slot.place().cell == cell)
            found = slot.parameter().get();
    });
    return found;
}

// Announcing

void PoolState::schedule(VFrame& frame, double precision)
{
    if (recorder && recorder->recordSchedule(frame, precision)) [[unlikely]]
        return;
    setPrecision(frame, precision);
    makeDue(frame, VObserver::Cause::Scheduled);
}

void PoolState::prepareToAnnounce(VFrame& frame)
{
    for (std::uint32_t cell = 0; cell < frame.cellCount(); ++cell) {
        if ((frame.flags(cell) & VFrame::Owned) != 0)
            frame.prepareToAnnounce(cell);
    }
}

void PoolState::collectReaders(const VFrame& frame, std::vector<VFrame*>& readers)
{
    forEachCell(*frame.m_container, [&](const VSlot& slot) {
        for (const VSlot* reader : slot.ownParameter()->readers()) {
            VFrame* const found = reader->container() ? findFrame(*reader->container()) : nullptr;
            if (found && found != &frame)
                readers.push_back(found);
        }
    });
}

StrongPtr<ValuePool> PoolState::makeView()
{
    m_views.reserve(m_views.size() + 1);
    return StrongPtr<ValuePool>(new ValuePool(*this));
}

void PoolState::announce(const VParameter& parameter, const std::string& member)
{
    if (recorder && recorder->recordChange(parameter, member)) [[unlikely]]
        return;
    // Prevents other threads from updating the evaluation order or removing objects.
    std::optional<UseScope> use;
    if (m_network && !isRunning)
        use.emplace(*m_network);
    const VSlot* const home = homeSlot(parameter);
    VFrame* const writer = home ? frame(*home->container()) : nullptr;
    if (writer && member.empty()) {
        growCells(*writer, home->place().cell + 1);
        const bool isFilled = writer->cell(home->place().cell).value != nullptr;
        if (isFilled) {
            writer->announce(home->place().cell);
            return;
        }
    }
    for (std::size_t i = 0; i < parameter.readers().size(); ++i) {
        const VSlot& reader = *parameter.readers()[i];
        VSlotContainer* const container = reader.container();
        if (!container || !container->object() || reader.hasFlag(VSlot::Passive)
            || !VValueComponents::overlap(reader.member(), member))
            continue;
        VFrame* const frame = this->frame(*container);
        // An object's own update does not make it due by writing its own input.
        if (!frame || (frame->isWriting() && !reader.readsOthers()))
            continue;
        makeDue(*frame, VObserver::Cause::Changed, &parameter);
    }
    parameter.notifyListeners(m_pool->root());
}

void PoolState::announcePrototype(const VParameter& parameter)
{
    const auto announceIn = [&parameter](PoolState& pool) {
        for (std::size_t i = 0; i < parameter.readers().size(); ++i) {
            const VSlot& reader = *parameter.readers()[i];
            VSlotContainer* const container = reader.container();
            if (!container || !container->object() || reader.hasFlag(VSlot::Passive))
                continue;
            VFrame* const frame = pool.frame(*container);
            if (frame && !(frame->isWriting() && !reader.readsOthers()))
                pool.makeDue(*frame, VObserver::Cause::Changed, &parameter);
        }
    };
    for (const StrongPtr<ValuePool>& pool : poolsWithCell(parameter))
        announceIn(*pool->state());
    for (const StrongPtr<ValuePool>& pool : parameter.holders()) {
        if (pool->state() && pool->state()->m_variables.find(keyOf(&parameter)))
            announceIn(*pool->state());
    }
}

std::vector<StrongPtr<ValuePool>> PoolState::poolsWithCell(const VParameter& parameter)
{
    std::vector<StrongPtr<ValuePool>> pools;
    if (const VSlot* const home = homeSlot(parameter)) {
        ContainerWiring& wiring = home->container()->wiring();
        const std::lock_guard lock{wiring.framesLock};
        pools.reserve(wiring.frames.size());
        for (VFrame* frame : wiring.frames) {
            const std::uint32_t cell = home->place().cell;
            if (frame->hasCell(cell) && frame->cell(cell).value)
                pools.push_back(frame->m_pool->m_pool->root());
        }
    }
    std::erase(pools, nullptr);
    return pools;
}

void PoolState::announcePending()
{
    hasPending = false;
    std::vector<std::pair<VFrame*, std::uint32_t>> pending;
    forEachFrame([&](VFrame& frame) {
        forEachCell(*frame.m_container, [&](VSlot& slot) {
            const std::uint32_t cell = slot.place().cell;
            if (frame.hasCell(cell) && (frame.flags(cell) & VFrame::Unannounced) != 0)
                pending.emplace_back(&frame, cell);
        });
    });
    for (const auto& [frame, cell] : pending) {
        frame->prepareToAnnounce(cell);
        frame->flags(cell) = static_cast<std::uint16_t>(frame->flags(cell) & ~VFrame::Unannounced);
        frame->announce(cell);
    }
}

void PoolState::holdWhileUpdating(const StrongPtr<VManagedObjectBase>& object)
{
    const auto* const container = dynamic_cast<const VSlotContainer*>(object.get());
    if (!container)
        return;
    for (VFrame* frame : container->wiring().frames) {
        if (frame->m_isUpdating)
            frame->m_pool->heldObjects.push_back(object);
    }
}

// Due frames

void PoolState::makeDue(VFrame& frame, VObserver::Cause cause, const VParameter* changed) noexcept
{
    const bool wasDue = frame.m_isDue;
    makeDue(frame);
    if (observer && frame.m_isDue && !wasDue)
        observer->becameDue(*frame.m_object, cause, changed, precision(frame));
}

void PoolState::enqueueInLoop(VFrame& frame) noexcept
{
    if (frame.m_order <= loopPosition) {
        roundEnd = std::min(roundEnd, frame.m_container->wiring().orderAfter);
        nextRound.push(frame);
    } else {
        due.push(frame);
    }
}

void PoolState::sortDue() noexcept
{
    m_isOutOfOrder = false;
    due.sortAgain();
    nextRound.sortAgain();
}

// Frees a dead frame that was removed from its queue.
void PoolState::discard(VFrame& dead) noexcept
{
    dead.m_isDue = false;
    --m_deadCount;
    if (!dead.m_isUpdating)
        freeFrame(dead);
}

VFrame* PoolState::peekDue() noexcept
{
    sortIfOutOfOrder();
    while (!due.empty()) {
        VFrame& next = due.front();
        if (!next.m_isDead) [[likely]]
            return &next;
        discard(due.pop());
    }
    return nullptr;
}

bool PoolState::startRound() noexcept
{
    loopPosition = -1;
    roundEnd = ~std::uint32_t{0};
    if (nextRound.empty())
        return false;
    nextRound.moveTo(due);
    return true;
}

void PoolState::setPrecision(VFrame& frame, double precision)
{
    if (precision == 0 && !frame.m_hasPrecision)
        return;
    m_precisions[keyOf(&frame)] = precision;
    frame.m_hasPrecision = true;
}

double PoolState::precision(const VFrame& frame) noexcept
{
    return frame.m_hasPrecision ? *m_precisions.find(keyOf(&frame)) : 0;
}

void PoolState::giveBack(VFrame& frame, double precision) noexcept
{
    if (frame.m_isDead)
        return;
    try {
        if (!frame.m_hasPrecision) // else it was scheduled again meanwhile
            setPrecision(frame, precision);
    } catch (const std::bad_alloc&) {
        // The object becomes due all the same, with the default precision.
    }
    makeDue(frame);
}

double PoolState::takePrecision(VFrame& frame) noexcept
{
    if (!frame.m_hasPrecision) [[likely]]
        return 0;
    const double taken = *m_precisions.find(keyOf(&frame));
    m_precisions.erase(keyOf(&frame));
    frame.m_hasPrecision = false;
    return taken;
}

// Failures

void PoolState::keepOutside(VFrame& frame, const VSlot& slot)
{
    const std::uint32_t cell = slot.place().cell;
    if (!isHome(slot) || !frame.hasCell(cell) || !frame.cell(cell).value)
        return;
    const VParameter& parameter = *slot.parameter();
    Variable& entry = m_variables[keyOf(&parameter)];
    entry.value = StrongPtr<VValueBase>(frame.cell(cell).value);
    entry.isFromFailed = isResult(slot) && lacksResults(frame);
    parameter.noteHolder(*m_pool);
    if (!entry.isFromFailed)
        return;
    for (const VSlot* reader : parameter.readers()) {
        VFrame* const readerFrame = reader->container() ? findFrame(*reader->container()) : nullptr;
        if (!readerFrame || readerFrame == &frame)
            continue;
        if (readerFrame->hasCell(reader->place().cell))
            readerFrame->flags(reader->place().cell) |= VFrame::FromFailed;
    }
}

bool PoolState::isMissing(VFrame& frame, std::uint32_t cell) noexcept
{
    return frame.hasCell(cell) && (frame.flags(cell) & (VFrame::Missing | VFrame::FromFailed)) != 0;
}

// Returns the frame of the object whose result `slot` reads; null if it reads something else.
VFrame* PoolState::sourceOfResult(const VSlot& slot) noexcept
{
    const VSlot* const home = isHome(slot) ? nullptr : homeSlot(*slot.parameter());
    return home && isResult(*home) ? findFrame(*home->container()) : nullptr;
}

void PoolState::markMissing(VFrame& frame) noexcept
{
    frame.m_container->inputs().forEach([&](const VSlot& slot) {
        const std::uint32_t cell = slot.place().cell;
        if (!frame.hasCell(cell))
            return;
        const VFrame* const source = sourceOfResult(slot);
        const bool isMissing = source && lacksResults(*source);
        std::uint16_t& flags = frame.flags(cell);
        flags = static_cast<std::uint16_t>(isMissing ? flags | VFrame::Missing : flags & ~VFrame::Missing);
    });
}

bool PoolState::hasChanged(VFrame& frame, std::uint32_t cell) noexcept
{
    if (!frame.hasCell(cell) || !frame.cell(cell).value)
        return false;
    return frame.m_lastRun == 0 || (frame.flags(cell) & VFrame::Rewired) != 0
           || frame.cell(cell).value->age().stamp() >= frame.m_lastRun;
}

void PoolState::forgetResults(VFrame& frame)
{
    frame.m_container->outputs().forEach([&frame](const VSlot& output) {
        const std::uint32_t cell = output.place().cell;
        if (!isHome(output) || !frame.hasCell(cell) || !frame.cell(cell).value)
            return;
        const StrongPtr<VValueBase> initial = output.parameter()->newValue();
        frame.cell(cell).value->getValueFrom(WeakPtrImpl<VValueBase>(initial));
    });
    frame.m_lastRun = 0;
}

// A failed object does not wait for the members of its own loop, which wait for it.
bool PoolState::makesWait(const VFrame& source, const VFrame& reader) noexcept
{
    const bool isSameLoop = source.m_isInLoop && reader.m_isInLoop
                            && source.m_container->wiring().orderAfter == reader.m_container->wiring().orderAfter;
    return &source != &reader && !(reader.m_hasFailed && isSameLoop);
}

bool PoolState::readsMissing(VFrame& frame) noexcept
{
    if (frame.m_acceptsFailed)
        return false;
    bool isMissing = false;
    frame.m_container->inputs().forEach([&](const VSlot& slot) {
        if (isMissing || isHome(slot))
            return;
        const std::uint32_t cell = slot.place().cell;
        const VFrame* const source = sourceOfResult(slot);
        isMissing = (frame.hasCell(cell) && (frame.flags(cell) & VFrame::FromFailed) != 0)
                    || (source && makesWait(*source, frame) && lacksResults(*source));
    });
    return isMissing;
}

// Calls `function` with the frame of each object that reads an output of `frame` that is not
// valid after a failure.
template<class Function>
void PoolState::forEachReader(VFrame& frame, Function&& function) noexcept
{
    frame.m_container->outputs().forEach([&](const VSlot& slot) {
        if (!isResult(slot) || !isHome(slot))
            return;
        const PointerList<VSlot>& readers = slot.parameter()->readers();
        for (std::size_t i = 0; i < readers.size(); ++i) {
            VSlotContainer* const container = readers[i]->container();
            if (!container)
                continue;
            // A reader without a frame is checked when its frame is completed.
            VFrame* const reader = findFrame(*container);
            if (reader && reader != &frame)
                function(*reader);
        }
    });
}

void PoolState::setWaiting(VFrame& frame, bool isWaiting) noexcept
{
    if (frame.m_isWaiting == isWaiting)
        return;
    frame.m_isWaiting = isWaiting;
    isWaiting ? ++waitingCount : --waitingCount;
    if (!observer || !frame.m_object)
        return;
    if (isWaiting)
        observer->startedWaiting(*frame.m_object);
    else
        observer->stoppedWaiting(*frame.m_object);
}

// Marks everything that reads `start`, directly or indirectly, as waiting.
void PoolState::markWaiting(VFrame& start) noexcept
{
    try {
        std::vector<VFrame*> path{&start};
        while (!path.empty()) {
            VFrame& frame = *path.back();
            path.pop_back();
            forEachReader(frame, [&](VFrame& reader) {
                if (reader.m_isWaiting || reader.m_acceptsFailed || !makesWait(frame, reader))
                    return;
                path.push_back(&reader);
                setWaiting(reader, true);
            });
        }
    } catch (const std::bad_alloc&) {
        // Slower, but needs no memory.
        for (bool changed = true; changed;) {
            changed = false;
            forEachFrame([&](VFrame& frame) {
                if (!frame.m_isWaiting && readsMissing(frame)) {
                    setWaiting(frame, true);
                    changed = true;
                }
            });
        }
    }
}

void PoolState::fail(VFrame& frame) noexcept
{
    frame.m_hasFailed = true;
    markWaiting(frame);
}

void PoolState::keepReason(const VFrame& frame, const std::string& reason)
{
    m_reasons[&frame] = reason;
}

std::string PoolState::reasonOf(const VFrame& frame) const
{
    const auto reason = m_reasons.find(&frame);
    return reason == m_reasons.end() ? std::string{} : reason->second;
}

void PoolState::stop(const std::vector<VFrame*>& loop, const std::string& reason)
{
    for (VFrame* frame : loop) {
        frame->m_pass = pass & LastPass;
        frame->m_runs = MaximalRuns + 1;
        frame->m_isStopped = true;
        frame->m_hasFailed = true;
    }
    // Afterwards, because the members do not wait for each other if all have failed.
    for (VFrame* frame : loop)
        markWaiting(*frame);
    for (const VFrame* frame : loop)
        keepReason(*frame, reason);
}

// The members that did not run again have not failed themselves, and may have missed changes.
void PoolState::restartLoop(VFrame& start) noexcept
{
    start.m_isStopped = false;
    start.m_container->outputs().forEach([&](const VSlot& slot) {
        for (const VSlot* reader : slot.parameter()->readers()) {
            VFrame* const member = reader->container() ? findFrame(*reader->container()) : nullptr;
            if (member && member->m_isStopped)
                makeDue(*member, VObserver::Cause::Changed);
        }
    });
}

void PoolState::recover(VFrame& frame) noexcept
{
    if (frame.m_isStopped)
        restartLoop(frame);
    frame.m_hasFailed = false;
    m_reasons.erase(&frame);
    if (frame.m_isWaiting)
        return; // its readers keep waiting
    release(frame);
}

// Makes a frame due that was due while it waited.
void PoolState::runIfMissed(VFrame& frame) noexcept
{
    if (!frame.m_missedRun)
        return;
    frame.m_missedRun = false;
    makeDue(frame, VObserver::Cause::Changed);
}

// Stops the waiting of everything that waits only for `start`.
void PoolState::release(VFrame& start) noexcept
{
    std::vector<VFrame*> freed;
    const auto collect = [&](VFrame& reader) {
        if (!reader.m_isWaiting)
            return;
        freed.push_back(&reader);
        reader.m_isWaiting = false;
    };
    bool hasMemory = true;
    try {
        forEachReader(start, collect);
        for (std::size_t i = 0; i < freed.size(); ++i) {
            if (!freed[i]->m_hasFailed)
                forEachReader(*freed[i], collect);
        }
    } catch (const std::bad_alloc&) {
        hasMemory = false;
        forEachFrame([](VFrame& frame) { frame.m_isWaiting = false; });
        for (bool changed = true; changed;) {
            changed = false;
            forEachFrame([&](VFrame& frame) {
                if (!frame.m_isWaiting && readsMissing(frame)) {
                    frame.m_isWaiting = true;
                    changed = true;
                }
            });
        }
    }
    if (!hasMemory) {
        waitingCount = 0;
        forEachFrame([&](VFrame& frame) {
            waitingCount += frame.m_isWaiting;
            if (!frame.m_isWaiting)
                runIfMissed(frame);
        });
        return;
    }
    // Some of them also wait for something else and keep their readers waiting.
    waitingCount -= freed.size();
    for (VFrame* frame : freed) {
        if (!frame->m_isWaiting && readsMissing(*frame)) {
            frame->m_isWaiting = true;
            ++waitingCount;
            markWaiting(*frame);
        }
    }
    for (VFrame* frame : freed) {
        if (frame->m_isWaiting)
            continue;
        if (observer)
            observer->stoppedWaiting(*frame->m_object);
        runIfMissed(*frame);
    }
}

std::vector<VObject*> PoolState::failedSources(VFrame& start)
{
    const auto lock = lockTables();
    std::vector<VObject*> failed;
    if (!start.m_isWaiting)
        return failed;
    std::vector<VFrame*> path{&start};
    std::unordered_set<const VFrame*> seen{&start};
    for (std::size_t i = 0; i < path.size(); ++i) {
        path[i]->m_container->inputs().forEach([&](const VSlot& slot) {
            VFrame* const source = sourceOfResult(slot);
            if (!source || !lacksResults(*source) || !seen.insert(source).second)
                return;
            if (source->m_hasFailed)
                failed.push_back(source->m_object);
            if (source->m_isWaiting)
                path.push_back(source);
        });
    }
    return failed;
}

std::vector<VFrame*> PoolState::failedFrames()
{
    const auto lock = lockTables();
    std::vector<VFrame*> failed;
    forEachFrame([&failed](VFrame& frame) {
        if (frame.m_hasFailed && frame.m_object)
            failed.push_back(&frame);
    });
    std::ranges::sort(failed, {}, [](const VFrame* frame) {
        return std::pair{frame->m_order, frame->m_container->wiring().index};
    });
    return failed;
}

std::size_t PoolState::countWaiting(VFrame& start)
{
    const auto lock = lockTables();
    std::vector<VFrame*> waiting{&start};
    std::unordered_set<const VFrame*> seen{&start};
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        VFrame& source = *waiting[i];
        forEachReader(source, [&](VFrame& reader) {
            if (reader.m_isWaiting && makesWait(source, reader) && seen.insert(&reader).second)
                waiting.push_back(&reader);
        });
    }
    return waiting.size() - 1;
}

void PoolState::updateWaiting(VFrame& frame) noexcept
{
    const bool isMissing = readsMissing(frame);
    if (isMissing == frame.m_isWaiting)
        return;
    setWaiting(frame, isMissing);
    if (isMissing) {
        markWaiting(frame);
        return;
    }
    runIfMissed(frame);
    if (!frame.m_hasFailed)
        release(frame);
}

} // namespace Detail

} // namespace Orla
