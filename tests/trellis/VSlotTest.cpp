#include <trellis/VSlot.hpp>

#include "support/TestNetwork.hpp"

#include <trellis/VSlotDescription.hpp>

namespace VSlotTest {

using namespace Orla;

namespace {

class VSlotTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
    StrongPtr<Node> node = Loam::makeStrong<Node>("node");
};

std::vector<std::string> namesOf(const VSlotSet& slots)
{
    std::vector<std::string> names;
    for (const StrongPtr<VSlot>& slot : slots)
        names.push_back(slot->name());
    return names;
}

} // namespace

TEST_F(VSlotTest, returnsItsConstructorArguments)
{
    const auto parameter = testParameter("limit", 2.0);
    const VSlot slot(*node, "input", 7, parameter, VSlot::Passive | VSlot::AddedLater);
    EXPECT_EQ(slot.name(), "input");
    EXPECT_EQ(slot.expertLevel(), 7);
    EXPECT_EQ(slot.container(), node.get());
    EXPECT_EQ(slot.parameter(), parameter);
    EXPECT_EQ(slot.ownParameter(), parameter);
    EXPECT_EQ(slot.member(), "");
    EXPECT_EQ(slot.type(), typeid(double));
    EXPECT_FALSE(slot.isConnected());
    EXPECT_TRUE(slot.hasFlag(VSlot::Passive) && slot.hasFlag(VSlot::AddedLater));
    EXPECT_FALSE(slot.hasFlag(VSlot::Output) || slot.hasFlag(VSlot::AutoConnected));
}

TEST_F(VSlotTest, takesADescriptionThatReplacesTheOneOfItsParameter)
{
    const auto declared = VSlotDescription::of(describe("Declared.").parts());
    const StrongPtr<VParameter> parameter(
        new VParameter(testParameter("limit")->newValue(), "limit", StrongPtr<VCreationPreferences>{declared}));
    const StrongPtr<VSlot> slot = node->addParameter("limit", 0, parameter, true);
    ASSERT_TRUE(slot);
    EXPECT_EQ(slot->description(), declared.get());
    slot->describe(describe("Replaced.").in("m"));
    ASSERT_TRUE(slot->description());
    EXPECT_EQ(slot->description()->parts().sentence, "Replaced.");
    EXPECT_EQ(slot->parameter()->creationPreferences(), declared) << "the preferences stay";

    ASSERT_TRUE(node->registerOutput(slot));
    EXPECT_EQ(node->findOutput("limit")->description(), slot->description()) << "the input is passed on";
}

TEST_F(VSlotTest, keepsItsDescriptionWhenConnected)
{
    const auto source = Loam::makeStrong<Node>("source");
    const StrongPtr<VSlot> input = node->addInput("in");
    input->describe(describe("The input."));
    ASSERT_TRUE(node->attachOutput(source->addOutput("out"), input, ""));
    EXPECT_EQ(input->description()->parts().sentence, "The input.");
}

TEST_F(VSlotTest, setsAndClearsFlagsIndependently)
{
    VSlot slot(*node, "input", 0, testParameter("limit"), 0);
    for (const auto flag : {VSlot::AutoConnected, VSlot::Passive, VSlot::Output, VSlot::AddedLater}) {
        slot.setFlag(flag);
        EXPECT_EQ(slot.flags(), flag);
        slot.clearFlag(flag);
        EXPECT_EQ(slot.flags(), 0);
    }
    slot.setFlag(VSlot::Passive);
    slot.setFlag(VSlot::AddedLater);
    slot.clearFlag(VSlot::Passive);
    EXPECT_EQ(slot.flags(), VSlot::AddedLater);
}

TEST_F(VSlotTest, readsItsInitialValueFromText)
{
    const StrongPtr<VSlot> slot = node->addInput("input", 1.0);
    EXPECT_TRUE(slot->setInitialText("4.5"));
    EXPECT_EQ(contentOf(slot->getLocalValue(pool)), 4.5);
    EXPECT_FALSE(slot->setInitialText("many"));
    EXPECT_EQ(contentOf(slot->ownParameter()->DefaultValue()), 4.5);
}

TEST_F(VSlotTest, setsItsOwnInitialValueEvenWhileItIsConnected)
{
    const auto writer = makeNode("writer");
    const StrongPtr<VSlot> slot = node->addInput("in", 1.0);
    connect(writer, node);
    EXPECT_TRUE(slot->setInitialText("3"));
    EXPECT_EQ(contentOf(slot->getLocalValue(pool)), 0) << "the value of the writer";
    node->detach(slot);
    EXPECT_EQ(contentOf(slot->getLocalValue(pool)), 3);
}

TEST_F(VSlotTest, isSetFromTextInOnePoolAndAnnouncesTheChange)
{
    const auto reader = makeNode("reader");
    const StrongPtr<VSlot> slot = reader->findSlot("in");
    EXPECT_FALSE(slot->text(pool)) << "the pool holds no value";
    EXPECT_TRUE(slot->set(pool, "4.5"));
    EXPECT_EQ(slot->text(pool), "4.5");
    EXPECT_EQ(contentOf(slot->getValueBase(pool)), 4.5);
    EXPECT_TRUE(VScheduler::isDue(reader, pool));
    EXPECT_EQ(contentOf(slot->ownParameter()->DefaultValue()), 0) << "the initial value is unchanged";
    VScheduler::run(pool);
    EXPECT_FALSE(slot->set(pool, "many"));
    EXPECT_EQ(slot->text(pool), "4.5");
    EXPECT_FALSE(VScheduler::isDue(reader, pool));
    EXPECT_FALSE(slot->set(nullptr, "5"));
}

TEST_F(VSlotTest, readsTheComponentNamedByItsMember)
{
    node->addInput("in", 1.0);
    const auto writer = makeNode("writer", {});
    writer->addOutput("interval", Interval{3, 4});
    connect(writer, node, "in", "high", "interval");
    const StrongPtr<VSlot> slot = node->findSlot("in");
    EXPECT_EQ(slot->member(), "high");
    EXPECT_FALSE(slot->getValueBase(pool));
    EXPECT_EQ(contentOf(slot->getLocalValue(pool)), 4);
    EXPECT_EQ(contentOf(slot->getValueBase(pool)), 4);
}

TEST_F(VSlotTest, outlivesItsContainerWithoutAccessingIt)
{
    const StrongPtr<VSlot> slot = node->addInput("in", 1.0);
    const StrongPtr<VSlot> output = node->addOutput("out", 2.0);
    node.reset();
    EXPECT_EQ(slot->container(), nullptr);
    EXPECT_EQ(output->container(), nullptr);
    EXPECT_TRUE(slot->setInitialText("5"));
    EXPECT_EQ(contentOf(slot->getLocalValue(pool)), 5);
    slot->parameter()->touchValue(pool);
    EXPECT_FALSE(VScheduler::isDue(pool));
}

TEST_F(VSlotTest, isHeldOnceInASetAndFoundByName)
{
    // Around the size at which the set changes how it looks names up.
    VSlotSet set;
    std::vector<std::string> expected;
    for (int i = 0; i < 40; ++i) {
        const std::string name = "slot " + std::to_string(i);
        const auto slot = Loam::makeStrong<VSlot>(*node, name, 0, testParameter("p"), std::uint8_t{0});
        EXPECT_TRUE(set.add(slot));
        EXPECT_FALSE(set.add(slot));
        EXPECT_FALSE(set.add(Loam::makeStrong<VSlot>(*node, name, 0, testParameter("p"), std::uint8_t{0})));
        EXPECT_FALSE(set.add(nullptr));
        EXPECT_EQ(set.find(name), slot);
        EXPECT_FALSE(set.find("slot"));
        expected.push_back(name);
        EXPECT_EQ(set[set.size() - 1], slot);
    }
    EXPECT_EQ(namesOf(set), expected);
    for (const std::size_t index : {0u, 20u, 37u, 5u}) {
        const StrongPtr<VSlot> slot = set[index];
        EXPECT_TRUE(set.remove(*slot));
        EXPECT_FALSE(set.remove(*slot));
        EXPECT_FALSE(set.find(slot->name()));
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(index));
        EXPECT_EQ(namesOf(set), expected);
        for (const StrongPtr<VSlot>& each : set)
            EXPECT_EQ(set.find(each->name()), each);
    }
    while (!set.empty())
        set.remove(*set[set.size() / 2]);
    EXPECT_FALSE(set.find("slot 1"));
}

} // namespace VSlotTest
