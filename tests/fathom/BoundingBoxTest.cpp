#include <fathom/BoundingBox.hpp> // first: the header must be self-contained

#include <fathom/VConnectionTypeColors.hpp>

#include <loam/Typename.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace BoundingBoxTest {

using namespace Orla;

using Box = StrongPtr<Gyre::BoundingBox, InterfaceBase>;
using Trait = VValueTrait<Box>;
using Point = Gyre::PhysicalSpace::point;

namespace {

Box makeBox(const Point& minimum, const Point& maximum)
{
    return Loam::makeStrong<Gyre::BoundingBox>(minimum, maximum);
}

TEST(BoundingBox, isWrittenAsItsCorners)
{
    EXPECT_EQ(Trait::Text(makeBox({0, 0, 0}, {1, 2.5, 3})), "[{0,0,0};{1,2.5,3}]");
    EXPECT_EQ(Trait::Text(nullptr), "[?;?]");
}

TEST(BoundingBox, isCreatedIfThePointerIsNull)
{
    Box box;
    EXPECT_TRUE(Trait::setValueFromText(box, "[{0,0,0};{2,3,6}]"));
    ASSERT_TRUE(box);
    EXPECT_EQ(box->minimum(), Point(0, 0, 0));
    EXPECT_EQ(box->maximum(), Point(2, 3, 6));
    EXPECT_EQ(box->ball().radius(), 3.5);
}

TEST(BoundingBox, isChangedInPlaceForAllItsOwners)
{
    Box box = makeBox({0, 0, 0}, {1, 1, 1});
    box->grow({5, 5, 5});
    const Box other = box;
    EXPECT_TRUE(Trait::setValueFromText(box, "[{0,0,0};{2,3,6}]"));
    EXPECT_EQ(box, other);
    EXPECT_EQ(other->maximum(), Point(2, 3, 6));
    EXPECT_EQ(other->ball().radius(), 3.5) << "the ball is updated too";
    EXPECT_FALSE(other->isGrown());
}

TEST(BoundingBox, keepsACoordinateWhoseNumberIsMissing)
{
    Box box = makeBox({1, 2, 3}, {4, 5, 6});
    EXPECT_TRUE(Trait::setValueFromText(box, "[{x,0,x};{x,9,x}]"));
    EXPECT_EQ(Trait::Text(box), "[{1,0,3};{4,9,6}]");
    Box fresh;
    EXPECT_TRUE(Trait::setValueFromText(fresh, "[{x,1,x};{2}]"));
    EXPECT_EQ(Trait::Text(fresh), "[{0,1,0};{2,2,2}]");
}

TEST(BoundingBox, isUnchangedUnlessBothCornersCanBeRead)
{
    for (const char* text : {"", "[;]", "[{x};{1,1,1}]", "[{1,1,1};{x}]", "[{1,1,1};", "x"}) {
        SCOPED_TRACE(text);
        Box box = makeBox({0, 0, 0}, {1, 2, 3});
        EXPECT_FALSE(Trait::setValueFromText(box, text));
        EXPECT_EQ(Trait::Text(box), "[{0,0,0};{1,2,3}]");
        Box none;
        EXPECT_FALSE(Trait::setValueFromText(none, text));
        EXPECT_FALSE(none);
    }
}

TEST(BoundingBox, readsItsCornersFromTheFirstAndTheLastPiece)
{
    Box box;
    EXPECT_TRUE(Trait::setValueFromText(box, "[{1,1,1};{5,5,5};{2,2,2}]"));
    EXPECT_EQ(Trait::Text(box), "[{1,1,1};{2,2,2}]");
    EXPECT_TRUE(Trait::setValueFromText(box, "7")) << "without a separator, the whole text gives both";
    EXPECT_EQ(Trait::Text(box), "[{7,7,7};{7,7,7}]");
}

TEST(BoundingBox, isReleasedButNotChangedByAQuestionMark)
{
    for (const char* text : {"[?;?]", "[?;{1,1,1}]", "[{1,1,1};?]"}) {
        SCOPED_TRACE(text);
        Box box = makeBox({0, 0, 0}, {1, 2, 3});
        const Box other = box;
        EXPECT_TRUE(Trait::setValueFromText(box, text));
        EXPECT_FALSE(box);
        EXPECT_EQ(Trait::Text(other), "[{0,0,0};{1,2,3}]");
    }
}

TEST(BoundingBox, isCopiedWithItsValueAndNotSharedBetweenPools)
{
    const VValue<Box> value(makeBox({0, 0, 0}, {1, 1, 1}));
    const StrongPtr<VTypedValueBase<Box>> copy(value.copy());
    EXPECT_FALSE(value.isDifferentFrom(copy));
    Box held;
    copy->getValue(held);
    held->setCorners({0, 0, 0}, {2, 2, 2});
    EXPECT_EQ(value.Text(), "[{0,0,0};{1,1,1}]");
    EXPECT_TRUE(value.isDifferentFrom(copy));
    EXPECT_TRUE(VValueOperations<Box>::areDifferent(held, nullptr));
    EXPECT_FALSE(VValueOperations<Box>::areDifferent(nullptr, nullptr));
    EXPECT_FALSE(VValueOperations<Box>::copyOf(nullptr));
}

TEST(BoundingBox, isPrintedBySpeak)
{
    testing::internal::CaptureStdout();
    speak(Box(), "here");
    speak(makeBox({0, 0, 0}, {1, 1, 1}), "there");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "here: empty BBox\nthere: BBox from (0, 0, 0) to (1, 1, 1)\n");
}

TEST(BoundingBox, isReportedBeforeItIsReadIfThePointerRefersToAnotherObject)
{
    const auto other = Loam::makeStrong<InterfaceBase>();
    Box wrong(reinterpret_cast<Gyre::BoundingBox*>(other.get()));
    testing::internal::CaptureStdout();
    EXPECT_EQ(Trait::Text(wrong), "[?;?]");
    EXPECT_FALSE(Trait::setValueFromText(wrong, "[{0,0,0};{1,1,1}]"));
    speak(wrong, "here");
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(std::ranges::count(printed, '\n'), 3);
    for (const char* place : {"Text: ", "setValueFromText: ", "speak: "})
        EXPECT_NE(printed.find(place), std::string::npos) << place << " in " << printed;
    EXPECT_NE(printed.find("the object is a InterfaceBase, not a BoundingBox\n"), std::string::npos) << printed;
}

TEST(BoundingBox, hasItsNameAndColour)
{
    EXPECT_EQ(Loam::Typename(typeid(Box)), "Bounding Box");
    EXPECT_EQ(VConnectionTypeColors::get(typeid(Box)), "#8080FF");
    EXPECT_TRUE(Trait::TypenameInitialized);
}

} // namespace

} // namespace BoundingBoxTest
