#include "tarn/NetworkTexts.hpp"

#include <gtest/gtest.h>

#include <string>

namespace KeyActionTest {

TEST(KeyAction, emitsItsActionOncePerPressOfItsKey)
{
    const TestFolder folder;
    const std::string events = folder.write(
        "events.toml", "event = [{ step = 0, kind = 'key', key = 'w' }, { step = 0, kind = 'key', key = 'x' }, { step "
                       "= 0, kind = 'keydown', key = 'w' }, { step = 0, kind = 'keydown', key = 'w' }, { step = 0, "
                       "kind = 'keyup', key = 'w' }, { step = 0, kind = 'keydown', key = 'w' }]\n");
    const ProcessResult result =
        evaluate(object("key", "KeyAction", "set = { hotkey = 'w' }\n")
                     + object("counter", "ActionCounter", "connect = { trigger = 'key.action' }\n")
                     + column("count", "counter.count"),
                 {"--events=" + events});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,count\n0,9\n") << "a held key counts once";
}

TEST(KeyAction, forwardsActionsWithTheirNumbers)
{
    const ProcessResult result = evaluate(clockInQuarters + object("run", "Run")
                                          + object("key", "KeyAction", "connect = { forward = 'run.stepped' }\n")
                                          + object("counter", "ActionCounter", "connect = { trigger = 'key.action' }\n")
                                          + column("count", "counter.count"));
    EXPECT_EQ(result.out, "step,count\n0,1\n1,2\n2,3\n3,4\n4,5\n") << result.err;
}

} // namespace KeyActionTest
