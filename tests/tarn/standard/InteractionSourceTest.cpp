#include <fathom/VInteractionEvent.hpp>

#include "tarn/LoadedLibraries.hpp"

namespace InteractionSourceTest {

using Orla::StrongPtr;
using Orla::VInteractionEvent;
using Orla::VObject;

namespace {

class InteractionSourceTest : public LoadedLibraries {
protected:
    static VInteractionEvent eventOf(const StrongPtr<VObject>& listener, const StrongPtr<Orla::ValuePool>& pool)
    {
        VInteractionEvent event;
        const StrongPtr<Orla::VTypedValueBase<VInteractionEvent>> value{
            listener->findSlot("event")->getLocalValue(pool)};
        EXPECT_TRUE(value->getValue(event));
        return event;
    }
};

} // namespace

TEST_F(InteractionSourceTest, isCreatedOnceForAllInteractiveObjects)
{
    const StrongPtr<VObject> one = VObject::createObject("Listener", "one");
    const StrongPtr<VObject> other = VObject::createObject("Listener", "other");
    EXPECT_EQ(Orla::VManagedObject::count(), 3u);
    EXPECT_TRUE(Orla::VManagedObject::find("InteractionSource"));
    EXPECT_EQ(one->findSlot("event")->parameter(), other->findSlot("event")->parameter());
}

TEST_F(InteractionSourceTest, beginsWithAnEventOfKindNothing)
{
    const auto pool = Loam::makeStrong<Orla::ValuePool>();
    EXPECT_EQ(eventOf(VObject::createObject("Listener", "one"), pool).kind, VInteractionEvent::Nothing);
}

TEST_F(InteractionSourceTest, letsOneObjectGrabTheEventsOfAll)
{
    const auto pool = Loam::makeStrong<Orla::ValuePool>();
    const StrongPtr<VObject> one = VObject::createObject("Listener", "one");
    const StrongPtr<VObject> other = VObject::createObject("Listener", "other");
    VInteractionEvent event = eventOf(one, pool);
    ASSERT_TRUE(event.grabber);
    event.grab(one, VInteractionEvent::GrabReason::Pointer, 1, nullptr);
    EXPECT_TRUE(eventOf(other, pool).mayuse(one));
    EXPECT_FALSE(eventOf(other, pool).mayuse(other));
    event.ungrab(one);
    EXPECT_TRUE(eventOf(one, pool).mayuse(other));
}

} // namespace InteractionSourceTest
