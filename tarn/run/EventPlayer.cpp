#include <tarn/run/EventPlayer.hpp>

#include <typeinfo>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VInteractionEvent;

} // namespace

EventPlayer EventPlayer::find()
{
    EventPlayer player;
    Orla::VObject::forEachOutput(
        typeid(VInteractionEvent),
        [&player](const StrongPtr<Orla::VObject>&, const StrongPtr<Orla::VSlot>& output) {
            player.m_output = output;
            return false;
        },
        "unique");
    return player;
}

void EventPlayer::play(const ScriptedEvent& event, const StrongPtr<Orla::ValuePool>& pool) const
{
    const StrongPtr<Orla::VValueBase> value = m_output->getLocalValue(pool);
    auto* const typed = Orla::VTypedValueBase<VInteractionEvent>::cast(value.get());
    if (!typed)
        return;
    VInteractionEvent before;
    typed->getValue(before);

    VInteractionEvent now{event.kind, before.grabber};
    const bool hasPlace = event.kind != VInteractionEvent::KeyPress && event.kind != VInteractionEvent::KeyRelease;
    now.x = hasPlace ? event.x : before.x;
    now.y = hasPlace ? event.y : before.y;
    now.wheel = event.wheel;
    now.time = before.time + 1;
    now.device = 0;
    now.modifiers = event.modifiers;
    now.button = event.button;
    now.keyText = event.keyText;
    now.armingKeyText = event.armingKeyText;
    typed->setValue(now);
    m_output->parameter()->notifyValueChange(value, pool);
}

} // namespace Tarn
