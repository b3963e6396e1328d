#include "support/TestNetwork.hpp"

#include <algorithm>

namespace SerialRunTest {

// Runs of one pool in the calling thread, observed through the scheduler; above all, runs of
// objects that read each other in a loop.

using namespace Orla;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;
constexpr unsigned Limit = VScheduler::MaximalRounds;

class SerialRunTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};

    // Creates objects that read each other in a loop.
    static Nodes makeRing(const std::string& name, std::size_t count)
    {
        Nodes ring;
        for (std::size_t i = 0; i < count; ++i)
            ring.push_back(makeNode(name + std::to_string(i)));
        for (std::size_t i = 0; i < count; ++i)
            connect(ring[i], ring[(i + 1) % count]);
        return ring;
    }

    // Lets `node` write its input plus one, up to `highest`.
    static void countTo(const StrongPtr<Node>& node, double highest)
    {
        node->work = [highest](Node& self, VRequest& request, double) {
            const double next = contentOf(self.findSlot("in")->getValueBase(request.valuePool())) + 1;
            self.writeIfDifferent(request.valuePool(), "out", std::min(next, highest));
            return true;
        };
    }
};

} // namespace

TEST_F(SerialRunTest, runsALoopUntilNothingChanges)
{
    const Nodes ring = makeRing("r", 3);
    for (const StrongPtr<Node>& node : ring)
        countTo(node, 20);
    const auto reader = makeNode("reader");
    connect(ring[1], reader);
    VScheduler::schedule(ring[0], 0, pool);
    const VScheduler::Summary summary = VScheduler::run(pool);
    EXPECT_EQ(summary.stopped, 0u);
    EXPECT_EQ(summary.outcome, VScheduler::Outcome::Done);
    for (const StrongPtr<Node>& node : ring)
        EXPECT_EQ(node->read(pool, "out"), 20);
    EXPECT_EQ(reader->runs, 1u) << "readers of a loop wait until it has settled";
    EXPECT_EQ(reader->read(pool, "out"), 21);
    EXPECT_FALSE(VScheduler::isDue(pool));
}

TEST_F(SerialRunTest, runsALoopWithoutChangesOnce)
{
    const Nodes ring = makeRing("r", 4);
    for (const StrongPtr<Node>& node : ring)
        countTo(node, 0);
    runAll(ring, pool);
    EXPECT_THAT(runsOf(ring), Each(1u));
}

TEST_F(SerialRunTest, stopsALoopThatDoesNotSettleAndNamesItsMembersInOneWarning)
{
    const Nodes ring = makeRing("ring ", 3);
    const auto source = makeNode("source");
    const auto outside = makeNode("outside");
    ring[0]->addInput("start");
    connect(source, ring[0], "start");
    const auto downstream = makeNode("downstream");
    const auto last = makeNode("last");
    connect(ring[2], downstream);
    connect(downstream, last);
    const VScheduler::Summary summary = runAll({last, downstream, outside, ring[0], source}, pool);
    EXPECT_EQ(summary.stopped, 1u);
    EXPECT_EQ(summary.failures, 0u);
    EXPECT_EQ(summary.outcome, VScheduler::Outcome::Done);
    EXPECT_THAT(warnings(),
                ElementsAre(AllOf(HasSubstr(std::to_string(Limit)), HasSubstr("Node \"ring 0\""),
                                  HasSubstr("Node \"ring 1\""), HasSubstr("Node \"ring 2\""), Not(HasSubstr("source")),
                                  Not(HasSubstr("outside")), Not(HasSubstr("downstream")))));
    EXPECT_THAT(runsOf(ring), Each(Limit));
    EXPECT_THAT(runsOf({source, outside}), Each(1u));
    EXPECT_FALSE(VScheduler::isDue(pool));
}

TEST_F(SerialRunTest, doesNotPassValuesOfALoopThatDoesNotSettleToItsReaders)
{
    const Nodes ring = makeRing("ring ", 3);
    const auto downstream = makeNode("downstream");
    const auto last = makeNode("last");
    connect(ring[2], downstream);
    connect(downstream, last);
    EXPECT_EQ(runAll({last, downstream, ring[0]}, pool).waiting, 2u);
    warnings();
    EXPECT_THAT(runsOf({downstream, last}), Each(0u));
    for (const StrongPtr<Node>& node : ring)
        EXPECT_EQ(VScheduler::stateOf(*node, pool), VScheduler::State::Failed);
    EXPECT_EQ(VScheduler::stateOf(*last, pool), VScheduler::State::Waiting);
    const std::vector<VScheduler::Failure> failures = VScheduler::failures(pool);
    ASSERT_EQ(failures.size(), 3u);
    EXPECT_EQ(failures[0].reason, "its loop did not settle in 100 rounds");
}

TEST_F(SerialRunTest, makesReadersWaitThatRanBeforeTheLoopDidNotSettle)
{
    const Nodes ring = makeRing("ring ", 2);
    const auto downstream = makeNode("downstream");
    connect(ring[1], downstream);
    for (const StrongPtr<Node>& node : ring)
        countTo(node, 5);
    EXPECT_EQ(runAll({downstream, ring[0]}, pool).waiting, 0u);
    EXPECT_EQ(VScheduler::stateOf(*downstream, pool), VScheduler::State::UpToDate);
    for (const StrongPtr<Node>& node : ring)
        countTo(node, 1e9);
    VScheduler::schedule(ring[0], 0, pool);
    EXPECT_EQ(VScheduler::run(pool).waiting, 1u);
    warnings();
    EXPECT_EQ(VScheduler::stateOf(*downstream, pool), VScheduler::State::Waiting);
    EXPECT_EQ(downstream->read(pool, "out"), 6) << "it did not run again";
}

TEST_F(SerialRunTest, evaluatesAWholeLoopAgainAfterItDidNotSettle)
{
    const Nodes ring = makeRing("ring ", 4);
    ring[0]->addInput("start");
    const auto downstream = makeNode("downstream");
    connect(ring[2], downstream);
    runAll({downstream, ring[0]}, pool);
    warnings();
    runsOf(ring);
    for (const StrongPtr<Node>& node : ring)
        countTo(node, 7);
    VScheduler::schedule(ring[1], 0, pool);
    EXPECT_EQ(VScheduler::run(pool).waiting, 0u);
    for (const StrongPtr<Node>& node : ring) {
        EXPECT_GE(node->runs, 1u);
        EXPECT_EQ(node->read(pool, "out"), 7);
        EXPECT_EQ(VScheduler::stateOf(*node, pool), VScheduler::State::UpToDate);
    }
    EXPECT_EQ(downstream->read(pool, "out"), 8);
    EXPECT_THAT(VScheduler::failures(pool), IsEmpty());
}

TEST_F(SerialRunTest, evaluatesMembersThatReadNothingNewAfterTheirLoopDidNotSettle)
{
    const Nodes ring = makeRing("ring ", 4);
    runAll({ring[0]}, pool);
    warnings();
    runsOf(ring);
    // Writes nothing, so no other member becomes due because of a change.
    for (const StrongPtr<Node>& node : ring)
        node->work = [](Node&, VRequest&, double) { return true; };
    VScheduler::schedule(ring[1], 0, pool);
    EXPECT_EQ(VScheduler::run(pool).stopped, 0u);
    EXPECT_THAT(runsOf(ring), Each(1u));
    EXPECT_THAT(VScheduler::failures(pool), IsEmpty());
}

TEST_F(SerialRunTest, stopsEachLoopSeparately)
{
    const Nodes first = makeRing("first ", 2);
    const Nodes second = makeRing("second ", 5);
    const Nodes settling = makeRing("settling ", 2);
    countTo(settling[0], 50);
    countTo(settling[1], 50);
    const VScheduler::Summary summary = runAll({first[0], second[0], settling[0]}, pool);
    EXPECT_EQ(summary.stopped, 2u);
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("first 1"), Not(HasSubstr("second"))),
                                        AllOf(HasSubstr("second 4"), Not(HasSubstr("first")))));
    EXPECT_EQ(settling[1]->read(pool, "out"), 50);
    for (const StrongPtr<Node>& node : second)
        EXPECT_LE(node->runs, Limit);
}

TEST_F(SerialRunTest, stopsConnectedLoopsAsOne)
{
    // Two loops through one object.
    const auto middle = makeNode("middle", {"left", "right"});
    const auto left = makeNode("left");
    const auto right = makeNode("right");
    connect(middle, left);
    connect(middle, right);
    connect(left, middle, "left");
    connect(right, middle, "right");
    const auto downstream = makeNode("downstream");
    connect(right, downstream);
    const VScheduler::Summary summary = runAll({middle}, pool);
    EXPECT_EQ(summary.stopped, 1u);
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("middle"), HasSubstr("left"), HasSubstr("right"))));
    EXPECT_EQ(downstream->runs, 0u);
    for (const StrongPtr<Node>& node : {middle, left, right})
        EXPECT_LE(node->runs, Limit);
}

TEST_F(SerialRunTest, runsEachMemberOfALoopInEachRound)
{
    // "busy" and "echo" would run forever; "judge" ends the loop from any position.
    for (const bool judgeFirst : {true, false}) {
        SCOPED_TRACE(judgeFirst);
        const auto busy = makeNode("busy", {"echo", "verdict"});
        const auto echo = makeNode("echo");
        const auto judge = makeNode("judge");
        busy->work = [](Node& self, VRequest& request, double) {
            if (contentOf(self.findSlot("verdict")->getValueBase(request.valuePool())) == 0)
                self.write(request.valuePool(), "out", self.read(request.valuePool(), "echo"));
            return true;
        };
        judge->work = [](Node& self, VRequest& request, double) {
            self.writeIfDifferent(request.valuePool(), "out", self.read(request.valuePool(), "in") > 5 ? 1.0 : 0.0);
            return true;
        };
        connect(busy, judgeFirst ? judge : echo);
        connect(busy, judgeFirst ? echo : judge);
        connect(judge, busy, "verdict");
        connect(echo, busy, "echo");
        EXPECT_EQ(runAll({busy}, pool).stopped, 0u);
        EXPECT_THAT(warnings(), IsEmpty());
        EXPECT_EQ(judge->read(pool, "out"), 1);
        EXPECT_LT(busy->runs, 12u);
    }
}

TEST_F(SerialRunTest, keepsReadersWaitingWhenARunningLoopIsReordered)
{
    // A loop at the end of a chain that it disconnects from while it runs.
    Nodes chain{makeNode("0")};
    for (int i = 1; i < 10; ++i) {
        chain.push_back(makeNode(std::to_string(i)));
        connect(chain[chain.size() - 2], chain.back());
    }
    const Nodes ring = makeRing("r", 3);
    ring[0]->addInput("start");
    connect(chain.back(), ring[0], "start");
    const auto reader = makeNode("reader");
    connect(ring[2], reader);
    for (const StrongPtr<Node>& node : ring)
        countTo(node, 20);
    ring[2]->work = [count = ring[2]->work, &ring](Node& self, VRequest& request, double precision) {
        const bool done = count(self, request, precision);
        if (self.runs == 3)
            ring[0]->detach(ring[0]->findSlot("start"));
        return done;
    };
    EXPECT_EQ(runAll({ring[0]}, pool).stopped, 0u);
    EXPECT_EQ(ring[2]->read(pool, "out"), 20);
    EXPECT_EQ(reader->runs, 1u);
}

TEST_F(SerialRunTest, givesALoopAllItsRoundsInEachRunAndPool)
{
    const Nodes ring = makeRing("r", 2);
    const auto second = Loam::makeStrong<ValuePool>("second");
    for (const auto& each : {pool, second, pool}) {
        EXPECT_EQ(runAll({ring[0]}, each).stopped, 1u);
        EXPECT_THAT(runsOf(ring), Each(Limit));
        EXPECT_EQ(warnings().size(), 1u);
    }
    for (const StrongPtr<Node>& node : ring)
        countTo(node, 0);
    EXPECT_EQ(runAll(ring, pool).stopped, 0u);
}

TEST_F(SerialRunTest, runsAnObjectThatReadsItselfUntilItSettles)
{
    const auto self = makeNode("self");
    connect(self, self);
    countTo(self, 30);
    EXPECT_EQ(runAll({self}, pool).stopped, 0u);
    EXPECT_EQ(self->read(pool, "out"), 30);
    EXPECT_THAT(runsOf({self}), ElementsAre(31));

    countTo(self, 1e9);
    EXPECT_EQ(runAll({self}, pool).stopped, 1u);
    EXPECT_THAT(runsOf({self}), ElementsAre(Limit));
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("Node \"self\"")));
    self->detach(self->findSlot("in"));
    EXPECT_EQ(runAll({self}, pool).updates, 1u);
}

TEST_F(SerialRunTest, stopsAnObjectThatSchedulesItselfForever)
{
    const auto node = makeNode("restless");
    const auto reader = makeNode("reader");
    connect(node, reader);
    node->work = [](Node& self, VRequest& request, double) {
        VScheduler::schedule(WeakPtrImpl<Node>(&self).lock(), 0, request.valuePool());
        return self.writeSum(request.valuePool());
    };
    EXPECT_EQ(runAll({node}, pool).stopped, 1u);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("Node \"restless\"")));
    EXPECT_THAT(runsOf({node, reader}), ElementsAre(Limit, 0));
}

TEST_F(SerialRunTest, runsEachObjectOnceAfterALoopIsOpened)
{
    for (std::size_t cut = 0; cut < 4; ++cut) {
        SCOPED_TRACE(cut);
        Nodes ring = makeRing("r", 4);
        runAll({ring[0]}, pool);
        EXPECT_EQ(warnings().size(), 1u);
        runsOf(ring);
        ring[cut]->detach(ring[cut]->findSlot("in"));
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(runAll(ring, pool).stopped, 0u);
            EXPECT_THAT(runsOf(ring), Each(1u));
        }
        ring[cut].reset();
        std::erase(ring, nullptr);
        EXPECT_EQ(runAll(ring, pool).updates, 3u);
        EXPECT_THAT(runsOf(ring), Each(1u));
    }
}

TEST_F(SerialRunTest, runsEachObjectOnceAfterAMemberOfALoopIsDestroyed)
{
    for (std::size_t removed = 0; removed < 5; ++removed) {
        SCOPED_TRACE(removed);
        Nodes ring = makeRing("r", 5);
        runAll({ring[2]}, pool);
        EXPECT_EQ(warnings().size(), 1u);
        runsOf(ring);
        ring.erase(ring.begin() + static_cast<std::ptrdiff_t>(removed));
        EXPECT_EQ(runAll(ring, pool).updates, 4u);
        EXPECT_THAT(runsOf(ring), Each(1u));
    }
}

TEST_F(SerialRunTest, findsALoopThroughPassedInputsAndComponents)
{
    const auto interval = makeNode("interval", {});
    interval->addInput("in");
    interval->addOutput<Interval>("interval");
    interval->work = [](Node& self, VRequest& request, double) {
        const double high = contentOf(self.findSlot("in")->getValueBase(request.valuePool()));
        self.write(request.valuePool(), "interval", Interval{0, high});
        return true;
    };
    const auto passing = makeNode("passing");
    passing->registerOutput(passing->findSlot("in"));
    passing->work = [](Node&, VRequest&, double) { return true; };
    const auto adding = makeNode("adding");
    connect(interval, passing, "in", "high", "interval");
    connect(passing, adding, "in", "", "in");
    connect(adding, interval);
    EXPECT_EQ(runAll({interval}, pool).stopped, 1u);
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("interval"), HasSubstr("adding"))));
    EXPECT_EQ(adding->read(pool, "out"), Limit);
}

TEST_F(SerialRunTest, stopsALoopThatIsClosedWhileItRuns)
{
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    connect(a, b);
    b->work = [&](Node& self, VRequest& request, double) {
        connect(b, a);
        return self.writeSum(request.valuePool());
    };
    EXPECT_EQ(runAll({a}, pool).stopped, 1u);
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("Node \"a\""), HasSubstr("Node \"b\""))));
}

TEST_F(SerialRunTest, mayBeCancelledInTheMiddleOfALoop)
{
    const Nodes ring = makeRing("r", 2);
    VRequest request(pool);
    ring[0]->work = [](Node& self, VRequest& handed, double) {
        if (self.runs == 10)
            handed.cancel();
        return self.writeSum(handed.valuePool());
    };
    VScheduler::schedule(ring[0], 0, pool);
    const VScheduler::Summary summary = VScheduler::run(request);
    EXPECT_EQ(summary.outcome, VScheduler::Outcome::Cancelled);
    EXPECT_EQ(summary.stopped, 0u);
    EXPECT_THAT(runsOf(ring), ElementsAre(10, 9));
    EXPECT_TRUE(VScheduler::isDue(ring[0], pool));
}

TEST_F(SerialRunTest, stopsALargeLoopAfterAsManyRoundsAsASmallOne)
{
    const Nodes ring = makeRing("r", 500);
    EXPECT_EQ(runAll({ring[250]}, pool).stopped, 1u);
    EXPECT_EQ(warnings().size(), 1u);
    EXPECT_THAT(runsOf(ring), Each(testing::Le(Limit)));
}

} // namespace SerialRunTest
