#include <tarn/run/EventScript.hpp>

#include <fathom/VInteractionEvent.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

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

} // namespace

TEST(EventScript, readsPointerEvents)
{
    const auto events = eventsOf("0 press 100 -200 middle control+shift\n"
                                 "0 move 160 200\n"
                                 "2 release 3 4 shift\n"
                                 "2 wheel 5 6 -0.5 alt\n");
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events[0].kind, VInteractionEvent::Press);
    EXPECT_EQ(events[0].step, 0u);
    EXPECT_EQ(events[0].place, (Place{1, 1}));
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

TEST(EventScript, makesTwoEventsFromAKeyStroke)
{
    const auto events = eventsOf("1 key r");
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, VInteractionEvent::KeyPress);
    EXPECT_EQ(events[0].keyText, "r");
    EXPECT_EQ(events[0].armingKeyText, "");
    EXPECT_EQ(events[1].kind, VInteractionEvent::KeyRelease);
    EXPECT_EQ(events[1].keyText, "");
    EXPECT_EQ(events[1].armingKeyText, "r");
}

TEST(EventScript, readsSingleKeyPressesAndReleasesAndNamedKeys)
{
    const struct {
        const char* line;
        const char* down;
        const char* up;
    } cases[] = {
        {"0 keydown a", "a", ""},      {"0 keyup a", "", "a"},
        {"0 keydown space", " ", ""},  {"0 keydown tab", "\t", ""},
        {"0 keydown enter", "\r", ""}, {"0 keydown escape", "\x1b", ""},
        {"0 keydown hash", "#", ""},   {"0 keydown \xc3\xa4", "\xc3\xa4", ""},
        {"0 keydown +", "+", ""},
    };
    for (const auto& [line, down, up] : cases) {
        SCOPED_TRACE(line);
        const auto events = eventsOf(line);
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].keyText, down);
        EXPECT_EQ(events[0].armingKeyText, up);
    }
}

TEST(EventScript, ignoresCommentsAndBlankLines)
{
    EXPECT_THAT(eventsOf(""), IsEmpty());
    EXPECT_THAT(eventsOf("# nothing\n\n  \t\n#\n"), IsEmpty());
    EXPECT_EQ(eventsOf("\n  3\tkeydown  x# the key\r\n# end").size(), 1u);
}

TEST(EventScript, reportsEveryFaultWithItsPlace)
{
    const struct {
        const char* text;
        std::vector<std::string> faults;
    } cases[] = {
        {"x key a", {"events:1:1: found \"x\", expected the number of a step"}},
        {"-1 key a", {"events:1:1: found \"-1\", expected the number of a step"}},
        {"1.5 key a", {"events:1:1: found \"1.5\", expected the number of a step"}},
        {"1", {"events:1:2: found the end of the line, expected press, move, release, wheel, key, keydown or keyup"}},
        {"1 push 1 2", {"events:1:3: found \"push\", expected press, move, release, wheel, key, keydown or keyup"}},
        {"1 press", {"events:1:8: found the end of the line, expected a whole number of pixels from the left"}},
        {"1 press 1", {"events:1:10: found the end of the line, expected a whole number of pixels from the top"}},
        {"1 press 1 2.5", {"events:1:11: found \"2.5\", expected a whole number of pixels from the top"}},
        {"1 press 1 99999999999",
         {"events:1:11: found \"99999999999\", expected a whole number of pixels from the top"}},
        {"1 press 1 2 up", {"events:1:13: found \"up\", expected left, middle, right, or keys such as shift+control"}},
        {"1 press 1 2 left shift+",
         {"events:1:18: found \"shift+\", expected left, middle, right, or keys such as "
          "shift+control"}},
        {"1 press 1 2 left shift x", {"events:1:24: found \"x\", expected the end of the line"}},
        {"1 wheel 1 2", {"events:1:12: found the end of the line, expected the turns of the wheel"}},
        {"1 wheel 1 2 nan", {"events:1:13: found \"nan\", expected the turns of the wheel"}},
        {"1 wheel 1 2 1 left", {"events:1:15: found \"left\", expected keys such as shift+control"}},
        {"1 key",
         {"events:1:6: found the end of the line, expected one character, or space, tab, enter, escape or hash"}},
        {"1 key ab", {"events:1:7: found \"ab\", expected one character, or space, tab, enter, escape or hash"}},
        {"1 key a b", {"events:1:9: found \"b\", expected keys such as shift+control"}},
        {"2 key a\n1 key b\n3 kye c",
         {"events:2:1: step 1 comes after step 2; steps must not decrease",
          "events:3:3: found \"kye\", expected press, move, release, wheel, key, keydown or keyup"}},
        {"1 key a\n2 key \xff", {"events:2:7: invalid UTF-8 from here on"}},
        {"1 key \xc3\xa4\xc3\xb6 x",
         {"events:1:7: found \"\xc3\xa4\xc3\xb6\", expected one character, or space, tab, enter, escape or hash"}},
    };
    for (const auto& [text, faults] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(faultsOf(text), faults);
    }
}

TEST(EventScript, keepsTheValidEvents)
{
    Faults faults{"events"};
    EXPECT_EQ(parseEvents("0 press 1 2\n0 oops\n1 release 1 2\n", faults).size(), 2u);
    EXPECT_EQ(faults.size(), 1u);
}
