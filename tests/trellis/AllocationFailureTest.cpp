#include "support/ReplacedNew.hpp"
#include "support/TestNetwork.hpp"

#include <trellis/VExecutor.hpp>
#include <trellis/VNetwork.hpp>

#include <new>

namespace AllocationFailureTest {

// Fails each allocation of a short run in turn. The caller must receive std::bad_alloc or
// a warning, and everything must work afterwards.

namespace {

// Number of allocations that succeed before one fails; if negative, all succeed.
long allocationsLeft = -1;
bool everyAllocationFails = false;
bool hasFailed = false;

} // namespace

} // namespace AllocationFailureTest

void ReplacedNew::allocating()
{
    using namespace AllocationFailureTest;
    if (everyAllocationFails || (allocationsLeft >= 0 && allocationsLeft-- == 0)) {
        hasFailed = true;
        throw std::bad_alloc{};
    }
}

void ReplacedNew::allocated() noexcept
{
}

void ReplacedNew::released() noexcept
{
}

namespace AllocationFailureTest {

using namespace Orla;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;

class AllocationFailureTest : public FrameworkTest {
protected:
    // Two diamonds in a row.
    static Nodes makeNetwork()
    {
        Nodes nodes;
        for (int i = 0; i < 7; ++i)
            nodes.push_back(makeNode(std::to_string(i), {"x", "y"}));
        for (const auto& [from, to] : {std::pair{0u, 1u}, {0u, 2u}, {3u, 4u}, {3u, 5u}})
            connect(nodes[from], nodes[to], "x");
        connect(nodes[1], nodes[3], "x");
        connect(nodes[2], nodes[3], "y");
        connect(nodes[4], nodes[6], "x");
        connect(nodes[5], nodes[6], "y");
        return nodes;
    }

    // Fails the first, the second, ... allocation of `action` until none fails. `prepare`
    // creates the subject of `action`, and `check` examines it afterwards.
    template<class Prepare, class Action, class Check>
    void failInTurn(Prepare&& prepare, Action&& action, Check&& check)
    {
        for (long number = 0;; ++number) {
            SCOPED_TRACE(number);
            ASSERT_LT(number, 5000);
            auto subject = prepare();
            bool wasReported = false;
            hasFailed = false;
            allocationsLeft = number;
            try {
                wasReported = action(subject);
            } catch (const std::bad_alloc&) {
                wasReported = true;
            }
            allocationsLeft = -1;
            const bool isOver = !hasFailed;
            if (hasFailed) {
                EXPECT_TRUE(wasReported || !warnings().empty());
            }
            warnings();
            check(subject);
            if (isOver || HasFailure())
                return;
        }
    }
};

struct Subject {
    Nodes nodes;
    StrongPtr<ValuePool> pool;
};

Subject makeSubject(const Nodes& nodes)
{
    return {nodes, Loam::makeStrong<ValuePool>("pool")};
}

void expectAllResults(const Subject& subject)
{
    runAll(subject.nodes, subject.pool);
    EXPECT_EQ(subject.nodes[6]->read(subject.pool, "out"), 29);
    EXPECT_FALSE(VScheduler::isDue(subject.pool));
    for (const StrongPtr<Node>& node : subject.nodes)
        EXPECT_EQ(VScheduler::stateOf(*node, subject.pool), VScheduler::State::UpToDate);
}

} // namespace

TEST_F(AllocationFailureTest, isReportedByTheFirstEvaluationOfAPool)
{
    failInTurn([] { return makeSubject(makeNetwork()); },
               [](Subject& subject) {
                   subject.nodes[0]->write(subject.pool, "x", 4.0);
                   const bool failed = runAll(subject.nodes, subject.pool).failures > 0;
                   // The queue of due objects works even without memory.
                   return failed || subject.nodes[6]->read(subject.pool, "out") == 29;
               },
               [](const Subject& subject) {
                   subject.nodes[0]->write(subject.pool, "x", 4.0);
                   expectAllResults(subject);
               });
}

TEST_F(AllocationFailureTest, losesNoAnnouncedChange)
{
    failInTurn(
        [] {
            Subject subject = makeSubject(makeNetwork());
            runAll(subject.nodes, subject.pool);
            // New readers: their frames are created when the change is announced.
            for (int i = 0; i < 20; ++i) {
                subject.nodes.push_back(makeNode("late", {"x"}));
                connect(subject.nodes[static_cast<std::size_t>(i) % 7], subject.nodes.back(), "x");
            }
            subject.nodes[0]->write(subject.pool, "x", 4.0);
            return subject;
        },
        [](Subject& subject) {
            const bool failed = VScheduler::run(subject.pool).failures > 0;
            return failed
                   || subject.nodes[26]->read(subject.pool, "out") == subject.nodes[5]->read(subject.pool, "out") + 1;
        },
        [](const Subject& subject) {
            VScheduler::schedule(subject.nodes[0], 0, subject.pool);
            for (const StrongPtr<Node>& node : subject.nodes) {
                if (VScheduler::stateOf(*node, subject.pool) == VScheduler::State::Failed)
                    VScheduler::schedule(node, 0, subject.pool);
            }
            VScheduler::run(subject.pool);
            EXPECT_EQ(subject.nodes[6]->read(subject.pool, "out"), 29);
            for (std::size_t i = 7; i < subject.nodes.size(); ++i)
                EXPECT_EQ(subject.nodes[i]->read(subject.pool, "out"),
                          subject.nodes[(i - 7) % 7]->read(subject.pool, "out") + 1);
        });
}

TEST_F(AllocationFailureTest, losesNoObjectScheduledToRunConcurrently)
{
    // Leaves all work to the calling thread, so every run makes the same allocations.
    struct Idle final : VExecutor {
        unsigned concurrency() const noexcept override { return 1; }
        void execute(std::function<void()>) override {}
    } executor;
    std::vector<double> precisions;
    failInTurn(
        [&] {
            Subject subject = makeSubject({});
            for (int i = 0; i < 12; ++i) {
                subject.nodes.push_back(makeNode("node"));
                if (i >= 6) // reads one of the first six
                    connect(subject.nodes[static_cast<std::size_t>(i - 6)], subject.nodes.back());
                subject.nodes.back()->work = [&precisions, i](Node& self, VRequest& request, double precision) {
                    if (precision != 0) // otherwise it runs again because its input changed
                        precisions[static_cast<std::size_t>(i)] = precision;
                    return self.writeSum(request.valuePool());
                };
            }
            for (std::size_t i = 0; i < 12; ++i)
                VScheduler::schedule(subject.nodes[i], static_cast<double>(i + 1), subject.pool);
            precisions.assign(12, 0);
            return subject;
        },
        [&](Subject& subject) {
            VRequest request(subject.pool);
            return VScheduler::run(request, executor).failures > 0;
        },
        [&](const Subject& subject) {
            for (std::size_t i = 0; i < 12; ++i) {
                if (VScheduler::stateOf(*subject.nodes[i], subject.pool) == VScheduler::State::Failed)
                    VScheduler::schedule(subject.nodes[i], static_cast<double>(i + 1), subject.pool);
            }
            VScheduler::run(subject.pool);
            for (std::size_t i = 0; i < 12; ++i) {
                EXPECT_EQ(VScheduler::stateOf(*subject.nodes[i], subject.pool), VScheduler::State::UpToDate) << i;
                EXPECT_EQ(subject.nodes[i]->read(subject.pool, "out"), i < 6 ? 1 : 2) << i;
                EXPECT_EQ(precisions[i], static_cast<double>(i + 1)) << i;
            }
        });
}

TEST_F(AllocationFailureTest, leavesConnectionsIntact)
{
    failInTurn(
        [] {
            Subject subject = makeSubject(makeNetwork());
            runAll(subject.nodes, subject.pool);
            return subject;
        },
        [](Subject& subject) {
            subject.nodes[6]->attachOutput(subject.nodes[3]->findOutput("out"), subject.nodes[6]->findSlot("x"), "");
            subject.nodes[6]->addInput("z");
            subject.nodes[6]->removeParameter(subject.nodes[6]->findSlot("z"));
            subject.nodes[6]->detach(subject.nodes[6]->findSlot("y"));
            return false;
        },
        [](const Subject& subject) {
            Node& last = *subject.nodes[6];
            if (const StrongPtr<VSlot> added = last.findSlot("z"))
                last.removeParameter(added);
            last.attachOutput(subject.nodes[4]->findOutput("out"), last.findSlot("x"), "");
            last.attachOutput(subject.nodes[5]->findOutput("out"), last.findSlot("y"), "");
            subject.nodes[0]->write(subject.pool, "x", 4.0);
            expectAllResults(subject);
        });
}

TEST_F(AllocationFailureTest, leavesNothingBehindWhenAnObjectIsCreated)
{
    failInTurn([] { return Subject{}; },
               [](Subject& subject) {
                   const auto node = makeNode("node");
                   VObject::finishCreation(node);
                   subject.nodes.push_back(node);
                   return false;
               },
               [](const Subject&) {
                   while (const auto left = VManagedObject::find("node"))
                       VManagedObject::remove(left);
               });
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(AllocationFailureTest, doesNotPreventTheDestructionOfPoolsParametersAndObjects)
{
    for (const char* const order : {"pnx", "npx", "xpn", "nxp"}) {
        SCOPED_TRACE(order);
        Subject subject = makeSubject(makeNetwork());
        runAll(subject.nodes, subject.pool);
        StrongPtr<VParameter> parameter = testParameter("loose");
        parameter->getLocalValue(subject.pool);
        everyAllocationFails = true;
        for (const char* what = order; *what; ++what) {
            if (*what == 'p')
                subject.pool.reset();
            else if (*what == 'n')
                subject.nodes = {};
            else
                parameter.reset();
        }
        everyAllocationFails = false;
        EXPECT_EQ(Node::living, 0u);
    }
}

} // namespace AllocationFailureTest
