#include "support/TestNetwork.hpp"

#include <trellis/VRequest.hpp>

#include <random>
#include <set>
#include <stdexcept>

// How the failure of an update affects the objects downstream.

using namespace Orla;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;
using State = VScheduler::State;

bool fail(Node&, VRequest&, double)
{
    throw std::runtime_error{"broken"};
}

class VSchedulerFailureTest : public FrameworkTest {
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

TEST_F(VSchedulerFailureTest, makesReadersWaitUntilTheObjectSucceeds)
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

TEST_F(VSchedulerFailureTest, keepsAReaderWaitingUntilAllOfItsSourcesSucceed)
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

TEST_F(VSchedulerFailureTest, keepsGoodResultsOfAReaderWithUnchangedInputs)
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

TEST_F(VSchedulerFailureTest, doesNotKeepALoopWaitingForItself)
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

TEST_F(VSchedulerFailureTest, doesNotMakeAMemberOfALoopWaitForItsReaders)
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

TEST_F(VSchedulerFailureTest, doesNotStopAnObjectThatAcceptsFailedInputs)
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

TEST_F(VSchedulerFailureTest, doesNotInvalidateOutputsThatStayValid)
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

TEST_F(VSchedulerFailureTest, reachesReadersConnectedLaterAndReleasesDisconnectedOnes)
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

TEST_F(VSchedulerFailureTest, outlivesTheObjectThatFailed)
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

TEST_F(VSchedulerFailureTest, staysInItsPool)
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

TEST_F(VSchedulerFailureTest, isObserved)
{
    struct Listener final : VScheduler::Observer {
        void becameDue(const VObject&, Cause, const VParameter*, double) noexcept override {}
        void began(const VObject&) noexcept override {}
        void ended(const VObject& object, Result result) noexcept override
        {
            if (result == Result::Failed)
                events.push_back(object.Name() + " failed");
        }
        void startedWaiting(const VObject& object) noexcept override { events.push_back(object.Name() + " waits"); }
        void stoppedWaiting(const VObject& object) noexcept override { events.push_back(object.Name() + " continues"); }
        std::vector<std::string> events;
    } listener;
    const auto source = makeNode("source");
    const auto reader = makeNode("reader");
    connect(source, reader);
    runAll({source, reader}, pool);
    VScheduler::observe(pool, &listener);
    source->work = fail;
    VScheduler::schedule(source, 0, pool);
    run();
    source->work = nullptr;
    VScheduler::schedule(source, 0, pool);
    run();
    EXPECT_THAT(listener.events, ElementsAre("source failed", "reader waits", "reader continues"));
    VScheduler::observe(pool, nullptr);
}

TEST_F(VSchedulerFailureTest, spreadsExactlyToDependentObjectsInRandomNetworks)
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

TEST_F(VSchedulerFailureTest, keepsTheChangesOfInputsSinceTheLastSuccess)
{
    const auto source = makeNode("source");
    const auto reader = makeNode("reader", {"connected", "own"});
    connect(source, reader, "connected");
    std::vector<bool> changed;
    bool fails = false;
    reader->work = [&](Node& self, VRequest& request, double) {
        changed = {request.hasChanged(*self.findSlot("connected")), request.hasChanged(*self.findSlot("own"))};
        return !fails && self.writeSum(request.valuePool());
    };
    runAll({source, reader}, pool);
    EXPECT_THAT(changed, ElementsAre(true, true)) << "the first time";
    VScheduler::schedule(reader, 0, pool);
    run();
    EXPECT_THAT(changed, ElementsAre(false, false));
    reader->write(pool, "own", 3.0);
    fails = true;
    run();
    EXPECT_THAT(changed, ElementsAre(false, true));
    source->write(pool, "in", 4.0);
    fails = false;
    run();
    EXPECT_THAT(changed, ElementsAre(true, true)) << "it has not succeeded since the first change";
    reader->detach(reader->findSlot("connected"));
    run();
    EXPECT_THAT(changed, ElementsAre(true, false)) << "it reads another value now";
    run();
    VScheduler::schedule(reader, 0, pool);
    run();
    EXPECT_THAT(changed, ElementsAre(false, false));
    EXPECT_FALSE(VRequest(pool).hasChanged(*reader->findSlot("own"))) << "outside an update";
}
