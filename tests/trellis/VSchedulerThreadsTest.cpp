#include "support/Sanitizers.hpp"
#include "support/TestNetwork.hpp"

#include <trellis/VNetwork.hpp>

#include <atomic>
#include <random>
#include <thread>

// Evaluates and changes networks in several threads; run it under ThreadSanitizer.

using namespace Orla;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;

// Calls `function(number)` in `count` threads at once.
template<class Function>
void inThreads(unsigned count, Function&& function)
{
    std::atomic<unsigned> ready{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < count)
                std::this_thread::yield();
            function(i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

Nodes makeRandomNetwork(unsigned seed)
{
    std::mt19937 random(seed);
    return Orla::makeRandomNetwork(random, 6 + seed % 10);
}

class VSchedulerThreadsTest : public FrameworkTest {};

} // namespace

TEST_F(VSchedulerThreadsTest, evaluatesPoolsOfOneNetworkConcurrently)
{
#if defined(SANITIZED)
    constexpr unsigned Networks = 150;
#else
    constexpr unsigned Networks = 1500;
#endif
    for (unsigned seed = 0; seed < Networks; ++seed) {
        const Nodes nodes = makeRandomNetwork(seed);
        const auto evaluate = [&nodes](unsigned first) {
            const auto pool = Loam::makeStrong<ValuePool>();
            std::vector<double> results;
            for (unsigned step = 0; step < 3; ++step) {
                Node::write(pool, nodes.front()->inputs()[0], double(first + step));
                for (const StrongPtr<Node>& node : nodes)
                    VScheduler::schedule(node, 0, pool);
                VScheduler::run(pool);
                for (const StrongPtr<Node>& node : nodes)
                    results.push_back(contentOf(node->outputs()[0]->getValueBase(pool)));
            }
            return results;
        };
        std::vector<std::vector<double>> results(3);
        inThreads(3, [&](unsigned i) { results[i] = evaluate(10 * i); });
        for (unsigned i = 0; i < 3; ++i)
            ASSERT_EQ(results[i], evaluate(10 * i)) << seed;
    }
}

TEST_F(VSchedulerThreadsTest, usesDifferentNetworksConcurrently)
{
    inThreads(4, [](unsigned seed) {
        for (unsigned round = 0; round < 50; ++round) {
            VNetwork network;
            const VNetwork::Scope scope{network};
            const Nodes nodes = makeRandomNetwork(seed * 50 + round);
            for (const StrongPtr<Node>& node : nodes)
                VObject::finishCreation(node);
            const auto pool = Loam::makeStrong<ValuePool>();
            EXPECT_EQ(VScheduler::scheduleAll(pool), nodes.size());
            EXPECT_EQ(VScheduler::run(pool).updates, nodes.size());
        }
    });
}

TEST_F(VSchedulerThreadsTest, changesANetworkWhileOtherThreadsEvaluateIt)
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

TEST_F(VSchedulerThreadsTest, letsUpdatesChangeANetworkThatOtherThreadsEvaluate)
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

TEST_F(VSchedulerThreadsTest, letsAnUpdateRemoveItsObjectWhileOtherThreadsRunIt)
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
            const auto pool = Loam::makeStrong<ValuePool>();
            for (int i = 0; i < 10; ++i) {
                if (const StrongPtr<Node> node = watch.lock())
                    VScheduler::schedule(node, 0, pool);
                VScheduler::run(pool);
            }
        });
        EXPECT_TRUE(watch.expired());
    }
}

TEST_F(VSchedulerThreadsTest, letsAnUpdateRemoveItsReaderWhileOtherThreadsEvaluate)
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
            const auto pool = Loam::makeStrong<ValuePool>();
            for (int i = 0; i < 10; ++i) {
                VScheduler::schedule(source, 0, pool);
                EXPECT_EQ(VScheduler::run(pool).outcome, VScheduler::Outcome::Done);
            }
        });
        ASSERT_TRUE(reader.expired());
    }
}

TEST_F(VSchedulerThreadsTest, letsAnUpdateDestroyItsNetworkWhileOtherThreadsEvaluateIt)
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

TEST_F(VSchedulerThreadsTest, runsAnObjectThatKeepsStateInOnePoolAtATime)
{
    const auto node = makeNode("node");
    std::atomic<int> running{0};
    int state = 0; // not atomic: only one update may write to it at a time
    node->keepsState();
    node->work = [&](Node& self, VRequest& request, double) {
        EXPECT_EQ(++running, 1);
        ++state;
        std::this_thread::yield();
        --running;
        return self.writeSum(request.valuePool());
    };
    inThreads(4, [&](unsigned) {
        const auto pool = Loam::makeStrong<ValuePool>();
        for (int i = 0; i < 100; ++i) {
            VScheduler::schedule(node, 0, pool);
            VScheduler::run(pool);
        }
    });
    EXPECT_EQ(state, 400);
}

TEST_F(VSchedulerThreadsTest, releasesPoolsWhileTheirNetworkIsDestroyed)
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

TEST_F(VSchedulerThreadsTest, createsManyPoolsInTwoThreads)
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
