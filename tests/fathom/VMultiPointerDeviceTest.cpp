#include <fathom/VMultiPointerDevice.hpp> // first: the header must be self-contained

#include <fathom/VValueType.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace VMultiPointerDeviceTest {

using namespace Orla;

using Pointer = VMultiPointerDevice::Pointer;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

static_assert(Pointer{1, 2, 3} == Pointer{1, 2, 3});

const VValueType<VMultiPointerDevice> deviceType;

VMultiPointerDevice device(std::vector<Pointer> pointers)
{
    VMultiPointerDevice result;
    result.pointers = std::move(pointers);
    return result;
}

} // namespace

TEST(VMultiPointerDevice, startsWithoutPointersAndEqualsAnotherEmptyDevice)
{
    EXPECT_TRUE(VMultiPointerDevice().pointers.empty());
    EXPECT_EQ(VMultiPointerDevice(), VMultiPointerDevice());
}

TEST(VMultiPointerDevice, equalsADeviceWithTheSamePointersInTheSameOrder)
{
    const VMultiPointerDevice two = device({{1, 10, 20}, {2, 30, 40}});
    EXPECT_EQ(two, device({{1, 10, 20}, {2, 30, 40}}));
    EXPECT_NE(two, device({{2, 30, 40}, {1, 10, 20}}));
    EXPECT_NE(two, device({{1, 10, 20}}));
    EXPECT_NE(two, device({}));
    EXPECT_NE(two, device({{1, 10, 20}, {3, 30, 40}}));
    EXPECT_NE(two, device({{1, 10.5, 20}, {2, 30, 40}}));
    EXPECT_NE(two, device({{1, 9.5, 20}, {2, 30, 40}}));
    EXPECT_NE(two, device({{1, 10, 20}, {2, 30, 40.5}}));
    EXPECT_NE(two, device({{1, 10, 20}, {2, 30, 39.5}}));
    EXPECT_EQ(device({{1, 0.0, 0.0}}), device({{1, -0.0, 0.0}}));
}

TEST(VMultiPointerDevice, treatsANaNCoordinateAsEqualToAnyOther)
{
    EXPECT_EQ(device({{1, notANumber, 20}}), device({{1, 10, 20}}));
    EXPECT_EQ(device({{1, 10, 20}}), device({{1, 10, notANumber}}));
    EXPECT_EQ(device({{1, notANumber, notANumber}}), device({{1, notANumber, notANumber}}));
    EXPECT_NE(device({{1, notANumber, 20}}), device({{1, notANumber, 21}})) << "the other coordinate still counts";
    EXPECT_NE(device({{1, notANumber, 20}}), device({{2, notANumber, 20}})) << "and so does the identifier";
}

TEST(VMultiPointerDevice, hasNoTextForm)
{
    using Trait = VValueTrait<VMultiPointerDevice>;
    VMultiPointerDevice one = device({{1, 10, 20}});
    EXPECT_EQ(Trait::Text(one), "");
    for (const char* text : {"", "1 10 20"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(Trait::setValueFromText(one, text));
        EXPECT_FALSE(VInputValueTrait<VMultiPointerDevice>::setValueFromText(one, text));
        EXPECT_EQ(one.pointers.size(), 1u);
    }
}

TEST(VMultiPointerDevice, startsEmptyAsAnInput)
{
    VMultiPointerDevice one = device({{1, 10, 20}});
    VInputValueTrait<VMultiPointerDevice>::init(one);
    EXPECT_TRUE(one.pointers.empty());
}

TEST(VMultiPointerDevice, isMadeAValueAndInputTypeByASingleDeclaration)
{
    bool ok = true;
    const StrongPtr<VValueBase> value = VValueCreator::createValue("VMultiPointerDevice", "", ok);
    ASSERT_TRUE(value);
    EXPECT_FALSE(ok);
    const VValue<VMultiPointerDevice> one(device({{1, 10, 20}}));
    const StrongPtr<VValueBase> copy = one.copy();
    EXPECT_FALSE(one.isDifferentFrom(copy));
    EXPECT_TRUE(one.isDifferentFrom(value));

    const StrongPtr<VSlotContainer> container(new VSlotContainer);
    const TypedSlot<VMultiPointerDevice> slot(container.get(), "fingers", device({{1, 10, 20}}), 0);
    const StrongPtr<ValuePool> pool(new ValuePool);
    ASSERT_TRUE(slot.slot()->getLocalValue(pool));
    EXPECT_EQ(slot.value(pool), device({{1, 10, 20}}));
}

} // namespace VMultiPointerDeviceTest
