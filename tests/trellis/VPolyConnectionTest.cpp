#include <trellis/VPolyConnection.hpp>

#include "support/TestNetwork.hpp"

namespace VPolyConnectionTest {

using namespace Orla;

namespace {

struct Selector : Node {
    using Node::Node;
};
struct SpecialSelector : Selector {
    using Selector::Selector;
};

bool isSelector(const VObject& object)
{
    return dynamic_cast<const Selector*>(&object) != nullptr;
}

class VPolyConnectionTest : public FrameworkTest {
protected:
    ~VPolyConnectionTest() override
    {
        for (const StrongPtr<Node>& node : announced)
            VManagedObject::remove(node);
    }

    template<class T>
    StrongPtr<T> announce(const std::string& name)
    {
        const auto node = Loam::makeStrong<T>(name);
        VObject::finishCreation(node);
        announced.push_back(node);
        return node;
    }

    StrongPtr<Node> makeProvider(const std::string& name)
    {
        auto node = makeNode(name);
        announced.push_back(node);
        return node;
    }

    static const StrongPtr<VParameter>& outputOf(const StrongPtr<Node>& node)
    {
        return node->findOutput("out")->parameter();
    }

    std::vector<StrongPtr<Node>> announced;
};

} // namespace

TEST_F(VPolyConnectionTest, joinsPresentObjectsAndThoseAnnouncedLater)
{
    const auto before = announce<Selector>("before");
    const auto provider = makeProvider("charts");
    const VPolyConnection connection(outputOf(provider), &isSelector);
    EXPECT_EQ(connection.count(), 1);
    const auto after = announce<SpecialSelector>("after");
    announce<Node>("no requester");
    EXPECT_EQ(connection.count(), 2);
    for (const StrongPtr<Node>& selector : {StrongPtr<Node>(before), StrongPtr<Node>(after)}) {
        const StrongPtr<VSlot> slot = selector->findSlot("charts.out");
        ASSERT_TRUE(slot);
        EXPECT_EQ(slot->parameter(), outputOf(provider));
        EXPECT_TRUE(slot->hasFlag(VSlot::AddedLater));
        EXPECT_FALSE(slot->hasFlag(VSlot::Passive));
        EXPECT_FALSE(slot->ownsParameter());
        EXPECT_EQ(selector->inputs().size(), 1u);
    }
    EXPECT_EQ(announced.back()->inputs().size(), 0u);
}

TEST_F(VPolyConnectionTest, makesRequestersDueWhenTheOutputChanges)
{
    const auto pool = Loam::makeStrong<ValuePool>();
    const auto selector = announce<Selector>("selector");
    selector->addOutput("sum");
    const auto provider = makeProvider("charts");
    const VPolyConnection connection(outputOf(provider), &isSelector);
    runAll({provider}, pool);
    EXPECT_EQ(selector->runs, 1u);
    EXPECT_EQ(selector->read(pool, "sum"), 2);
    EXPECT_GT(selector->evaluationOrder(), provider->evaluationOrder());
}

TEST_F(VPolyConnectionTest, joinsAnObjectOnce)
{
    const auto selector = announce<Selector>("selector");
    const auto provider = makeProvider("charts");
    const VPolyConnection first(outputOf(provider), &isSelector);
    const VPolyConnection second(outputOf(provider), &isSelector);
    EXPECT_EQ(first.count(), 1);
    EXPECT_EQ(second.count(), 0);
    VManagedObject::remove(selector);
    VObject::finishCreation(selector);
    EXPECT_EQ(first.count(), 1) << "announced a second time";
    EXPECT_EQ(selector->inputs().size(), 1u);
}

TEST_F(VPolyConnectionTest, choosesAFreeNameIfOwnersHaveTheSameName)
{
    const auto selector = announce<Selector>("selector");
    std::vector<StrongPtr<Node>> providers;
    std::vector<std::unique_ptr<VPolyConnection>> connections;
    for (int i = 0; i < 3; ++i) {
        providers.push_back(makeProvider("charts"));
        connections.push_back(std::make_unique<VPolyConnection>(outputOf(providers.back()), &isSelector));
    }
    EXPECT_EQ(selector->findSlot("charts.out")->parameter(), outputOf(providers[0]));
    EXPECT_EQ(selector->findSlot("charts.out #2")->parameter(), outputOf(providers[1]));
    EXPECT_EQ(selector->findSlot("charts.out #3")->parameter(), outputOf(providers[2]));
}

TEST_F(VPolyConnectionTest, namesTheInputAfterTheOutputAloneIfItHasNoOwner)
{
    const auto selector = announce<Selector>("selector");
    const VPolyConnection connection(testParameter("loose"), &isSelector);
    EXPECT_TRUE(selector->findSlot("loose"));
}

TEST_F(VPolyConnectionTest, leavesTheLastValuesToJoinedObjectsWhenItIsDestroyed)
{
    const auto pool = Loam::makeStrong<ValuePool>();
    const auto selector = announce<Selector>("selector");
    {
        const auto provider = makeNode("charts");
        const VPolyConnection connection(outputOf(provider), &isSelector);
        provider->write(pool, "out", 7.0);
    }
    EXPECT_EQ(contentOf(selector->findSlot("charts.out")->getValueBase(pool)), 7);
    const auto late = announce<Selector>("late");
    EXPECT_EQ(late->inputs().size(), 0u);
}

TEST_F(VPolyConnectionTest, checksEachObjectOnceForAnyNumberOfOutputs)
{
    static unsigned asked = 0;
    const VPolyConnection::IsRequester isRequester = [](const VObject& object) {
        ++asked;
        return isSelector(object);
    };
    asked = 0;
    const auto selector = announce<Selector>("selector");
    announce<Node>("before");
    const auto provider = makeProvider("charts");
    std::vector<StrongPtr<VParameter>> outputs;
    std::vector<std::unique_ptr<VPolyConnection>> connections;
    for (int i = 0; i < 100; ++i) {
        outputs.push_back(provider->addOutput("out" + std::to_string(i))->parameter());
        connections.push_back(std::make_unique<VPolyConnection>(outputs.back(), isRequester));
    }
    announce<Node>("after");
    EXPECT_EQ(asked, 3u);
    EXPECT_EQ(selector->inputs().size(), 100u);

    // In any order, even from the middle of the list.
    connections.erase(connections.begin() + 10, connections.begin() + 20);
    const auto late = announce<Selector>("late");
    EXPECT_EQ(late->inputs().size(), 90u);
    EXPECT_TRUE(late->findSlot("charts.out9"));
    EXPECT_FALSE(late->findSlot("charts.out10"));
}

TEST_F(VPolyConnectionTest, doesNotJoinRemovedObjects)
{
    const auto selector = announce<Selector>("selector");
    const auto provider = makeProvider("charts");
    const VPolyConnection first(provider->addOutput("first")->parameter(), &isSelector);
    VManagedObject::remove(selector);
    const VPolyConnection second(provider->addOutput("second")->parameter(), &isSelector);
    EXPECT_EQ(first.count(), 1);
    EXPECT_EQ(second.count(), 0);
    EXPECT_FALSE(selector->findSlot("charts.second"));
}

} // namespace VPolyConnectionTest
