#include <tarn/run/RunActions.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gtest/gtest.h>

namespace RunActionsTest {

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

} // namespace RunActionsTest
