#include "support/TestNetwork.hpp"

#include <stdexcept>

namespace FrameHooksTest {

// How pools follow changes of the wiring.

using namespace Orla;
using testing::ElementsAre;

namespace {

class FrameHooksTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace

TEST_F(FrameHooksTest, createTheVariablesOfNewSlotsBeforeTheNextUpdate)
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

TEST_F(FrameHooksTest, makeAnObjectDueInAllItsPoolsWhenItsInputsOrConnectionsChange)
{
    const auto writer = makeNode("writer");
    const auto node = makeNode("node");
    const auto second = Loam::makeStrong<ValuePool>("second");
    const auto untouched = Loam::makeStrong<ValuePool>("untouched");
    const auto runBoth = [&] {
        for (const auto& each : {pool, second})
            runAll({node}, each);
    };
    const auto expectDue = [&](bool due) {
        EXPECT_EQ(VScheduler::isDue(node, pool), due);
        EXPECT_EQ(VScheduler::isDue(node, second), due);
        EXPECT_FALSE(VScheduler::isDue(untouched));
        runBoth();
    };
    runBoth();
    expectDue(false);
    const StrongPtr<VSlot> added = node->addInput("added");
    expectDue(true);
    node->removeParameter(added);
    expectDue(true);
    connect(writer, node);
    expectDue(true);
    connect(writer, node);
    expectDue(false); // nothing changed
    node->detach(node->findSlot("in"));
    expectDue(true);
}

TEST_F(FrameHooksTest, keepTheOwnValueOfAConnectedInput)
{
    const auto reader = makeNode("reader");
    const auto source = makeNode("source");
    reader->write(pool, "in", 5.0);
    connect(source, reader);
    runAll({source, reader}, pool);
    EXPECT_EQ(reader->read(pool, "out"), 2);
    reader->detach(reader->findSlot("in"));
    VScheduler::run(pool);
    EXPECT_EQ(reader->read(pool, "out"), 6);
}

TEST_F(FrameHooksTest, moveADueObjectToItsNewPlaceAfterItsOrderIsLowered)
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

TEST_F(FrameHooksTest, removeAContainerFromAllPoolsButKeepValuesThatOthersRead)
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

TEST_F(FrameHooksTest, releaseAWaitingObjectThatStartsToAcceptFailedInputs)
{
    const auto source = makeNode("source");
    const auto reader = makeNode("reader");
    connect(source, reader);
    source->work = [](Node&, VRequest&, double) -> bool { throw std::runtime_error{"broken"}; };
    runAll({source, reader}, pool);
    EXPECT_EQ(warnings().size(), 1u);
    EXPECT_EQ(reader->runs, 0u);
    reader->acceptsFailedInputs();
    VScheduler::schedule(reader, 0, pool);
    EXPECT_EQ(VScheduler::run(pool).waiting, 0u);
    EXPECT_EQ(reader->runs, 1u);
}

TEST_F(FrameHooksTest, notifyAListenerAddedAfterTheFirstEvaluation)
{
    struct Listener final : VValueListener {
        void valueChanged(const ValueNotifierList&, const StrongPtr<ValuePool>& where) override
        {
            pools.push_back(where);
        }
        std::vector<StrongPtr<ValuePool>> pools;
    };
    const auto node = makeNode("node");
    runAll({node}, pool);
    const auto listener = Loam::makeStrong<Listener>();
    node->findOutput("out")->parameter()->addListener(listener);
    runAll({node}, pool);
    EXPECT_THAT(listener->pools, ElementsAre(pool));
}

} // namespace FrameHooksTest
