#include <trellis/VFrame.hpp>

#include "support/TestNetwork.hpp"

namespace VFrameTest {

using namespace Orla;

namespace {

// More slots than the cells that a frame holds in its own block.
constexpr std::size_t ManySlots = 300;

class VFrameTest : public FrameworkTest {
protected:
    // Runs `node`, and calls `look` with its frame during the update.
    void lookDuringUpdate(const StrongPtr<Node>& node, const std::function<void(VFrame& frame)>& look)
    {
        node->work = [look](Node&, VRequest& request, double) {
            look(*request.valuePool()->runningFrame());
            return true;
        };
        EXPECT_EQ(runAll({node}, pool).updates, 1u);
    }

    static StrongPtr<Node> makeNodeWithManySlots()
    {
        const auto node = makeNode("node", {});
        for (std::size_t i = 0; i < ManySlots; ++i)
            node->addInput(std::to_string(i), static_cast<double>(i));
        return node;
    }

    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace

TEST_F(VFrameTest, belongsToTheObjectThatIsUpdated)
{
    const auto node = makeNode("node");
    const auto other = makeNode("other");
    EXPECT_EQ(pool->runningFrame(), nullptr);
    lookDuringUpdate(node, [&](VFrame& frame) {
        EXPECT_EQ(frame.container(), node.get());
        EXPECT_EQ(VFrame::of(&frame, node->findSlot("in")->place()), &frame);
        EXPECT_EQ(VFrame::of(&frame, other->findSlot("in")->place()), nullptr);
    });
    EXPECT_EQ(pool->runningFrame(), nullptr);
    EXPECT_EQ(VFrame::of(nullptr, node->findSlot("in")->place()), nullptr);
}

TEST_F(VFrameTest, holdsTheValueOfEachOfManySlots)
{
    const auto node = makeNodeWithManySlots();
    lookDuringUpdate(node, [&](VFrame& frame) {
        EXPECT_FALSE(frame.hasCell(frame.cellCount()));
        for (const StrongPtr<VSlot>& slot : node->inputs()) {
            const std::uint32_t cell = slot->place().cell;
            ASSERT_TRUE(frame.hasCell(cell));
            EXPECT_EQ(frame.cell(cell).value->Text(), slot->name());
        }
    });
}

TEST_F(VFrameTest, holdsTheValuesOfSlotsAddedAfterItsCreation)
{
    const auto node = makeNode("node", {"0"});
    runAll({node}, pool);
    for (std::size_t i = 1; i < ManySlots; ++i) {
        node->addInput(std::to_string(i), static_cast<double>(i));
        if (i % 50 == 0)
            runAll({node}, pool);
    }
    lookDuringUpdate(node, [&](VFrame& frame) {
        for (const StrongPtr<VSlot>& slot : node->inputs())
            EXPECT_EQ(frame.cell(slot->place().cell).value->Text(), slot->name());
    });
}

TEST_F(VFrameTest, keepsTheFlagsOfItsCellsApart)
{
    const auto node = makeNodeWithManySlots();
    lookDuringUpdate(node, [&](VFrame& frame) {
        std::vector<std::uint16_t> before;
        for (std::uint32_t i = 0; i < frame.cellCount(); ++i)
            before.push_back(frame.flags(i));
        for (std::uint32_t i = 0; i < frame.cellCount(); i += 2)
            frame.flags(i) |= VFrame::Plain;
        for (std::uint32_t i = 0; i < frame.cellCount(); ++i)
            EXPECT_EQ(frame.flags(i), i % 2 == 0 ? before[i] | VFrame::Plain : before[i]) << i;
    });
}

} // namespace VFrameTest
