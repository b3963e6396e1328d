#include <fathom/HotKey.hpp> // first: the header must be self-contained

#include "Recorders.hpp"

#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>
#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace HotKeyTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

using Key = HotKey::Key;

static_assert(sizeof(Key) == 2 && offsetof(Key, key) == 0 && offsetof(Key, armed) == 1);
static_assert(std::has_virtual_destructor_v<HotKey>);
static_assert(HotKey::SignedLess{}('\xE9', 'a') && !HotKey::SignedLess{}('a', '\xE9'),
              "characters beyond ASCII come first, even where char is unsigned");

namespace {

VInteractionEvent keyEvent(const std::string& keyText, const std::string& armingKeyText = {})
{
    VInteractionEvent event;
    event.keyText = keyText;
    event.armingKeyText = armingKeyText;
    return event;
}

// Counts the presses of its own key and of a second one.
class Shutter final : public VObject, public HotKey {
public:
    explicit Shutter(const std::string& name) : VObject{name, 0, nullptr}, HotKey{"events", 4}
    {
        enableRequestProcessing();
    }

    bool update(VRequest& request, double) override
    {
        ++runs;
        pressed += HotKeyIsPressed(request.valuePool());
        repeated += HotKeyIsRepeatedlyPressed(request.valuePool());
        secondPressed += isPressed(second, request.valuePool());
        secondRepeated += isRepeatedlyPressed(second, request.valuePool());
        return true;
    }

    Key second{'b', true};
    int runs = 0;
    int pressed = 0;
    int repeated = 0;
    int secondPressed = 0;
    int secondRepeated = 0;
};

// Inherits the mix-in virtually.
class Remote final : public VObject, public virtual HotKey {
public:
    explicit Remote(const std::string& name) : HotKey{"events", 0}, VObject{name, 0, nullptr} {}
    bool update(VRequest&, double) override { return true; }
};

class Keyboard final : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }

    VOutput<VInteractionEvent> events{this, "events", VInteractionEvent{}};
};

class HotKeyTest : public testing::Test {
protected:
    HotKeyTest() { HotKey::HotKeyMap().clear(); }

    ~HotKeyTest() override
    {
        HotKey::HotKeyMap().clear();
        EXPECT_TRUE(VManagedObject::remove(m_keyboard));
    }

    // Evaluates the object, which creates its variables.
    void evaluate() const
    {
        VScheduler::schedule(m_shutter, 0, m_pool);
        VScheduler::run(m_pool);
        m_shutter->runs = 0;
    }

    void send(const VInteractionEvent& event) const
    {
        m_keyboard->events(m_pool) << event;
        VScheduler::run(m_pool);
    }

    std::vector<std::string> namesUnder(char key) const
    {
        std::vector<std::string> names;
        const auto [begin, end] = HotKey::HotKeyMap().equal_range(key);
        for (auto entry = begin; entry != end; ++entry) {
            const StrongPtr<VObject> object(entry->second);
            names.push_back(object ? object->Name() : "expired");
        }
        return names;
    }

    const Warnings m_warnings;
    const VObjectType<Keyboard> m_keyboardType{
        "TestKeyboard", StrongPtr<VCreationPreferences>(new VCreationPreferences("default", "unique")),
        &typeid(VInteractionEvent)};
    StrongPtr<Shutter> m_shutter{new Shutter("shutter")};
    const StrongPtr<Keyboard> m_keyboard{VManagedObject::find("TestKeyboard")};
    const StrongPtr<ValuePool> m_pool{new ValuePool("pool")};
};

} // namespace

TEST(HotKeyKey, isUnsetAndNotArmedByDefault)
{
    const Key key;
    EXPECT_EQ(key.key, 0);
    EXPECT_FALSE(key.armed);
}

TEST(HotKeyKey, firesOncePerArming)
{
    Key key{'a', true};
    EXPECT_TRUE(key.isPressed(keyEvent("a")));
    EXPECT_FALSE(key.armed);
    EXPECT_FALSE(key.isPressed(keyEvent("a")));
    EXPECT_FALSE(key.isPressed(keyEvent("", "a"))) << "arming is not a press";
    EXPECT_TRUE(key.armed);
    EXPECT_TRUE(key.isPressed(keyEvent("a")));
    EXPECT_FALSE(key.isPressed(keyEvent("a")));
}

TEST(HotKeyKey, isArmedWithoutFiringByAnEventThatBothPressesAndArms)
{
    Key key{'a', false};
    EXPECT_FALSE(key.isPressed(keyEvent("a", "a")));
    EXPECT_TRUE(key.armed);
    EXPECT_TRUE(key.isPressed(keyEvent("a", "a"))) << "the next one fires";
    EXPECT_FALSE(key.armed) << "and does not arm the key again";
}

TEST(HotKeyKey, comparesOnlyTheFirstCharacter)
{
    Key key{'a', true};
    EXPECT_FALSE(key.isPressed(keyEvent("ba")));
    EXPECT_FALSE(key.isPressed(keyEvent("A")));
    EXPECT_FALSE(key.isPressed(keyEvent("")));
    EXPECT_TRUE(key.isPressed(keyEvent("abc")));
    EXPECT_FALSE(key.isPressed(keyEvent("", "ba")));
    EXPECT_FALSE(key.armed);
    EXPECT_FALSE(key.isPressed(keyEvent("b", "abc")));
    EXPECT_TRUE(key.armed);
    EXPECT_TRUE(key.isRepeatedlyPressed(keyEvent("abc")));
    EXPECT_FALSE(key.isRepeatedlyPressed(keyEvent("ba")));
    EXPECT_FALSE(key.isRepeatedlyPressed(keyEvent("", "a")));
}

TEST(HotKeyKey, isRepeatedWhetherArmedOrNotWithoutChangingThat)
{
    for (const bool armed : {true, false}) {
        const Key key{'a', armed};
        EXPECT_TRUE(key.isRepeatedlyPressed(keyEvent("a")));
        EXPECT_TRUE(key.isRepeatedlyPressed(keyEvent("a")));
        EXPECT_EQ(key.armed, armed);
    }
}

TEST(HotKeyKey, doesNothingWithoutACharacter)
{
    const std::string zero(1, '\0');
    Key key{0, true};
    EXPECT_FALSE(key.isPressed(keyEvent(zero, zero)));
    EXPECT_TRUE(key.armed);
    EXPECT_FALSE(key.isPressed(keyEvent("")));
    EXPECT_FALSE(key.isRepeatedlyPressed(keyEvent(zero)));
    key.armed = false;
    EXPECT_FALSE(key.isPressed(keyEvent("", zero)));
    EXPECT_FALSE(key.armed);
}

TEST_F(HotKeyTest, addsAKeyInputToTheEventInput)
{
    const TypedSlot<char>& slot = m_shutter->hotKeySlot();
    EXPECT_EQ(slot.name(), "hotkey");
    EXPECT_EQ(slot.initialValue(), 0);
    EXPECT_EQ(slot.slot()->expertLevel(), 4);
    EXPECT_EQ(m_shutter->findSlot("hotkey"), slot.slot());
    EXPECT_EQ(m_shutter->interactionSlot().name(), "events");
    EXPECT_EQ(m_shutter->interactionSlot().slot()->expertLevel(), 4);
    ASSERT_TRUE(m_keyboard);
    EXPECT_TRUE(m_shutter->interactionSlot().slot()->isConnected());
    EXPECT_THAT(m_warnings.all(), IsEmpty());
}

TEST_F(HotKeyTest, firesOnTheFirstPressAndThenOncePerArming)
{
    evaluate();
    m_shutter->setHotKey('a', m_pool);
    VScheduler::run(m_pool);
    EXPECT_EQ(m_shutter->pressed, 0);

    m_shutter->runs = 0;
    const struct {
        VInteractionEvent event;
        int pressed;
        int repeated;
    } steps[] = {
        {keyEvent("a"), 1, 1},                                  // needs no arming
        {keyEvent("a"), 1, 2},                                  // held
        {keyEvent("b", "b"), 1, 2},                             // another key
        {keyEvent("a"), 1, 3},      {keyEvent("", "a"), 1, 3},  // armed
        {keyEvent("a"), 2, 4},      {keyEvent("a", "a"), 2, 5}, // armed by the press itself
        {keyEvent("a"), 3, 6},
    };
    int runs = 0;
    for (const auto& [event, pressed, repeated] : steps) {
        SCOPED_TRACE(event.keyText + "/" + event.armingKeyText);
        send(event);
        EXPECT_EQ(m_shutter->runs, ++runs);
        EXPECT_EQ(m_shutter->pressed, pressed);
        EXPECT_EQ(m_shutter->repeated, repeated);
    }
}

TEST_F(HotKeyTest, armsEachFurtherKeySeparately)
{
    evaluate();
    m_shutter->setHotKey('a', m_pool);
    VScheduler::run(m_pool);
    for (const char* text : {"b", "b", "a", "b"})
        send(keyEvent(text));
    EXPECT_EQ(m_shutter->secondPressed, 1);
    EXPECT_EQ(m_shutter->secondRepeated, 3);
    EXPECT_EQ(m_shutter->pressed, 1);
    send(keyEvent("", "b"));
    send(keyEvent("b"));
    EXPECT_EQ(m_shutter->secondPressed, 2);
}

TEST_F(HotKeyTest, makesResultsDependOnEarlierUpdatesOnlyOnceAKeyIsUsed)
{
    const auto history = [this] {
        const std::optional<VHistory> found = VScheduler::history(m_pool);
        return found ? found->text() : "none";
    };
    evaluate();
    m_shutter->setHotKey('a', m_pool);
    send(VInteractionEvent{});
    EXPECT_EQ(history(), "none");
    send(keyEvent("a"));
    EXPECT_EQ(history(), "object \"shutter\" keeps state in its members");
}

TEST_F(HotKeyTest, doesNotFireWithoutAKey)
{
    evaluate();
    send(keyEvent(std::string(1, '\0'), std::string(1, '\0')));
    send(keyEvent("a"));
    EXPECT_EQ(m_shutter->runs, 2);
    EXPECT_EQ(m_shutter->pressed, 0);
    EXPECT_EQ(m_shutter->repeated, 0);
}

TEST_F(HotKeyTest, doesNotFireInAPoolThatHoldsNeitherKeyNorEvent)
{
    const StrongPtr<ValuePool> empty(new ValuePool("empty"));
    for (const StrongPtr<ValuePool>& pool : {empty, StrongPtr<ValuePool>()}) {
        Key key{'a', true};
        EXPECT_FALSE(m_shutter->HotKeyIsPressed(pool));
        EXPECT_FALSE(m_shutter->HotKeyIsRepeatedlyPressed(pool));
        EXPECT_FALSE(m_shutter->isPressed(key, pool));
        EXPECT_FALSE(m_shutter->isRepeatedlyPressed(key, pool));
    }
}

TEST_F(HotKeyTest, readsItsKeyFromAConnectedOutput)
{
    const StrongPtr<VSlotContainer> settings(new VSlotContainer);
    const VOutput<char> output(settings.get(), "key", 'x');
    ASSERT_TRUE(m_shutter->attachOutput(settings->findOutput("key"), m_shutter->hotKeySlot().slot(), ""));
    evaluate();
    send(keyEvent("x"));
    EXPECT_EQ(m_shutter->pressed, 1);
    m_shutter->setHotKey('y', m_pool);
    char key = 0;
    EXPECT_TRUE(output(m_pool) >> key);
    EXPECT_EQ(key, 'y');
}

TEST_F(HotKeyTest, announcesANewKey)
{
    evaluate();
    const Changes changes{m_shutter->hotKeySlot().parameter()};
    m_shutter->setHotKey('a', m_pool);
    EXPECT_EQ(m_shutter->hotKeySlot().value(m_pool), 'a');
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.lastPool(), m_pool);
    EXPECT_TRUE(VScheduler::isDue(m_shutter, m_pool));
}

TEST_F(HotKeyTest, entersAKeyIntoTheMapEvenIfThePoolHoldsNone)
{
    const Changes changes{m_shutter->hotKeySlot().parameter()};
    m_shutter->setHotKey('a', m_pool);
    m_shutter->setHotKey('b', nullptr);
    EXPECT_FALSE(m_shutter->hotKeySlot().slot()->getValueBase(m_pool)) << "no variable is created";
    EXPECT_EQ(changes.count(), 0);
    EXPECT_THAT(namesUnder('a'), ElementsAre("shutter"));
    EXPECT_THAT(namesUnder('b'), ElementsAre("shutter"));
}

TEST_F(HotKeyTest, entersAnObjectEachTimeItsKeyIsSet)
{
    const StrongPtr<Shutter> other(new Shutter("other"));
    m_shutter->setHotKey('a', m_pool);
    m_shutter->setHotKey('a', m_pool);
    other->setHotKey('a', m_pool);
    EXPECT_THAT(namesUnder('a'), ElementsAre("shutter", "shutter", "other"));
}

TEST_F(HotKeyTest, ordersTheMapBySignedCharacters)
{
    for (const char key : {'a', '\x7F', '\x80', '\0', '\xFF'})
        m_shutter->setHotKey(key, m_pool);
    std::vector<char> keys;
    for (const auto& [key, object] : HotKey::HotKeyMap())
        keys.push_back(key);
    EXPECT_THAT(keys, ElementsAre('\x80', '\xFF', '\0', 'a', '\x7F'));
}

TEST_F(HotKeyTest, leavesExpiredEntriesWhenItIsDestroyed)
{
    StrongPtr<Remote> remote(new Remote("remote"));
    remote->setHotKey('a', m_pool);
    m_shutter->setHotKey('a', m_pool);
    EXPECT_THAT(namesUnder('a'), ElementsAre("remote", "shutter"));
    remote.reset();
    EXPECT_THAT(namesUnder('a'), ElementsAre("expired", "shutter"));
    m_shutter.reset();
    EXPECT_THAT(namesUnder('a'), ElementsAre("expired", "expired"));
}

} // namespace HotKeyTest
