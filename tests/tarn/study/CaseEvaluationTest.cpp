#include <tarn/study/CaseEvaluation.hpp>

#include <tarn/network/Session.hpp>
#include <tarn/study/Sweep.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace CaseEvaluationTest {

using Tarn::CaseEvaluation;
using Tarn::CaseResult;
using Tarn::Session;
using Tarn::Sweep;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class CaseEvaluationTest : public testing::Test {
protected:
    CaseEvaluationTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }
    ~CaseEvaluationTest() override { ::unsetenv("TARN_LIBRARIES"); }

    // Evaluates the last of the cases of an input.
    CaseResult evaluate(const std::string& network, const std::string& input, std::vector<std::string> texts,
                        CaseEvaluation::Options options = {}, const Orla::VCancellation& cancellation = {}) const
    {
        const Session session = Session::read(networkHead + network, "net.toml", m_folder.path());
        EXPECT_TRUE(session.faults().empty()) << session.faults().lines().front();
        Sweep sweep;
        EXPECT_TRUE(sweep.add(input, std::move(texts)));
        return CaseEvaluation{session, sweep, std::move(options)}.evaluate(sweep.caseCount() - 1, cancellation);
    }

    const TestFolder m_folder;
};

} // namespace

TEST_F(CaseEvaluationTest, returnsTheRowOfEachStep)
{
    const CaseResult result = evaluate(clockInQuarters + object("sleeper", "Sleeper") + column("out", "sleeper.out"),
                                       "sleeper.in", {"1", "10"});
    EXPECT_EQ(result.number, 1u);
    EXPECT_FALSE(result.hasFailed);
    EXPECT_THAT(result.messages, IsEmpty());
    EXPECT_THAT(result.rows, ElementsAre(ElementsAre("10"), ElementsAre("10.25"), ElementsAre("10.5"),
                                         ElementsAre("10.75"), ElementsAre("11")));
}

TEST_F(CaseEvaluationTest, namesFilesAfterTheCaseAndTheStep)
{
    evaluate(clockInQuarters + object("report", "Reporter"), "report.text", {"a", "b"});
    EXPECT_THAT(m_folder.names(),
                ElementsAre("report-case1-step0.txt", "report-case1-step1.txt", "report-case1-step2.txt",
                            "report-case1-step3.txt", "report-case1-step4.txt"));
    EXPECT_EQ(contentOf(m_folder.file("report-case1-step3.txt")), "b 0.75");
}

TEST_F(CaseEvaluationTest, namesFilesAfterTheCaseWithoutSeveralSteps)
{
    evaluate(object("clock", "GlobalTime", "set = { time = '0[0,0]@1' }\n") + object("report", "Reporter"),
             "report.text", {"a", "b"});
    EXPECT_THAT(m_folder.names(), ElementsAre("report-case1.txt"));
}

TEST_F(CaseEvaluationTest, reportsWhyACaseFailed)
{
    const CaseResult result =
        evaluate(clockInQuarters + object("sleeper", "Sleeper") + column("out", "sleeper.out"), "sleeper.in", {"-1"});
    EXPECT_TRUE(result.hasFailed);
    EXPECT_THAT(result.messages,
                ElementsAre("error: 5 failures, the first in step 0", "  sleeper: error: the number is negative"));
    EXPECT_THAT(result.rows.front(), ElementsAre(std::nullopt));
}

TEST_F(CaseEvaluationTest, reportsATimeThatCannotBeStepped)
{
    const CaseResult result = evaluate(clockInQuarters, "clock.time", {"0[0,inf]@1"});
    EXPECT_TRUE(result.hasFailed);
    EXPECT_THAT(result.messages, ElementsAre(HasSubstr("the time 0[0,inf]@1 has inf steps")));
    EXPECT_THAT(result.rows, IsEmpty());
}

TEST_F(CaseEvaluationTest, reportsAnUnknownChoice)
{
    const CaseResult result = evaluate(object("places", "Picker", "set = { offered = 'Africa,Asia,Europe' }\n"),
                                       "places.one", {"Asia@Asia|", "Asai@Asai|"});
    EXPECT_TRUE(result.hasFailed);
    EXPECT_THAT(result.messages, ElementsAre(HasSubstr("\"Asai\"")));
}

TEST_F(CaseEvaluationTest, printsOutputs)
{
    const CaseResult result = evaluate(object("a", "Adder"), "a.b", {"2"}, {.printed = {"a.sum", "a.none"}});
    EXPECT_THAT(result.printed, ElementsAre("a.sum: 2", "a.none: "));
    EXPECT_THAT(result.messages, ElementsAre(HasSubstr("output \"a.none\" cannot be printed")));
    EXPECT_TRUE(result.hasFailed);
}

TEST_F(CaseEvaluationTest, isNotCompleteIfItIsCancelled)
{
    Orla::VCancellation cancellation;
    cancellation.cancel();
    EXPECT_TRUE(evaluate(object("a", "Adder"), "a.b", {"2"}, {}, cancellation).isCancelled);
}

TEST_F(CaseEvaluationTest, evaluatesStepsInSeveralThreads)
{
    const std::string network = object("clock", "GlobalTime", "set = { time = '0[0,40]@1' }\n")
                                + object("sleeper", "Sleeper") + column("out", "sleeper.out");
    const CaseResult serial = evaluate(network, "sleeper.in", {"5"});
    EXPECT_EQ(serial.rows.size(), 41u);
    EXPECT_EQ(evaluate(network, "sleeper.in", {"5"}, {.stepThreads = 3}), serial);
}

} // namespace CaseEvaluationTest
