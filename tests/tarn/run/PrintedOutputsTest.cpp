#include <tarn/run/PrintedOutputs.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace PrintedOutputsTest {

using testing::HasSubstr;

namespace {

const std::string network = clockInQuarters + object("a.b", "Adder", "connect = { a = 'clock.GlobalTime.time' }\n")
                            + object("e", "Echo", "set = { text = \"two\\nlines\\t\\\\ \" }\n") + object("d", "Dotted");

ProcessResult run(const std::string& text, const std::vector<std::string>& options)
{
    const TestFolder folder;
    folder.write("net.toml", networkHead + text);
    std::vector<std::string> arguments{"run", "net.toml"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runTarn(arguments, {.environment = {}, .shell = "cd '" + folder.path() + "'"});
}

} // namespace

TEST(PrintedOutputs, areTheLastValuesInTheRequestedOrder)
{
    const ProcessResult result = run(network, {"--print=e.out", "--print=a.b.sum", "--print=clock.GlobalTime",
                                               "--print=clock.GlobalTime.range.end", "--print=d.out.range.time"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "e.out: two\\nlines\\t\\\\ \n"
                          "a.b.sum: 1\n"
                          "clock.GlobalTime: 1[0,1]@0.25\n"
                          "clock.GlobalTime.range.end: 1\n"
                          "d.out.range.time: 0\n");
}

TEST(PrintedOutputs, areNotTruncated)
{
    const std::string text(100000, 'x');
    EXPECT_EQ(run(object("e", "Echo", "set = { text = '" + text + "' }\n"), {"--print=e.out"}).out,
              "e.out: " + text + "\n");
}

TEST(PrintedOutputs, mayBelongToObjectsThatTheFileDoesNotName)
{
    const ProcessResult result = run(object("f", "Follower"), {"--print=ChartSelector.CurrentChart"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "ChartSelector.CurrentChart: \n");
}

TEST(PrintedOutputs, areRefusedWithASuggestionBeforeAnythingRuns)
{
    const ProcessResult result =
        run(network + object("talker", "Talker"),
            {"--print=a.b.sun", "--print=clok.GlobalTime", "--print=sum", "--print=a.b.x*",
             "--print=clock.GlobalTime.tme", "--print=a.b.sum.", "--table=table.csv", "--trace=trace.json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "talker: puts in the constructor\n"
              "--print=a.b.sun: Adder \"a.b\" has no output \"sun\"; did you mean \"sum\"?\n"
              "--print=clok.GlobalTime: no object is named \"clok\"; did you mean \"clock\"?\n"
              "--print=sum: found \"sum\", expected OBJECT.OUTPUT\n"
              "--print=a.b.x*: no output matches the pattern\n"
              "--print=clock.GlobalTime.tme: values of type time have no component \"tme\"; did you mean \"time\"?\n"
              "--print=a.b.sum.: found nothing after the last dot, expected the name of a component\n"
              "net.toml: 6 faults; nothing was evaluated\n");
}

TEST(PrintedOutputs, mayBeInputs)
{
    EXPECT_EQ(run(network, {"--print=a.b.a", "--print=a.b.b", "--print=clock.time"}).out,
              "a.b.a: 1\na.b.b: 0\nclock.time: 1[0,1]@0.25\n");
}

TEST(PrintedOutputs, arePreferredToInputsOfTheSameName)
{
    EXPECT_EQ(run(object("d", "Doubler", "set = { value = 5 }\n"), {"--print=d.value"}).out, "d.value: 10\n");
}

TEST(PrintedOutputs, mayBeNamedByAPattern)
{
    EXPECT_EQ(run(network, {"--print=*"}).out, "clock.GlobalTime: 1[0,1]@0.25\na.b.sum: 1\n"
                                               "e.out: two\\nlines\\t\\\\ \nd.out.range: 0[0,0]@0\n");
    EXPECT_EQ(run(network, {"--print=*.sum", "--print=a.b.s*m*"}).out, "a.b.sum: 1\na.b.sum: 1\n");
    EXPECT_EQ(run(network, {"--print=*.b.*"}).out, "a.b.sum: 1\n");
    EXPECT_EQ(run(object("a*", "Adder") + object("ab", "Adder"), {"--print=a*.sum"}).out, "a*.sum: 0\n")
        << "an exact name is not a pattern";
}

TEST(PrintedOutputs, areReplacedByTheFailureOfTheirObject)
{
    const ProcessResult result =
        run(clockInQuarters + object("f", "Failing") + object("sum", "Adder", "connect = { a = 'f.out' }\n")
                + object("other", "Adder", "set = { a = 1 }\n"),
            {"--print=f.out", "--print=sum.sum", "--print=other.sum", "--print=sum.a"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "other.sum: 1\n");
    EXPECT_THAT(result.err,
                HasSubstr("tarn: error: output \"f.out\" cannot be printed: Failing \"f\" failed: out of paint\n"
                          "tarn: error: output \"sum.sum\" cannot be printed: Adder \"sum\" waits for "
                          "Failing \"f\", which failed\n"
                          "tarn: error: input \"sum.a\" cannot be printed: "));
    EXPECT_THAT(result.err, HasSubstr("net.toml: 4 objects, 5 steps, 4 failures, the first in step 1\n"));
}

} // namespace PrintedOutputsTest
