#include <fathom/VInteractionEvent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VInteractionEvent;

/// Hands the pointer's and the keyboard's events to every interactive object of
/// the process. Whoever has the devices writes the output; all events share one
/// grabber, so that the objects can agree whose turn it is.
class InteractionSource final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override { return true; }

private:
    Orla::VOutput<VInteractionEvent> m_event{
        this, "event", VInteractionEvent{1, Loam::makeStrong<VInteractionEvent::InteractionGrabber>("interaction")}};
};

const Orla::VObjectType<InteractionSource> interactionSourceType{
    "InteractionSource", Loam::makeStrong<Orla::VCreationPreferences>("default", "unique"), &typeid(VInteractionEvent)};

} // namespace

} // namespace Tarn
