#include <trellis/VSlotGlobals.hpp>

#include "support/TestNetwork.hpp"

namespace VSlotGlobalsTest {

using namespace Orla;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class VSlotGlobalsTest : public FrameworkTest {};

} // namespace

TEST_F(VSlotGlobalsTest, reportsASlotWithoutAContainerAndContinues)
{
    VSlotGlobals::assertionFail(nullptr, "limit", typeid(double));
    EXPECT_THAT(warnings(),
                ElementsAre(AllOf(HasSubstr("\"limit\""), HasSubstr("double"), HasSubstr("without a container"))));
}

TEST_F(VSlotGlobalsTest, namesTheContainerOfAMismatchedSlot)
{
    const auto node = makeNode("scene");
    VSlotGlobals::assertionFail(node.get(), "limit", typeid(double));
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("\"limit\""), HasSubstr("double"), HasSubstr("\"scene\""))));
}

TEST_F(VSlotGlobalsTest, addsParametersLikeTheContainer)
{
    const auto node = makeNode("node", {});
    const auto parameter = testParameter("limit", 2.0);
    const StrongPtr<VSlot> slot = VSlotGlobals::addParameter(node.get(), "limit", 4, parameter, false);
    ASSERT_TRUE(slot);
    EXPECT_EQ(node->findSlot("limit"), slot);
    EXPECT_EQ(slot->expertLevel(), 4);
    EXPECT_EQ(slot->parameter(), parameter);
    EXPECT_TRUE(slot->hasFlag(VSlot::Passive));
    EXPECT_FALSE(VSlotGlobals::addParameter(nullptr, "limit", 4, parameter, true));
}

} // namespace VSlotGlobalsTest
