#include "support/TestNetwork.hpp"
#include "support/Threads.hpp"

#include <trellis/VNetwork.hpp>

#include <atomic>
#include <random>
#include <thread>

namespace GateTest {

// Threads that use and change networks, observed through `VNetwork`. Run this under
// ThreadSanitizer, too.

using namespace Orla;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;

class GateTest : public FrameworkTest {};

} // namespace

TEST_F(GateTest, makesAChangeWaitForTheOutermostUseOfEachThread)
{
    VNetwork network;
    std::atomic<int> users{0};
    int changes = 0; // not atomic: only one thread at a time may change the network
    inThreads(4, [&](unsigned number) {
        for (int i = 0; i < 500; ++i) {
            if (number < 2) {
                const VNetwork::Use outer{network};
                {
                    const VNetwork::Use inner{network};
                }
                ++users;
                std::this_thread::yield();
                --users;
            } else {
                const VNetwork::Change change{network};
                const int before = changes;
                EXPECT_EQ(users, 0);
                std::this_thread::yield();
                changes = before + 1;
            }
        }
    });
    EXPECT_EQ(changes, 1000);
}

TEST_F(GateTest, nestsUsesAndChangesOfOneThreadInAnyOrder)
{
    VNetwork network;
    int changes = 0;
    inThreads(3, [&](unsigned) {
        for (int i = 0; i < 300; ++i) {
            const VNetwork::Use use{network};
            const VNetwork::Change outer{network};
            {
                const VNetwork::Use again{network};
                const VNetwork::Change inner{network};
            }
            const int before = changes;
            std::this_thread::yield();
            changes = before + 1;
        }
    });
    EXPECT_EQ(changes, 900);
}

TEST_F(GateTest, suspendsTheUsesOfAllNetworksWhileAThreadWaitsToChangeOne)
{
    VNetwork networks[2];
    int changes[2] = {};
    inThreads(2, [&](unsigned number) {
        for (int i = 0; i < 300; ++i) {
            const VNetwork::Use use{networks[number]};
            std::this_thread::yield();
            const VNetwork::Change change{networks[1 - number]};
            ++changes[1 - number];
        }
    });
    EXPECT_THAT(changes, testing::Each(300));
}

TEST_F(GateTest, changesANetworkWhileOtherThreadsEvaluateIt)
{
    const Nodes chain = [] {
        Nodes made{makeNode("0")};
        for (int i = 1; i < 20; ++i) {
            made.push_back(makeNode(std::to_string(i)));
            connect(made[made.size() - 2], made.back());
        }
        return made;
    }();
    std::atomic<bool> isOver{false};
    std::atomic<unsigned> evaluations{0};
    inThreads(3, [&](unsigned number) {
        if (number == 0) {
            // Creates and destroys objects, makes and cuts connections.
            std::mt19937 random(1);
            for (int i = 0; i < 300 || evaluations < 100; ++i) {
                const std::size_t reader = 1 + random() % 19;
                const auto added = makeNode("added");
                connect(chain[reader - 1], added);
                chain[reader]->detach(chain[reader]->findSlot("in"));
                const VNetwork::Change change{VNetwork::defaultNetwork()};
                connect(added, chain[reader]);
                connect(chain[reader - 1], chain[reader]);
            }
            isOver = true;
            return;
        }
        const auto pool = Loam::makeStrong<ValuePool>();
        for (double value = 0; !isOver; ++value) {
            {
                const VNetwork::Use use{VNetwork::defaultNetwork()};
                Node::write(pool, chain.front()->inputs()[0], value);
            }
            EXPECT_EQ(VScheduler::run(pool).outcome, VScheduler::Outcome::Done);
            ++evaluations;
        }
    });
    const auto pool = Loam::makeStrong<ValuePool>();
    EXPECT_EQ(runAll(chain, pool).updates, 20u);
    EXPECT_EQ(chain.back()->read(pool, "out"), 20) << "the network is complete again";
}

TEST_F(GateTest, letsUpdatesChangeANetworkThatOtherThreadsEvaluate)
{
    const auto creator = makeNode("creator");
    const auto reader = makeNode("reader");
    connect(creator, reader);
    creator->work = [](Node& self, VRequest& request, double) {
        const auto pool = request.valuePool();
        const auto shortLived = makeNode("short-lived");
        VObject::finishCreation(shortLived);
        connect(WeakPtrImpl<Node>(&self).lock(), shortLived);
        VManagedObject::remove(shortLived);
        return self.writeSum(pool);
    };
    inThreads(3, [&](unsigned) {
        const auto pool = Loam::makeStrong<ValuePool>();
        for (int i = 0; i < 100; ++i) {
            VScheduler::schedule(creator, 0, pool);
            EXPECT_EQ(VScheduler::run(pool).failures, 0u);
        }
        EXPECT_EQ(reader->read(pool, "out"), 2);
    });
}

TEST_F(GateTest, letsAnUpdateDestroyItsNetworkWhileOtherThreadsEvaluateIt)
{
    for (unsigned round = 0; round < 30; ++round) {
        auto network = std::make_unique<VNetwork>();
        Nodes nodes;
        {
            const VNetwork::Scope scope{*network};
            nodes = makeRandomNetwork(round);
        }
        std::atomic<int> updates{0};
        nodes[3]->work = [&](Node& self, VRequest& request, double) {
            if (++updates == 5)
                network.reset();
            return self.writeSum(request.valuePool());
        };
        inThreads(3, [&](unsigned) {
            const auto pool = Loam::makeStrong<ValuePool>();
            for (int i = 0; i < 10; ++i) {
                for (const StrongPtr<Node>& node : nodes)
                    VScheduler::schedule(node, 0, pool);
                EXPECT_EQ(VScheduler::run(pool).outcome, VScheduler::Outcome::Done);
            }
            EXPECT_FALSE(VScheduler::isDue(pool));
        });
        ASSERT_FALSE(network);
        EXPECT_FALSE(VScheduler::schedule(nodes[0], 0, Loam::makeStrong<ValuePool>()));
        ASSERT_EQ(nodes[0]->network(), nullptr);
    }
}

} // namespace GateTest
