#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include "tarn/LoadedLibraries.hpp"
#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace GlobalTimeTest {

using Orla::StrongPtr;
using Orla::VObject;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class GlobalTimeTest : public LoadedLibraries {
protected:
    static std::string network(const std::string& inputs)
    {
        return "format = 1\nlibraries = ['testobjects']\n\n[[object]]\nname = 'clock'\ntype = 'GlobalTime'\nset = { "
               + inputs
               + " }\n\n[[object]]\nname = 'reader'\ntype = 'TimeReader'\n\n"
                 "[[column]]\ntitle = 'time'\nvalue = 'reader.out'\n";
    }

    static ProcessResult run(const std::string& inputs)
    {
        const TestFolder folder;
        return runTarn({"run", folder.write("net.toml", network(inputs)), "--table=-"});
    }

    // Returns the times of all steps of a run.
    static std::vector<std::string> timesOf(const std::string& inputs)
    {
        const ProcessResult result = run(inputs);
        EXPECT_EQ(result.status, 0) << result.err;
        std::vector<std::string> times;
        std::istringstream lines{result.out};
        for (std::string line; std::getline(lines, line);)
            times.push_back(line.substr(line.find(',') + 1));
        if (!times.empty())
            times.erase(times.begin());
        return times;
    }

    const StrongPtr<Orla::ValuePool> pool = Loam::makeStrong<Orla::ValuePool>();
};

} // namespace

TEST_F(GlobalTimeTest, outputsItsTime)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    EXPECT_TRUE(clock->findSlot("time")->setInitialText("3[1,9]@0.5"));
    Orla::VScheduler::scheduleAll(pool);
    EXPECT_EQ(Orla::VScheduler::run(pool).failures, 0u);
    EXPECT_EQ(clock->findOutput("GlobalTime")->getLocalValue(pool)->Text(), "3[1,9]@0.5");
}

TEST_F(GlobalTimeTest, beginsWithTheTimesFrom0To1)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    EXPECT_EQ(clock->findSlot("time")->getLocalValue(pool)->Text(), "0[0,1]@1");
    EXPECT_EQ(clock->findOutput("GlobalTime")->getLocalValue(pool)->Text(), "0[0,1]@1");
}

TEST_F(GlobalTimeTest, succeedsIfTheTimeIsUnchanged)
{
    VObject::createObject("GlobalTime", "clock");
    for (int round = 0; round < 2; ++round) {
        Orla::VScheduler::scheduleAll(pool);
        EXPECT_EQ(Orla::VScheduler::run(pool).failures, 0u);
    }
}

TEST_F(GlobalTimeTest, providesItsTimeToObjectsThatDependOnTime)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    const StrongPtr<VObject> reader = VObject::createObject("TimeReader", "reader");
    EXPECT_EQ(Orla::VManagedObject::count(), 2u);
    EXPECT_EQ(reader->findSlot("time")->parameter(), clock->findOutput("GlobalTime")->parameter());
}

TEST_F(GlobalTimeTest, isCreatedOnceForAllObjectsThatDependOnTime)
{
    const StrongPtr<VObject> one = VObject::createObject("TimeReader", "one");
    const StrongPtr<VObject> other = VObject::createObject("TimeReader", "other");
    EXPECT_EQ(Orla::VManagedObject::count(), 3u);
    EXPECT_EQ(one->findSlot("time")->parameter(), other->findSlot("time")->parameter());
    EXPECT_EQ(one->findSlot("time")->parameter()->DefaultValue()->Text(), "0[0,1]@1");
}

TEST_F(GlobalTimeTest, stepsFromOneInstantToAnother)
{
    const auto table = timesOf("from = '2024-02-28', to = '2024-03-01T00:00:00Z', step = 'PT12H'");
    EXPECT_THAT(table, ElementsAre("1709078400", "1709121600", "1709164800", "1709208000", "1709251200"));
}

TEST_F(GlobalTimeTest, endsWithTheLastStepThatIsNotAfterTheEnd)
{
    EXPECT_THAT(timesOf("from = 0, to = 10, step = 4"), ElementsAre("0", "4", "8"));
    EXPECT_THAT(timesOf("from = 0, to = 11.5, step = 4"), ElementsAre("0", "4", "8"));
    EXPECT_THAT(timesOf("from = 0, to = 12, step = 4"), ElementsAre("0", "4", "8", "12"));
    EXPECT_THAT(timesOf("from = 0, to = 3, step = 4"), ElementsAre("0"));
}

TEST_F(GlobalTimeTest, reachesTheEndInFractionsOfASecondToo)
{
    EXPECT_THAT(timesOf("from = 0, to = '0.3 s', step = '0.1 s'"), testing::SizeIs(4));
    EXPECT_THAT(timesOf("from = '1969-12-31T23:59:59.9Z', to = '1970-01-01T00:00:00.2Z', step = '0.1 s'"),
                testing::SizeIs(4));
    EXPECT_THAT(timesOf("from = '2026-01-01T00:00:00.1Z', to = '2026-01-01T00:00:10Z', step = '0.01 s'"),
                testing::SizeIs(991));
}

TEST_F(GlobalTimeTest, stepsFromEndToEndWithoutAStep)
{
    EXPECT_THAT(timesOf("from = '-1 h', to = '2 min'"), ElementsAre("-3600", "120"));
    EXPECT_THAT(timesOf("from = '2026-01-01', to = '2026-01-01'"), ElementsAre("1767225600"));
    EXPECT_THAT(timesOf("from = 5, to = 5, step = 1"), ElementsAre("5"));
}

TEST_F(GlobalTimeTest, beginsAtItsBeginBeforeAHostStepsIt)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    for (const auto& [input, text] : {std::pair{"from", "-10"}, {"to", "10"}, {"step", "1"}})
        EXPECT_TRUE(clock->findSlot(input)->setInitialText(text));
    Orla::VScheduler::scheduleAll(pool);
    EXPECT_EQ(Orla::VScheduler::run(pool).failures, 0u);
    EXPECT_EQ(clock->findOutput("GlobalTime")->getLocalValue(pool)->Text(), "-10[-10,10]@1");
}

TEST_F(GlobalTimeTest, reportsAnIntervalThatHasNoMeaning)
{
    const struct {
        const char* inputs;
        const char* message;
    } cases[] = {
        {"from = 0", "found no \"to\", expected both \"from\" and \"to\""},
        {"to = 0, step = 1", "found no \"from\", expected both"},
        {"step = 1", "found no \"from\""},
        {"from = 0, to = 2, time = '0[0,10]@1'",
         "found \"time\" set beside \"from\", \"to\" or \"step\", expected either"},
        {"from = '2026-01-01', to = '10 d'",
         "\"from\" is 2026-01-01T00:00:00Z and \"to\" is 10 d, expected two instants or two numbers"},
        {"from = '2026-01-02', to = '2026-01-01'",
         "\"to\" is 2026-01-01T00:00:00Z, expected a time not before \"from\", 2026-01-02T00:00:00Z"},
        {"from = '-1e308 s', to = '1e308 s'", "the interval from -1e+308 to 1e+308 is too long"},
        {"from = '2026-01-01', to = '2026-01-02', step = '1e-9 s'",
         "\"step\" is 1e-09 s, expected 3.814697265625e-06 s or more at this distance from 0"},
        {"from = 0, to = '1000000 d', step = '1e-3 s'", " has 86400000000001 steps, "},
    };
    for (const auto& [inputs, message] : cases) {
        SCOPED_TRACE(inputs);
        const ProcessResult result = run(inputs);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, testing::ContainsRegex("net.toml:[47]:[0-9]+: object \"clock\""));
        EXPECT_THAT(result.err, HasSubstr(message));
        EXPECT_EQ(result.out, "");
    }
}

TEST_F(GlobalTimeTest, showsAnExampleIfATextIsRefused)
{
    EXPECT_THAT(
        run("from = '1 month', to = 1").err,
        HasSubstr("input \"from\": the text \"1 month\" is refused, expected a value of type moment, for example "
                  "\"2026-01-31T06:00:00Z\"\n"));
    EXPECT_THAT(run("from = 0, to = 1, step = 0").err,
                HasSubstr("input \"step\": the text \"0\" is refused, expected a value of type time step, for example "
                          "\"6 h\"\n"));
}

TEST_F(GlobalTimeTest, failsInAnEvaluationIfALaterEndIsBeforeItsBegin)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    EXPECT_TRUE(clock->findSlot("from")->setInitialText("1"));
    EXPECT_TRUE(clock->findSlot("to")->setInitialText("0"));
    Orla::VScheduler::scheduleAll(pool);
    EXPECT_EQ(Orla::VScheduler::run(pool).failures, 1u);
}

TEST_F(GlobalTimeTest, canBeVariedInAStudy)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network("from = 0, to = 0, step = 1"));
    const ProcessResult result = runTarn({"run", file, "--table=-", "--sweep=clock.from=0,-1"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, testing::MatchesRegex("(.|\n)*0,0,0\n(.|\n)*0,-1\n(.|\n)*1,0\n"));
}

TEST_F(GlobalTimeTest, keepsItsIntervalWhenItIsSaved)
{
    const TestFolder folder;
    const std::string file =
        folder.write("net.toml", network("from = ' 2026-01-01', to = 2026-01-02T00:00, step = 'P1D'"));
    EXPECT_NE(runTarn({"convert", file, "-"}).status, 0) << "TOML dates need quotes";
    folder.write("net.toml", network("from = ' 2026-01-01', to = '2026-01-02T01:00+01:00', step = 'P1D'"));
    const ProcessResult once = runTarn({"convert", file, "-"});
    EXPECT_THAT(once.out, HasSubstr("set.from = \"2026-01-01T00:00:00Z\"\nset.to = \"2026-01-02T00:00:00Z\"\n"
                                    "set.step = \"1 d\"\n"));
    folder.write("net.toml", once.out);
    EXPECT_EQ(runTarn({"convert", file, "-"}).out, once.out);
}

} // namespace GlobalTimeTest
