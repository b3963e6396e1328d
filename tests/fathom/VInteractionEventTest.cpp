#include <fathom/VInteractionEvent.hpp> // first: the header must be self-contained

#include "support/Threads.hpp"

#include <fathom/VOutput.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VScheduler.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace VInteractionEventTest {

using namespace Orla;

using Grabber = VInteractionEvent::InteractionGrabber;
using GrabReason = VInteractionEvent::GrabReason;

static_assert(std::is_same_v<std::underlying_type_t<GrabReason::Type>, int>);

namespace {

class Player final : public VObject {
public:
    explicit Player(const std::string& name) : VObject{name, 0, nullptr} {}
    bool update(VRequest&, double) override { return true; }
};

class GrabStack : public testing::Test {
protected:
    std::vector<std::string> holders() const
    {
        std::vector<std::string> names;
        for (const GrabReason& reason : grabber->stack()) {
            const StrongPtr<VObject> object = reason.object.lock();
            names.push_back(object ? object->Name() : "dead");
        }
        return names;
    }

    void grab(const StrongPtr<Player>& player) { event.grab(player, GrabReason::Pointer, 0, nullptr); }

    StrongPtr<Grabber> grabber = Loam::makeStrong<Grabber>("stream");
    VInteractionEvent event{7, grabber};
    StrongPtr<Player> a = Loam::makeStrong<Player>("a");
    StrongPtr<Player> b = Loam::makeStrong<Player>("b");
};

using Names = std::vector<std::string>;

TEST(VInteractionEvent, startsOutsideOfEveryWindowWithNothingPressed)
{
    const VInteractionEvent event;
    EXPECT_EQ(event.kind, 1u);
    EXPECT_FALSE(event.grabber);
    EXPECT_EQ(event.x, -1);
    EXPECT_EQ(event.y, -1);
    EXPECT_EQ(event.pressure, 0.0);
    EXPECT_EQ(event.wheel, 0.0);
    EXPECT_EQ(event.time, 0.0);
    EXPECT_EQ(event.modifiers, 0);
    EXPECT_EQ(event.clicks, 0);
    EXPECT_EQ(event.keyText, "");
    EXPECT_EQ(event.armingKeyText, "");
    EXPECT_EQ(VInteractionEvent(42, nullptr).kind, 42u);
}

TEST(VInteractionEvent, copiesEveryFieldAndSharesTheGrabber)
{
    VInteractionEvent event{3, Loam::makeStrong<Grabber>("stream")};
    event.x = 1;
    event.y = 2;
    event.pressure = 0.25;
    event.wheel = -1;
    event.time = 99;
    event.device = 0xFFFF'FFFF'FFFFu;
    event.modifiers = 4;
    event.button = 5;
    event.keyText = "k";
    event.armingKeyText = "K";
    event.clicks = 2;

    const VInteractionEvent constructed(event);
    VInteractionEvent assigned;
    assigned = event;
    for (const VInteractionEvent& copy : {constructed, assigned}) {
        EXPECT_EQ(copy.x, 1);
        EXPECT_EQ(copy.y, 2);
        EXPECT_EQ(copy.pressure, 0.25);
        EXPECT_EQ(copy.wheel, -1.0);
        EXPECT_EQ(copy.time, 99.0);
        EXPECT_EQ(copy.device, 0xFFFF'FFFF'FFFFu);
        EXPECT_EQ(copy.kind, 3u);
        EXPECT_EQ(copy.modifiers, 4);
        EXPECT_EQ(copy.button, 5);
        EXPECT_EQ(copy.keyText, "k");
        EXPECT_EQ(copy.armingKeyText, "K");
        EXPECT_EQ(copy.clicks, 2);
        EXPECT_EQ(copy.grabber, event.grabber);
    }
}

TEST(VInteractionEvent, isWrittenAsItsPositionAndNeverRead)
{
    using Trait = VValueTrait<VInteractionEvent>;
    VInteractionEvent event;
    EXPECT_EQ(Trait::Text(event), "(-1,-1)\n");
    event.x = 2147483647;
    event.y = -2147483647 - 1;
    EXPECT_EQ(Trait::Text(event), "(2147483647,-2147483648)\n");
    EXPECT_FALSE(Trait::setValueFromText(event, "(1,2)\n"));
    EXPECT_EQ(event.x, 2147483647);
}

TEST(VInteractionEvent, isNeverEqualSoRepeatedEventsAreDelivered)
{
    const VInteractionEvent event;
    EXPECT_FALSE(event == event);

    const StrongPtr<VValueBase> value(new VValue<VInteractionEvent>(event));
    EXPECT_TRUE(value->isDifferentFrom(value));
}

TEST(VInteractionEvent, isRegisteredAsValueAndInput)
{
    bool ok = true;
    const StrongPtr<VValueBase> value = VValueCreator::createValue("VInteractionEvent", "(1,2)", ok);
    ASSERT_TRUE(value);
    EXPECT_FALSE(ok);
    EXPECT_EQ(value->Text(), "(-1,-1)\n");
    EXPECT_TRUE(TypedSlotCreator::find(typeid(VInteractionEvent)));
}

TEST(VInteractionEvent, isFreeForAllAndHasNoHolderWithoutAGrabber)
{
    const StrongPtr<Player> player = Loam::makeStrong<Player>("player");
    VInteractionEvent event;
    event.grab(player, GrabReason::Pointer, 1, nullptr);
    EXPECT_TRUE(event.mayuse(player));
    EXPECT_TRUE(event.mayuse(nullptr));
    EXPECT_FALSE(event.isMine(player));
    event.ungrab(player);
    EXPECT_FALSE(event.grabber);
}

TEST_F(GrabStack, isFreeForAllWhileItIsEmpty)
{
    EXPECT_TRUE(event.mayuse(a));
    EXPECT_FALSE(event.isMine(a));
    event.ungrab(a);
    EXPECT_EQ(holders(), Names{});
}

TEST_F(GrabStack, putsASecondGrabOnTopOfTheFirst)
{
    grab(a);
    grab(b);
    EXPECT_EQ(holders(), (Names{"b", "a"}));
    EXPECT_TRUE(event.isMine(b));
    EXPECT_TRUE(event.mayuse(b));
    EXPECT_FALSE(event.isMine(a));
    EXPECT_FALSE(event.mayuse(a));

    event.ungrab(a);
    EXPECT_EQ(holders(), (Names{"b", "a"})) << "only the current holder can release the grab";
    event.ungrab(b);
    EXPECT_TRUE(event.isMine(a));
    event.ungrab(a);
    EXPECT_EQ(holders(), Names{});
}

TEST_F(GrabStack, replacesTheReasonOfTheCurrentHolder)
{
    const StrongPtr<ChunkBase> first = Loam::makeStrong<Loam::Chunk<double>>(1u, 1.0);
    const StrongPtr<ChunkBase> second = Loam::makeStrong<Loam::Chunk<double>>(1u, 2.0);
    event.grab(a, GrabReason::Pointer, 1, first);
    event.grab(a, GrabReason::Keyboard, 2, second);
    ASSERT_EQ(grabber->stack().size(), 1u);
    EXPECT_EQ(grabber->stack().front().type, GrabReason::Keyboard);
    event.grab(a, static_cast<GrabReason::Type>(-12345), 2, second);
    EXPECT_EQ(grabber->stack().front().type, -12345) << "a reason without a name";
    EXPECT_EQ(grabber->stack().front().value, 2);
    EXPECT_EQ(grabber->stack().front().data, second);
}

TEST_F(GrabStack, acceptsAnotherGrabByAHolderFurtherDown)
{
    grab(a);
    grab(b);
    grab(a);
    EXPECT_EQ(holders(), (Names{"a", "b", "a"}));
}

TEST_F(GrabStack, ignoresGrabsByNullOrDestroyedObjects)
{
    grab(a);
    event.grab(nullptr, GrabReason::Pointer, 0, nullptr);
    const WeakPtrImpl<VObject> dead = b;
    b.reset();
    event.grab(dead, GrabReason::Pointer, 0, nullptr);
    event.ungrab(dead);
    event.ungrab(nullptr);
    EXPECT_EQ(holders(), Names{"a"});
}

TEST_F(GrabStack, isFreeAgainWhenItsHolderIsDestroyed)
{
    grab(a);
    a.reset();
    EXPECT_TRUE(event.mayuse(b));
    EXPECT_TRUE(grabber->stack().empty());
    EXPECT_FALSE(event.isMine(b));
}

TEST_F(GrabStack, dropsDeadEntriesOnlyAtItsFront)
{
    const StrongPtr<Player> c = Loam::makeStrong<Player>("c");
    grab(a);
    grab(b);
    grab(c);
    b.reset();
    EXPECT_TRUE(event.isMine(c));
    EXPECT_EQ(holders(), (Names{"c", "dead", "a"}));
    event.ungrab(c);
    EXPECT_EQ(holders(), (Names{"dead", "a"})) << "a release drops nothing else";
    EXPECT_TRUE(event.isMine(a));
    EXPECT_EQ(holders(), Names{"a"});
}

TEST_F(GrabStack, dropsNothingOnAGrab)
{
    grab(a);
    a.reset();
    grab(b);
    EXPECT_EQ(holders(), (Names{"b", "dead"}));
}

TEST_F(GrabStack, acceptsAQueryForAnEntryThatTheQueryDrops)
{
    grab(a);
    grab(b);
    b.reset();
    EXPECT_FALSE(event.mayuse(grabber->stack().front().object));
    EXPECT_EQ(holders(), Names{"a"});
    grab(b = Loam::makeStrong<Player>("b"));
    b.reset();
    EXPECT_FALSE(event.isMine(grabber->stack().front().object));
    EXPECT_TRUE(event.isMine(grabber->stack().front().object)) << "the front entry is a's again";
}

TEST_F(GrabStack, isSharedByAllCopiesOfTheStream)
{
    const VInteractionEvent copy(event);
    grab(a);
    EXPECT_TRUE(copy.isMine(a));
}

TEST_F(GrabStack, canBeCopiedIntoAnotherStream)
{
    grab(a);
    grab(b);
    const StrongPtr<Grabber> other = Loam::makeStrong<Grabber>(*grabber, "other");
    EXPECT_EQ(other->name(), "other");
    VInteractionEvent elsewhere{1, other};
    elsewhere.ungrab(b);
    EXPECT_TRUE(elsewhere.isMine(a));
    EXPECT_TRUE(event.isMine(b)) << "the first stream keeps its own stack";
}

class Listener final : public VObject, public Interactive {
public:
    explicit Listener(const std::string& name) : VObject{name, 0, nullptr}, Interactive{"events", 3}
    {
        enableRequestProcessing();
    }

    bool update(VRequest& request, double) override
    {
        VInteractionEvent event;
        if (interactionSlot().read(request.valuePool(), event))
            seen.push_back(event.x);
        return true;
    }

    std::vector<int> seen;
};

class Source final : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }

    VOutput<VInteractionEvent> events{this, "events", VInteractionEvent{}};
};

TEST(Interactive, startsWithAnEventOfKindOneWithoutASource)
{
    const auto listener = Loam::makeStrong<Listener>("alone");
    const TypedSlot<VInteractionEvent>& slot = listener->interactionSlot();
    EXPECT_EQ(slot.name(), "events");
    EXPECT_EQ(slot.slot()->expertLevel(), 3);
    EXPECT_FALSE(slot.slot()->isConnected());
    EXPECT_EQ(slot.initialValue().kind, 1u);
    EXPECT_FALSE(slot.initialValue().grabber);
}

TEST(Interactive, objectsShareOneSourceWhichIsCreatedIfMissing)
{
    const VObjectType<Source> sourceType{"TestSource",
                                         StrongPtr<VCreationPreferences>(new VCreationPreferences("default", "unique")),
                                         &typeid(VInteractionEvent)};
    const std::size_t before = VManagedObject::count();
    const auto one = Loam::makeStrong<Listener>("one");
    const auto two = Loam::makeStrong<Listener>("two");
    EXPECT_EQ(VManagedObject::count(), before + 1) << "one source for both";
    const StrongPtr<Source> source(VManagedObject::find("TestSource"));
    ASSERT_TRUE(source);

    const StrongPtr<ValuePool> pool(new ValuePool("pool"));
    for (const auto& listener : {one, two})
        VScheduler::schedule(listener, 0, pool);
    VScheduler::run(pool);
    VInteractionEvent event;
    for (const int x : {10, 10, 20}) {
        event.x = x;
        source->events(pool) <<= event;
        VScheduler::run(pool);
    }
    EXPECT_EQ(one->seen, (std::vector<int>{-1, 10, 10, 20})) << "a repeated event is delivered too";
    EXPECT_EQ(two->seen, one->seen);
    EXPECT_TRUE(VManagedObject::remove(source));
}

// Grabs the event if it may, and records whether it did.
class Grabbing final : public VObject {
public:
    Grabbing(const std::string& name, std::chrono::milliseconds duration)
        : VObject{name, 0, nullptr}, m_duration{duration}
    {
    }

    bool update(VRequest& request, double) override
    {
        std::this_thread::sleep_for(m_duration);
        VInteractionEvent event = m_event.value(request.valuePool());
        const WeakPtrImpl<VObject> self = this;
        holds = event.mayuse(self);
        if (holds)
            event.grab(self, GrabReason::Pointer, 0, nullptr);
        return true;
    }

    const StrongPtr<VSlot>& eventSlot() const { return m_event.slot(); }

    bool holds = false;

private:
    std::chrono::milliseconds m_duration;
    TypedSlot<VInteractionEvent> m_event{this, "event", VInteractionEvent{}, 0};
};

TEST(VInteractionEvent, isSeenByItsReadersInTurnEvenIfObjectsRunConcurrently)
{
    const StrongPtr<ValuePool> pool(new ValuePool);
    const VInteractionEvent event{VInteractionEvent::Press, Loam::makeStrong<Grabber>("stream")};
    std::vector<StrongPtr<Grabbing>> objects;
    for (int i = 0; i < 8; ++i) {
        // If the objects did not take turns, the later ones would grab first.
        objects.push_back(Loam::makeStrong<Grabbing>(std::to_string(i), std::chrono::milliseconds(3 * (8 - i))));
        objects.back()->enableRequestProcessing();
        objects.back()->eventSlot()->set(pool, event);
    }
    VRequest request(pool);
    Threads threads;
    EXPECT_EQ(VScheduler::run(request, threads).updates, 8u);
    for (const StrongPtr<Grabbing>& object : objects)
        EXPECT_EQ(object->holds, object == objects.front()) << object->Name();
}

} // namespace

TEST(VInteractionEvent, isOfKindNothingByDefault)
{
    EXPECT_EQ(VInteractionEvent().kind, VInteractionEvent::Nothing);
    static_assert(VInteractionEvent::Nothing == 1);
}

} // namespace VInteractionEventTest
