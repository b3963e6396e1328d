#include "support/TestNetwork.hpp"
#include "support/Threads.hpp"

#include <trellis/VRequest.hpp>

#include <atomic>
#include <new>
#include <stdexcept>
#include <thread>

namespace UpdateTest {

// One update of one object, observed through the scheduler.

using namespace Orla;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;
using Outcome = VScheduler::Outcome;

class UpdateTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace

TEST_F(UpdateTest, getsThePrecisionOfItsSchedulingOnce)
{
    const auto node = makeNode("node");
    std::vector<double> received;
    node->work = [&received](Node&, VRequest&, double precision) {
        received.push_back(precision);
        return true;
    };
    VScheduler::schedule(node, 0.5, pool);
    VScheduler::schedule(node, 0.25, pool);
    VScheduler::run(pool);
    node->write(pool, "in", 1.0);
    VScheduler::run(pool);
    EXPECT_THAT(received, ElementsAre(0.25, 0));
}

TEST_F(UpdateTest, isReportedWithAnythingThatItThrows)
{
    const struct {
        const char* name;
        void (*fail)();
        const char* message;
    } cases[] = {
        {"exception", [] { throw std::runtime_error{"no such file"}; }, "no such file"},
        {"literal", [] { throw "plain text"; }, "plain text"},
        {"null", [] { throw static_cast<const char*>(nullptr); }, ""},
        {"string", [] { throw std::string{"a string"}; }, "a string"},
        {"number", [] { throw 5; }, "something other than a std::exception"},
        {"memory", [] { throw std::bad_array_new_length{}; }, "failed: out of memory"},
    };
    for (const auto& [name, fail, message] : cases) {
        SCOPED_TRACE(name);
        const auto failing = makeNode(name);
        const auto reader = makeNode("reader");
        const auto independent = makeNode("independent");
        connect(failing, reader);
        runAll({failing, reader, independent}, pool);
        runsOf({reader, independent});
        failing->work = [fail = fail](Node&, VRequest&, double) -> bool {
            fail();
            return true;
        };
        VScheduler::schedule(failing, 0, pool);
        VScheduler::schedule(independent, 0, pool);
        const VScheduler::Summary summary = VScheduler::run(pool);
        EXPECT_EQ(summary.outcome, Outcome::Done);
        EXPECT_EQ(summary.updates, 2u);
        EXPECT_EQ(summary.failures, 1u);
        EXPECT_THAT(warnings(),
                    ElementsAre(AllOf(HasSubstr("Node \"" + std::string(name) + "\""), HasSubstr(message))));
        EXPECT_EQ(independent->runs, 1u);
        EXPECT_EQ(reader->runs, 0u);
        EXPECT_EQ(reader->read(pool, "out"), 2) << "the last good values remain";

        failing->work = nullptr;
        VScheduler::schedule(failing, 0, pool);
        EXPECT_EQ(VScheduler::run(pool).failures, 0u);
        EXPECT_EQ(reader->runs, 1u);
    }
}

TEST_F(UpdateTest, mayRemoveItsObjectAndOtherDueObjects)
{
    Nodes nodes;
    for (const char* name : {"0", "1", "2", "3"}) {
        nodes.push_back(makeNode(name));
        if (nodes.size() > 1)
            connect(nodes[nodes.size() - 2], nodes.back());
    }
    runAll(nodes, pool);
    auto doomed = makeNode("doomed");
    const auto survivor = makeNode("survivor");
    connect(nodes[0], doomed);
    connect(doomed, survivor);
    runAll({doomed}, pool);
    runsOf(nodes);
    const WeakPtrImpl<Node> itself = nodes[1];
    nodes[1]->work = [&](Node& self, VRequest& request, double) {
        self.writeSum(request.valuePool());
        nodes[1].reset();
        doomed.reset();
        return true;
    };
    // The work is part of the object, which stays alive until the work returns.
    nodes[0]->write(pool, "in", 7.0);
    const VScheduler::Summary summary = VScheduler::run(pool);
    EXPECT_TRUE(itself.expired());
    EXPECT_EQ(summary.updates, 4u);
    EXPECT_EQ(nodes[3]->read(pool, "out"), 11);
    EXPECT_EQ(Node::living, 4u);
    EXPECT_EQ(survivor->runs, 1u);
}

TEST_F(UpdateTest, isNotRepeatedWhenItWritesAnInputOfItsObject)
{
    const auto node = makeNode("node");
    const auto sharing = makeNode("sharing");
    sharing->attachParameter(node->findSlot("in")->parameter(), sharing->findSlot("in"), "");
    node->work = [](Node& self, VRequest& request, double) {
        self.write(request.valuePool(), "in", 100.0);
        return self.writeSum(request.valuePool());
    };
    runAll({node}, pool);
    EXPECT_EQ(node->runs, 1u);
    EXPECT_EQ(sharing->runs, 1u) << "other readers must run";
    EXPECT_EQ(sharing->read(pool, "out"), 101);
    node->write(pool, "in", 5.0);
    EXPECT_TRUE(VScheduler::isDue(node, pool)) << "a write from outside makes it due";
}

TEST_F(UpdateTest, seesTheChangesOfInputsSinceTheLastSuccess)
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
    VScheduler::run(pool);
    EXPECT_THAT(changed, ElementsAre(false, false));
    reader->write(pool, "own", 3.0);
    fails = true;
    VScheduler::run(pool);
    EXPECT_EQ(warnings().size(), 1u);
    EXPECT_THAT(changed, ElementsAre(false, true));
    source->write(pool, "in", 4.0);
    fails = false;
    VScheduler::run(pool);
    EXPECT_THAT(changed, ElementsAre(true, true)) << "it has not succeeded since the first change";
    reader->detach(reader->findSlot("connected"));
    VScheduler::run(pool);
    EXPECT_THAT(changed, ElementsAre(true, false)) << "it reads another value now";
    VScheduler::run(pool);
    VScheduler::schedule(reader, 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(changed, ElementsAre(false, false));
    EXPECT_FALSE(VRequest(pool).hasChanged(*reader->findSlot("own"))) << "outside an update";
}

TEST_F(UpdateTest, mayRemoveItsObjectWhileOtherThreadsRunIt)
{
    for (int round = 0; round < 50; ++round) {
        auto doomed = makeNode("doomed");
        VObject::finishCreation(doomed);
        const auto reader = makeNode("reader");
        connect(doomed, reader);
        const WeakPtrImpl<Node> watch = doomed;
        std::atomic<bool> isRemoved{false};
        doomed->work = [&](Node& self, VRequest& request, double) {
            if (self.runs % 4 == 3 && !isRemoved.exchange(true))
                VManagedObject::remove(WeakPtrImpl<Node>(&self).lock());
            return self.writeSum(request.valuePool());
        };
        doomed->keepsState(); // it counts its runs
        doomed.reset();
        inThreads(3, [&](unsigned) {
            const auto own = Loam::makeStrong<ValuePool>();
            for (int i = 0; i < 10; ++i) {
                if (const StrongPtr<Node> node = watch.lock())
                    VScheduler::schedule(node, 0, own);
                VScheduler::run(own);
            }
        });
        EXPECT_TRUE(watch.expired());
    }
}

TEST_F(UpdateTest, mayRemoveItsReaderWhileOtherThreadsEvaluate)
{
    for (int round = 0; round < 30; ++round) {
        const auto source = makeNode("source");
        WeakPtrImpl<Node> reader;
        {
            const auto made = makeNode("reader");
            connect(source, made);
            VObject::finishCreation(made);
            reader = made;
        }
        std::atomic<int> updates{0};
        source->work = [&](Node& self, VRequest& request, double) {
            if (++updates == 5)
                VManagedObject::remove(reader.lock());
            return self.writeSum(request.valuePool());
        };
        inThreads(3, [&](unsigned) {
            const auto own = Loam::makeStrong<ValuePool>();
            for (int i = 0; i < 10; ++i) {
                VScheduler::schedule(source, 0, own);
                EXPECT_EQ(VScheduler::run(own).outcome, VScheduler::Outcome::Done);
            }
        });
        ASSERT_TRUE(reader.expired());
    }
}

TEST_F(UpdateTest, runsInOnePoolAtATimeIfItsObjectKeepsState)
{
    const auto node = makeNode("node");
    std::atomic<int> running{0};
    int state = 0; // not atomic: only one update may write to it at a time
    EXPECT_FALSE(node->isStateful());
    node->keepsState();
    EXPECT_TRUE(node->isStateful());
    node->work = [&](Node& self, VRequest& request, double) {
        EXPECT_EQ(++running, 1);
        ++state;
        std::this_thread::yield();
        --running;
        return self.writeSum(request.valuePool());
    };
    inThreads(4, [&](unsigned) {
        const auto own = Loam::makeStrong<ValuePool>();
        for (int i = 0; i < 100; ++i) {
            VScheduler::schedule(node, 0, own);
            VScheduler::run(own);
        }
    });
    EXPECT_EQ(state, 400);
}

} // namespace UpdateTest
