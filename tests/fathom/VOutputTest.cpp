#include <fathom/VOutput.hpp>

#include "Recorders.hpp"

#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VChart.hpp>
#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

#include <string>
#include <type_traits>
#include <utility>

namespace VOutputTest {

using namespace Orla;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// Overrides access to its string and can refuse reading or writing.
class Guarded final : public VValue<std::string> {
public:
    explicit Guarded(const std::string& text) : VValue{text} {}

    bool getValue(std::string& value) const override { return gives && VValue::getValue(value); }
    bool setValue(const std::string& value) override { return takes && VValue::setValue(value); }

    bool gives = true;
    bool takes = true;
};

class VOutputTest : public testing::Test {
protected:
    VOutputAssignmentContext<std::string> here() const { return m_output(m_pool); }

    StrongPtr<VValueBase> held() const { return m_output.parameter()->getValueBase(m_pool); }
    std::string heldText() const { return held() ? held()->Text() : "none"; }

    StrongPtr<Guarded> enterGuarded(const std::string& text) const
    {
        StrongPtr<Guarded> guarded(new Guarded(text));
        m_pool->createVariable(m_output.parameter().get(), guarded);
        return guarded;
    }

    const Warnings m_warnings;
    const StrongPtr<VSlotContainer> m_container{new VSlotContainer};
    const StrongPtr<VCreationPreferences> m_preferences{new VCreationPreferences("a", "b")};
    const StrongPtr<ValuePool> m_pool{new ValuePool};
    const VOutput<std::string> m_output{m_container.get(), "report", "initial", m_preferences};
    const Changes m_changes{m_output.parameter()};
    std::string m_text = "untouched";
};

const std::string other = "other";

using TextInPool = std::pair<const TypedSlot<std::string>, const StrongPtr<ValuePool>>;

static_assert(std::is_same_v<decltype(static_cast<bool (*)(const TextInPool&, const std::string&)>(&operator<<=)),
                             bool (*)(const TextInPool&, const std::string&)>,
              "the form for texts is a function, not only a template");

} // namespace

TEST_F(VOutputTest, isOfferedByItsContainer)
{
    const StrongPtr<VSlot> slot = m_container->findOutput("report");
    ASSERT_TRUE(slot);
    EXPECT_EQ(slot->parameter(), m_output.parameter());
    EXPECT_EQ(slot->type(), typeid(std::string));
    EXPECT_EQ(m_output.parameter()->Name(), "report");
    EXPECT_EQ(m_output.parameter()->creationPreferences(), m_preferences);
    EXPECT_EQ(m_output.parameter()->source().lock(), m_container);
    EXPECT_TRUE(m_output.parameter()->creator().expired());
    EXPECT_EQ(m_output.parameter()->DefaultValue()->Text(), "initial");
    EXPECT_TRUE(m_container->inputs().empty());
}

TEST_F(VOutputTest, reportsAMissingContainerAndStillWorks)
{
    const VOutput<Range> nowhere(nullptr, "limits", Range{});
    EXPECT_THAT(m_warnings.all(), ElementsAre(testing::AllOf(HasSubstr("\"limits\""), HasSubstr("range"))));
    EXPECT_TRUE(nowhere(m_pool) << Range(3, 4));
    Range range;
    EXPECT_TRUE(nowhere(m_pool) >> range);
    EXPECT_EQ(range, Range(3, 4));
}

// Assignment: writes only a value that differs.

TEST_F(VOutputTest, isAssignedADifferentValueAndAnnouncesItOnce)
{
    m_output.parameter()->getLocalValue(m_pool);
    const Ageable before = held()->age();
    EXPECT_TRUE(here() <<= other);
    EXPECT_EQ(heldText(), "other");
    EXPECT_TRUE(held()->age().isYoungerThan(before));
    EXPECT_EQ(m_changes.count(), 1);
    EXPECT_EQ(m_changes.lastPool(), m_pool);
    EXPECT_EQ(m_output.parameter()->DefaultValue()->Text(), "initial");
}

TEST_F(VOutputTest, isNotAssignedTheValueItAlreadyHas)
{
    m_output.parameter()->getLocalValue(m_pool);
    const Ageable before = held()->age();
    EXPECT_FALSE(here() <<= std::string("initial"));
    EXPECT_EQ(held()->age(), before);
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isIntentionallyNotAssignedIfThePoolHoldsNoValueYet)
{
    EXPECT_FALSE(here() <<= other);
    EXPECT_EQ(held(), nullptr);
    EXPECT_EQ(m_pool->variableCount(), 0u);
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isNotAssignedWithoutAParameterOrAPool)
{
    m_output.parameter()->getLocalValue(m_pool);
    EXPECT_FALSE(VOutputAssignmentContext<std::string>({nullptr, m_pool}) <<= other);
    EXPECT_FALSE(m_output(nullptr) <<= other);
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isNotAssignedWhileItIsDisabled)
{
    m_output.parameter()->getLocalValue(m_pool);
    m_output.parameter()->setEnabled(false);
    EXPECT_FALSE(here() <<= other);
    EXPECT_EQ(heldText(), "initial");
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isNotAssignedOverAValueOfAnotherType)
{
    m_pool->createVariable(m_output.parameter().get(), Loam::makeStrong<VValue<Range>>());
    EXPECT_FALSE(here() <<= other);
    EXPECT_EQ(heldText(), "0:1");
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isNotAssignedIfItsValueRefuses)
{
    enterGuarded("guarded")->takes = false;
    EXPECT_FALSE(here() <<= other);
    EXPECT_EQ(heldText(), "guarded");
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, comparesThroughOverriddenAccessors)
{
    const auto guarded = enterGuarded("guarded");
    EXPECT_FALSE(here() <<= std::string("guarded"));
    EXPECT_TRUE(here() <<= other);
    EXPECT_EQ(heldText(), "other");
    EXPECT_EQ(m_changes.count(), 1);

    guarded->gives = false;
    EXPECT_FALSE(here() <<= std::string("third")) << "a value that cannot be read never differs";
    EXPECT_EQ(m_changes.count(), 1);
}

TEST_F(VOutputTest, isAssignedForEachPoolSeparately)
{
    const StrongPtr<ValuePool> second(new ValuePool);
    m_output.parameter()->getLocalValue(m_pool);
    m_output.parameter()->getLocalValue(second);
    EXPECT_TRUE(m_output(second) <<= other);
    EXPECT_EQ(heldText(), "initial");
    EXPECT_EQ(m_output.parameter()->getValueBase(second)->Text(), "other");
}

TEST_F(VOutputTest, isAssignedThroughAnInputByTheSameRules)
{
    const TypedSlot<std::string> input(m_container.get(), "text", "initial", 0);
    const Changes changes(input.parameter());
    EXPECT_FALSE(input(m_pool) <<= other) << "the pool holds no value yet";
    input.slot()->getLocalValue(m_pool);
    EXPECT_FALSE(input(m_pool) <<= std::string("initial"));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_TRUE(input(m_pool) <<= other);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.lastPool(), m_pool);
    EXPECT_EQ(input.value(m_pool), "other");

    const std::pair<const TypedSlot<std::string>, const StrongPtr<ValuePool>> pair(input, m_pool);
    EXPECT_TRUE(pair <<= std::string("third"));
    EXPECT_FALSE(pair <<= std::string("third"));
    EXPECT_EQ(input.value(m_pool), "third");

    EXPECT_FALSE(input(nullptr) <<= other);
    EXPECT_FALSE(TypedSlot<std::string>(nullptr, "nowhere", "", 0)(m_pool) <<= other);
    input.parameter()->setEnabled(false);
    EXPECT_FALSE(input(m_pool) <<= other);
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(VOutputTest, convertsWhatIsAssignedOrWrittenToItsType)
{
    EXPECT_TRUE(here() << "text");
    EXPECT_TRUE(here() <<= "other text");
    EXPECT_EQ(heldText(), "other text");

    const VOutput<double> number(m_container.get(), "number", 0.5);
    EXPECT_TRUE(VOutputAssignmentContext<double>(number(m_pool)) << 1);
    EXPECT_EQ(number.value(m_pool), 1.0);
    EXPECT_TRUE(VOutputAssignmentContext<double>(number(m_pool)) <<= 2);
    EXPECT_EQ(number.value(m_pool), 2.0);

    const TypedSlot<std::string> text(m_container.get(), "text", "initial", 0);
    text.slot()->getLocalValue(m_pool);
    EXPECT_TRUE(text(m_pool) <<= "a");
    EXPECT_TRUE((std::pair<TypedSlot<std::string>, StrongPtr<ValuePool>>(text, m_pool) <<= "b"));
    EXPECT_EQ(text.value(m_pool), "b");

    const TypedSlot<VChart> chart(m_container.get(), "chart", {}, 0);
    chart.slot()->getLocalValue(m_pool);
    EXPECT_TRUE(chart(m_pool) <<= "plan");
    EXPECT_EQ(chart.value(m_pool), VChart{"plan"});
}

TEST_F(VOutputTest, isAssignedThroughAnInputConnectedToIt)
{
    const TypedSlot<std::string> input(m_container.get(), "text", "unused", 0);
    ASSERT_TRUE(m_container->attachParameter(m_output.parameter(), input.slot(), ""));
    m_output.parameter()->getLocalValue(m_pool);
    EXPECT_TRUE(input(m_pool) <<= other);
    EXPECT_EQ(heldText(), "other");
    EXPECT_EQ(m_changes.count(), 1);
}

TEST_F(VOutputTest, isAssignedThroughAnInputConnectedToItsComponent)
{
    const TypedSlot<Range> input(m_container.get(), "limits", Range{}, 0);
    const VOutput<VTime> time(m_container.get(), "time", VTime{5, 0, 10});
    ASSERT_TRUE(m_container->attachParameter(time.parameter(), input.slot(), "range"));
    time.parameter()->getLocalValue(m_pool);
    const Changes changes(time.parameter());
    EXPECT_FALSE(input(m_pool) <<= Range(0, 10));
    EXPECT_TRUE(input(m_pool) <<= Range(3, 4));
    EXPECT_EQ(time.parameter()->getValueBase(m_pool)->Text(), "5[3,4]@10");
    EXPECT_EQ(changes.count(), 1);
}

// Writing: does not compare, and creates the variable if necessary.

TEST_F(VOutputTest, isWrittenAndAnnouncedWithoutAComparison)
{
    EXPECT_TRUE(here() << other);
    EXPECT_EQ(heldText(), "other");
    EXPECT_EQ(m_changes.count(), 1);
    EXPECT_EQ(m_changes.lastPool(), m_pool);

    const Ageable before = held()->age();
    EXPECT_TRUE(here() << other);
    EXPECT_TRUE(held()->age().isYoungerThan(before));
    EXPECT_EQ(m_changes.count(), 2);
    EXPECT_EQ(m_output.parameter()->DefaultValue()->Text(), "initial");
}

TEST_F(VOutputTest, isNotWrittenWhileItIsDisabled)
{
    m_output.parameter()->setEnabled(false);
    EXPECT_FALSE(here() << other);
    EXPECT_EQ(m_pool->variableCount(), 0u);
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isNotWrittenWithoutAParameterOrAPool)
{
    EXPECT_FALSE(VOutputAssignmentContext<std::string>({nullptr, m_pool}) << other);
    EXPECT_FALSE(m_output(nullptr) << other);
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isNotWrittenIfItsValueRefuses)
{
    const auto guarded = enterGuarded("guarded");
    guarded->takes = false;
    EXPECT_FALSE(here() << other);
    EXPECT_EQ(m_changes.count(), 0);
    m_pool->createVariable(m_output.parameter().get(), Loam::makeStrong<VValue<Range>>());
    EXPECT_FALSE(here() << other) << "a value of another type";
    EXPECT_EQ(heldText(), "0:1");
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(VOutputTest, isCreatedOnReadingIfThePoolHoldsNoValueYet)
{
    EXPECT_TRUE(here() >> m_text);
    EXPECT_EQ(m_text, "initial");
    EXPECT_EQ(heldText(), "initial");
    here() << other;
    EXPECT_TRUE(here() >> m_text);
    EXPECT_EQ(m_text, "other");
    EXPECT_EQ(m_changes.count(), 1) << "reading is not a change";
}

TEST_F(VOutputTest, isNotReadWhileDisabledOrWithoutAParameterAPoolOrAReadableValue)
{
    EXPECT_FALSE(VOutputAssignmentContext<std::string>({nullptr, m_pool}) >> m_text);
    EXPECT_FALSE(m_output(nullptr) >> m_text);
    m_output.parameter()->setEnabled(false);
    EXPECT_FALSE(here() >> m_text);
    EXPECT_EQ(m_pool->variableCount(), 0u);

    m_output.parameter()->setEnabled(true);
    enterGuarded("guarded")->gives = false;
    EXPECT_FALSE(here() >> m_text);
    m_pool->createVariable(m_output.parameter().get(), Loam::makeStrong<VValue<Range>>());
    EXPECT_FALSE(here() >> m_text);
    EXPECT_EQ(m_text, "untouched");
}

TEST_F(VOutputTest, carriesADescriptionInItsPreferences)
{
    const VOutput<double> output{m_container.get(), "heat", 1.5, describe("The heat.").in("kW")};
    const StrongPtr<VSlot> slot = m_container->findOutput("heat");
    ASSERT_TRUE(slot && slot->description());
    EXPECT_EQ(slot->description()->parts().unit, "kW");
    EXPECT_EQ(slot->description(), output.parameter()->creationPreferences().get());
    EXPECT_EQ(m_container->findOutput("report")->description(), nullptr) << "plain preferences";
}

} // namespace VOutputTest
