#include <trellis/VConnectable.hpp>

#include <trellis/VObjectCreator.hpp>

#include "support/TestNetwork.hpp"

#include <limits>

namespace VConnectableTest {

using namespace Orla;

namespace {

StrongPtr<VCreationPreferences> preferences(std::initializer_list<const char*> words)
{
    auto made = Loam::makeStrong<VCreationPreferences>();
    for (const char* word : words)
        made->add(word);
    return made;
}

struct Provider : Node {
    explicit Provider(const std::string& name, int level = 0, const StrongPtr<VCreationPreferences>& has = {})
        : Node{name, level, has}
    {
        addOutput("out");
    }
};

class VConnectableTest : public FrameworkTest {
protected:
    ~VConnectableTest() override
    {
        while (!announced.empty()) {
            VManagedObject::remove(announced.back());
            announced.pop_back();
        }
    }

    StrongPtr<Node> announce(const StrongPtr<Node>& object)
    {
        VObject::finishCreation(object);
        announced.push_back(object);
        return object;
    }

    StrongPtr<Node> announceProvider(const std::string& name, std::initializer_list<const char*> words)
    {
        return announce(Loam::makeStrong<Provider>(name, 0, preferences(words)));
    }

    bool attach(const StrongPtr<VCreationPreferences>& wanted = {}, bool create = false) const
    {
        return node->attachUniqueObject(slot, wanted, create);
    }

    bool reads(const StrongPtr<VObject>& provider) const
    {
        return slot->parameter() == provider->findOutput("out")->parameter();
    }

    StrongPtr<Node> node = makeNode("node");
    StrongPtr<VSlot> slot = node->findSlot("in");
    std::vector<StrongPtr<Node>> announced;
};

} // namespace

TEST_F(VConnectableTest, connectsToTheProviderMarkedAsUnique)
{
    announceProvider("other", {"local"});
    announce(makeNode("plain"));
    EXPECT_FALSE(attach());
    EXPECT_FALSE(slot->isConnected());
    const auto unique = announceProvider("unique", {"x", "unique"});
    EXPECT_TRUE(attach());
    EXPECT_TRUE(reads(unique));
    EXPECT_FALSE(node->attachUniqueObject(nullptr, nullptr, false));
}

TEST_F(VConnectableTest, choosesTheBestOfSeveralProviders)
{
    const auto first = announceProvider("first", {"unique"});
    const auto second = announceProvider("second", {"unique", "GlobalTime"});
    const auto third = announceProvider("third", {"unique", "GlobalTime"});
    EXPECT_TRUE(attach());
    EXPECT_TRUE(reads(first)) << "without preferences all are equal, so the first is chosen";
    EXPECT_TRUE(attach(preferences({"GlobalTime"})));
    EXPECT_TRUE(reads(second));
    second->creationPreferences()->setHandicap(0.5);
    EXPECT_TRUE(attach(preferences({"GlobalTime"})));
    EXPECT_TRUE(reads(third));
    third->creationPreferences()->setHandicap(-3);
    EXPECT_TRUE(attach());
    EXPECT_TRUE(reads(third));
}

TEST_F(VConnectableTest, skipsProvidersWhoseWeightIsNotANumber)
{
    const auto broken = announceProvider("broken", {"unique"});
    broken->creationPreferences()->setHandicap(std::numeric_limits<double>::quiet_NaN());
    EXPECT_FALSE(attach());
    const auto sound = announceProvider("sound", {"unique"});
    EXPECT_TRUE(attach(preferences({"much", "more"})));
    EXPECT_TRUE(reads(sound));
}

TEST_F(VConnectableTest, isNeverItsOwnProvider)
{
    node = announce(Loam::makeStrong<Provider>("self", 0, preferences({"unique"})));
    slot = node->addInput("in");
    EXPECT_FALSE(attach());
    const auto other = announceProvider("other", {"unique"});
    other->creationPreferences()->setHandicap(10);
    EXPECT_TRUE(attach());
    EXPECT_TRUE(reads(other));
}

TEST_F(VConnectableTest, createsTheRegisteredProviderOnRequest)
{
    const VObjectType<Provider> type{"Clock", preferences({"unique"}), &typeid(double)};
    EXPECT_FALSE(attach());
    EXPECT_EQ(VManagedObject::count(), 0u);
    EXPECT_TRUE(attach({}, true));
    const StrongPtr<VObject> clock(VManagedObject::find("Clock"));
    ASSERT_TRUE(clock);
    EXPECT_TRUE(reads(clock));
    EXPECT_TRUE(clock->isRequestProcessingEnabled());

    const auto second = makeNode("second");
    EXPECT_TRUE(second->attachUniqueObject(second->findSlot("in"), nullptr, true));
    EXPECT_EQ(VManagedObject::count(), 1u) << "the provider exists now";
    EXPECT_EQ(second->findSlot("in")->parameter(), slot->parameter());
    VManagedObject::remove(clock);
}

TEST_F(VConnectableTest, leavesTheSlotUnchangedIfNoProviderIsFoundOrCreated)
{
    struct Failing : VObjectCreator {
        Failing() : VObjectCreator{typeid(Failing), &typeid(double)} {}
        StrongPtr<VObject> create(const std::string&, int, const StrongPtr<VCreationPreferences>&) const override
        {
            return nullptr;
        }
    };
    const auto other = makeNode("other");
    connect(other, node);
    EXPECT_FALSE(attach({}, true));
    EXPECT_TRUE(reads(other));
    const auto creator = Loam::makeStrong<Failing>();
    VObjectCreator::registerCreator(creator, "Failing");
    EXPECT_FALSE(attach({}, true));
    EXPECT_TRUE(reads(other));
}

} // namespace VConnectableTest
