#include <trellis/VScheduler.hpp>

#include "support/Sanitizers.hpp"
#include "support/TestNetwork.hpp"

#include <algorithm>
#include <numeric>
#include <random>
#include <stdexcept>

namespace VSchedulerTest {

using namespace Orla;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;
using Outcome = VScheduler::Outcome;

class VSchedulerTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};

    // Creates a chain of objects, evaluated once.
    Nodes makeChain(std::size_t count) const
    {
        Nodes chain;
        for (std::size_t i = 0; i < count; ++i) {
            chain.push_back(makeNode(std::to_string(i)));
            if (i > 0)
                connect(chain[i - 1], chain[i]);
        }
        runAll(chain, pool);
        runsOf(chain);
        return chain;
    }
};

// A randomly changed network without loops, and a simple model of it: the connections
// and the expected results.
class RandomNetwork {
public:
    RandomNetwork(std::size_t count, unsigned seed, const StrongPtr<ValuePool>& pool)
        : m_random{seed}, m_nodes(count), m_plan(count)
    {
        std::vector<std::size_t> creation(count);
        std::iota(creation.begin(), creation.end(), 0u);
        std::ranges::shuffle(creation, m_random);
        for (const std::size_t i : creation)
            make(i, pool);
    }

    /// Connects, disconnects, writes or recreates an object at random.
    void change(const StrongPtr<ValuePool>& pool)
    {
        const std::size_t node = m_random() % m_nodes.size();
        const std::size_t input = m_random() % Inputs;
        const StrongPtr<VSlot> slot = m_nodes[node]->findSlot(nameOf(input));
        Plan& plan = m_plan[node];
        switch (m_random() % 8) {
        case 0:
        case 1:
        case 2:
            // Objects read only earlier ones, so there are no loops.
            if (node > 0 && plan.sources[input] != (m_connected = m_random() % node)) {
                EXPECT_TRUE(connect(m_nodes[m_connected], m_nodes[node], nameOf(input)));
                plan.sources[input] = m_connected;
                plan.due = true;
            }
            break;
        case 3:
            plan.due |= m_nodes[node]->detach(slot);
            plan.sources[input] = None;
            break;
        case 4:
            if (m_random() % 4 == 0) {
                for (Plan& each : m_plan) {
                    for (std::size_t i = 0; i < Inputs; ++i) {
                        if (each.sources[i] == node) {
                            each.sources[i] = Destroyed;
                            each.last[i] = plan.result;
                        }
                    }
                }
                make(node, pool);
                break;
            }
            [[fallthrough]];
        default:
            if (plan.sources[input] == None) {
                plan.values[input] = static_cast<double>(m_random() % 1000);
                Node::write(pool, slot, plan.values[input]);
                plan.due = true;
            }
        }
    }

    /// Runs due objects and compares the runs and results with the model.
    void expectCorrectRuns(const StrongPtr<ValuePool>& pool)
    {
        std::size_t expectedRuns = 0;
        for (std::size_t i = 0; i < m_plan.size(); ++i) {
            Plan& plan = m_plan[i];
            for (std::size_t input = 0; input < Inputs; ++input) {
                const std::size_t source = plan.sources[input];
                plan.due |= source < m_plan.size() && m_plan[source].due;
            }
            expectedRuns += plan.due;
        }
        const VScheduler::Summary summary = VScheduler::run(pool);
        ASSERT_EQ(summary.outcome, Outcome::Done);
        ASSERT_EQ(summary.updates, expectedRuns);
        for (std::size_t i = 0; i < m_plan.size(); ++i) {
            ASSERT_EQ(m_nodes[i]->runs.exchange(0), m_plan[i].due ? 1u : 0u) << m_nodes[i]->Name();
            if (m_plan[i].due)
                evaluate(m_plan[i]);
            if (m_plan[i].wasRun) {
                ASSERT_EQ(m_nodes[i]->read(pool, "out"), m_plan[i].result) << m_nodes[i]->Name();
            }
        }
    }

private:
    static constexpr std::size_t Inputs = 3;
    static constexpr std::size_t None = ~std::size_t{0};
    static constexpr std::size_t Destroyed = None - 1; // the source was destroyed, its last value remains

    struct Plan {
        std::size_t sources[Inputs] = {None, None, None};
        double values[Inputs] = {};
        double last[Inputs] = {}; // the last results of destroyed sources
        double result = 0;
        bool due = false;
        bool wasRun = false;
    };

    static std::string nameOf(std::size_t input) { return "in " + std::to_string(input); }

    void make(std::size_t i, const StrongPtr<ValuePool>& pool)
    {
        m_nodes[i] = makeNode(std::to_string(i), {nameOf(0), nameOf(1), nameOf(2)});
        m_plan[i] = {};
        m_plan[i].due = VScheduler::schedule(m_nodes[i], 0, pool);
    }

    void evaluate(Plan& plan)
    {
        double sum = 1;
        for (std::size_t input = 0; input < Inputs; ++input) {
            const std::size_t source = plan.sources[input];
            sum += source == None ? plan.values[input] : source == Destroyed ? plan.last[input] : m_plan[source].result;
        }
        plan.result = std::fmod(sum, Node::Modulus);
        plan.due = false;
        plan.wasRun = true;
    }

    std::mt19937 m_random;
    std::size_t m_connected = 0;
    Nodes m_nodes;
    std::vector<Plan> m_plan;
};

} // namespace

TEST_F(VSchedulerTest, restartsAnObjectAsIfItHadNeverRun)
{
    const auto source = makeNode("source");
    const auto sum = makeNode("sum");
    connect(source, sum);
    // Adds its input to its earlier output.
    bool hasChanged = false;
    sum->work = [&](Node& self, VRequest& request, double) {
        const auto& own = request.valuePool();
        hasChanged = request.hasChanged(*self.findSlot("in"));
        self.write(own, "out", self.read(own, "out") + self.read(own, "in"));
        return true;
    };
    runAll({source, sum}, pool);
    EXPECT_TRUE(VScheduler::schedule(sum, 0, pool));
    VScheduler::run(pool);
    EXPECT_EQ(sum->read(pool, "out"), 2);
    EXPECT_FALSE(hasChanged);
    EXPECT_TRUE(VScheduler::restart(sum, pool));
    EXPECT_TRUE(VScheduler::isDue(sum, pool));
    EXPECT_EQ(sum->read(pool, "out"), 0);
    VScheduler::run(pool);
    EXPECT_EQ(sum->read(pool, "out"), 1);
    EXPECT_TRUE(hasChanged);
    EXPECT_EQ(source->runs, 1u);
    EXPECT_FALSE(VScheduler::restart(nullptr, pool));
    EXPECT_FALSE(VScheduler::restart(sum, nullptr));
}

TEST_F(VSchedulerTest, runsEachObjectOfADiamondOnce)
{
    const auto source = makeNode("source");
    const auto left = makeNode("left");
    const auto right = makeNode("right");
    const auto end = makeNode("end", {"left", "right"});
    connect(left, end, "left");
    connect(right, end, "right");
    connect(source, left);
    connect(source, right);
    const Nodes nodes{end, right, left, source};
    EXPECT_EQ(runAll(nodes, pool).updates, 4u);
    EXPECT_THAT(runsOf(nodes), Each(1u));
    EXPECT_EQ(end->read(pool, "out"), 5);

    source->write(pool, "in", 10.0);
    const VScheduler::Summary summary = VScheduler::run(pool);
    EXPECT_EQ(summary.outcome, Outcome::Done);
    EXPECT_EQ(summary.updates, 4u);
    EXPECT_EQ(summary.failures + summary.stopped, 0u);
    EXPECT_THAT(runsOf(nodes), Each(1u));
    EXPECT_EQ(end->read(pool, "out"), 25);
}

TEST_F(VSchedulerTest, runsNoObjectWithUnchangedInputs)
{
    const Nodes chain = makeChain(10);
    EXPECT_EQ(VScheduler::run(pool).updates, 0u);
    chain[6]->write(pool, "out", 100.0);
    EXPECT_EQ(VScheduler::run(pool).updates, 3u);
    EXPECT_THAT(runsOf(chain), ElementsAre(0, 0, 0, 0, 0, 0, 0, 1, 1, 1));

    // An object with an unchanged result ends the propagation.
    chain[4]->work = [](Node& self, VRequest& request, double) {
        return self.writeIfDifferent(request.valuePool(), "out", 5.0) || true;
    };
    VScheduler::schedule(chain[2], 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(runsOf(chain), ElementsAre(0, 0, 1, 1, 1, 0, 0, 0, 0, 0));
}

TEST_F(VSchedulerTest, runsRandomlyChangedNetworksCorrectly)
{
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const auto each = Loam::makeStrong<ValuePool>();
        RandomNetwork network(3 + seed % 20, seed, each);
        for (int pass = 0; pass < 40; ++pass) {
            for (int changes = (pass * 7 + static_cast<int>(seed)) % 12; changes >= 0; --changes)
                network.change(each);
            network.expectCorrectRuns(each);
            if (HasFatalFailure())
                return;
        }
    }
}

TEST_F(VSchedulerTest, runsALadderOfDiamondsWithOneUpdatePerObject)
{
    constexpr std::size_t Steps = 400;
    Nodes nodes{makeNode("start")};
    for (std::size_t i = 0; i < Steps; ++i) {
        const auto left = makeNode("left");
        const auto right = makeNode("right");
        const auto join = makeNode("join", {"left", "right"});
        connect(nodes.back(), left);
        connect(nodes.back(), right);
        connect(left, join, "left");
        connect(right, join, "right");
        nodes.insert(nodes.end(), {left, right, join});
    }
    EXPECT_EQ(runAll(nodes, pool).updates, nodes.size());
    for (int i = 0; i < 3; ++i) {
        nodes.front()->write(pool, "in", 1.0 * i);
        EXPECT_EQ(VScheduler::run(pool).updates, nodes.size());
    }
}

TEST_F(VSchedulerTest, runsALongChainBuiltFromEitherEndOnAnOrdinaryStack)
{
#if defined(SANITIZED)
    constexpr std::size_t Count = 100'000; // stack frames and objects are several times larger
#else
    constexpr std::size_t Count = 250'000; // recursion would need far more than 8 MB
#endif
    struct Link : VObject {
        Link() : VObject{"link", 0, nullptr}, in{testParameter("in", 0.0)}, out{testParameter("out", 0.0)}
        {
            in->setCreator(WeakPtrImpl<VSlotContainer>(this));
            addParameter("in", 0, in, true);
            registerOutput(out, "out");
            enableRequestProcessing();
        }
        bool update(VRequest& request, double) override
        {
            const double value = contentOf(inputs()[0]->getValueBase(request.valuePool()));
            Node::write(request.valuePool(), outputs()[0], value + 1);
            return true;
        }
        StrongPtr<VParameter> in, out;
    };
    for (const bool backwards : {false, true}) {
        SCOPED_TRACE(backwards);
        std::vector<StrongPtr<Link>> chain;
        for (std::size_t i = 0; i < Count; ++i)
            chain.push_back(Loam::makeStrong<Link>());
        for (std::size_t i = 1; i < Count; ++i) {
            const std::size_t reader = backwards ? Count - i : i;
            chain[reader]->attachOutput(chain[reader - 1]->outputs()[0], chain[reader]->inputs()[0], "");
        }
        const auto each = Loam::makeStrong<ValuePool>();
        Node::write(each, chain.front()->inputs()[0], 5.0);
        EXPECT_EQ(VScheduler::run(each).updates, Count);
        EXPECT_EQ(contentOf(chain.back()->out->getValueBase(each)), 5.0 + Count);
    }
}

TEST_F(VSchedulerTest, ignoresAReaderThatIsBeingDestroyed)
{
    struct AtEnd {
        ~AtEnd() { call(); }
        std::function<void()> call;
    };
    // Its virtual bases, which hold the slots, are destroyed after `AtEnd`.
    struct Dying : virtual VSkale, AtEnd, Node {
        using Node::Node;
    };
    const auto source = makeNode("source");
    auto reader = Loam::makeStrong<Dying>("reader");
    reader->addInput("in");
    reader->enableRequestProcessing();
    connect(source, reader);
    runAll({source, reader}, pool);
    reader->call = [&] { Node::write(pool, source->findOutput("out"), 5.0); };
    reader = nullptr;
    EXPECT_FALSE(VScheduler::isDue(pool));
}

TEST_F(VSchedulerTest, runsEveryReaderOfOneOutputOnce)
{
    const auto source = makeNode("source");
    Nodes readers;
    for (int i = 0; i < 20'000; ++i) {
        readers.push_back(makeNode("reader"));
        connect(source, readers.back());
    }
    source->write(pool, "in", 3.0);
    EXPECT_EQ(VScheduler::run(pool).updates, readers.size() + 1);
    EXPECT_THAT(runsOf(readers), Each(1u));
    EXPECT_EQ(readers.back()->read(pool, "out"), 5);
}

TEST_F(VSchedulerTest, reportsDueObjectsAndRejectsNull)
{
    const auto node = makeNode("node");
    EXPECT_FALSE(VScheduler::isDue(node, pool));
    EXPECT_TRUE(VScheduler::schedule(node, 0, pool));
    EXPECT_TRUE(VScheduler::isDue(node, pool));
    EXPECT_TRUE(VScheduler::isDue(pool));
    EXPECT_TRUE(VScheduler::schedule(node, 0, pool)) << "it is already due";
    EXPECT_EQ(VScheduler::run(pool).updates, 1u);
    EXPECT_FALSE(VScheduler::isDue(pool));

    const StrongPtr<VObject> noObject;
    const StrongPtr<ValuePool> noPool;
    EXPECT_FALSE(VScheduler::schedule(noObject, 0, pool));
    EXPECT_FALSE(VScheduler::schedule(node, 0, noPool));
    EXPECT_FALSE(VScheduler::isDue(noObject, pool));
    EXPECT_FALSE(VScheduler::isDue(node, noPool));
    EXPECT_FALSE(VScheduler::isDue(noPool));
    EXPECT_EQ(VScheduler::run(noPool).outcome, Outcome::Done);
    VRequest request(noPool);
    EXPECT_EQ(VScheduler::run(request).updates, 0u);
    EXPECT_EQ(VScheduler::scheduleAll(noPool), 0u);
}

TEST_F(VSchedulerTest, schedulesAllAnnouncedObjectsThatAreEnabled)
{
    const Nodes chain = makeChain(3);
    const auto notEnabled = Loam::makeStrong<Node>("not enabled");
    for (const auto& node : {chain[2], chain[0], notEnabled})
        VManagedObject::add(node);
    const auto fresh = Loam::makeStrong<ValuePool>();
    EXPECT_EQ(VScheduler::scheduleAll(fresh), 2u);
    EXPECT_FALSE(VScheduler::isDue(chain[1], fresh));
    EXPECT_EQ(VScheduler::run(fresh).updates, 3u);
    EXPECT_EQ(notEnabled->runs, 0u);
    for (const auto& node : {chain[2], chain[0], notEnabled})
        VManagedObject::remove(node);
}

TEST_F(VSchedulerTest, passesTheRequestToEveryUpdate)
{
    const Nodes chain = makeChain(2);
    std::vector<double> progress;
    VRequest request(pool, [&progress](double fraction) { progress.push_back(fraction); });
    for (const StrongPtr<Node>& node : chain) {
        node->work = [](Node& self, VRequest& handed, double) {
            handed.reportProgress(self.Name() == "0" ? 0.5 : 1);
            return self.writeSum(handed.valuePool());
        };
    }
    VScheduler::schedule(chain[0], 0, pool);
    VScheduler::run(request);
    EXPECT_THAT(progress, ElementsAre(0.5, 1));
}

TEST_F(VSchedulerTest, doesNotRunReadersOfOutputsWrittenBeforeAFailure)
{
    const Nodes chain = makeChain(3);
    for (const bool throws : {true, false}) {
        chain[0]->work = [throws](Node& self, VRequest& request, double) -> bool {
            self.writeSum(request.valuePool());
            if (throws)
                throw std::runtime_error{"half way"};
            return false;
        };
        VScheduler::schedule(chain[0], 0, pool);
        const VScheduler::Summary summary = VScheduler::run(pool);
        EXPECT_EQ(summary.failures, 1u);
        EXPECT_EQ(summary.updates, 1u);
        EXPECT_EQ(summary.waiting, 2u);
        const char* const reason = throws ? "failed: half way" : "failed: its update returned false";
        EXPECT_THAT(warnings(), testing::ElementsAre(testing::HasSubstr(reason)));
    }
}

TEST_F(VSchedulerTest, survivesANotifierThatThrows)
{
    struct Throwing : VActionNotifier {
        bool warned(const std::string&) override { throw 1; }
    };
    const auto notifier = Loam::makeStrong<Throwing>();
    const auto node = makeNode("node");
    node->work = [](Node&, VRequest&, double) -> bool { throw std::runtime_error{"failed"}; };
    VScheduler::schedule(node, 0, pool);
    VActionNotifier::add(notifier);
    EXPECT_THROW(VScheduler::run(pool), int);
    VActionNotifier::remove(notifier);
    warnings();

    node->work = nullptr;
    node->write(pool, "in", 1.0);
    EXPECT_TRUE(VScheduler::isDue(node, pool)) << "it does not count as running";
    EXPECT_EQ(VScheduler::run(pool).outcome, Outcome::Done);
    EXPECT_EQ(node->read(pool, "out"), 2);
}

TEST_F(VSchedulerTest, keepsDueObjectsWhenItIsCancelled)
{
    const Nodes chain = makeChain(4);
    VRequest cancelled(pool);
    cancelled.cancel();
    chain[0]->write(pool, "in", 5.0);
    EXPECT_EQ(VScheduler::run(cancelled).outcome, Outcome::Cancelled);
    EXPECT_THAT(runsOf(chain), Each(0u));
    EXPECT_TRUE(VScheduler::isDue(chain[0], pool));

    // An object cancelled during its update is due again with its precision.
    std::vector<double> precisions;
    chain[1]->work = [&precisions](Node& self, VRequest& request, double precision) {
        precisions.push_back(precision);
        self.writeSum(request.valuePool());
        if (precisions.size() == 1)
            request.cancel();
        return true;
    };
    VScheduler::schedule(chain[1], 0.5, pool);
    VRequest request(pool);
    const VScheduler::Summary summary = VScheduler::run(request);
    EXPECT_EQ(summary.outcome, Outcome::Cancelled);
    EXPECT_EQ(summary.updates, 2u);
    EXPECT_EQ(summary.failures, 0u);
    EXPECT_THAT(runsOf(chain), ElementsAre(1, 1, 0, 0));
    EXPECT_TRUE(VScheduler::isDue(chain[1], pool));
    EXPECT_TRUE(VScheduler::isDue(chain[2], pool));

    EXPECT_EQ(VScheduler::run(pool).updates, 3u);
    EXPECT_THAT(runsOf(chain), ElementsAre(0, 1, 1, 1));
    EXPECT_THAT(precisions, ElementsAre(0.5, 0.5));
    EXPECT_EQ(chain[3]->read(pool, "out"), 9);
}

TEST_F(VSchedulerTest, refusesANestedRunInTheSamePool)
{
    const Nodes chain = makeChain(3);
    Outcome inner = Outcome::Done;
    chain[0]->work = [&](Node& self, VRequest& request, double) {
        self.writeSum(request.valuePool());
        inner = VScheduler::run(request.valuePool()).outcome;
        return true;
    };
    VScheduler::schedule(chain[0], 0, pool);
    EXPECT_EQ(VScheduler::run(pool).outcome, Outcome::Done);
    EXPECT_EQ(inner, Outcome::Busy);
    EXPECT_THAT(runsOf(chain), Each(1u));
}

TEST_F(VSchedulerTest, runsAnotherPoolFromWithinAnUpdate)
{
    const Nodes chain = makeChain(3);
    const auto inner = Loam::makeStrong<ValuePool>("inner");
    double innerResult = 0;
    chain[1]->work = [&](Node& self, VRequest& request, double) {
        self.work = nullptr;
        chain[0]->write(inner, "in", 100.0);
        EXPECT_EQ(VScheduler::run(inner).updates, 3u);
        innerResult = chain[2]->read(inner, "out");
        return self.writeSum(request.valuePool());
    };
    chain[0]->write(pool, "in", 10.0);
    EXPECT_EQ(VScheduler::run(pool).updates, 3u);
    EXPECT_EQ(innerResult, 103);
    EXPECT_EQ(chain[2]->read(pool, "out"), 13);
}

TEST_F(VSchedulerTest, keepsPoolsIndependent)
{
    const Nodes chain = makeChain(3);
    const auto second = Loam::makeStrong<ValuePool>("second");
    runAll(chain, second);
    runsOf(chain);
    chain[0]->write(pool, "in", 10.0);
    EXPECT_FALSE(VScheduler::isDue(second));
    EXPECT_EQ(VScheduler::run(second).updates, 0u);
    EXPECT_EQ(VScheduler::run(pool).updates, 3u);
    EXPECT_EQ(chain[2]->read(pool, "out"), 13);
    EXPECT_EQ(chain[2]->read(second, "out"), 3);
}

TEST_F(VSchedulerTest, keepsThePoolAliveDuringARun)
{
    const Nodes chain = makeChain(3);
    chain[0]->work = [this](Node& self, VRequest& request, double) {
        pool.reset();
        return self.writeSum(request.valuePool());
    };
    VScheduler::schedule(chain[0], 0, pool);
    EXPECT_EQ(VScheduler::run(StrongPtr<ValuePool>(pool)).updates, 3u);
    EXPECT_THAT(runsOf(chain), Each(1u));
}

TEST_F(VSchedulerTest, letsAnUpdateAddObjectsAndConnectThem)
{
    const Nodes chain = makeChain(3);
    Nodes added;
    chain[1]->work = [&](Node& self, VRequest& request, double) {
        self.work = nullptr;
        self.writeSum(request.valuePool());
        // A detour before the next object, which is already due.
        added = {makeNode("x"), makeNode("y"), makeNode("z")};
        connect(chain[1], added[0]);
        connect(added[0], added[1]);
        connect(added[1], added[2]);
        connect(added[2], chain[2]);
        VScheduler::schedule(added[0], 0, request.valuePool());
        return true;
    };
    chain[0]->write(pool, "in", 1.0);
    EXPECT_EQ(VScheduler::run(pool).updates, 6u);
    EXPECT_THAT(runsOf(chain), Each(1u));
    EXPECT_THAT(runsOf(added), Each(1u));
    EXPECT_EQ(chain[2]->read(pool, "out"), 7);
}

TEST_F(VSchedulerTest, letsAnUpdateDisconnectOthersAndItself)
{
    const Nodes chain = makeChain(4);
    chain[1]->work = [&](Node& self, VRequest& request, double) {
        self.work = nullptr;
        self.writeSum(request.valuePool());
        chain[3]->detach(chain[3]->findSlot("in"));
        self.detach(self.findSlot("in"));
        return true;
    };
    chain[0]->write(pool, "in", 1.0);
    VScheduler::run(pool);
    EXPECT_THAT(runsOf(chain), ElementsAre(1, 2, 1, 1)) << "its own input has changed, too";
    EXPECT_EQ(chain[2]->read(pool, "out"), 2);
    EXPECT_EQ(chain[3]->read(pool, "out"), 1);
}

TEST_F(VSchedulerTest, doesNotRunAnObjectForAPassiveInput)
{
    const auto source = makeNode("source");
    const auto node = makeNode("node", {});
    node->addInput("active");
    node->addInput("passive", 0.0, false);
    connect(source, node, "passive");
    runAll({node, source}, pool);
    EXPECT_THAT(runsOf({node}), ElementsAre(1));
    EXPECT_EQ(node->read(pool, "out"), 2) << "it still runs after its source";
    source->write(pool, "in", 5.0);
    VScheduler::run(pool);
    EXPECT_EQ(node->runs, 0u);
    node->write(pool, "active", 10.0);
    VScheduler::run(pool);
    EXPECT_EQ(node->read(pool, "out"), 17);
}

TEST_F(VSchedulerTest, rerunsAnObjectThatSchedulesItself)
{
    const auto node = makeNode("node");
    node->work = [](Node& self, VRequest& request, double precision) {
        if (precision < 5)
            VScheduler::schedule(WeakPtrImpl<Node>(&self).lock(), precision + 1, request.valuePool());
        return true;
    };
    VScheduler::schedule(node, 1, pool);
    EXPECT_EQ(VScheduler::run(pool).updates, 5u);
}

} // namespace VSchedulerTest
