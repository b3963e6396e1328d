#include <tarn/run/EventScript.hpp>

#include <fathom/VInteractionEvent.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace EventScriptTest {

using namespace Tarn;
using Orla::VInteractionEvent;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<ScriptedEvent> eventsOf(const std::string& text)
{
    Faults faults{"events"};
    std::vector<ScriptedEvent> events = parseEvents(text, faults);
    EXPECT_THAT(faults.lines(), IsEmpty());
    return events;
}

std::vector<std::string> faultsOf(const std::string& text)
{
    Faults faults{"events"};
    parseEvents(text, faults);
    return faults.lines();
}

// One event, its table on the second line.
std::string event(const std::string& entries)
{
    return "\n[[event]]\n" + entries + "\n";
}

} // namespace

TEST(EventScript, readsThePointer)
{
    const auto events = eventsOf(
        event("step = 0\nkind = 'press'\nx = 100\ny = -200\nbutton = 'middle'\nmodifiers = ['control', 'shift']")
        + event("step = 0\nkind = 'move'\nx = 160\ny = 200")
        + event("step = 2\nkind = 'release'\nx = 3\ny = 4\nmodifiers = ['shift']")
        + event("step = 2\nkind = 'wheel'\nx = 5\ny = 6\nwheel = -0.5\nmodifiers = ['alt']"));
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events[0].kind, VInteractionEvent::Press);
    EXPECT_EQ(events[0].step, 0u);
    EXPECT_EQ(events[0].place, (Place{2, 1}));
    EXPECT_EQ(events[0].x, 100);
    EXPECT_EQ(events[0].y, -200);
    EXPECT_EQ(events[0].button, 2);
    EXPECT_EQ(events[0].modifiers, VInteractionEvent::Control | VInteractionEvent::Shift);
    EXPECT_EQ(events[1].kind, VInteractionEvent::Move);
    EXPECT_EQ(events[1].button, 0);
    EXPECT_EQ(events[1].modifiers, 0);
    EXPECT_EQ(events[2].kind, VInteractionEvent::Release);
    EXPECT_EQ(events[2].step, 2u);
    EXPECT_EQ(events[2].button, 1);
    EXPECT_EQ(events[2].modifiers, VInteractionEvent::Shift);
    EXPECT_EQ(events[3].kind, VInteractionEvent::Wheel);
    EXPECT_EQ(events[3].wheel, -0.5);
    EXPECT_EQ(events[3].modifiers, VInteractionEvent::Alt);
}

TEST(EventScript, acceptsAWholeNumberOfTurnsOfTheWheel)
{
    const auto events = eventsOf(event("step = 0\nkind = 'wheel'\nx = 5\ny = 6\nwheel = 2"));
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].wheel, 2);
}

TEST(EventScript, makesTwoEventsOfAKeyStroke)
{
    const auto events = eventsOf(event("step = 1\nkind = 'key'\nkey = 'r'"));
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, VInteractionEvent::KeyPress);
    EXPECT_EQ(events[0].keyText, "r");
    EXPECT_EQ(events[0].armingKeyText, "");
    EXPECT_EQ(events[1].kind, VInteractionEvent::KeyRelease);
    EXPECT_EQ(events[1].keyText, "");
    EXPECT_EQ(events[1].armingKeyText, "r");
}

TEST(EventScript, readsKeysThatAreOnlyPressedOrReleasedAndKeysWithNames)
{
    const struct {
        const char* kind;
        const char* key;
        const char* down;
        const char* up;
    } cases[] = {
        {"keydown", "a", "a", ""},         {"keyup", "a", "", "a"},      {"keydown", "space", " ", ""},
        {"keydown", " ", " ", ""},         {"keydown", "tab", "\t", ""}, {"keydown", "enter", "\r", ""},
        {"keydown", "escape", "\x1b", ""}, {"keydown", "#", "#", ""},    {"keydown", "\xc3\xa4", "\xc3\xa4", ""},
    };
    for (const auto& [kind, key, down, up] : cases) {
        SCOPED_TRACE(key);
        const auto events = eventsOf(event(std::string("step = 0\nkind = '") + kind + "'\nkey = '" + key + "'"));
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].keyText, down);
        EXPECT_EQ(events[0].armingKeyText, up);
    }
}

TEST(EventScript, mayBeEmpty)
{
    EXPECT_THAT(eventsOf(""), IsEmpty());
    EXPECT_THAT(eventsOf("# nothing\n\n"), IsEmpty());
}

TEST(EventScript, reportsEachFaultWithItsPlace)
{
    const std::string kinds = "press, move, release, wheel, key, keydown or keyup";
    const std::string keys = "one character, or space, tab, enter or escape";
    const struct {
        std::string text;
        std::vector<std::string> faults;
    } cases[] = {
        {event("step = 'x'\nkind = 'key'\nkey = 'a'"), {"events:3:8: step is \"x\", expected the number of a step"}},
        {event("step = -1\nkind = 'key'\nkey = 'a'"), {"events:3:8: step is -1, expected the number of a step"}},
        {event("step = 1.5\nkind = 'key'\nkey = 'a'"), {"events:3:8: step is 1.5, expected the number of a step"}},
        {event("kind = 'key'\nkey = 'a'"), {"events:2:1: missing key \"step\", expected the number of a step"}},
        {event("step = 1"), {"events:2:1: missing key \"kind\", expected " + kinds}},
        {event("step = 1\nkind = 'push'"), {"events:4:8: kind is \"push\", expected " + kinds}},
        {event("step = 1\nkind = 'press'"),
         {"events:2:1: missing key \"x\", expected a whole number of pixels from the left",
          "events:2:1: missing key \"y\", expected a whole number of pixels from the top"}},
        {event("step = 1\nkind = 'press'\nx = 1\ny = 2.5"),
         {"events:6:5: y is 2.5, expected a whole number of pixels from the top"}},
        {event("step = 1\nkind = 'press'\nx = 1\ny = 99999999999"),
         {"events:6:5: y is 99999999999, expected a whole number of pixels from the top"}},
        {event("step = 1\nkind = 'press'\nx = 1\ny = 2\nbutton = 'up'"),
         {"events:7:10: button is \"up\", expected left, middle or right"}},
        {event("step = 1\nkind = 'press'\nx = 1\ny = 2\nbutton = 1"),
         {"events:7:10: button is 1, expected left, middle or right"}},
        {event("step = 1\nkind = 'press'\nx = 1\ny = 2\nmodifiers = ['shift', 'meta']"),
         {"events:7:23: found \"meta\", expected shift, control or alt"}},
        {event("step = 1\nkind = 'press'\nx = 1\ny = 2\nmodifiers = 'shift'"),
         {"events:7:13: modifiers is \"shift\", expected a list such as [\"shift\", \"control\"]"}},
        {event("step = 1\nkind = 'wheel'\nx = 1\ny = 2"),
         {"events:2:1: missing key \"wheel\", expected a number of turns"}},
        {event("step = 1\nkind = 'wheel'\nx = 1\ny = 2\nwheel = nan"),
         {"events:7:9: wheel is nan, expected a number of turns"}},
        {event("step = 1\nkind = 'wheel'\nx = 1\ny = 2\nwheel = 1\nbutton = 'left'"),
         {"events:8:1: unknown key \"button\" of an event of kind \"wheel\"; available: step, kind, x, y, wheel, "
          "modifiers"}},
        {event("step = 1\nkind = 'key'"), {"events:2:1: missing key \"key\", expected " + keys}},
        {event("step = 1\nkind = 'key'\nkey = 'ab'"), {"events:5:7: key is \"ab\", expected " + keys}},
        {event("step = 1\nkind = 'key'\nkey = ''"), {"events:5:7: key is \"\", expected " + keys}},
        {event("step = 1\nkind = 'key'\nkey = 'a'\nx = 1"),
         {"events:6:1: unknown key \"x\" of an event of kind \"key\"; available: step, kind, key, modifiers"}},
        {event("step = 2\nkind = 'key'\nkey = 'a'") + event("step = 1\nkind = 'key'\nkey = 'b'"),
         {"events:8:8: step is 1, expected 2 or more, because events are in the order of steps"}},
        {"events = 1", {"events:1:1: unknown key \"events\", expected tables under the header [[event]]"}},
        {"event = 1", {"events:1:9: event is an integer, expected tables under the header [[event]]"}},
        {"event = [1]", {"events:1:10: event holds an integer, expected tables under the header [[event]]"}},
        {"# \xff", {"events:1:3: invalid UTF-8 from here on"}},
    };
    for (const auto& [text, faults] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(faultsOf(text), faults);
    }
}

TEST(EventScript, reportsTextThatIsNotToml)
{
    EXPECT_EQ(faultsOf("0 press 1 2").size(), 1u);
}

TEST(EventScript, keepsTheEventsWithoutFaults)
{
    Faults faults{"events"};
    const std::string script = event("step = 0\nkind = 'press'\nx = 1\ny = 2") + event("step = 0\nkind = 'oops'")
                               + event("step = 1\nkind = 'release'\nx = 1\ny = 2");
    EXPECT_EQ(parseEvents(script, faults).size(), 2u);
    EXPECT_EQ(faults.size(), 1u);
}

} // namespace EventScriptTest
