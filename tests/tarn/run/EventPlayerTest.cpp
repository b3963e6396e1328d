#include <tarn/run/EventPlayer.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

ProcessResult play(const std::string& events, const std::string& network)
{
    const TestFolder folder;
    return evaluate(network, {"--events=" + folder.write("events.txt", events)});
}

const std::string listening = object("ear", "Listener") + column("log", "ear.log");

} // namespace

TEST(EventPlayer, sendsEachEventToListeners)
{
    EXPECT_FALSE(Tarn::EventPlayer::find());
    const ProcessResult result = play("0 press 10 20 right shift\n0 move 11 21\n0 wheel 11 21 2\n0 key k\n", listening);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,log\n0,\"2@10,20:3:1:::0;3@11,21:0:0:::0;5@11,21:0:0:::2;"
                          "6@11,21:0:0:k::0;7@11,21:0:0::k:0;\"\n");
}

TEST(EventPlayer, playsEventsAfterTheirStep)
{
    const ProcessResult result = play("1 keydown a\n3 keydown b\n", clockInQuarters + listening);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,log\n0,\n1,\"6@-1,-1:0:0:a::0;\"\n2,\"6@-1,-1:0:0:a::0;\"\n"
                          "3,\"6@-1,-1:0:0:a::0;6@-1,-1:0:0:b::0;\"\n4,\"6@-1,-1:0:0:a::0;6@-1,-1:0:0:b::0;\"\n");
}

TEST(EventPlayer, leavesTheGrabToItsHolder)
{
    // The second listener comes later, and is shut out until the first releases the grab.
    const ProcessResult result = play("0 press 1 1\n0 move 2 2\n0 release 3 3\n0 move 4 4\n",
                                      object("first", "Listener") + object("second", "Listener")
                                          + column("first", "first.log") + column("second", "second.log"));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,first,second\n"
                          "0,\"2@1,1:1:0:::0;3@2,2:0:0:::0;4@3,3:1:0:::0;3@4,4:0:0:::0;\","
                          "\"(not mine)(not mine)4@3,3:1:0:::0;3@4,4:0:0:::0;\"\n");
}

TEST(EventPlayer, refusesEventsThatNoObjectWouldReceive)
{
    const ProcessResult deaf = play("0 key a\n", object("a", "Adder"));
    EXPECT_EQ(deaf.status, 2);
    EXPECT_THAT(deaf.err, HasSubstr("--events: no object of \"net.toml\" listens to events\n"));
    const ProcessResult late = play("4 key a\n5 key b\n", clockInQuarters + listening);
    EXPECT_EQ(late.status, 2);
    EXPECT_THAT(late.err, HasSubstr("events.txt:2:1: step 5 is not evaluated; the last one is 4\n"));
    EXPECT_THAT(late.err, HasSubstr("; nothing was evaluated\n"));
}

TEST(EventPlayer, refusesAScriptWithFaults)
{
    const ProcessResult result = play("0 press here\n", listening);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("events.txt:1:9: found \"here\""));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(evaluate(listening, {"--events=none"}).status, 4);
}
