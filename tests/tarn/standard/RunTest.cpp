#include "tarn/NetworkTexts.hpp"

#include <gtest/gtest.h>

namespace RunTest {

TEST(Run, numbersItsActionsOneAndTwo)
{
    // The counters add up the numbers of the actions that reach them.
    const ProcessResult result =
        evaluate(clockInQuarters + object("run", "Run")
                     + object("steps", "ActionCounter", "connect = { trigger = 'run.stepped' }\n")
                     + object("ends", "ActionCounter", "connect = { trigger = 'run.finished' }\n"),
                 {"--steps=3", "--print=steps.count", "--print=ends.count"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step\n0\n1\n2\nsteps.count: 3\nends.count: 2\n");
}

TEST(Run, mayExistSeveralTimes)
{
    const ProcessResult result =
        evaluate(object("one", "Run") + object("two", "Run")
                     + object("first", "ActionCounter", "connect = { trigger = 'one.finished' }\n")
                     + object("second", "ActionCounter", "connect = { trigger = 'two.finished' }\n"),
                 {"--print=first.count", "--print=second.count"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step\n0\nfirst.count: 2\nsecond.count: 2\n");
}

} // namespace RunTest
