#include <fathom/GyrePhysicalSpacePoint.hpp> // first: the header must be self-contained

#include <gtest/gtest.h>

#include <string>

namespace GyrePhysicalSpacePointTest {

using namespace Orla;

using Gyre::PhysicalSpace;
using point = PhysicalSpace::point;
using Trait = VValueTrait<point>;

TEST(Point, isWrittenWithoutBlanks)
{
    EXPECT_EQ(Trait::Text(point(1, -2.5, 1e-9)), "{1,-2.5,1e-09}");
}

TEST(Point, isReadAfterItsOpeningCharacter)
{
    const struct {
        const char* text;
        point read;
    } cases[] = {
        {"{1,2,3}", {1, 2, 3}},   {"1,2,3", {1, 2, 3}},   {"any{ 1, 2, 3 and more", {1, 2, 3}},
        {"{1,2,3,4}", {1, 2, 3}}, {"{{1,2,3", {9, 2, 3}},
    };
    for (const auto& [text, read] : cases) {
        SCOPED_TRACE(text);
        point value(9, 9, 9);
        EXPECT_TRUE(Trait::setValueFromText(value, text));
        EXPECT_EQ(value, read);
    }
}

TEST(Point, readsTheSameTextAgainIfACommaIsMissing)
{
    point value(9, 9, 9);
    EXPECT_TRUE(Trait::setValueFromText(value, "{5}"));
    EXPECT_EQ(value, point(5, 5, 5));
    EXPECT_TRUE(Trait::setValueFromText(value, "{1,2"));
    EXPECT_EQ(value, point(1, 2, 2));
}

TEST(Point, acceptsTextWithAtLeastOneReadableNumber)
{
    point value(9, 8, 7);
    EXPECT_TRUE(Trait::setValueFromText(value, "{x,2,x}"));
    EXPECT_EQ(value, point(9, 2, 7));
    EXPECT_TRUE(Trait::setValueFromText(value, "{,,3"));
    EXPECT_EQ(value, point(9, 2, 3));
}

TEST(Point, keepsItsValueWhenNothingCanBeRead)
{
    for (const char* text : {"", "{", "{,,}", "x", "{x,y,z}", ",", "{1{"}) {
        SCOPED_TRACE(text);
        point value(9, 8, 7);
        const bool read = Trait::setValueFromText(value, text);
        EXPECT_EQ(read, std::string(text) == "{1{");
        EXPECT_EQ(value, read ? point(1, 1, 1) : point(9, 8, 7));
    }
}

} // namespace GyrePhysicalSpacePointTest
