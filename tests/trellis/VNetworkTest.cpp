#include <trellis/VNetwork.hpp>

#include <trellis/VObjectCreator.hpp>

#include "support/TestFolder.hpp"
#include "support/TestNetwork.hpp"

#include <filesystem>

namespace VNetworkTest {

using namespace Orla;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class VNetworkTest : public FrameworkTest {
protected:
    static StrongPtr<Node> announce(const std::string& name)
    {
        auto node = makeNode(name);
        VObject::finishCreation(node);
        return node;
    }

    static StrongPtr<Node> makeNodeIn(VNetwork& network)
    {
        const VNetwork::Scope scope{network};
        return makeNode("inside");
    }

    static std::vector<std::string> namesOfObjects()
    {
        std::vector<std::string> names;
        VManagedObject::forEachObject(
            [&names](const StrongPtr<VManagedObject>& object) { names.push_back(object->Name()); });
        return names;
    }
};

} // namespace

TEST_F(VNetworkTest, showsOnlyItsOwnObjects)
{
    const auto outside = announce("outside");
    VNetwork network;
    {
        const VNetwork::Scope scope{network};
        announce("inside");
        announce("second");
        EXPECT_THAT(namesOfObjects(), ElementsAre("inside", "second"));
        EXPECT_FALSE(VManagedObject::find("outside"));
        EXPECT_EQ(VManagedObject::count(), 2u);
    }
    EXPECT_THAT(namesOfObjects(), ElementsAre("outside"));
    EXPECT_FALSE(VManagedObject::find("inside"));
    EXPECT_TRUE(network.find("inside"));
    EXPECT_EQ(network.objectCount(), 2u);
    VManagedObject::remove(outside);
}

TEST_F(VNetworkTest, removesItsObjectsValuesAndConnectionsWhenItIsDestroyed)
{
    const auto pool = Loam::makeStrong<ValuePool>("pool");
    {
        VNetwork network;
        const VNetwork::Scope scope{network};
        const auto first = announce("first");
        const auto second = announce("second");
        connect(first, second);
        first->write(pool, "in", 5.0);
        EXPECT_EQ(VScheduler::run(pool).updates, 2u);
        VScheduler::schedule(second, 0, pool);
        EXPECT_GT(pool->variableCount(), 0u);
    }
    EXPECT_EQ(Node::living, 0u);
    EXPECT_EQ(livingTestValues, 0u);
    EXPECT_EQ(pool->variableCount(), 0u);
    EXPECT_FALSE(VScheduler::isDue(pool));

    // Another network may use the pool.
    const auto other = makeNode("other");
    other->write(pool, "in", 1.0);
    EXPECT_EQ(VScheduler::run(pool).updates, 1u);
}

TEST_F(VNetworkTest, disconnectsObjectsThatOutliveIt)
{
    StrongPtr<Node> first;
    StrongPtr<Node> second;
    const auto pool = Loam::makeStrong<ValuePool>("pool");
    {
        VNetwork network;
        const VNetwork::Scope scope{network};
        first = announce("first");
        second = announce("second");
        connect(first, second);
        VScheduler::schedule(first, 0, pool);
    }
    EXPECT_EQ(first->network(), nullptr);
    EXPECT_FALSE(first->isRegistered());
    EXPECT_FALSE(second->findSlot("in")->isConnected());
    EXPECT_FALSE(VScheduler::isDue(pool));
    EXPECT_FALSE(VScheduler::schedule(first, 0, pool));
    EXPECT_FALSE(VManagedObject::add(first));
    const Loam::Result<void> done = second->tryAttachOutput(first->findOutput("out"), second->findSlot("in"), "");
    ASSERT_FALSE(done);
    EXPECT_THAT(done.reason(), HasSubstr("was destroyed"));
}

TEST_F(VNetworkTest, refusesConnectionsToAnotherNetwork)
{
    VNetwork network;
    const auto inside = makeNodeIn(network);
    const auto outside = makeNode("outside");
    const auto input = outside->findSlot("in");
    for (const Loam::Result<void>& done :
         {outside->tryAttachOutput(inside->findOutput("out"), input, ""),
          outside->tryAttachParameter(inside->findSlot("in")->parameter(), input, "")}) {
        ASSERT_FALSE(done);
        EXPECT_THAT(done.reason(), HasSubstr("different networks"));
    }
    EXPECT_FALSE(outside->addParameter("more", 0, inside->findOutput("out")->parameter(), true));
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("another network")));
    EXPECT_FALSE(outside->findSlot("in")->isConnected());
}

TEST_F(VNetworkTest, refusesPoolsThatAnotherNetworkUses)
{
    VNetwork network;
    const auto inside = makeNodeIn(network);
    const auto outside = makeNode("outside");
    const auto pool = Loam::makeStrong<ValuePool>("pool");
    EXPECT_TRUE(VScheduler::schedule(inside, 0, pool));
    EXPECT_FALSE(VScheduler::schedule(outside, 0, pool));
    EXPECT_FALSE(outside->findSlot("in")->getLocalValue(pool));
    EXPECT_EQ(VScheduler::run(pool).updates, 1u);
}

TEST_F(VNetworkTest, schedulesOnlyItsOwnObjects)
{
    const auto outside = announce("outside");
    VNetwork network;
    const auto pool = Loam::makeStrong<ValuePool>("pool");
    {
        const VNetwork::Scope scope{network};
        announce("inside");
        EXPECT_EQ(VScheduler::scheduleAll(pool), 1u);
    }
    EXPECT_EQ(VScheduler::scheduleAll(pool), 1u) << "the pool knows its network now";
    VManagedObject::remove(outside);
}

TEST_F(VNetworkTest, isCurrentWhileItIsEvaluated)
{
    VNetwork network;
    StrongPtr<Node> node;
    {
        const VNetwork::Scope scope{network};
        node = makeNode("node");
    }
    const VNetwork* during = nullptr;
    node->work = [&during](Node&, VRequest&, double) {
        during = &VNetwork::current();
        return true;
    };
    runAll({node}, Loam::makeStrong<ValuePool>());
    EXPECT_EQ(during, &network);
    EXPECT_EQ(&VNetwork::current(), &VNetwork::defaultNetwork());
}

TEST_F(VNetworkTest, resolvesRelativeFileNames)
{
    const VNetwork network{"/data/quakes"};
    EXPECT_EQ(network.resolve("week.json"), "/data/quakes/week.json");
    EXPECT_EQ(network.resolve("/other/week.json"), "/other/week.json");
    EXPECT_EQ(VNetwork{}.resolve("week.json"), "week.json");
}

TEST_F(VNetworkTest, findsFilesInItsFolderFirstThenInTheDataFolders)
{
    const TestFolder folder;
    for (const char* const name : {"own", "first", "second"})
        std::filesystem::create_directory(folder.file(name));
    folder.write("own/here.json", "");
    folder.write("first/here.json", "");
    folder.write("first/there.json", "");
    folder.write("second/there.json", "");
    folder.write("second/last.json", "");
    VNetwork network{folder.file("own")};
    network.setDataFolders({folder.file("first"), folder.file("second")});
    EXPECT_EQ(network.findFile("here.json"), folder.file("own/here.json"));
    EXPECT_EQ(network.findFile("there.json"), folder.file("first/there.json"));
    EXPECT_EQ(network.findFile("last.json"), folder.file("second/last.json"));
    EXPECT_EQ(network.findFile("missing.json"), folder.file("own/missing.json"));
    EXPECT_EQ(network.findFile("/there.json"), "/there.json");
}

TEST_F(VNetworkTest, mayBeDestroyedByItsOwnUpdate)
{
    auto network = std::make_unique<VNetwork>();
    StrongPtr<Node> other;
    const auto pool = Loam::makeStrong<ValuePool>("pool");
    double readAfterwards = 0;
    {
        const VNetwork::Scope scope{*network};
        const auto source = announce("source");
        const auto killer = announce("killer");
        other = announce("other");
        connect(source, killer);
        connect(killer, other);
        killer->work = [&](Node& self, VRequest& request, double) {
            network.reset();
            readAfterwards = contentOf(self.inputs()[0]->getValueBase(request.valuePool()));
            return true;
        };
        source->write(pool, "in", 6.0);
    }
    const VScheduler::Summary summary = VScheduler::run(pool);
    EXPECT_EQ(summary.outcome, VScheduler::Outcome::Done);
    EXPECT_EQ(summary.updates, 2u);
    EXPECT_EQ(readAfterwards, 7) << "the update continues with its values";
    EXPECT_EQ(other->runs, 0u);
    EXPECT_EQ(Node::living, 1u);
}

TEST_F(VNetworkTest, mayBeCreatedAndDestroyedManyTimes)
{
    const auto pool = Loam::makeStrong<ValuePool>("pool");
    for (int i = 0; i < 200; ++i) {
        VNetwork network;
        const VNetwork::Scope scope{network};
        const auto node = announce("node");
        VScheduler::schedule(node, 0, pool);
        ASSERT_EQ(VScheduler::run(pool).updates, 1u);
    }
    EXPECT_EQ(Node::living, 0u);
}

} // namespace VNetworkTest
