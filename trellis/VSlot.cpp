#include <trellis/VSlot.hpp>

#include <trellis/detail/FrameHooks.hpp>
#include <trellis/detail/PoolState.hpp>
#include <trellis/detail/Wiring.hpp>

#include <trellis/VSlotContainer.hpp>
#include <trellis/VSlotDescription.hpp>

#include <algorithm>

namespace Orla {

namespace {

// Up to this size, a linear search is faster than a table.
constexpr std::size_t FewSlots = 16;

} // namespace

VSlot::VSlot(VSlotContainer& container, const std::string& name, int expertLevel,
             const StrongPtr<VParameter>& parameter, std::uint8_t flags)
    : m_container{&container}
    , m_parameter{parameter}
    , m_ownParameter{parameter}
    , m_name{name == parameter->Name() ? nullptr : std::make_unique<const std::string>(name)}
    , m_expertLevel{expertLevel}
    , m_flags{flags}
{
    const StrongPtr<VSlotContainer> owner = parameter->owner();
    m_ownsParameter = !owner || owner.get() == m_container;
}

VSlot::~VSlot()
{
    Detail::Wiring::release(*this);
}

const std::string& VSlot::name() const noexcept
{
    return m_name ? *m_name : m_ownParameter->Name();
}

const std::string& VSlot::member() const noexcept
{
    static const std::string none;
    return m_link ? m_link->member : none;
}

const VSlotDescription* VSlot::description() const noexcept
{
    const VSlot* const declaring = m_ownParameter->slot();
    const std::uint32_t number = m_description != 0 || !declaring ? m_description : declaring->m_description;
    if (const VSlotDescription* const own = VSlotDescription::withNumber(number))
        return own;
    return dynamic_cast<const VSlotDescription*>(m_ownParameter->creationPreferences().get());
}

void VSlot::describe(const VCheckedDescription& description)
{
    m_description = VSlotDescription::of(description.parts())->number();
}

StrongPtr<VValueBase> VSlot::getValueBase(const StrongPtr<ValuePool>& pool) const
{
    if (!pool)
        return nullptr;
    if (VFrame* const frame = VFrame::of(pool->runningFrame(), place())) {
        if (VValueBase* const value = frame->cell(m_cell).value)
            return StrongPtr<VValueBase>(value);
    }
    Detail::PoolState* const state = pool->state();
    return state ? state->find(*this) : nullptr;
}

StrongPtr<VValueBase> VSlot::getLocalValue(const StrongPtr<ValuePool>& pool) const
{
    if (StrongPtr<VValueBase> value = getValueBase(pool))
        return value;
    if (!pool || !pool->root())
        return nullptr;
    return pool->stateOrNew().make(*this);
}

bool VSlot::set(const StrongPtr<ValuePool>& pool, const std::string& text) const
{
    const StrongPtr<VValueBase> value = getLocalValue(pool);
    // Parse into a copy first: a refused text may leave a value partly changed.
    const StrongPtr<VValueBase> trial = value ? value->copy() : nullptr;
    if (!trial || !trial->setValueFromText(text) || !value->getValueFrom(WeakPtrImpl<VValueBase>(trial)))
        return false;
    m_parameter->notifyValueChange(value, pool, member());
    return true;
}

std::optional<std::string> VSlot::text(const StrongPtr<ValuePool>& pool) const
{
    const StrongPtr<VValueBase> value = getValueBase(pool);
    return value ? std::optional(value->Text()) : std::nullopt;
}

bool VSlot::setInitialText(const std::string& text)
{
    const StrongPtr<VValueBase> value = m_ownParameter->newValue();
    return value && value->setValueFromText(text) && m_ownParameter->setGlobalValue(value, {});
}

StrongPtr<VValueBase> VSlot::componentOf(VValueBase& value) const
{
    StrongPtr<VValueBase> part = WeakPtrImpl<VValueBase>(&value).lock();
    if (m_link) {
        for (const auto make : m_link->accessor)
            part = part ? make(*part) : nullptr;
    }
    return part;
}

void VSlot::changeFlags(std::uint8_t flags) noexcept
{
    const auto changed = static_cast<std::uint8_t>(m_flags ^ flags);
    m_flags = flags;
    // An input that the object itself declares may be read through a handle that remembers the
    // cell.
    if ((changed & AddedLater) != 0 && !hasFlag(AddedLater))
        m_keepsCell = true;
    if ((changed & Passive) != 0)
        Detail::FrameHooks::readersChanged(*m_parameter);
    if ((changed & StaysValid) != 0 && m_container)
        Detail::FrameHooks::switchesChanged(*m_container);
}

bool VSlotSet::add(const StrongPtr<VSlot>& slot)
{
    if (!slot || find(slot->name()))
        return false;
    m_slots.push_back(slot);
    try {
        if (!m_index && m_slots.size() > FewSlots) {
            closeAllGaps();
            auto index = std::make_unique<Index>();
            for (std::size_t i = 0; i < m_slots.size(); ++i)
                index->emplace(m_slots[i]->name(), i);
            m_index = std::move(index);
        } else if (m_index) {
            m_index->emplace(slot->name(), m_slots.size() - 1);
        }
    } catch (...) {
        m_slots.pop_back();
        throw;
    }
    return true;
}

bool VSlotSet::remove(const VSlot& slot) noexcept
{
    const std::size_t position = positionOf(slot.name());
    if (position == Nowhere || m_slots[position].get() != &slot)
        return false;
    if (m_index)
        m_index->erase(slot.name());
    ++m_gaps;
    // Released last, because it may be the last pointer to the slot.
    const StrongPtr<VSlot> released = std::move(m_slots[position]);
    return true;
}

void VSlotSet::closeAllGaps() const noexcept
{
    if (m_gaps == 0)
        return;
    std::erase(m_slots, nullptr);
    m_gaps = 0;
    if (!m_index)
        return;
    for (std::size_t i = 0; i < m_slots.size(); ++i)
        m_index->find(m_slots[i]->name())->second = i;
}

std::size_t VSlotSet::positionOf(std::string_view name) const
{
    if (m_index) {
        const auto found = m_index->find(name);
        return found == m_index->end() ? Nowhere : found->second;
    }
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        if (m_slots[i] && m_slots[i]->name() == name)
            return i;
    }
    return Nowhere;
}

const StrongPtr<VSlot>& VSlotSet::find(const std::string& name) const
{
    static const StrongPtr<VSlot> nothing;
    const std::size_t position = positionOf(name);
    return position == Nowhere ? nothing : m_slots[position];
}

} // namespace Orla
