#include <trellis/VParameter.hpp>

#include "support/TestNetwork.hpp"

namespace VParameterTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Listener : VValueListener {
    void valueChanged(const ValueNotifierList&, const StrongPtr<ValuePool>& pool) override { pools.push_back(pool); }
    std::vector<StrongPtr<ValuePool>> pools;
};

class VParameterTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
    StrongPtr<ValuePool> other{new ValuePool("other")};
};

} // namespace

static_assert(std::is_same_v<StrongPtr<VParameter>, StrongPtr<VParameter, ValueNotifierList>>);

TEST_F(VParameterTest, hasANameAPrototypeAndPreferences)
{
    const auto value = testValue(4.5);
    const auto preferences = Loam::makeStrong<VCreationPreferences>("local", "");
    const auto parameter = Loam::makeStrong<VParameter>(value, "limit", preferences);
    EXPECT_EQ(parameter->Name(), "limit");
    EXPECT_EQ(parameter->DefaultValue(), value) << "the prototype itself";
    EXPECT_EQ(parameter->creationPreferences(), preferences);
    EXPECT_EQ(parameter->valueType(), typeid(double));
    EXPECT_TRUE(parameter->isEnabled());
    EXPECT_FALSE(parameter->owner());
    EXPECT_THAT(parameter->readers(), IsEmpty());
}

TEST_F(VParameterTest, createsIndependentCopiesOfThePrototype)
{
    const auto parameter = testParameter("limit", 4.5);
    const StrongPtr<VValueBase> value = parameter->newValue();
    EXPECT_EQ(contentOf(value), 4.5);
    value->setValueFromText("5");
    EXPECT_EQ(contentOf(parameter->DefaultValue()), 4.5);
    EXPECT_NE(value, parameter->newValue());
}

TEST_F(VParameterTest, sharesThePrototypeWithItsCopies)
{
    const auto parameter = testParameter("limit", 4.5);
    parameter->addShadow(pool);
    const StrongPtr<VParameter> copy = parameter->copy();
    EXPECT_NE(copy, parameter);
    EXPECT_EQ(copy->Name(), "limit");
    EXPECT_EQ(copy->DefaultValue(), parameter->DefaultValue());
    EXPECT_THAT(copy->shadows(), ElementsAre(pool));
    copy->getLocalValue(pool);
    EXPECT_FALSE(parameter->getValueBase(pool)) << "variables are not shared";
}

TEST_F(VParameterTest, isOwnedByItsSourceOrElseByItsCreator)
{
    const auto parameter = testParameter("limit");
    const auto creator = makeNode("creator");
    auto source = makeNode("source");
    parameter->setCreator(WeakPtrImpl<VSlotContainer>(creator));
    EXPECT_EQ(parameter->owner(), creator);
    parameter->setSource(WeakPtrImpl<VSlotContainer>(source));
    EXPECT_EQ(parameter->owner(), source);
    EXPECT_EQ(parameter->creator().lock(), creator);
    EXPECT_EQ(parameter->source().lock(), source);
    source.reset();
    EXPECT_EQ(parameter->owner(), creator);
}

TEST_F(VParameterTest, usesTheVariableOfItsNameInThePool)
{
    const auto first = testParameter("limit", 1.0);
    const auto second = testParameter("limit", 2.0);
    const StrongPtr<VValueBase> value = first->createLocalVariable(pool);
    EXPECT_EQ(contentOf(value), 1);
    EXPECT_EQ(second->createLocalVariable(pool), value);
    EXPECT_EQ(first->createLocalVariable(pool), value);
    EXPECT_EQ(first->getValueBase(pool), value);
    EXPECT_EQ(second->getValueBase(pool), value);
    EXPECT_THAT(first->shadows(), ElementsAre(pool));
    EXPECT_THAT(second->shadows(), IsEmpty()) << "it has no separate value there";
}

TEST_F(VParameterTest, createsAVariableIfItsNameHasAnotherType)
{
    const auto text = testParameter<std::string>("limit", "text");
    const auto number = testParameter("limit", 2.0);
    const StrongPtr<VValueBase> oldValue = text->createLocalVariable(pool);
    const StrongPtr<VValueBase> newValue = number->createLocalVariable(pool);
    EXPECT_EQ(contentOf(newValue), 2);
    EXPECT_EQ(pool->retrieveValue("limit"), newValue);
    EXPECT_EQ(text->getValueBase(pool), oldValue) << "it is still found by parameter";
    EXPECT_THAT(number->shadows(), ElementsAre(pool));
}

TEST_F(VParameterTest, createsNoVariableWithoutAPool)
{
    const auto parameter = testParameter("limit");
    EXPECT_FALSE(parameter->createLocalVariable(nullptr));
    EXPECT_FALSE(parameter->getLocalValue(nullptr));
    EXPECT_FALSE(parameter->getValueBase(nullptr));
    EXPECT_THAT(parameter->shadows(), IsEmpty());
}

TEST_F(VParameterTest, createsNothingInGetValueBase)
{
    const auto parameter = testParameter("limit", Interval{3, 4});
    EXPECT_FALSE(parameter->getValueBase(pool));
    EXPECT_FALSE(parameter->getValueBase(pool, "low"));
    EXPECT_EQ(pool->variableCount(), 0u);

    const StrongPtr<VValueBase> value = parameter->getLocalValue(pool);
    EXPECT_EQ(parameter->getLocalValue(pool), value);
    EXPECT_EQ(parameter->getValueBase(pool), value);
    EXPECT_EQ(contentOf(parameter->getValueBase(pool, "low")), 3);
    EXPECT_FALSE(parameter->getValueBase(pool, "middle"));
    EXPECT_FALSE(parameter->getValueBase(pool, {}, false));
    EXPECT_FALSE(parameter->getValueBase(other));
    EXPECT_EQ(pool->variableCount(), 1u);
}

TEST_F(VParameterTest, createsTheVariableInGetLocalValueUnlessDisabled)
{
    const auto parameter = testParameter("limit", Interval{3, 4});
    EXPECT_FALSE(parameter->getLocalValue(pool, {}, false));
    EXPECT_EQ(pool->variableCount(), 0u);
    EXPECT_EQ(contentOf(parameter->getLocalValue(pool, "high")), 4);
    EXPECT_EQ(pool->variableCount(), 1u);
    EXPECT_FALSE(parameter->getLocalValue(pool, "middle"));
}

TEST_F(VParameterTest, initializesEachPoolFromThePrototype)
{
    const auto parameter = testParameter("limit", 1.0);
    parameter->getLocalValue(pool)->setValueFromText("2");
    EXPECT_EQ(contentOf(parameter->getLocalValue(other)), 1);
    EXPECT_EQ(contentOf(parameter->DefaultValue()), 1);
    EXPECT_THAT(parameter->shadows(), ElementsAre(pool, other));
}

TEST_F(VParameterTest, setsThePrototypeButNoVariables)
{
    const auto node = makeNode("node");
    const StrongPtr<VParameter> parameter = node->findSlot("in")->parameter();
    const auto listener = Loam::makeStrong<Listener>();
    parameter->addListener(listener);
    node->read(pool, "in");

    const Ageable before;
    EXPECT_TRUE(parameter->setGlobalValue(testValue(9.0), {}));
    EXPECT_EQ(contentOf(parameter->DefaultValue()), 9);
    EXPECT_TRUE(parameter->DefaultValue()->age().isYoungerThan(before));
    EXPECT_EQ(contentOf(parameter->getValueBase(pool)), 0);
    EXPECT_EQ(contentOf(parameter->getLocalValue(other)), 9);
    EXPECT_THAT(listener->pools, ElementsAre(nullptr));
    EXPECT_TRUE(VScheduler::isDue(node, pool)) << "the pool has a variable";
    EXPECT_FALSE(VScheduler::isDue(node, other)) << "the pool had no variable";
}

TEST_F(VParameterTest, setsAComponentOfThePrototype)
{
    const auto parameter = testParameter("limit", Interval{3, 4});
    EXPECT_TRUE(parameter->setGlobalValue(testValue(9.0), "high"));
    EXPECT_EQ(contentOf<Interval>(parameter->DefaultValue()), (Interval{3, 9}));
}

TEST_F(VParameterTest, ignoresPrototypeValuesOfAnotherType)
{
    const auto parameter = testParameter("limit", 1.0);
    parameter->setGlobalValue(testValue<std::string>("9"), {});
    parameter->setGlobalValue(nullptr, {});
    parameter->setGlobalValue(testValue(9.0), "high");
    EXPECT_EQ(contentOf(parameter->DefaultValue()), 1);
}

TEST_F(VParameterTest, announcesAChangeOnlyToReadersInThatPool)
{
    const auto writer = makeNode("writer");
    const auto reader = makeNode("reader");
    connect(writer, reader);
    const StrongPtr<VParameter> output = writer->findOutput("out")->parameter();
    const auto listener = Loam::makeStrong<Listener>();
    output->addListener(listener);

    const StrongPtr<VValueBase> value = output->getLocalValue(pool);
    const Ageable before;
    output->notifyValueChange(value, pool);
    EXPECT_TRUE(value->age().isYoungerThan(before));
    EXPECT_TRUE(VScheduler::isDue(reader, pool));
    EXPECT_FALSE(VScheduler::isDue(reader, other));
    EXPECT_FALSE(VScheduler::isDue(writer, pool));
    EXPECT_THAT(listener->pools, ElementsAre(pool));
    EXPECT_THAT(output->readers(), ElementsAre(reader->findSlot("in").get()));
}

TEST_F(VParameterTest, doesNotNotifyReadersOfAnotherComponent)
{
    const auto writer = makeNode("writer", {});
    writer->addOutput<Interval>("interval");
    const auto reader = makeNode("reader");
    ASSERT_TRUE(connect(writer, reader, "in", "high", "interval"));
    const StrongPtr<VParameter> output = writer->findOutput("interval")->parameter();
    const StrongPtr<VValueBase> value = output->getLocalValue(pool);

    const struct {
        const char* member;
        bool isDue;
    } cases[] = {{"low", false}, {"high", true}, {"", true}};
    for (const auto& [member, isDue] : cases) {
        SCOPED_TRACE(member);
        output->notifyValueChange(value, pool, member);
        EXPECT_EQ(VScheduler::isDue(reader, pool), isDue);
        VScheduler::run(pool);
    }
}

TEST_F(VParameterTest, notifiesReadersOfAComponentOfChangesAroundAndInsideIt)
{
    const auto writer = makeNode("writer", {});
    writer->addOutput<Framed>("framed");
    const auto ofInner = makeNode("of inner", {});
    ofInner->addInput<Interval>("in");
    ofInner->work = [](Node&, VRequest&, double) { return true; };
    const auto ofHigh = makeNode("of high");
    ASSERT_TRUE(connect(writer, ofInner, "in", "inner", "framed"));
    ASSERT_TRUE(connect(writer, ofHigh, "in", "inner.high", "framed"));
    const StrongPtr<VParameter> output = writer->findOutput("framed")->parameter();
    const StrongPtr<VValueBase> value = output->getLocalValue(pool);

    const struct {
        const char* member;
        bool innerIsDue;
        bool highIsDue;
    } cases[] = {{"inner", true, true},    {"inner.high", true, true}, {"inner.low", true, false},
                 {"weight", false, false}, {"inn", false, false},      {"inner.highest", true, false}};
    for (const auto& [member, innerIsDue, highIsDue] : cases) {
        SCOPED_TRACE(member);
        output->notifyValueChange(value, pool, member);
        EXPECT_EQ(VScheduler::isDue(ofInner, pool), innerIsDue);
        EXPECT_EQ(VScheduler::isDue(ofHigh, pool), highIsDue);
        VScheduler::run(pool);
    }
}

TEST_F(VParameterTest, mayAnnounceAMissingVariable)
{
    const auto parameter = testParameter("limit");
    const auto listener = Loam::makeStrong<Listener>();
    parameter->addListener(listener);
    parameter->touchValue(pool);
    parameter->notifyValueChange(nullptr, nullptr);
    EXPECT_THAT(listener->pools, ElementsAre(pool, nullptr));
    EXPECT_EQ(pool->variableCount(), 0u);
}

TEST_F(VParameterTest, announcesATouchInOnePoolOrInEveryPoolWithAVariable)
{
    const auto node = makeNode("node");
    const StrongPtr<VParameter> parameter = node->findSlot("in")->parameter();
    const auto third = Loam::makeStrong<ValuePool>("third");
    for (const auto& each : {pool, other})
        node->read(each, "in");

    const Ageable before;
    parameter->touchValue(pool);
    EXPECT_TRUE(parameter->getValueBase(pool)->age().isYoungerThan(before));
    EXPECT_FALSE(parameter->DefaultValue()->age().isYoungerThan(before));
    EXPECT_TRUE(VScheduler::isDue(node, pool));
    EXPECT_FALSE(VScheduler::isDue(node, other));
    VScheduler::run(pool);

    parameter->touchValue(nullptr);
    EXPECT_TRUE(VScheduler::isDue(node, pool));
    EXPECT_TRUE(VScheduler::isDue(node, other));
    EXPECT_FALSE(VScheduler::isDue(node, third));
    EXPECT_TRUE(parameter->DefaultValue()->age().isYoungerThan(before));
}

TEST_F(VParameterTest, remembersLivingPoolsAndForgetsDestroyedOnes)
{
    const auto node = makeNode("node");
    const StrongPtr<VParameter> parameter = node->findSlot("in")->parameter();
    std::vector<StrongPtr<ValuePool>> living;
    std::vector<WeakPtrImpl<ValuePool>> destroyed;
    for (int i = 0; i < 1000; ++i) {
        const auto each = Loam::makeStrong<ValuePool>();
        node->read(each, "in");
        if (i % 100 == 0)
            living.push_back(each);
        else
            destroyed.emplace_back(each);
    }
    parameter->touchValue(nullptr);
    for (const StrongPtr<ValuePool>& each : living)
        EXPECT_TRUE(VScheduler::isDue(node, each));
    const auto remembered = std::ranges::count_if(
        destroyed, [](const WeakPtrImpl<ValuePool>& each) { return each.referenceBlock()->weakCount() > 1; });
    EXPECT_LT(remembered, 60) << "the shadows and the pools with variables are pruned";
}

TEST_F(VParameterTest, removesItsVariablesWhenItIsDestroyed)
{
    auto parameter = testParameter("limit", 1.0);
    parameter->getLocalValue(pool);
    parameter->createLocalVariable(other);
    EXPECT_EQ(livingTestValues, 3u);
    parameter.reset();
    EXPECT_EQ(livingTestValues, 0u);
    EXPECT_EQ(pool->variableCount(), 0u);
    EXPECT_FALSE(other->retrieveValue("limit"));
}

} // namespace VParameterTest
