#include <tarn/run/Evaluation.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <string>

namespace EvaluationTest {

using testing::AllOf;
using testing::HasSubstr;

TEST(EvaluationSummary, isFineUnlessSomethingFailed)
{
    EXPECT_TRUE((Tarn::EvaluationSummary{.steps = 3}.isFine()));
    EXPECT_FALSE((Tarn::EvaluationSummary{.failures = 1}.isFine()));
    EXPECT_FALSE((Tarn::EvaluationSummary{.stopped = 1}.isFine()));
    EXPECT_FALSE((Tarn::EvaluationSummary{.cancelled = true}.isFine()));
    EXPECT_FALSE((Tarn::EvaluationSummary{.timeIsLost = true}.isFine()));
}

TEST(Evaluation, runsOnceWithoutTime)
{
    const ProcessResult result = evaluate(object("a", "Adder", "set = { a = 1.5, b = 2 }\n")
                                          + object("b", "Adder", "connect = { a = 'a.sum' }\nset = { b = 0.25 }\n")
                                          + column("first", "a.sum") + column("second", "b.sum"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,first,second\n0,3.5,3.75\n");
    EXPECT_THAT(result.err, HasSubstr("net.toml: 2 objects, 1 step\n"));
}

TEST(Evaluation, stepsTheTimeFromBeginningToEnd)
{
    const ProcessResult result = evaluate(clockInQuarters + object("reader", "TimeReader")
                                          + column("time", "reader.out") + column("whole", "clock.GlobalTime"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,time,whole\n"
                          "0,0,\"0[0,1]@0.25\"\n"
                          "1,0.25,\"0.25[0,1]@0.25\"\n"
                          "2,0.5,\"0.5[0,1]@0.25\"\n"
                          "3,0.75,\"0.75[0,1]@0.25\"\n"
                          "4,1,\"1[0,1]@0.25\"\n");
}

TEST(Evaluation, startsAtTheBeginningWhateverTimeIsSaved)
{
    const ProcessResult result = evaluate(object("clock", "GlobalTime", "set = { time = '3.5[3,4]@0.5' }\n")
                                          + column("time", "clock.GlobalTime.time"));
    EXPECT_EQ(result.out, "step,time\n0,3\n1,3.5\n2,4\n");
}

TEST(Evaluation, endsAfterTheRequestedNumberOfSteps)
{
    const std::string network = clockInQuarters + column("time", "clock.GlobalTime.time");
    EXPECT_EQ(evaluate(network, {"--steps=2"}).out, "step,time\n0,0\n1,0.25\n");
    EXPECT_EQ(evaluate(network, {"--steps=100"}).out, "step,time\n0,0\n1,0.25\n2,0.5\n3,0.75\n4,1\n");
    EXPECT_EQ(evaluate(object("a", "Adder"), {"--steps=100"}).out, "step\n0\n");
}

TEST(Evaluation, usesTheProviderThatTimeDependentObjectsCreate)
{
    const ProcessResult result = evaluate(object("reader", "TimeReader") + column("time", "reader.out"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,time\n0,0\n1,1\n");
}

TEST(Evaluation, quotesTitlesAndTexts)
{
    const ProcessResult result =
        evaluate(object("e", "Echo", "set = { text = \"a,b\\n\\\"ä\\\"\" }\n") + column("x, in m", "e.out"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,\"x, in m\"\n0,\"a,b\n\"\"ä\"\"\"\n");
}

TEST(Evaluation, keepsInputsOfTheSameNameApart)
{
    const ProcessResult result = evaluate(object("one", "Adder", "set = { a = 1, b = 10 }\n")
                                          + object("two", "Adder", "set = { a = 2, b = 20 }\n")
                                          + column("one", "one.sum") + column("two", "two.sum"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,one,two\n0,11,22\n");
}

TEST(Evaluation, continuesWithOtherObjectsWhenAnObjectThrows)
{
    const ProcessResult result =
        evaluate(clockInQuarters + object("painter", "Failing") + object("reader", "TimeReader")
                 + column("painted", "painter.out") + column("time", "reader.out"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "step,painted,time\n0,42,0\n1,,0.25\n2,,0.5\n3,,0.75\n4,,1\n");
    EXPECT_THAT(result.err, HasSubstr("tarn: error: Failing \"painter\" failed: out of paint\n"));
    EXPECT_THAT(result.err, HasSubstr("tarn: error: Failing \"painter\" failed: out of paint (4 times in all)\n"));
    EXPECT_THAT(result.err, HasSubstr("net.toml: 3 objects, 5 steps, 4 failures, the first in step 1\n"));
}

TEST(Evaluation, leavesCellsOfFailedAndWaitingObjectsEmpty)
{
    const ProcessResult result = evaluate(
        clockInQuarters + object("broken", "Failing", "connect = { how = 'how.out' }\n")
        + object("how", "Echo", "set = { text = 'throw' }\n")
        + object("sum", "Adder", "connect = { a = 'broken.out' }\n")
        + object("total", "Adder", "set = { b = 1 }\nconnect = { a = 'sum.sum' }\n") + column("broken", "broken.out")
        + column("how", "how.out") + column("sum", "sum.sum") + column("total", "total.sum"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out,
              "step,broken,how,sum,total\n0,42,throw,42,43\n1,,throw,,\n2,,throw,,\n3,,throw,,\n4,,throw,,\n");
    EXPECT_THAT(result.err, HasSubstr(", 4 failures, ")) << "an empty cell is not another failure";
}

TEST(Evaluation, countsUpdatesThatReturnFalseAsFailures)
{
    const ProcessResult result = evaluate(clockInQuarters + object("painter", "Failing", "set = { how = 'return' }\n"));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("5 steps, 4 failures, the first in step 1\n"));
    EXPECT_THAT(result.err, HasSubstr("\"painter\" failed: its update returned false\n"));
}

TEST(Evaluation, settlesALoop)
{
    const ProcessResult result = evaluate(object("a", "Counter", "set = { limit = 20 }\nconnect = { in = 'b.out' }\n")
                                          + object("b", "Counter", "set = { limit = 20 }\nconnect = { in = 'a.out' }\n")
                                          + column("a", "a.out") + column("b", "b.out"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,a,b\n0,20,20\n");
}

TEST(Evaluation, stopsALoopThatDoesNotSettleAndNamesItsObjects)
{
    const ProcessResult result = evaluate(
        object("hen", "Counter", "connect = { in = 'egg.out' }\n")
        + object("egg", "Counter", "connect = { in = 'hen.out' }\n") + object("other", "Adder", "set = { a = 1 }\n")
        + object("reader", "Adder", "connect = { a = 'egg.out' }\n") + column("sum", "other.sum")
        + column("egg", "egg.out") + column("read", "reader.sum"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "step,sum,egg,read\n0,1,,\n");
    EXPECT_THAT(result.err, AllOf(HasSubstr("A loop did not settle"), HasSubstr("\"hen\""), HasSubstr("\"egg\""),
                                  HasSubstr("net.toml: 4 objects, 1 step, 1 loop stopped, the first in step 0\n"),
                                  HasSubstr("  egg: error: its loop did not settle in 100 rounds (1 object waits")));
}

TEST(Evaluation, keepsTheLastValueOfARemovedObject)
{
    const ProcessResult result = evaluate(clockInQuarters + object("victim", "TimeReader")
                                          + object("reader", "Adder", "connect = { a = 'victim.out' }\n")
                                          + object("killer", "Remover", "set = { victim = 'victim' }\n")
                                          + column("victim", "victim.out") + column("reader", "reader.sum"));
    EXPECT_EQ(result.status, 0);
    // The victim is removed in step 1, after its update, and is not updated again.
    EXPECT_THAT(result.out,
                HasSubstr("step,victim,reader\n0,0,0\n1,0.25,0.25\n2,0.25,0.25\n3,0.25,0.25\n4,0.25,0.25\n"));
}

TEST(Evaluation, endsWhenTheTimeProviderIsRemoved)
{
    const ProcessResult result =
        evaluate(clockInQuarters + object("reader", "TimeReader")
                 + object("killer", "Remover", "set = { victim = 'clock' }\n") + column("time", "reader.out"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "step,time\n0,0\n1,0.25\n");
    EXPECT_THAT(result.err,
                HasSubstr("tarn: error: object \"clock\", which provided the time, was removed before step 2\n"));
}

TEST(Evaluation, endsWhenAnObjectCancelsIt)
{
    const TestFolder folder;
    const ProcessResult result = runTarn({"run", folder.write("net.toml", networkHead + object("c", "Canceller")),
                                          "--table=" + folder.file("table.csv")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("tarn: an object cancelled the evaluation in step 0; no table was written\n"));
    EXPECT_THAT(folder.names(), testing::ElementsAre("net.toml"));
}

TEST(Evaluation, writesNumbersTheSameInEveryLocale)
{
    const TestFolder folder;
    const std::string file = folder.write(
        "net.toml", networkHead + object("l", "LocaleSetter")
                        + object("a", "Adder", "set = { a = '0.25', b = 1.5 }\nconnect = { b = 'l.out' }\n")
                        + column("number", "l.out") + column("sum", "a.sum"));
    const ProcessResult result = runTarn({"run", file, "--table=-"}, {{"LC_ALL=de_DE.UTF-8"}, {}});
    EXPECT_EQ(result.err, file + ": 2 objects, 1 step\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,number,sum\n0,1234567.5,1234567.75\n");
}

TEST(Evaluation, evaluatesTenThousandObjects)
{
    std::string network = object("object 0", "Adder", "set = { a = 1 }\n");
    for (int i = 1; i < 10000; ++i)
        network += object("object " + std::to_string(i), "Adder",
                          "set = { b = 1 }\nconnect = { a = 'object " + std::to_string(i - 1) + ".sum' }\n");
    const ProcessResult result = evaluate(network + column("sum", "object 9999.sum"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "step,sum\n0,10000\n");
    EXPECT_THAT(result.err, HasSubstr("net.toml: 10000 objects, 1 step\n"));
}

TEST(Evaluation, attributesFailuresAtTheEndToTheLastStep)
{
    const ProcessResult result = evaluate(clockInQuarters + object("run", "Run")
                                          + object("touchy", "Touchy", "connect = { trigger = 'run.finished' }\n"));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("5 steps, 1 failure, the first in step 4\n"));
}

} // namespace EvaluationTest
