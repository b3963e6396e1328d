#include <trellis/VValueBase.hpp>

#include "support/TestNetwork.hpp"

namespace VValueBaseTest {

using namespace Orla;

namespace {

class VValueBaseTest : public FrameworkTest {};

} // namespace

TEST_F(VValueBaseTest, hasNoInterfaceAndKeepsNoSourceByDefault)
{
    const auto value = testValue(1.5);
    const auto node = makeNode("source");
    value->setSource(WeakPtrImpl<VManagedObject>(node));
    EXPECT_TRUE(value->source().expired());
    EXPECT_FALSE(value->getInterface());
    value->setContainerValue(testValue(2.5));
    EXPECT_EQ(value->get(), 1.5);
}

TEST_F(VValueBaseTest, isItsOwnComponentUnderTheEmptyName)
{
    const StrongPtr<VValueBase> value = testValue(1.5);
    EXPECT_EQ(value->component(""), value);
    EXPECT_EQ(value.referenceBlock()->strongCount(), 1u);
}

TEST_F(VValueBaseTest, readsAndWritesItsComponentsInPlace)
{
    const auto interval = testValue(Interval{3, 4});
    const StrongPtr<VValueBase> high = interval->component("high");
    ASSERT_TRUE(high);
    EXPECT_EQ(high->getType(), typeid(double));
    EXPECT_EQ(contentOf(high), 4);
    EXPECT_TRUE(high->setValueFromText("7.5"));
    EXPECT_EQ(interval->get(), (Interval{3, 7.5}));
    interval->set({1, 2});
    EXPECT_EQ(contentOf(high), 2);
}

TEST_F(VValueBaseTest, findsNestedComponentsThroughADot)
{
    const auto framed = testValue(Framed{{3, 4}, 5});
    const StrongPtr<VValueBase> high = framed->component("inner.high");
    ASSERT_TRUE(high);
    EXPECT_EQ(contentOf(high), 4);
    high->setValueFromText("6");
    EXPECT_EQ(framed->get(), (Framed{{3, 6}, 5}));
}

TEST_F(VValueBaseTest, hasNoComponentThatItsTypeDoesNotDeclare)
{
    EXPECT_FALSE(testValue(1.5)->component("low"));
    for (const char* name : {"Low", "low ", "low.low", ".low", "low.", "."}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(testValue(Interval{})->component(name));
    }
    EXPECT_FALSE(testValue(Framed{})->component("inner.weight"));
}

TEST_F(VValueBaseTest, isKeptAliveByItsComponents)
{
    StrongPtr<VValueBase> low = testValue(Interval{3, 4})->component("low");
    EXPECT_EQ(contentOf(low), 3);
    EXPECT_EQ(livingTestValues, 1u);
    low.reset();
    EXPECT_EQ(livingTestValues, 0u);
}

} // namespace VValueBaseTest
