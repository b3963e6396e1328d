#include <tarn/run/StepEvaluation.hpp>

#include <tarn/network/Session.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace StepEvaluationTest {

using Tarn::Context;
using Tarn::Row;
using Tarn::Session;
using Tarn::StepOptions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct Evaluated {
    bool isComplete = false;
    std::vector<Row> rows{};
    std::vector<std::uint64_t> steps{};
    std::vector<std::string> reasons{}; // why the steps were evaluated in order
    Tarn::EvaluationSummary summary{};
    std::string last{}; // text of the first column's output in the context
    int contexts = 0;   // further ones
};

class StepEvaluationTest : public testing::Test {
protected:
    StepEvaluationTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }
    ~StepEvaluationTest() override { ::unsetenv("TARN_LIBRARIES"); }

    static Evaluated evaluate(const std::string& network, unsigned threads, const std::string& output = {},
                              const Orla::VCancellation& cancellation = {})
    {
        const TestFolder folder;
        const Session session = Session::read(networkHead + network, "net.toml", folder.path());
        EXPECT_TRUE(session.faults().empty()) << session.faults().lines().front();
        Evaluated result;
        Context context{session};
        std::atomic<int> contexts{0};
        StepOptions options;
        options.threads = threads;
        options.receive = [&](std::uint64_t step, const Row& row) {
            result.steps.push_back(step);
            result.rows.push_back(row);
        };
        options.makeContext = [&] {
            ++contexts;
            return Context{session};
        };
        options.reportOrder = [&](const std::string& reason) { result.reasons.push_back(reason); };
        result.isComplete = evaluateSteps(context, options, cancellation);
        result.summary = context.summary();
        if (!output.empty())
            result.last = *context.text(output);
        result.contexts = contexts;
        return result;
    }

    // Expects that several threads return what one returns, in ascending order.
    static Evaluated evaluateAndCompare(const std::string& network, const std::string& output = {})
    {
        const Evaluated serial = evaluate(network, 1, output);
        Evaluated concurrent = evaluate(network, 3, output);
        EXPECT_EQ(concurrent.isComplete, serial.isComplete);
        EXPECT_EQ(concurrent.rows, serial.rows);
        EXPECT_EQ(concurrent.steps, serial.steps);
        EXPECT_EQ(concurrent.summary.steps, serial.summary.steps);
        EXPECT_EQ(concurrent.summary.failures, serial.summary.failures);
        EXPECT_EQ(concurrent.summary.firstTrouble, serial.summary.firstTrouble);
        EXPECT_EQ(concurrent.last, serial.last);
        EXPECT_EQ(serial.contexts, 0);
        return concurrent;
    }
};

std::string clockWithSteps(int count)
{
    return object("clock", "GlobalTime", "set = { time = '0[0," + std::to_string(count - 1) + "]@1' }\n");
}

} // namespace

TEST_F(StepEvaluationTest, returnsTheRowsOfAnEvaluationInOrder)
{
    for (const int steps : {1, 2, 3, 5, 6, 7, 40, 203}) {
        SCOPED_TRACE(steps);
        const Evaluated result = evaluateAndCompare(clockWithSteps(steps) + object("sleeper", "Sleeper")
                                                        + object("adder", "Adder", "connect = { a = 'sleeper.out' }\n")
                                                        + column("sum", "adder.sum"),
                                                    "adder.sum");
        EXPECT_THAT(result.rows, SizeIs(steps));
        EXPECT_THAT(result.reasons, IsEmpty());
        EXPECT_EQ(result.last, std::to_string(steps - 1));
        EXPECT_EQ(result.contexts > 0, steps >= 6);
    }
}

TEST_F(StepEvaluationTest, keepsTheOrderIfAnObjectReadsItsEarlierOutput)
{
    const Evaluated result = evaluateAndCompare(
        clockWithSteps(20) + object("integral", "Integrator") + column("sum", "integral.sum"), "integral.sum");
    EXPECT_EQ(result.last, "190");
    EXPECT_THAT(result.reasons, ElementsAre("object \"integral\" reads its earlier output \"sum\""));
    EXPECT_EQ(result.contexts, 0);
}

TEST_F(StepEvaluationTest, keepsTheOrderIfAnObjectDeclaresIt)
{
    const Evaluated result = evaluate(clockWithSteps(20) + object("tally", "Tally"), 3, "tally.count");
    EXPECT_EQ(result.last, "20");
    EXPECT_THAT(result.reasons, ElementsAre("object \"tally\" keeps state in its members"));
}

TEST_F(StepEvaluationTest, keepsTheOrderIfAnObjectWritesFiles)
{
    const Evaluated result = evaluateAndCompare(clockWithSteps(20) + object("report", "Reporter"));
    EXPECT_THAT(result.reasons, ElementsAre("object \"report\" writes files"));
}

TEST_F(StepEvaluationTest, startsAgainInOrderIfTheSameStepHasAnotherRow)
{
    const Evaluated result =
        evaluate(clockWithSteps(60) + object("secretive", "Tally") + column("count", "secretive.count"), 3);
    EXPECT_TRUE(result.isComplete);
    EXPECT_THAT(result.rows, SizeIs(60));
    EXPECT_THAT(result.reasons, ElementsAre("the results of step 1 depend on earlier steps"));
}

TEST_F(StepEvaluationTest, startsAgainInOrderIfAStepFails)
{
    // The time is above 0 in all steps but the first, and in all steps after the fifth.
    for (const std::string range : {"0:1", "-5:30"}) {
        SCOPED_TRACE(range);
        const Evaluated result =
            evaluateAndCompare(clockWithSteps(36) + object("failing", "Failing", "set = { range = '" + range + "' }\n")
                               + column("out", "failing.out"));
        EXPECT_FALSE(result.summary.isFine());
        EXPECT_THAT(result.reasons, ElementsAre("an update fails"));
    }
}

TEST_F(StepEvaluationTest, endsWhenItIsCancelled)
{
    Orla::VCancellation cancellation;
    std::thread canceller{[&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        cancellation.cancel();
    }};
    const Evaluated result = evaluate(
        clockWithSteps(1000000) + object("sleeper", "Sleeper") + column("out", "sleeper.out"), 3, {}, cancellation);
    canceller.join();
    EXPECT_FALSE(result.isComplete);
    EXPECT_TRUE(result.summary.cancelled);
    EXPECT_EQ(result.summary.steps, result.rows.size());
}

TEST_F(StepEvaluationTest, passesOnAnExceptionOfTheReceiver)
{
    const Session session =
        Session::read(networkHead + clockWithSteps(100) + object("sleeper", "Sleeper"), "net.toml", ".");
    Context context{session};
    StepOptions options;
    options.threads = 3;
    options.makeContext = [&] { return Context{session}; };
    options.receive = [](std::uint64_t step, const Row&) {
        if (step == 50)
            throw std::runtime_error{"disk full"};
    };
    EXPECT_THROW(evaluateSteps(context, options, {}), std::runtime_error);
}

} // namespace StepEvaluationTest
