#include <tarn/run/Context.hpp>

#include <tarn/network/Session.hpp>

#include <fathom/Double.hpp>
#include <fathom/VInteractionEvent.hpp>

#include <trellis/VScheduler.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ContextTest {

using Tarn::Context;
using Tarn::Session;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class ContextTest : public testing::Test {
protected:
    ContextTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }
    ~ContextTest() override { ::unsetenv("TARN_LIBRARIES"); }

    static Session open(const std::string& network)
    {
        Session session = Session::read(networkHead + network, "net.toml", ".");
        EXPECT_TRUE(session.faults().empty()) << session.faults().lines().front();
        return session;
    }

    static std::string reasonOf(const Loam::Result<void>& result) { return result ? "none" : result.reason(); }
};

const std::string sum = object("a", "Adder", "set = { a = 1, b = 2 }\n")
                        + object("b", "Adder", "connect = { a = 'a.sum' }\nset = { b = 10 }\n") + column("a", "a.sum")
                        + column("b", "b.sum");

} // namespace

TEST_F(ContextTest, readsOutputsInputsAndComponentsAsTextOrTyped)
{
    const Session session = open(sum + clockInQuarters);
    Context context{session};
    EXPECT_TRUE(context.evaluateStep());
    EXPECT_EQ(*context.text("b.sum"), "13");
    EXPECT_EQ(*context.get<double>("b.sum"), 13);
    EXPECT_EQ(*context.text("a.b"), "2");
    EXPECT_EQ(*context.get<double>("b.a"), 3);
    EXPECT_EQ(*context.get<double>("clock.GlobalTime.time"), 0);
    EXPECT_EQ(context.get<int>("b.sum").reason(), "found a value of type number, expected type integer");
    EXPECT_EQ(context.text("b.none").reason(), "Adder \"b\" has no output \"none\"; available: sum");
    EXPECT_THAT(context.row(), ElementsAre("3", "13"));
}

TEST_F(ContextTest, readsAndSetsTruthValues)
{
    const Session session = open(object("a", "Negation", "set.in = true\n"));
    Context context{session};
    EXPECT_TRUE(context.evaluate());
    EXPECT_EQ(*context.get<bool>("a.out"), false);
    EXPECT_TRUE(context.set("a.in", false));
    EXPECT_TRUE(context.evaluate());
    EXPECT_EQ(*context.text("a.out"), "true");
    EXPECT_TRUE(context.setText("a.in", "yes"));
    EXPECT_EQ(*context.get<bool>("a.in"), true);
    EXPECT_EQ(reasonOf(context.setText("a.in", "maybe")),
              "the text \"maybe\" is refused, expected \"true\" or \"false\"");
    EXPECT_EQ(context.get<double>("a.in").reason(), "found a value of type bool, expected type number");
}

TEST_F(ContextTest, stepsFromTheBeginningToTheEndOfTheTime)
{
    const Session session = open(clockInQuarters + object("reader", "TimeReader") + column("time", "reader.out"));
    Context context{session};
    EXPECT_EQ(*context.stepCount(), 5u);
    std::vector<std::string> times;
    while (context.evaluateStep())
        times.push_back(*context.text("reader.out"));
    EXPECT_THAT(times, ElementsAre("0", "0.25", "0.5", "0.75", "1"));
    EXPECT_EQ(context.summary().steps, 5u);
    EXPECT_TRUE(context.summary().isFine());
}

TEST_F(ContextTest, returnsTheTimeOfEachStep)
{
    const Session session = open(clockInQuarters);
    Context context{session};
    std::vector<double> times;
    while (context.evaluateStep())
        times.push_back(context.time()->time);
    EXPECT_THAT(times, ElementsAre(0, 0.25, 0.5, 0.75, 1));
    EXPECT_EQ(context.time()->dt, 0.25);

    const Session timeless = open(sum);
    EXPECT_FALSE(Context{timeless}.time());
}

TEST_F(ContextTest, returnsTheValuesOfTheColumns)
{
    const Session session = open(sum);
    Context context{session};
    EXPECT_TRUE(context.evaluate());
    const std::vector<Orla::StrongPtr<Orla::VValueBase>> values = context.values();
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0]->Text(), "3");
    EXPECT_EQ(values[1]->getType(), typeid(double));
    EXPECT_EQ(values[1]->Text(), "13");
}

TEST_F(ContextTest, findsOnlyOutputsIfAskedForOutputs)
{
    const Session session = open(sum + object("teller", "FailingTeller", "set = { status = 'input' }\n"));
    Context context{session};
    EXPECT_TRUE(context.evaluate());
    EXPECT_EQ((*context.output("b.sum"))->Text(), "13");
    EXPECT_EQ(context.output("b.a").reason(), "Adder \"b\" has no output \"a\"; that is an input");
    const auto input = *context.value("teller.status");
    const auto output = *context.output("teller.status");
    EXPECT_EQ(input->getType(), typeid(std::string)) << "an input and an output have the same name";
    EXPECT_NE(output->getType(), typeid(std::string));
}

TEST_F(ContextTest, isNotFineIfItsTimeCannotBeStepped)
{
    const Session session = open(clockInQuarters);
    Context context{session};
    EXPECT_TRUE(context.setText("clock.time", "0[0,inf]@1"));
    EXPECT_FALSE(context.evaluateStep());
    EXPECT_FALSE(context.summary().isFine());
    EXPECT_THAT(context.summary().timeRefusal, HasSubstr("the time 0[0,inf]@1 has inf steps"));
}

TEST_F(ContextTest, evaluatesAnyStep)
{
    const Session session = open(clockInQuarters + object("reader", "TimeReader"));
    Context context{session};
    for (const auto& [step, time] : {std::pair{3u, 0.75}, std::pair{1u, 0.25}}) {
        context.setStep(step);
        EXPECT_TRUE(context.evaluate());
        EXPECT_EQ(*context.get<double>("reader.out"), time);
    }
}

TEST_F(ContextTest, evaluatesOnlyWhatAChangeReaches)
{
    const Session session = open(sum);
    Context context{session};
    EXPECT_TRUE(context.evaluate());
    struct Counter final : Orla::VScheduler::Observer {
        void becameDue(const Orla::VObject&, Cause, const Orla::VParameter*, double) noexcept override {}
        void began(const Orla::VObject&) noexcept override {}
        void ended(const Orla::VObject& object, Result) noexcept override { names.push_back(object.Name()); }

        std::vector<std::string> names;
    } counter;
    Orla::VScheduler::observe(context.pool(), &counter);
    EXPECT_TRUE(context.set("b.b", 20.0));
    EXPECT_TRUE(context.evaluate());
    EXPECT_EQ(*context.text("b.sum"), "23");
    EXPECT_THAT(counter.names, ElementsAre("b"));
    Orla::VScheduler::observe(context.pool(), nullptr);
}

TEST_F(ContextTest, evaluatesAllStepsAgain)
{
    const Session session = open(clockInQuarters + object("reader", "TimeReader") + object("failing", "Failing"));
    Context context{session};
    while (context.evaluateStep()) {}
    EXPECT_FALSE(context.summary().isFine());
    context.startOver();
    EXPECT_EQ(context.summary().steps, 0u);
    EXPECT_TRUE(context.summary().isFine());
    EXPECT_TRUE(context.setText("clock.time", "0[0,1]@0.5"));
    std::vector<std::string> times;
    while (context.evaluateStep())
        times.push_back(*context.text("reader.out"));
    EXPECT_THAT(times, ElementsAre("0", "0.5", "1"));
}

TEST_F(ContextTest, hasItsOwnInputs)
{
    const Session session = open(sum);
    Context one{session};
    Context two{session};
    EXPECT_TRUE(one.setText("a.a", "100"));
    EXPECT_TRUE(one.evaluate());
    EXPECT_TRUE(two.evaluate());
    EXPECT_EQ(*one.text("b.sum"), "112");
    EXPECT_EQ(*two.text("b.sum"), "13");
}

TEST_F(ContextTest, refusesInputsWithAReason)
{
    const Session session = open(sum);
    Context context{session};
    EXPECT_EQ(reasonOf(context.setText("b.a", "1")), "the input is connected, so a value would have no effect");
    EXPECT_EQ(reasonOf(context.setText("a.a", "x")), "the text \"x\" is refused, expected a value of type number");
    EXPECT_EQ(reasonOf(context.set("a.a", 1)), "found a value of type integer, expected type number");
    EXPECT_EQ(reasonOf(context.setValue("a.a", nullptr)), "found no value, expected type number");
    EXPECT_EQ(reasonOf(context.setText("c.a", "1")), "no object is named \"c\"; available: a, b");
    EXPECT_EQ(*context.text("a.a"), "1");
}

TEST_F(ContextTest, reportsWhyAnOutputHasNoResult)
{
    const Session session =
        open(clockInQuarters + object("fails", "Failing") + object("waits", "Adder", "connect = { a = 'fails.out' }\n")
             + column("fails", "fails.out") + column("waits", "waits.sum"));
    Context context{session};
    EXPECT_TRUE(context.evaluateStep());
    EXPECT_THAT(context.row(), ElementsAre("42", "42"));
    EXPECT_TRUE(context.evaluateStep());
    EXPECT_THAT(context.row(), ElementsAre(std::nullopt, std::nullopt));
    EXPECT_EQ(context.text("fails.out").reason(), "Failing \"fails\" failed: out of paint");
    EXPECT_EQ(context.get<double>("waits.sum").reason(), "Adder \"waits\" waits for Failing \"fails\", which failed");
    EXPECT_EQ(context.text("waits.a").reason(), "Failing \"fails\" failed: out of paint") << "not the stale value";
    EXPECT_THAT(context.values(), ElementsAre(nullptr, nullptr));
    EXPECT_EQ(context.summary().failures, 1u);
    EXPECT_EQ(context.summary().firstTrouble, 1u);
    EXPECT_THAT(context.statuses().lines(), ElementsAre("  fails: error: out of paint (1 object waits for it)"));
}

TEST_F(ContextTest, endsIfATextChoosesWhatAnObjectDoesNotOffer)
{
    const Session session = open(object("p", "Picker", "set = { offered = 'Elbe,Danube', one = 'Elbe@Elbe|' }\n"));
    Context context{session};
    EXPECT_TRUE(context.setText("p.one", "Danub@Danub|"));
    EXPECT_FALSE(context.evaluateStep());
    EXPECT_THAT(context.summary().unknownChoices.lines(),
                ElementsAre("\"p.one\": \"Danub\" is not among the 2 choices; did you mean \"Danube\"?"));
    EXPECT_EQ(context.summary().steps, 0u);
}

TEST_F(ContextTest, followsTheChartOfItsOwn)
{
    Session session =
        open(object("maker", "Chartmaker", "set = { charts = 'plan,globe' }\n") + object("follower", "Follower"));
    EXPECT_TRUE(session.selectChart("plan"));
    Context one{session};
    Context two{session};
    EXPECT_TRUE(two.selectChart("globe"));
    EXPECT_TRUE(one.evaluateStep());
    EXPECT_TRUE(two.evaluateStep());
    EXPECT_EQ(*one.text("follower.out"), "plan");
    EXPECT_EQ(*two.text("follower.out"), "globe");
    EXPECT_THAT(two.charts(), ElementsAre("globe", "plan"));
    Context three{session};
    EXPECT_TRUE(three.selectChart("cone"));
    EXPECT_FALSE(three.evaluateStep());
    EXPECT_TRUE(three.summary().chartIsMissing);
}

TEST_F(ContextTest, playsEvents)
{
    const Session session = open(object("listener", "Listener"));
    Context context{session};
    EXPECT_TRUE(context.evaluate());
    Tarn::ScriptedEvent press;
    press.kind = Orla::VInteractionEvent::Press;
    press.x = 3;
    press.y = 4;
    EXPECT_TRUE(context.play(press));
    EXPECT_TRUE(context.evaluate());
    EXPECT_THAT(*context.text("listener.log"), HasSubstr("2@3,4"));
    const Session deaf = open(sum);
    EXPECT_EQ(reasonOf(Context{deaf}.play({})), "no object listens to events");
}

TEST_F(ContextTest, continuesAfterACancellation)
{
    const Session session = open(sum);
    Context context{session};
    Orla::VCancellation cancellation;
    cancellation.cancel();
    EXPECT_FALSE(context.evaluateStep(cancellation));
    EXPECT_TRUE(context.summary().cancelled);
    EXPECT_EQ(context.summary().steps, 0u);
    EXPECT_TRUE(context.evaluateStep());
    EXPECT_TRUE(context.summary().isFine());
    EXPECT_EQ(*context.text("b.sum"), "13");
}

TEST_F(ContextTest, giveTheSameResultsInSeveralThreads)
{
    const Session session = open(clockInQuarters + object("reader", "TimeReader")
                                 + object("a", "Adder", "connect = { a = 'reader.out' }\n") + column("a", "a.sum"));
    const auto evaluate = [&session](double offset) {
        Context context{session};
        EXPECT_TRUE(context.set("a.b", offset));
        std::string sums;
        while (context.evaluateStep())
            sums += *context.text("a.sum") + ' ';
        return sums;
    };
    std::vector<std::string> found(4);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < found.size(); ++i)
            threads.emplace_back([&, i] { found[i] = evaluate(static_cast<double>(i)); });
    }
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_EQ(found[i], evaluate(static_cast<double>(i)));
    EXPECT_EQ(found[1], "1 1.25 1.5 1.75 2 ");
}

TEST_F(ContextTest, mayBeEvaluatedWhileTheSessionChanges)
{
    Session session = open(sum);
    std::jthread evaluation{[&session] {
        for (int i = 0; i < 50; ++i) {
            Context context{session};
            EXPECT_TRUE(context.evaluate());
            EXPECT_EQ(*context.text("b.sum"), "13");
        }
    }};
    for (int i = 0; i < 50; ++i) {
        EXPECT_TRUE(session.create("Adder", "more"));
        EXPECT_TRUE(session.connect("b.sum", "more.a"));
        EXPECT_TRUE(session.rename("a", "renamed for a moment"));
        EXPECT_TRUE(session.rename("renamed for a moment", "a"));
        EXPECT_TRUE(session.remove("more"));
    }
}

} // namespace ContextTest
