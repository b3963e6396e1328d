#include <tarn/run/RunActions.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

TEST(RunActions, areEmittedAfterEachStepAndAtTheEnd)
{
    const ProcessResult result = evaluate(clockInQuarters + object("run", "Run")
                                          + object("steps", "ActionCounter", "connect = { trigger = 'run.stepped' }\n")
                                          + object("ends", "ActionCounter", "connect = { trigger = 'run.finished' }\n")
                                          + column("steps", "steps.count") + column("ends", "ends.count"));
    EXPECT_EQ(result.status, 0) << result.err;
    // The action `finished` is emitted after the last row.
    EXPECT_EQ(result.out, "step,steps,ends\n0,1,0\n1,2,0\n2,3,0\n3,4,0\n4,5,0\n");
}

TEST(RunActions, needNoListener)
{
    EXPECT_EQ(evaluate(object("run", "Run") + object("a", "Adder")).status, 0);
    EXPECT_FALSE(Tarn::RunActions::find().emitFinished(Loam::makeStrong<Orla::ValuePool>()));
}

TEST(RunActions, areAlsoEmittedByAKey)
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

TEST(RunActions, areForwardedByAKeyWithTheirNumbers)
{
    const ProcessResult result = evaluate(clockInQuarters + object("run", "Run")
                                          + object("key", "KeyAction", "connect = { forward = 'run.stepped' }\n")
                                          + object("counter", "ActionCounter", "connect = { trigger = 'key.action' }\n")
                                          + column("count", "counter.count"));
    EXPECT_EQ(result.out, "step,count\n0,1\n1,2\n2,3\n3,4\n4,5\n") << result.err;
}

TEST(RunActions, attributeFailuresAtTheEndToTheLastStep)
{
    const ProcessResult result = evaluate(clockInQuarters + object("run", "Run")
                                          + object("touchy", "Touchy", "connect = { trigger = 'run.finished' }\n"));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, testing::HasSubstr("5 steps, 1 failure, the first in step 4\n"));
}
