#include <trellis/ValuePool.hpp>

#include "support/TestNetwork.hpp"

#include <random>

// Frames and queues are internal; the tests observe them through pools and the scheduler.

using namespace Orla;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

class PoolStateTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
    std::vector<std::string> ran;

    // Creates an object that records its runs and writes nothing.
    StrongPtr<Node> makeRecorder(const std::string& name)
    {
        auto node = makeNode(name);
        node->work = [this](Node& self, VRequest&, double) {
            ran.push_back(self.Name());
            return true;
        };
        return node;
    }
};

} // namespace

TEST_F(PoolStateTest, queuesObjectsOfEqualOrderAsTheyBecomeDue)
{
    std::vector<StrongPtr<Node>> nodes;
    for (const char* name : {"a", "b", "c", "d", "e"})
        nodes.push_back(makeRecorder(name));
    for (const std::size_t i : {3u, 0u, 4u, 2u, 1u, 0u, 3u})
        VScheduler::schedule(nodes[i], 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(ran, ElementsAre("d", "a", "e", "c", "b")) << "an object that is already due keeps its place";
}

TEST_F(PoolStateTest, queuesSourcesBeforeTheirReaders)
{
    // Several objects of each order number from 0 to 29, due in random order.
    std::vector<StrongPtr<Node>> sources;
    std::vector<StrongPtr<Node>> nodes;
    for (int i = 0; i < 30; ++i) {
        sources.push_back(makeRecorder("source"));
        if (i > 0)
            connect(sources[static_cast<std::size_t>(i) - 1], sources.back());
        for (int k = 0; k < 4; ++k) {
            nodes.push_back(makeRecorder(std::to_string(i)));
            if (i > 0)
                connect(sources[static_cast<std::size_t>(i) - 1], nodes.back());
        }
    }
    runAll(sources, pool);
    VScheduler::run(pool);
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        std::ranges::shuffle(nodes, random);
        ran.clear();
        const std::size_t count = random() % nodes.size() + 1;
        for (std::size_t i = 0; i < count; ++i)
            VScheduler::schedule(nodes[i], 0, pool);
        EXPECT_EQ(VScheduler::run(pool).updates, count);
        std::vector<int> orders;
        for (const std::string& name : ran)
            orders.push_back(std::stoi(name));
        EXPECT_TRUE(std::ranges::is_sorted(orders));
        EXPECT_EQ(orders.size(), count);
    }
}

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

TEST_F(PoolStateTest, runsADueObjectAtItsNewPlaceAfterItsOrderIsLowered)
{
    // "late" is due at the end of a chain. After its connection is cut, its reader comes
    // before the place where it was queued.
    std::vector<StrongPtr<Node>> chain;
    for (int i = 0; i < 10; ++i) {
        chain.push_back(makeNode(std::to_string(i)));
        if (i > 0)
            connect(chain[chain.size() - 2], chain.back());
    }
    const auto late = makeNode("late");
    const auto reader = makeNode("reader", {"chain", "late"});
    connect(chain.back(), late);
    connect(chain[3], reader, "chain");
    connect(late, reader, "late");
    std::vector<StrongPtr<Node>> all = chain;
    all.insert(all.end(), {late, reader});
    runAll(all, pool);
    const auto second = Loam::makeStrong<ValuePool>("second");
    runAll(all, second);
    runsOf(all);

    VScheduler::schedule(chain[3], 0, pool);
    VScheduler::schedule(chain[3], 0, second);
    late->detach(late->findSlot("in"));
    for (const auto& each : {pool, second}) {
        VScheduler::run(each);
        EXPECT_EQ(late->runs, 1u);
        EXPECT_EQ(reader->runs, 1u);
        runsOf(all);
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

TEST_F(PoolStateTest, createsMissingVariablesBeforeAnUpdate)
{
    const auto node = makeNode("node", {"first"});
    std::size_t variables = 0;
    node->work = [&](Node& self, VRequest& request, double) {
        variables = 0;
        for (const VSlotSet* slots : {&self.inputs(), &self.outputs()}) {
            for (const StrongPtr<VSlot>& slot : *slots)
                variables += slot->getValueBase(request.valuePool()) != nullptr;
        }
        return true;
    };
    runAll({node}, pool);
    EXPECT_EQ(variables, 2u);
    node->addInput("second");
    node->addOutput("third");
    runAll({node}, pool);
    EXPECT_EQ(variables, 4u);

    const auto writer = makeNode("writer");
    connect(writer, node, "first");
    runAll({node}, pool);
    EXPECT_EQ(variables, 4u) << "the writer never ran, so its variable was created for the reader";
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

TEST_F(PoolStateTest, removesAContainerFromAllPoolsButKeepsValuesThatOthersRead)
{
    auto writer = makeNode("writer");
    const auto reader = makeNode("reader");
    connect(writer, reader);
    std::vector<StrongPtr<ValuePool>> pools;
    for (int i = 0; i < 20; ++i) {
        pools.push_back(Loam::makeStrong<ValuePool>());
        runAll({writer, reader}, pools.back());
        VScheduler::schedule(writer, 0, pools.back());
    }
    pools.erase(pools.begin() + 3);
    writer.reset();
    for (const StrongPtr<ValuePool>& each : pools) {
        EXPECT_FALSE(VScheduler::isDue(each));
        EXPECT_EQ(each->variableCount(), 2u);
        EXPECT_EQ(contentOf(reader->findSlot("in")->getValueBase(each)), 1);
    }
}
