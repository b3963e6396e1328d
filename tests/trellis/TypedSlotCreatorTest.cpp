#include <trellis/TypedSlotCreator.hpp>

#include "support/TestNetwork.hpp"

#include <loam/TypeInfo.hpp>

namespace TypedSlotCreatorTest {

using namespace Orla;
using testing::Contains;
using testing::Not;

namespace {

struct Creator : TypedSlotCreator {
    StrongPtr<VSlot> newSlot(VSlotContainer* that, const std::string& name, const std::string& initialText, bool& ok,
                             const StrongPtr<VCreationPreferences>&, int expertLevel) const override
    {
        const StrongPtr<VParameter> parameter = testParameter<double>(name);
        StrongPtr<VSlot> slot = that->addParameter(name, expertLevel, parameter, true);
        ok = slot && slot->setInitialText(initialText);
        return slot;
    }
};

struct Alpha {};
struct Beta {};

class TypedSlotCreatorTest : public FrameworkTest {};

} // namespace

TEST_F(TypedSlotCreatorTest, isFoundByType)
{
    const auto alpha = Loam::makeStrong<Creator>();
    const auto beta = Loam::makeStrong<Creator>();
    EXPECT_FALSE(TypedSlotCreator::find(typeid(Alpha)));
    EXPECT_TRUE(TypedSlotCreator::registerTypedSlotCreator(typeid(Alpha), alpha));
    EXPECT_TRUE(TypedSlotCreator::registerTypedSlotCreator(typeid(Beta), beta));
    EXPECT_EQ(TypedSlotCreator::find(typeid(Alpha)), alpha);
    EXPECT_EQ(TypedSlotCreator::find(typeid(Beta)), beta);
    EXPECT_THAT(TypedSlotCreator::typeKeys(), Contains(Loam::typeKey(typeid(Alpha))));
}

TEST_F(TypedSlotCreatorTest, isRemovedWithItsLibrary)
{
    auto first = Loam::makeStrong<Creator>();
    auto second = Loam::makeStrong<Creator>();
    TypedSlotCreator::registerTypedSlotCreator(typeid(Alpha), first);
    TypedSlotCreator::registerTypedSlotCreator(typeid(Alpha), second);
    EXPECT_EQ(TypedSlotCreator::find(typeid(Alpha)), first);
    first.reset();
    EXPECT_EQ(TypedSlotCreator::find(typeid(Alpha)), second);
    second.reset();
    EXPECT_FALSE(TypedSlotCreator::find(typeid(Alpha)));
    EXPECT_THAT(TypedSlotCreator::typeKeys(), Not(Contains(Loam::typeKey(typeid(Alpha)))));
}

TEST_F(TypedSlotCreatorTest, isNotRegisteredAfterItsDestruction)
{
    EXPECT_FALSE(TypedSlotCreator::registerTypedSlotCreator(typeid(Alpha), nullptr));
    const WeakPtrImpl<TypedSlotCreator> destroyed = Loam::makeStrong<Creator>();
    EXPECT_FALSE(TypedSlotCreator::registerTypedSlotCreator(typeid(Alpha), destroyed));
}

TEST_F(TypedSlotCreatorTest, createsInputsFromText)
{
    const auto creator = Loam::makeStrong<Creator>();
    const auto node = makeNode("node", {});
    bool ok = false;
    const StrongPtr<VSlot> slot = creator->newSlot(node.get(), "limit", "4.5", ok, nullptr, 3);
    EXPECT_TRUE(ok);
    EXPECT_EQ(node->findSlot("limit"), slot);
    EXPECT_EQ(contentOf(slot->parameter()->DefaultValue()), 4.5);
    creator->newSlot(node.get(), "other", "many", ok, nullptr, 0);
    EXPECT_FALSE(ok);
}

} // namespace TypedSlotCreatorTest
