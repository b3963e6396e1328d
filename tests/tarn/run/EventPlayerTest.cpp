#include <tarn/run/EventPlayer.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gtest/gtest.h>

namespace EventPlayerTest {

namespace {

ProcessResult play(const std::string& events, const std::string& network)
{
    const TestFolder folder;
    return evaluate(network, {"--events=" + folder.write("events.toml", events)});
}

const std::string listening = object("ear", "Listener") + column("log", "ear.log");

} // namespace

TEST(EventPlayer, sendsEachEventToListeners)
{
    EXPECT_FALSE(Tarn::EventPlayer::find());
    const ProcessResult result =
        play("event = [{ step = 0, kind = 'press', x = 10, y = 20, button = 'right', modifiers = ['shift'] }, { step = "
             "0, kind = 'move', x = 11, y = 21 }, { step = 0, kind = 'wheel', x = 11, y = 21, wheel = 2 }, { step = 0, "
             "kind = 'key', key = 'k' }]\n",
             listening);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,log\n0,\"2@10,20:3:1:::0;3@11,21:0:0:::0;5@11,21:0:0:::2;"
                          "6@11,21:0:0:k::0;7@11,21:0:0::k:0;\"\n");
}

TEST(EventPlayer, playsEventsAfterTheirStep)
{
    const ProcessResult result =
        play("event = [{ step = 1, kind = 'keydown', key = 'a' }, { step = 3, kind = 'keydown', key = 'b' }]\n",
             clockInQuarters + listening);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,log\n0,\n1,\"6@-1,-1:0:0:a::0;\"\n2,\"6@-1,-1:0:0:a::0;\"\n"
                          "3,\"6@-1,-1:0:0:a::0;6@-1,-1:0:0:b::0;\"\n4,\"6@-1,-1:0:0:a::0;6@-1,-1:0:0:b::0;\"\n");
}

TEST(EventPlayer, leavesTheGrabToItsHolder)
{
    // The second listener comes later, and is shut out until the first releases the grab.
    const ProcessResult result =
        play("event = [{ step = 0, kind = 'press', x = 1, y = 1 }, { step = 0, kind = 'move', x = 2, y = 2 }, { step = "
             "0, kind = 'release', x = 3, y = 3 }, { step = 0, kind = 'move', x = 4, y = 4 }]\n",
             object("first", "Listener") + object("second", "Listener") + column("first", "first.log")
                 + column("second", "second.log"));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,first,second\n"
                          "0,\"2@1,1:1:0:::0;3@2,2:0:0:::0;4@3,3:1:0:::0;3@4,4:0:0:::0;\","
                          "\"(not mine)(not mine)4@3,3:1:0:::0;3@4,4:0:0:::0;\"\n");
}

} // namespace EventPlayerTest
