#include "support/Sanitizers.hpp"
#include "support/TestNetwork.hpp"
#include "support/Threads.hpp"

#include <trellis/VNetwork.hpp>

#include <random>
#include <set>
#include <stdexcept>

namespace PoolStateTest {

// Frames and queues are internal; the tests observe them through pools and the scheduler.

using namespace Orla;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;

class PoolStateTest : public RecordingTest {};

} // namespace

TEST_F(PoolStateTest, removesDestroyedObjectsFromTheQueue)
{
    std::mt19937 random(4);
    for (int round = 0; round < 30; ++round) {
        std::vector<StrongPtr<Node>> nodes;
        for (int i = 0; i < 20; ++i) {
            nodes.push_back(makeRecorder(std::to_string(i)));
            if (i % 10 != 0)
                connect(nodes[nodes.size() - 2], nodes.back());
        }
        runAll(nodes, pool);
        for (const StrongPtr<Node>& node : nodes)
            VScheduler::schedule(node, 0, pool);
        std::vector<std::string> expected;
        std::erase_if(nodes, [&](const StrongPtr<Node>& node) {
            const bool isRemoved = random() % 2 == 0;
            if (!isRemoved)
                expected.push_back(node->Name());
            return isRemoved;
        });
        ran.clear();
        EXPECT_EQ(VScheduler::isDue(pool), !nodes.empty());
        VScheduler::run(pool);
        EXPECT_THAT(ran, testing::UnorderedElementsAreArray(expected));
        EXPECT_FALSE(VScheduler::isDue(pool));
    }
}

TEST_F(PoolStateTest, createsVariablesOnlyForObjectsThatRun)
{
    // The size of a pool depends on its variables, not on the network.
    std::vector<StrongPtr<Node>> nodes;
    for (int i = 0; i < 100; ++i)
        nodes.push_back(makeNode("node"));
    runAll({nodes[50]}, pool);
    EXPECT_EQ(pool->variableCount(), 2u);
}

TEST_F(PoolStateTest, supportsManySmallPools)
{
    std::vector<StrongPtr<Node>> nodes{makeNode("a"), makeNode("b"), makeNode("c")};
    connect(nodes[0], nodes[1]);
    connect(nodes[1], nodes[2]);
    std::vector<StrongPtr<ValuePool>> pools;
    for (int i = 0; i < 5000; ++i) {
        pools.push_back(Loam::makeStrong<ValuePool>());
        nodes[0]->write(pools.back(), "in", static_cast<double>(i));
        VScheduler::run(pools.back());
    }
    for (std::size_t i = 0; i < pools.size(); ++i)
        ASSERT_EQ(nodes[2]->read(pools[i], "out"), static_cast<double>(i) + 3);

    std::mt19937 random(5);
    std::ranges::shuffle(pools, random);
    pools.resize(2500);
    nodes.erase(nodes.begin() + 1);
    for (const StrongPtr<ValuePool>& each : pools) {
        const double before = contentOf(nodes[1]->findSlot("in")->getValueBase(each));
        runAll(nodes, each);
        EXPECT_EQ(nodes[1]->read(each, "out"), before + 1);
    }
}

TEST_F(PoolStateTest, isEvaluatedWhileOtherThreadsEvaluateOtherPools)
{
#if defined(SANITIZED)
    constexpr unsigned Networks = 150;
#else
    constexpr unsigned Networks = 1500;
#endif
    for (unsigned seed = 0; seed < Networks; ++seed) {
        const Nodes nodes = makeRandomNetwork(seed);
        const auto evaluate = [&nodes](unsigned first) {
            const auto own = Loam::makeStrong<ValuePool>();
            std::vector<double> results;
            for (unsigned step = 0; step < 3; ++step) {
                Node::write(own, nodes.front()->inputs()[0], double(first + step));
                for (const StrongPtr<Node>& node : nodes)
                    VScheduler::schedule(node, 0, own);
                VScheduler::run(own);
                for (const StrongPtr<Node>& node : nodes)
                    results.push_back(contentOf(node->outputs()[0]->getValueBase(own)));
            }
            return results;
        };
        std::vector<std::vector<double>> results(3);
        inThreads(3, [&](unsigned i) { results[i] = evaluate(10 * i); });
        for (unsigned i = 0; i < 3; ++i)
            ASSERT_EQ(results[i], evaluate(10 * i)) << seed;
    }
}

TEST_F(PoolStateTest, isReleasedWhileItsNetworkIsDestroyed)
{
    for (int round = 0; round < 100; ++round) {
        auto network = std::make_unique<VNetwork>();
        std::vector<StrongPtr<ValuePool>> pools;
        {
            const VNetwork::Scope scope{*network};
            const Nodes nodes = makeRandomNetwork(static_cast<unsigned>(round));
            for (const StrongPtr<Node>& node : nodes)
                VObject::finishCreation(node);
            for (int i = 0; i < 5; ++i) {
                pools.push_back(Loam::makeStrong<ValuePool>());
                runAll(nodes, pools.back());
            }
        }
        inThreads(2, [&](unsigned number) {
            if (number == 0)
                network.reset();
            else
                pools.clear();
        });
        ASSERT_EQ(Node::living, 0u);
    }
}

TEST_F(PoolStateTest, isCreatedInSeveralThreadsAtOnce)
{
#if defined(SANITIZED)
    constexpr int Count = 5'000;
#else
    constexpr int Count = 50'000;
#endif
    const auto node = makeNode("node");
    inThreads(2, [&](unsigned number) {
        std::vector<StrongPtr<ValuePool>> pools;
        for (int i = 0; i < Count; ++i) {
            pools.push_back(Loam::makeStrong<ValuePool>());
            Node::write(pools.back(), node->inputs()[0], double(i + static_cast<int>(number)));
            VScheduler::run(pools.back());
        }
        for (int i = 0; i < Count; i += 100)
            EXPECT_EQ(contentOf(node->outputs()[0]->getValueBase(pools[static_cast<std::size_t>(i)])),
                      i + static_cast<int>(number) + 1);
    });
}

// How the failure of an update affects the objects downstream.

namespace {

using State = VScheduler::State;

bool fail(Node&, VRequest&, double)
{
    throw std::runtime_error{"broken"};
}

class FailureInPoolTest : public FrameworkTest {
protected:
    State stateOf(const StrongPtr<Node>& node) const { return VScheduler::stateOf(*node, pool); }

    std::vector<std::string> blockersOf(const StrongPtr<Node>& node) const
    {
        std::vector<std::string> names;
        for (const StrongPtr<VObject>& object : VScheduler::waitingFor(*node, pool))
            names.push_back(object->Name());
        return names;
    }

    VScheduler::Summary run()
    {
        const VScheduler::Summary summary = VScheduler::run(pool);
        EXPECT_EQ(warnings().size(), summary.failures);
        return summary;
    }

    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace

TEST_F(FailureInPoolTest, makesReadersWaitUntilTheObjectSucceeds)
{
    const Nodes chain{makeNode("a"), makeNode("b"), makeNode("c")};
    connect(chain[0], chain[1]);
    connect(chain[1], chain[2]);
    const auto apart = makeNode("apart");
    chain[0]->work = fail;
    for (const auto& node : {chain[2], chain[1], chain[0], apart})
        VScheduler::schedule(node, 0, pool);
    const VScheduler::Summary failed = run();
    EXPECT_EQ(failed.failures, 1u);
    EXPECT_EQ(failed.updates, 2u);
    EXPECT_EQ(failed.waiting, 2u);
    EXPECT_EQ(stateOf(chain[0]), State::Failed);
    EXPECT_EQ(stateOf(chain[1]), State::Waiting);
    EXPECT_EQ(stateOf(chain[2]), State::Waiting);
    EXPECT_EQ(stateOf(apart), State::UpToDate);
    EXPECT_THAT(blockersOf(chain[2]), ElementsAre("a"));
    EXPECT_THAT(blockersOf(apart), IsEmpty());

    VScheduler::schedule(chain[2], 0, pool);
    EXPECT_EQ(run().updates, 0u) << "it still waits";

    chain[0]->work = nullptr;
    VScheduler::schedule(chain[0], 0, pool);
    const VScheduler::Summary mended = run();
    EXPECT_EQ(mended.updates, 3u);
    EXPECT_EQ(mended.waiting, 0u);
    EXPECT_THAT(runsOf({chain[1], chain[2]}), Each(1u));
    EXPECT_EQ(stateOf(chain[2]), State::UpToDate);
    EXPECT_EQ(chain[2]->read(pool, "out"), 3);
}

TEST_F(FailureInPoolTest, isListedWithItsReasonUntilTheObjectSucceedsOrIsDestroyed)
{
    const auto source = makeNode("source");
    const auto reader = makeNode("reader");
    connect(source, reader);
    auto apart = makeNode("apart");
    source->work = fail;
    apart->work = [](Node&, VRequest&, double) { return false; };
    const auto listed = [&] {
        std::vector<std::string> lines;
        for (const VScheduler::Failure& failure : VScheduler::failures(pool))
            lines.push_back(failure.object->Name() + ": " + failure.reason);
        return lines;
    };
    EXPECT_THAT(listed(), IsEmpty());
    runAll({reader, source, apart}, pool);
    warnings();
    EXPECT_THAT(listed(), UnorderedElementsAre("source: broken", "apart: "));

    apart.reset();
    EXPECT_THAT(listed(), ElementsAre("source: broken"));
    source->work = [](Node&, VRequest&, double) -> bool { throw std::runtime_error{"still broken"}; };
    VScheduler::schedule(source, 0, pool);
    run();
    EXPECT_THAT(listed(), ElementsAre("source: still broken")) << "the last reason";
    source->work = nullptr;
    VScheduler::schedule(source, 0, pool);
    run();
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_THAT(VScheduler::failures(nullptr), IsEmpty());
}

TEST_F(FailureInPoolTest, countsEachWaitingObjectOnce)
{
    const auto source = makeNode("source");
    const auto left = makeNode("left");
    const auto right = makeNode("right");
    const auto join = makeNode("join", {"left", "right"});
    const auto other = makeNode("other");
    connect(source, left);
    connect(source, right);
    connect(left, join, "left");
    connect(right, join, "right");
    source->work = fail;
    runAll({source, left, right, join, other}, pool);
    warnings();
    EXPECT_EQ(VScheduler::countWaiting(*source, pool), 3u);
    EXPECT_EQ(VScheduler::countWaiting(*left, pool), 1u);
    EXPECT_EQ(VScheduler::countWaiting(*other, pool), 0u);
    EXPECT_EQ(VScheduler::countWaiting(*source, nullptr), 0u);
}

TEST_F(FailureInPoolTest, keepsAReaderWaitingUntilAllOfItsSourcesSucceed)
{
    const auto left = makeNode("left");
    const auto right = makeNode("right");
    const auto reader = makeNode("reader", {"left", "right"});
    connect(left, reader, "left");
    connect(right, reader, "right");
    left->work = fail;
    right->work = fail;
    runAll({left, right, reader}, pool);
    warnings();
    EXPECT_EQ(blockersOf(reader).size(), 2u);
    left->work = nullptr;
    VScheduler::schedule(left, 0, pool);
    run();
    EXPECT_EQ(stateOf(reader), State::Waiting);
    EXPECT_THAT(blockersOf(reader), ElementsAre("right"));
    right->work = nullptr;
    VScheduler::schedule(right, 0, pool);
    run();
    EXPECT_EQ(reader->runs, 1u);
    EXPECT_EQ(reader->read(pool, "out"), 3);
}

TEST_F(FailureInPoolTest, keepsGoodResultsOfAReaderWithUnchangedInputs)
{
    const auto source = makeNode("source");
    const auto reader = makeNode("reader");
    connect(source, reader);
    source->work = [](Node& self, VRequest& request, double) {
        return self.writeIfDifferent(request.valuePool(), "out", 5.0) || true;
    };
    runAll({source, reader}, pool);
    runsOf({reader});
    const Node::Work good = source->work;
    source->work = fail;
    VScheduler::schedule(source, 0, pool);
    run();
    EXPECT_EQ(stateOf(reader), State::Waiting);
    source->work = good;
    VScheduler::schedule(source, 0, pool);
    run();
    EXPECT_EQ(stateOf(reader), State::UpToDate);
    EXPECT_EQ(reader->runs, 0u);
}

TEST_F(FailureInPoolTest, doesNotKeepALoopWaitingForItself)
{
    const auto source = makeNode("source");
    const auto a = makeNode("a", {"source", "b"});
    const auto b = makeNode("b");
    connect(source, a, "source");
    connect(a, b);
    connect(b, a, "b");
    a->work = [](Node& self, VRequest& request, double) {
        return self.writeIfDifferent(request.valuePool(), "out", self.read(request.valuePool(), "source")) || true;
    };
    b->work = [](Node&, VRequest&, double) { return true; };
    source->work = fail;
    runAll({source, a, b}, pool);
    warnings();
    EXPECT_EQ(stateOf(a), State::Waiting);
    EXPECT_EQ(stateOf(b), State::Waiting);
    source->work = nullptr;
    VScheduler::schedule(source, 0, pool);
    EXPECT_EQ(run().waiting, 0u);
    EXPECT_EQ(stateOf(a), State::UpToDate);
    EXPECT_EQ(stateOf(b), State::UpToDate);
}

TEST_F(FailureInPoolTest, doesNotMakeAMemberOfALoopWaitForItsReaders)
{
    const auto a = makeNode("a", {"in", "b"});
    const auto b = makeNode("b");
    connect(a, b);
    connect(b, a, "b");
    b->work = [](Node&, VRequest&, double) { return true; };
    a->work = fail;
    runAll({a}, pool);
    warnings();
    EXPECT_EQ(stateOf(b), State::Waiting);
    EXPECT_EQ(stateOf(a), State::Failed);
    a->work = b->work;
    a->write(pool, "in", 1.0);
    EXPECT_EQ(run().waiting, 0u);
    EXPECT_EQ(stateOf(a), State::UpToDate);
    EXPECT_EQ(stateOf(b), State::NotRun) << "none of its inputs was written";
}

TEST_F(FailureInPoolTest, doesNotStopAnObjectThatAcceptsFailedInputs)
{
    const auto good = makeNode("good");
    const auto bad = makeNode("bad");
    const auto report = makeNode("report", {"good", "bad"});
    report->acceptsFailedInputs();
    connect(good, report, "good");
    connect(bad, report, "bad");
    std::vector<bool> failed;
    report->work = [&failed](Node& self, VRequest& request, double) {
        failed = {request.hasFailed(*self.findSlot("good")), request.hasFailed(*self.findSlot("bad"))};
        return true;
    };
    const auto downstream = makeNode("downstream");
    connect(report, downstream);
    bad->work = fail;
    runAll({good, bad, report, downstream}, pool);
    warnings();
    EXPECT_THAT(failed, ElementsAre(false, true));
    EXPECT_EQ(stateOf(report), State::UpToDate);
    EXPECT_EQ(downstream->runs, 1u);
    bad->work = nullptr;
    VScheduler::schedule(bad, 0, pool);
    run();
    EXPECT_THAT(failed, ElementsAre(false, false));
}

TEST_F(FailureInPoolTest, makesAWaitingObjectDueThatBeginsToAcceptFailedInputs)
{
    const auto bad = makeNode("bad");
    const auto report = makeNode("report");
    connect(bad, report);
    bad->work = fail;
    runAll({bad, report}, pool);
    warnings();
    EXPECT_EQ(stateOf(report), State::Waiting);
    EXPECT_EQ(report->runs, 0u);
    report->acceptsFailedInputs();
    EXPECT_EQ(stateOf(report), State::Due);
    run();
    EXPECT_EQ(report->runs, 1u);
    EXPECT_EQ(stateOf(report), State::UpToDate);
}

TEST_F(FailureInPoolTest, runsAWaitingObjectOnceThatIsConnectedToAResult)
{
    const auto bad = makeNode("bad");
    const auto good = makeNode("good");
    const auto reader = makeNode("reader");
    connect(bad, reader);
    bad->work = fail;
    runAll({bad, good, reader}, pool);
    warnings();
    EXPECT_EQ(stateOf(reader), State::Waiting);
    reader->detach(reader->findSlot("in"));
    connect(good, reader);
    run();
    EXPECT_EQ(reader->runs, 1u);
    EXPECT_EQ(stateOf(reader), State::UpToDate);
}

TEST_F(FailureInPoolTest, doesNotInvalidateOutputsThatStayValid)
{
    const auto source = makeNode("source");
    source->addOutput("status")->setFlag(VSlot::StaysValid);
    source->work = [](Node& self, VRequest& request, double) {
        self.write(request.valuePool(), "status", 404.0);
        return false;
    };
    const auto result = makeNode("result");
    const auto viewer = makeNode("viewer");
    connect(source, result);
    connect(source, viewer, "in", "", "status");
    runAll({source, result, viewer}, pool);
    warnings();
    EXPECT_EQ(stateOf(result), State::Waiting);
    EXPECT_EQ(stateOf(viewer), State::UpToDate);
    EXPECT_EQ(viewer->read(pool, "out"), 405);
}

TEST_F(FailureInPoolTest, reachesReadersConnectedLaterAndReleasesDisconnectedOnes)
{
    const auto source = makeNode("source");
    const auto reader = makeNode("reader");
    source->work = fail;
    runAll({source, reader}, pool);
    warnings();
    EXPECT_EQ(stateOf(reader), State::UpToDate);
    connect(source, reader);
    EXPECT_EQ(run().waiting, 1u);
    EXPECT_EQ(stateOf(reader), State::Waiting);
    reader->detach(reader->findSlot("in"));
    EXPECT_EQ(run().waiting, 0u);
    EXPECT_EQ(stateOf(reader), State::UpToDate);
}

TEST_F(FailureInPoolTest, outlivesTheObjectThatFailed)
{
    auto source = makeNode("source");
    const auto reader = makeNode("reader");
    connect(source, reader);
    source->work = fail;
    runAll({source, reader}, pool);
    warnings();
    source.reset();
    VScheduler::schedule(reader, 0, pool);
    EXPECT_EQ(run().updates, 0u) << "its value was never computed";
    EXPECT_EQ(stateOf(reader), State::Waiting);
    EXPECT_THAT(blockersOf(reader), IsEmpty());
    reader->detach(reader->findSlot("in"));
    EXPECT_EQ(run().updates, 1u);
}

TEST_F(FailureInPoolTest, staysInItsPool)
{
    const auto source = makeNode("source");
    const auto reader = makeNode("reader");
    connect(source, reader);
    const auto other = Loam::makeStrong<ValuePool>("other");
    source->work = [&](Node& self, VRequest& request, double) {
        return request.valuePool() != pool && self.writeSum(request.valuePool());
    };
    runAll({source, reader}, pool);
    warnings();
    EXPECT_EQ(runAll({source, reader}, other).waiting, 0u);
    EXPECT_EQ(VScheduler::stateOf(*reader, other), State::UpToDate);
    EXPECT_EQ(stateOf(reader), State::Waiting);
}

TEST_F(FailureInPoolTest, spreadsExactlyToDependentObjectsInRandomNetworks)
{
    // The connections alone determine which objects must wait.
    std::mt19937 random(11);
    for (int network = 0; network < 60; ++network) {
        const std::size_t count = 3 + random() % 15;
        Nodes nodes;
        std::vector<std::set<std::size_t>> sources(count);
        for (std::size_t i = 0; i < count; ++i) {
            nodes.push_back(makeNode(std::to_string(i), {"x", "y"}));
            for (const char* input : {"x", "y"}) {
                if (i > 0 && random() % 4 != 0) {
                    const std::size_t source = random() % i;
                    connect(nodes[source], nodes[i], input);
                    sources[i].insert(source);
                }
            }
        }
        std::vector<bool> fails(count);
        runAll(nodes, pool);
        for (int step = 0; step < 20; ++step) {
            const std::size_t changed = random() % count;
            fails[changed] = random() % 2 == 0;
            nodes[changed]->work = fails[changed] ? Node::Work(fail) : Node::Work();
            for (const StrongPtr<Node>& node : nodes)
                VScheduler::schedule(node, 0, pool);
            const VScheduler::Summary summary = run();
            std::vector<bool> waits(count);
            std::size_t waiting = 0;
            std::size_t failures = 0;
            for (std::size_t i = 0; i < count; ++i) {
                for (const std::size_t source : sources[i])
                    waits[i] = waits[i] || waits[source] || fails[source];
                waiting += waits[i];
                failures += !waits[i] && fails[i];
                ASSERT_EQ(stateOf(nodes[i]), waits[i]   ? State::Waiting
                                             : fails[i] ? State::Failed
                                                        : State::UpToDate)
                    << network << '.' << step << ": " << i;
            }
            ASSERT_EQ(summary.waiting, waiting);
            ASSERT_EQ(summary.failures, failures);
        }
    }
}

} // namespace PoolStateTest
