#include <fathom/Action.hpp> // first: the header must be self-contained

#include "Recorders.hpp"

#include <fathom/VOutput.hpp>
#include <fathom/VValueType.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace ActionTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

using ActionPtr = StrongPtr<VAction>;

static_assert(std::has_virtual_destructor_v<VAction>);
static_assert(!std::is_convertible_v<double, VAction>);

namespace {

const VValueType<ActionPtr> actionType;

// Records each update that the action connected to its input triggers.
class Lamp final : public VObject {
public:
    explicit Lamp(const std::string& name, int level = 0) : VObject{name, level, nullptr} {}

    bool update(VRequest& request, double precision) override
    {
        numbers.push_back(precision);
        pools.push_back(request.valuePool());
        return true;
    }

    const TypedSlot<ActionPtr> trigger{this, "trigger", ActionPtr{}, 0};
    std::vector<double> numbers;
    std::vector<StrongPtr<ValuePool>> pools;
};

class Button final : public VObject {
public:
    explicit Button(const std::string& name) : VObject{name, 0, nullptr} {}
    bool update(VRequest&, double) override { return true; }

    const VOutput<ActionPtr> pressed{this, "pressed", ActionPtr{}};
};

// A button, two lamps connected to it at the lowest and the highest level, and a lamp
// that is not connected.
class ActionTest : public testing::Test {
protected:
    ActionTest()
    {
        for (const StrongPtr<Lamp>& lamp : {m_low, m_high})
            EXPECT_TRUE(lamp->attachOutput(m_button->findOutput("pressed"), lamp->trigger.slot(), ""));
        for (const StrongPtr<VObject>& object : all())
            VObject::finishCreation(object);
    }

    ~ActionTest() override
    {
        for (const StrongPtr<VObject>& object : all())
            VManagedObject::remove(object);
    }

    std::vector<StrongPtr<VObject>> all() const { return {m_button, m_low, m_apart, m_high}; }

    StrongPtr<VParameter> parameter() const { return m_button->pressed.parameter(); }

    const Warnings m_warnings;
    const StrongPtr<Button> m_button{new Button("button")};
    const StrongPtr<Lamp> m_low{new Lamp("low", std::numeric_limits<int>::min())};
    const StrongPtr<Lamp> m_apart{new Lamp("apart")};
    const StrongPtr<Lamp> m_high{new Lamp("high", std::numeric_limits<int>::max())};
    const StrongPtr<ValuePool> m_pool{new ValuePool("pool")};
    const ActionPtr m_action{new VAction(0.25)};
};

} // namespace

TEST_F(ActionTest, storesTheNumberItIsConstructedWith)
{
    EXPECT_EQ(VAction(-3.5).number, -3.5);
    EXPECT_EQ(VAction().number, 0.0);
}

TEST_F(ActionTest, runsEachConnectedObjectOnceWithItsNumberInThePool)
{
    EXPECT_TRUE(m_action->emitAction(m_pool, parameter()));
    EXPECT_TRUE(VScheduler::isDue(m_low, m_pool));
    EXPECT_TRUE(VScheduler::isDue(m_high, m_pool));
    EXPECT_THAT(m_low->numbers, IsEmpty()) << "the scheduler decides when";
    EXPECT_EQ(VScheduler::run(m_pool).updates, 2u);
    for (const StrongPtr<Lamp>& lamp : {m_low, m_high}) {
        EXPECT_THAT(lamp->numbers, ElementsAre(0.25));
        EXPECT_THAT(lamp->pools, ElementsAre(m_pool));
    }
    EXPECT_THAT(m_apart->numbers, IsEmpty());
}

TEST_F(ActionTest, triggersEachTimeItIsEmitted)
{
    for (const double number : {1.0, 2.0, 2.0}) {
        m_action->number = number;
        EXPECT_TRUE(m_action->emitAction(m_pool, parameter()));
        VScheduler::run(m_pool);
    }
    EXPECT_THAT(m_low->numbers, ElementsAre(1, 2, 2));
}

TEST_F(ActionTest, leavesOtherPoolsAlone)
{
    const StrongPtr<ValuePool> other(new ValuePool("other"));
    EXPECT_TRUE(m_action->emitAction(other, parameter()));
    EXPECT_FALSE(VScheduler::isDue(m_pool));
    EXPECT_TRUE(VScheduler::isDue(m_low, other));
}

TEST_F(ActionTest, neitherChangesNorAnnouncesAValue)
{
    const StrongPtr<VValueBase> value = parameter()->getLocalValue(m_pool);
    VScheduler::run(m_pool);
    const Ageable::Age before = value->age().stamp();
    const Changes changes{parameter()};
    EXPECT_TRUE(m_action->emitAction(m_pool, parameter()));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(m_button->pressed.parameter()->getValueBase(m_pool), value);
    EXPECT_EQ(value->age().stamp(), before);
}

TEST_F(ActionTest, schedulesNothingWithoutAParameter)
{
    EXPECT_FALSE(m_action->emitAction(m_pool, nullptr));
    EXPECT_FALSE(VScheduler::isDue(m_pool));
}

TEST_F(ActionTest, schedulesNothingForADestroyedParameter)
{
    std::optional<VValueParameter<ActionPtr>> owned(std::in_place, ActionPtr{}, "gone", nullptr);
    const StrongPtr<VParameter> gone(&*owned);
    EXPECT_TRUE(m_action->emitAction(m_pool, gone));
    owned.reset();
    EXPECT_TRUE(gone);
    EXPECT_FALSE(m_action->emitAction(m_pool, gone));
    EXPECT_FALSE(VScheduler::isDue(m_pool));
}

TEST_F(ActionTest, succeedsWhenNothingIsConnected)
{
    EXPECT_TRUE(m_low->detach(m_low->trigger.slot()));
    EXPECT_TRUE(m_high->detach(m_high->trigger.slot()));
    VScheduler::run(m_pool);
    EXPECT_TRUE(m_action->emitAction(m_pool, parameter()));
    EXPECT_FALSE(VScheduler::isDue(m_pool));
}

TEST_F(ActionTest, reachesAnObjectThroughItsOwnInput)
{
    EXPECT_TRUE(m_action->emitAction(m_pool, m_apart->trigger.parameter()));
    EXPECT_TRUE(VScheduler::isDue(m_apart, m_pool));
    EXPECT_FALSE(VScheduler::isDue(m_low, m_pool));
}

TEST_F(ActionTest, doesNotReachARemovedObject)
{
    EXPECT_TRUE(VManagedObject::remove(m_low));
    EXPECT_TRUE(m_action->emitAction(m_pool, parameter()));
    EXPECT_FALSE(VScheduler::isDue(m_low, m_pool));
    EXPECT_TRUE(VScheduler::isDue(m_high, m_pool));
}

TEST_F(ActionTest, doesNothingWithoutAPool)
{
    EXPECT_TRUE(m_action->emitAction(nullptr, parameter()));
    EXPECT_FALSE(VScheduler::isDue(m_pool));
    EXPECT_THAT(m_warnings.all(), IsEmpty());
}

TEST_F(ActionTest, hasNoTextForm)
{
    using Trait = VValueTrait<ActionPtr>;
    ActionPtr action = m_action;
    EXPECT_EQ(Trait::Text(action), "");
    EXPECT_EQ(Trait::Text(nullptr), "");
    EXPECT_FALSE(Trait::setValueFromText(action, ""));
    EXPECT_FALSE(Trait::setValueFromText(action, "0.25"));
    EXPECT_EQ(action, m_action);
}

TEST_F(ActionTest, isMadeAValueTypeByASingleDeclaration)
{
    bool ok = true;
    const StrongPtr<VValueBase> value = VValueCreator::createValue("StrongPtr<VAction>", "0.25", ok);
    ASSERT_TRUE(value);
    EXPECT_FALSE(ok);
    EXPECT_EQ(value->getType(), typeid(ActionPtr));
    VValue<ActionPtr> other(m_action);
    EXPECT_TRUE(value->isDifferentFrom(&other));
    EXPECT_TRUE(value->getValueFrom(&other));
    EXPECT_FALSE(value->isDifferentFrom(&other));
}

TEST_F(ActionTest, reachesConnectedInputsThroughItsParameter)
{
    m_button->pressed(m_pool) << m_action;
    VScheduler::run(m_pool);
    EXPECT_EQ(m_low->trigger.value(m_pool), m_action);
    EXPECT_FALSE(m_apart->trigger.value(m_pool));
}

} // namespace ActionTest
