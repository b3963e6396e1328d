#include <fathom/VValueParameter.hpp>

#include "Recorders.hpp"

#include <fathom/Range.hpp>
#include <fathom/String.hpp>

#include <trellis/ValuePool.hpp>

#include <gmock/gmock.h>

namespace VValueParameterTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_base_of_v<VParameter, VValueParameter<Range>>);
static_assert(std::is_same_v<StrongPtr<VParameter>, StrongPtr<VParameter, ValueNotifierList>>);
static_assert(std::is_same_v<StrongPtr<VCreationPreferences>, StrongPtr<VCreationPreferences, InterfaceBase>>);

namespace {

class VValueParameterTest : public testing::Test {
protected:
    static std::string textOf(const StrongPtr<VValueBase>& value) { return value ? value->Text() : "none"; }
    static StrongPtr<VValueBase> range(double begin, double end)
    {
        return Loam::makeStrong<VValue<Range>>(Range{begin, end});
    }

    const StrongPtr<VCreationPreferences> m_preferences{new VCreationPreferences("a", "b")};
    const StrongPtr<VParameter> m_parameter{new VValueParameter<Range>(Range{2, 3}, "limits", m_preferences)};
    const StrongPtr<ValuePool> m_pool{new ValuePool};
};

} // namespace

TEST_F(VValueParameterTest, ownsAPrototypeWithTheInitialValue)
{
    EXPECT_EQ(m_parameter->Name(), "limits");
    EXPECT_EQ(m_parameter->creationPreferences(), m_preferences);
    EXPECT_EQ(m_parameter->valueType(), typeid(Range));
    EXPECT_TRUE(StrongPtr<VValue<Range>>(m_parameter->DefaultValue()));
    EXPECT_EQ(textOf(m_parameter->DefaultValue()), "2:3");
    EXPECT_TRUE(m_parameter->isEnabled());
    EXPECT_THAT(m_parameter->shadows(), IsEmpty());
}

TEST_F(VValueParameterTest, sharesItsPrototypeAndItsPoolsWithACopy)
{
    const StrongPtr<ValuePool> other(new ValuePool);
    m_parameter->createLocalVariable(m_pool);
    m_parameter->addShadow(other);

    const StrongPtr<VParameter> copy = m_parameter->copy();
    EXPECT_TRUE(StrongPtr<VValueParameter<Range>>(copy));
    EXPECT_NE(copy, m_parameter);
    EXPECT_EQ(copy->Name(), "limits");
    EXPECT_EQ(copy->creationPreferences(), m_preferences);
    EXPECT_EQ(copy->DefaultValue(), m_parameter->DefaultValue());
    EXPECT_THAT(copy->shadows(), ElementsAre(m_pool, other));

    copy->setGlobalValue(range(7, 8), "");
    EXPECT_EQ(textOf(m_parameter->newValue()), "7:8");
    m_parameter->setGlobalValue(range(5, 6), "");
    EXPECT_EQ(textOf(copy->newValue()), "5:6");
}

TEST_F(VValueParameterTest, canBeOutlivedByItsCopy)
{
    StrongPtr<VParameter> parameter(new VValueParameter<Range>(Range{2, 3}, "limits", nullptr));
    const StrongPtr<VParameter> copy = parameter->copy();
    parameter.reset();
    EXPECT_EQ(textOf(copy->newValue()), "2:3");
    EXPECT_TRUE(copy->setGlobalValue(range(7, 8), ""));
    EXPECT_EQ(textOf(copy->DefaultValue()), "7:8");
}

TEST_F(VValueParameterTest, createsIndependentValues)
{
    Ageable().touch();
    const StrongPtr<VValueBase> value = m_parameter->newValue();
    EXPECT_EQ(value->age().stamp(), Ageable::GlobalTime);
    value->setValueFromText("7:8");
    EXPECT_EQ(textOf(m_parameter->DefaultValue()), "2:3");
    EXPECT_EQ(textOf(m_parameter->newValue()), "2:3");
}

TEST_F(VValueParameterTest, createsNoVariableWithoutAPool)
{
    EXPECT_EQ(m_parameter->createLocalVariable(nullptr), nullptr);
    StrongPtr<ValuePool> pool(new ValuePool);
    const WeakPtrImpl<ValuePool> dead(pool);
    pool.reset();
    EXPECT_EQ(m_parameter->createLocalVariable(dead.lock()), nullptr);
    EXPECT_THAT(m_parameter->shadows(), IsEmpty());
}

TEST_F(VValueParameterTest, entersItsVariableIntoThePoolOnce)
{
    const StrongPtr<VValueBase> first = m_parameter->createLocalVariable(m_pool);
    EXPECT_EQ(textOf(first), "2:3");
    EXPECT_NE(first, m_parameter->DefaultValue());
    EXPECT_EQ(m_pool->retrieveValue("limits"), first);
    EXPECT_EQ(m_parameter->getValueBase(m_pool), first);
    EXPECT_THAT(m_parameter->shadows(), ElementsAre(m_pool));

    const StrongPtr<ValuePool> between(new ValuePool);
    m_parameter->createLocalVariable(between);
    EXPECT_EQ(m_parameter->createLocalVariable(m_pool), first);
    EXPECT_THAT(m_parameter->shadows(), ElementsAre(m_pool, between));
}

TEST_F(VValueParameterTest, adoptsAValueOfItsTypeThatThePoolHoldsUnderItsName)
{
    const StrongPtr<VValueBase> held = range(7, 8);
    const StrongPtr<VParameter> namesake(new VValueParameter<Range>(Range{}, "limits", nullptr));
    m_pool->createVariable(namesake.get(), held);
    EXPECT_EQ(m_parameter->createLocalVariable(m_pool), held);
    EXPECT_EQ(m_parameter->getValueBase(m_pool), held);
    EXPECT_THAT(m_parameter->shadows(), IsEmpty());
}

TEST_F(VValueParameterTest, replacesAValueOfAnotherTypeThatThePoolHoldsUnderItsName)
{
    const StrongPtr<VParameter> namesake(new VValueParameter<std::string>("a text", "limits", nullptr));
    namesake->createLocalVariable(m_pool);
    const StrongPtr<VValueBase> value = m_parameter->createLocalVariable(m_pool);
    EXPECT_EQ(textOf(value), "2:3");
    EXPECT_EQ(m_pool->retrieveValue("limits"), value);
    EXPECT_THAT(m_parameter->shadows(), ElementsAre(m_pool));
}

TEST_F(VValueParameterTest, announcesANewGlobalValueOnce)
{
    const StrongPtr<VValueBase> variable = m_parameter->createLocalVariable(m_pool);
    const Changes changes(m_parameter);
    const Ageable before = m_parameter->DefaultValue()->age();
    EXPECT_TRUE(m_parameter->setGlobalValue(range(7, 8), ""));
    EXPECT_EQ(textOf(m_parameter->DefaultValue()), "7:8");
    EXPECT_TRUE(m_parameter->DefaultValue()->age().isYoungerThan(before));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.lastPool(), nullptr) << "the change belongs to no pool";
    EXPECT_EQ(textOf(variable), "2:3") << "existing variables keep their value";
}

TEST_F(VValueParameterTest, setsAComponentOfItsGlobalValue)
{
    EXPECT_TRUE(m_parameter->setGlobalValue(Loam::makeStrong<VValue<double>>(9.0), "end"));
    EXPECT_EQ(textOf(m_parameter->DefaultValue()), "2:9");
}

TEST_F(VValueParameterTest, intentionallyAnnouncesARefusedGlobalValue)
{
    const Changes changes(m_parameter);
    const auto number = Loam::makeStrong<VValue<double>>(9.0);
    EXPECT_TRUE(m_parameter->setGlobalValue(number, ""));       // of another type
    EXPECT_TRUE(m_parameter->setGlobalValue(number, "middle")); // the component does not exist
    EXPECT_TRUE(m_parameter->setGlobalValue(nullptr, ""));
    EXPECT_EQ(textOf(m_parameter->DefaultValue()), "2:3");
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(VValueParameterTest, printsItsGlobalValueAtHighVerbosity)
{
    const int before = verbosity();
    for (const int level : {49, 50}) {
        setVerbosity(level);
        testing::internal::CaptureStdout();
        m_parameter->setGlobalValue(range(7, 8), "");
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  level == 50 ? "VParameter::setGlobalValue() got variable with 7:8\n" : "");
    }
    setVerbosity(before);
}

} // namespace VValueParameterTest
