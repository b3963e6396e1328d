#include <fathom/VInteractionEvent.hpp>

#include <trellis/VTypeLabel.hpp>

#include <utility>

namespace Orla {

VInteractionEvent::InteractionGrabber::InteractionGrabber(const std::string& name) : m_name{name}
{
}

VInteractionEvent::InteractionGrabber::InteractionGrabber(InteractionGrabber& other, const std::string& name)
    : m_name{name}
{
    const std::lock_guard lock{other.m_mutex};
    m_stack = other.m_stack;
}

VInteractionEvent::InteractionGrabber::~InteractionGrabber() = default;

VInteractionEvent::VInteractionEvent() : VInteractionEvent{1, nullptr}
{
}

VInteractionEvent::VInteractionEvent(unsigned long long theKind, const StrongPtr<InteractionGrabber>& theGrabber)
    : x{-1}, y{-1}, pressure{0}, wheel{0}, time{0}, kind{theKind}, modifiers{0}, clicks{0}, grabber{theGrabber}
{
}

VInteractionEvent::~VInteractionEvent() = default;

// Calls `function` with the current holder's entry, or null if no living object holds the
// grab. Drops dead entries in front of it.
template<class Function>
bool VInteractionEvent::InteractionGrabber::withHolder(Function&& function)
{
    // Destroyed after unlocking, because the data of a grab may be anything.
    std::list<GrabReason> dropped;
    const std::lock_guard lock{m_mutex};
    while (!m_stack.empty() && m_stack.front().object.expired())
        dropped.splice(dropped.begin(), m_stack, m_stack.begin());
    return function(m_stack.empty() ? nullptr : &m_stack.front());
}

void VInteractionEvent::grab(const WeakPtrImpl<VObject>& obj, GrabReason::Type type, int value,
                             const StrongPtr<ChunkBase>& data)
{
    if (obj.expired() || !grabber)
        return;
    StrongPtr<ChunkBase> attached = data; // becomes the replaced data, released after unlocking
    const std::lock_guard lock{grabber->m_mutex};
    std::list<GrabReason>& stack = grabber->m_stack;
    if (stack.empty() || !(stack.front().object == obj))
        stack.emplace_front().object = obj;
    GrabReason& reason = stack.front();
    reason.type = type;
    reason.value = value;
    std::swap(reason.data, attached);
}

void VInteractionEvent::ungrab(const WeakPtrImpl<VObject>& obj)
{
    if (obj.expired() || !grabber)
        return;
    std::list<GrabReason> ended;
    const std::lock_guard lock{grabber->m_mutex};
    std::list<GrabReason>& stack = grabber->m_stack;
    if (!stack.empty() && stack.front().object == obj)
        ended.splice(ended.begin(), stack, stack.begin());
}

bool VInteractionEvent::mayuse(const WeakPtrImpl<VObject>& obj) const
{
    return !grabber || grabber->withHolder([&](const GrabReason* holder) {
        return !holder || holder->object.referenceBlock() == obj.referenceBlock();
    });
}

bool VInteractionEvent::isMine(const WeakPtrImpl<VObject>& obj) const
{
    return grabber && grabber->withHolder([&](const GrabReason* holder) {
        return holder && holder->object.referenceBlock() == obj.referenceBlock();
    });
}

std::string VValueTrait<VInteractionEvent>::Text(const VInteractionEvent& event)
{
    return "(" + VValueTrait<int>::Text(event.x) + "," + VValueTrait<int>::Text(event.y) + ")\n";
}

bool VValueTrait<VInteractionEvent>::setValueFromText(VInteractionEvent&, const std::string&)
{
    return false;
}

Interactive::Interactive(const char* slotName, int expertLevel)
    : m_interaction{this, slotName, VInteractionEvent{}, expertLevel}
{
    if (m_interaction.slot())
        m_interaction.slot()->describe(describe("What the user does with pointer and keyboard."));
    attachUniqueObject(m_interaction.slot(), nullptr, true);
}

Interactive::~Interactive() = default;

template class FATHOM_TEMPLATE VTypedValueBase<VInteractionEvent>;
template class FATHOM_TEMPLATE VValue<VInteractionEvent>;
template class FATHOM_TEMPLATE TypedValueCreator<VInteractionEvent>;
template class FATHOM_TEMPLATE VValueParameter<VInteractionEvent>;
template class FATHOM_TEMPLATE TypedSlot<VInteractionEvent>;

namespace {

const VTypeLabel interactionEventLabel{typeid(VInteractionEvent), "event"};

} // namespace

} // namespace Orla
