#include <tarn/study/Study.hpp>

#include <tarn/network/Session.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace StudyTest {

using Tarn::CaseResult;
using Tarn::Faults;
using Tarn::Session;
using Tarn::Study;
using Tarn::StudyOptions;
using Tarn::Sweep;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class StudyTest : public testing::Test {
protected:
    StudyTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }
    ~StudyTest() override { ::unsetenv("TARN_LIBRARIES"); }

    Session open(const std::string& network) const
    {
        Session session = Session::read(networkHead + network, "net.toml", m_folder.path());
        EXPECT_TRUE(session.faults().empty()) << session.faults().lines().front();
        return session;
    }

    static std::vector<std::string> faultsOf(const Session& session, const Sweep& sweep)
    {
        Faults faults{"net.toml"};
        Study{session, sweep}.check(faults);
        return faults.lines();
    }

    // Returns the results in the order of the cases.
    static std::vector<CaseResult> resultsOf(const Study& study, const StudyOptions& options)
    {
        std::vector<CaseResult> results;
        EXPECT_TRUE(study.run(options, [&](CaseResult result) { results.push_back(std::move(result)); }));
        std::ranges::sort(results, {}, &CaseResult::number);
        return results;
    }

    static Sweep sweepOf(const std::string& input, int count)
    {
        std::vector<std::string> texts;
        for (int i = 0; i < count; ++i)
            texts.push_back(std::to_string(i));
        Sweep sweep;
        EXPECT_TRUE(sweep.add(input, std::move(texts)));
        return sweep;
    }

    const TestFolder m_folder;
};

const std::string sleeper = clockInQuarters + object("sleeper", "Sleeper") + column("out", "sleeper.out");

} // namespace

TEST_F(StudyTest, refusesInputsThatDoNotExistOrAreConnected)
{
    const Session session = open(object("a", "Adder") + object("b", "Adder", "connect = { a = 'a.sum' }\n"));
    Sweep sweep;
    EXPECT_TRUE(sweep.add("a.c", {"1"}));
    EXPECT_TRUE(sweep.add("b.a", {"1"}));
    EXPECT_TRUE(sweep.add("b.b", {"1", "x", "2", "x"}));
    EXPECT_THAT(faultsOf(session, sweep),
                ElementsAre("cannot vary \"a.c\": Adder \"a\" has no input \"c\"; available: a, b",
                            "cannot vary \"b.a\": the input is connected, so a value would have no effect",
                            "cannot vary \"b.b\": the text \"x\" is refused, expected a value of type number"));
}

TEST_F(StudyTest, acceptsTextsOfItsInputs)
{
    EXPECT_THAT(faultsOf(open(object("a", "Adder")), sweepOf("a.a", 3)), IsEmpty());
}

TEST_F(StudyTest, returnsTheSameResultsInAnyNumberOfThreads)
{
    const Session session = open(sleeper);
    const Study study{session, sweepOf("sleeper.in", 20)};
    const std::vector<CaseResult> serial = resultsOf(study, {});
    ASSERT_THAT(serial, SizeIs(20));
    EXPECT_THAT(serial[7].rows[1], ElementsAre("7.25"));
    for (const unsigned jobs : {0u, 1u, 2u, 3u, 30u}) {
        SCOPED_TRACE(jobs);
        EXPECT_EQ(resultsOf(study, {.jobs = jobs}), serial);
    }
}

TEST_F(StudyTest, writesTheSameFilesInAnyNumberOfThreads)
{
    const Session session = open(object("report", "Reporter"));
    const Study study{session, sweepOf("report.text", 12)};
    resultsOf(study, {.jobs = 3});
    EXPECT_THAT(m_folder.names(), SizeIs(24));
    EXPECT_EQ(contentOf(m_folder.file("report-case11-step1.txt")), "11 1");
}

TEST_F(StudyTest, continuesAfterAFailedCase)
{
    const Session session = open(sleeper);
    Sweep sweep;
    EXPECT_TRUE(sweep.add("sleeper.in", {"1", "-1", "2"}));
    const std::vector<CaseResult> results = resultsOf(Study{session, sweep}, {.jobs = 2});
    ASSERT_THAT(results, SizeIs(3));
    EXPECT_FALSE(results[0].hasFailed);
    EXPECT_TRUE(results[1].hasFailed);
    EXPECT_FALSE(results[2].hasFailed);
}

TEST_F(StudyTest, evaluatesOnlyWhatDependsOnTheVariedInputs)
{
    const std::string file = m_folder.write("line", "read once");
    const Session session = open(object("reader", "FileReader", "set = { file = 'line' }\n") + object("a", "Adder")
                                 + column("line", "reader.line") + column("sum", "a.sum"));
    std::vector<CaseResult> results;
    Study{session, sweepOf("a.a", 3)}.run({.jobs = 1}, [&](CaseResult result) {
        std::filesystem::remove(file);
        results.push_back(std::move(result));
    });
    ASSERT_THAT(results, SizeIs(3));
    EXPECT_THAT(results[2].rows, ElementsAre(ElementsAre("read once", "2")));
}

TEST_F(StudyTest, startsFreshIfAnObjectDependsOnItsEarlierUpdates)
{
    const Session session = open(clockInQuarters + object("integral", "Integrator") + object("a", "Adder")
                                 + column("integral", "integral.sum"));
    for (const CaseResult& result : resultsOf(Study{session, sweepOf("a.a", 3)}, {}))
        EXPECT_THAT(result.rows.back(), ElementsAre("2.5"));
}

TEST_F(StudyTest, startsFreshIfAnObjectCompletesItsInputs)
{
    const Session session = open(object("p", "Picker") + column("chosen", "p.chosen"));
    Sweep sweep;
    EXPECT_TRUE(sweep.add("p.offered", {"Africa,Asia", "Asia,Africa"}));
    const std::vector<CaseResult> results = resultsOf(Study{session, sweep}, {});
    EXPECT_THAT(results[0].rows[0], ElementsAre("Africa"));
    EXPECT_THAT(results[1].rows[0], ElementsAre("Asia"));
}

TEST_F(StudyTest, reportsTheSameFailureInEachCase)
{
    const Session session = open(object("reader", "FileReader", "set = { file = 'none' }\n") + object("a", "Adder"));
    const std::vector<CaseResult> results = resultsOf(Study{session, sweepOf("a.a", 3)}, {});
    EXPECT_THAT(results[0].messages, SizeIs(2));
    EXPECT_EQ(results[2].messages, results[0].messages);
}

TEST_F(StudyTest, evaluatesCasesInOrderIfAnObjectKeepsState)
{
    const Session session = open(object("tally", "Tally") + column("count", "tally.count"));
    const Study study{session, sweepOf("tally.in", 300)};
    std::vector<std::string> reasons;
    const std::vector<CaseResult> results =
        resultsOf(study, {.jobs = 3, .reportOrder = [&](const std::string& reason) { reasons.push_back(reason); }});
    EXPECT_THAT(reasons, ElementsAre("object \"tally\" keeps state in its members"));
    for (std::size_t i = 0; i < 300; ++i)
        EXPECT_THAT(results[i].rows,
                    ElementsAre(ElementsAre(std::to_string(2 * i + 1)), ElementsAre(std::to_string(2 * i + 2))));
}

TEST_F(StudyTest, evaluatesCasesWithAHotKeyConcurrentlyUnlessEventsArePlayed)
{
    const Session session = open(object("key", "KeyAction"));
    const Study study{session, Sweep{}};
    EXPECT_EQ(study.orderReason({}), std::nullopt);
    EXPECT_EQ(study.orderReason({.events = {Tarn::ScriptedEvent{}}}), "object \"key\" keeps state in its members");
}

TEST_F(StudyTest, endsWhenItIsCancelled)
{
    const Session session = open(sleeper);
    const Study study{session, sweepOf("sleeper.in", 10000)};
    Orla::VCancellation cancellation;
    std::size_t received = 0;
    const bool isComplete = study.run(
        {.jobs = 2},
        [&](const CaseResult& result) {
            EXPECT_THAT(result.rows, SizeIs(5));
            if (++received == 10)
                cancellation.cancel();
        },
        cancellation);
    EXPECT_FALSE(isComplete);
    EXPECT_GE(received, 10u);
    EXPECT_LT(received, 1000u);
}

TEST_F(StudyTest, passesOnAnExceptionOfTheReceiver)
{
    const Session session = open(sleeper);
    const Study study{session, sweepOf("sleeper.in", 10000)};
    for (const unsigned jobs : {1u, 3u}) {
        std::size_t received = 0;
        EXPECT_THROW(study.run({.jobs = jobs},
                               [&](const CaseResult&) {
                                   ++received;
                                   throw std::runtime_error{"disk full"};
                               }),
                     std::runtime_error);
        EXPECT_LT(received, 1000u);
    }
}

TEST_F(StudyTest, evaluatesWhatAnExchangeHandsOut)
{
    struct Two final : Tarn::CaseExchange {
        std::vector<std::uint64_t> next(std::size_t) override
        {
            return left > 0 ? std::vector<std::uint64_t>{10 + left--} : std::vector<std::uint64_t>{};
        }
        void deliver(std::vector<CaseResult> more) override
        {
            for (CaseResult& result : more)
                results.push_back(std::move(result));
        }
        void end() override { left = 0; }

        std::uint64_t left = 2;
        std::vector<CaseResult> results;
    } exchange;
    const Session session = open(object("a", "Adder") + column("sum", "a.sum"));
    Study{session, sweepOf("a.b", 20)}.run({}, exchange, {});
    ASSERT_THAT(exchange.results, SizeIs(2));
    EXPECT_EQ(exchange.results[0].number, 12u);
    EXPECT_THAT(exchange.results[1].rows, ElementsAre(ElementsAre("11")));
}

} // namespace StudyTest
