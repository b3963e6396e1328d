#include <fathom/VInteractionEvent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

namespace Tarn {

namespace {

using Orla::describe;
using Orla::StrongPtr;
using Orla::VInteractionEvent;

/// Provides pointer and keyboard events to all interactive objects of its network. The host
/// writes the output. All events share one grabber, through which the objects agree on the
/// receiver.
class InteractionSource final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override { return true; }

private:
    Orla::VOutput<VInteractionEvent> m_event{
        this, "event", VInteractionEvent{1, Loam::makeStrong<VInteractionEvent::InteractionGrabber>("interaction")},
        describe("What the user does with pointer and keyboard.")};
};

const Orla::VObjectType<InteractionSource> interactionSourceType{
    "InteractionSource",
    Orla::describeType("Provides the events of pointer and keyboard to all interactive objects.")
        .category("Interaction"),
    Loam::makeStrong<Orla::VCreationPreferences>("default", "unique"), &typeid(VInteractionEvent)};

} // namespace

} // namespace Tarn
