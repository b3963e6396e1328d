#include <trellis/VSlot.hpp>

#include <trellis/NetworkOrder.hpp>
#include <trellis/VSlotContainer.hpp>
#include <trellis/VValueComponents.hpp>

#include <algorithm>

namespace Orla {

VSlot::VSlot(VSlotContainer& container, const std::string& name, int expertLevel,
             const StrongPtr<VParameter>& parameter, std::uint8_t flags)
    : m_container{&container}
    , m_parameter{parameter}
    , m_flags{flags}
    , m_expertLevel{expertLevel}
    , m_ownParameter{parameter}
    , m_name{name}
{
    const StrongPtr<VSlotContainer> owner = parameter->owner();
    m_ownsParameter = !owner || owner.get() == m_container;
}

VSlot::~VSlot()
{
    leave();
}

const std::string& VSlot::member() const noexcept
{
    static const std::string none;
    return m_member ? *m_member : none;
}

bool VSlot::setInitialText(const std::string& text)
{
    const StrongPtr<VValueBase> value = m_ownParameter->newValue();
    return value && value->setValueFromText(text) && m_ownParameter->setGlobalValue(value, {});
}

void VSlot::refersTo(const StrongPtr<VParameter>& parameter, const std::string& member, const VSlot* leader)
{
    m_leader = leader;
    struct Change {
        StrongPtr<VSlot> slot;
        std::string member;
    };
    std::vector<Change> changes{{WeakPtrImpl<VSlot>(this).lock(), member}};
    while (!changes.empty()) {
        const Change change = std::move(changes.back());
        changes.pop_back();
        VSlot& slot = *change.slot;
        const std::string oldMember = slot.member();
        if (slot.m_parameter == parameter && oldMember == change.member)
            continue;
        slot.leave();
        slot.m_parameter = parameter;
        slot.m_member = change.member.empty() ? nullptr : std::make_unique<const std::string>(change.member);
        slot.join();
        if (VSlotContainer* container = slot.m_container) {
            container->slotsChanged();
            NetworkOrder::inputChanged(*container, &slot);
            container->becomeDueEverywhere();
        }
        std::erase_if(slot.m_followers, [&](const WeakPtrImpl<VSlot>& entry) {
            const StrongPtr<VSlot> follower = entry.lock();
            // One that was connected elsewhere since then has gone its own way.
            if (!follower || follower->m_leader != &slot || !follower->m_container)
                return true;
            // Slots may follow each other in a ring, which ends where it began.
            if (follower.get() != this)
                changes.push_back({follower, VValueComponents::join(change.member,
                                                                    VValueComponents::rest(follower->member(), oldMember))});
            return false;
        });
    }
}

void VSlot::join()
{
    // An object that reads an output of its own is a loop like any other.
    const StrongPtr<VSlotContainer> owner = m_parameter->owner();
    m_readsOthers = owner && (owner.get() != m_container || !m_parameter->source().expired());
    m_readerIndex = m_parameter->m_readers.size();
    m_parameter->m_readers.push_back(this);
}

void VSlot::leave() noexcept
{
    if (m_readerIndex == NotReading)
        return;
    std::vector<VSlot*>& readers = m_parameter->m_readers;
    readers[m_readerIndex] = readers.back();
    readers[m_readerIndex]->m_readerIndex = m_readerIndex;
    readers.pop_back();
    m_readerIndex = NotReading;
}

bool VSlotSet::add(const StrongPtr<VSlot>& slot)
{
    if (!slot || find(slot->name()))
        return false;
    m_slots.push_back(slot);
    if (m_index)
        m_index->emplace(slot->name(), m_slots.size() - 1);
    return true;
}

bool VSlotSet::remove(const VSlot& slot)
{
    const auto found =
        std::ranges::find_if(m_slots, [&slot](const StrongPtr<VSlot>& entry) { return entry.get() == &slot; });
    if (found == m_slots.end())
        return false;
    m_index.reset();
    m_slots.erase(found);
    return true;
}

const StrongPtr<VSlot>& VSlotSet::find(const std::string& name) const
{
    static const StrongPtr<VSlot> nothing;
    constexpr std::size_t Few = 16;
    if (m_slots.size() <= Few) {
        const auto found = std::ranges::find(m_slots, name, [](const StrongPtr<VSlot>& slot) -> const std::string& {
            return slot->name();
        });
        return found == m_slots.end() ? nothing : *found;
    }
    if (!m_index)
        buildIndex();
    const auto found = m_index->find(name);
    return found == m_index->end() ? nothing : m_slots[found->second];
}

void VSlotSet::buildIndex() const
{
    m_index = std::make_unique<Index>();
    for (std::size_t i = 0; i < m_slots.size(); ++i)
        m_index->emplace(m_slots[i]->name(), i);
}

} // namespace Orla
