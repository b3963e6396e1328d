#include <fathom/VInteractionEvent.hpp>

namespace Orla {

VInteractionEvent::InteractionGrabber::InteractionGrabber(const std::string& name) : m_name{name}
{
}

VInteractionEvent::InteractionGrabber::InteractionGrabber(InteractionGrabber& other, const std::string& name)
    : m_stack{other.m_stack}, m_name{name}
{
}

VInteractionEvent::InteractionGrabber::~InteractionGrabber() = default;

VInteractionEvent::VInteractionEvent() : VInteractionEvent{1, nullptr}
{
}

VInteractionEvent::VInteractionEvent(unsigned long long theKind, const StrongPtr<InteractionGrabber>& theGrabber)
    : x{-1}
    , y{-1}
    , pressure{0}
    , wheel{0}
    , time{0}
    , kind{theKind}
    , modifiers{0}
    , clicks{0}
    , grabber{theGrabber}
{
}

VInteractionEvent::~VInteractionEvent() = default;

void VInteractionEvent::grab(const WeakPtrImpl<VObject>& obj, GrabReason::Type type, int value,
                             const StrongPtr<ChunkBase>& data)
{
    if (obj.expired() || !grabber)
        return;
    std::list<GrabReason>& stack = grabber->m_stack;
    if (stack.empty() || !(stack.front().object == obj))
        stack.emplace_front().object = obj;
    GrabReason& reason = stack.front();
    reason.type = type;
    reason.value = value;
    reason.data = data;
}

void VInteractionEvent::ungrab(const WeakPtrImpl<VObject>& obj)
{
    if (obj.expired() || !grabber || grabber->m_stack.empty())
        return;
    if (grabber->m_stack.front().object == obj)
        grabber->m_stack.pop_front();
}

// The first living entry, with the dead ones before it dropped; null if nobody
// holds the grab.
const VInteractionEvent::GrabReason* VInteractionEvent::holder() const
{
    if (!grabber)
        return nullptr;
    std::list<GrabReason>& stack = grabber->m_stack;
    while (!stack.empty() && stack.front().object.expired())
        stack.pop_front();
    return stack.empty() ? nullptr : &stack.front();
}

bool VInteractionEvent::mayuse(const WeakPtrImpl<VObject>& obj) const
{
    // `obj` may stand in an entry that is dropped.
    const auto* const asking = obj.referenceBlock();
    const GrabReason* reason = holder();
    return !reason || reason->object.referenceBlock() == asking;
}

bool VInteractionEvent::isMine(const WeakPtrImpl<VObject>& obj) const
{
    const auto* const asking = obj.referenceBlock();
    const GrabReason* reason = holder();
    return reason && reason->object.referenceBlock() == asking;
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
    attachUniqueObject(m_interaction.slot(), nullptr, true);
}

Interactive::~Interactive() = default;

template class FATHOM_TEMPLATE VTypedValueBase<VInteractionEvent>;
template class FATHOM_TEMPLATE VValue<VInteractionEvent>;
template class FATHOM_TEMPLATE TypedValueCreator<VInteractionEvent>;
template class FATHOM_TEMPLATE VValueParameter<VInteractionEvent>;
template class FATHOM_TEMPLATE TypedSlot<VInteractionEvent>;

} // namespace Orla
