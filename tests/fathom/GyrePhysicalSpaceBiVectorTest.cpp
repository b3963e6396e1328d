#include <fathom/GyrePhysicalSpaceBiVector.hpp> // first: the header must be self-contained

#include <gtest/gtest.h>

#include <string>

namespace GyrePhysicalSpaceBiVectorTest {

using namespace Orla;

using Gyre::PhysicalSpace;
using bivector = PhysicalSpace::bivector;
using Trait = VValueTrait<bivector>;

TEST(BiVector, isWrittenWithoutBlanks)
{
    EXPECT_EQ(Trait::Text(bivector(1, -2.5, 1e-9)), "<1,-2.5,1e-09>");
}

TEST(BiVector, isReadAfterItsOpeningCharacter)
{
    const struct {
        const char* text;
        bivector read;
    } cases[] = {
        {"<1,2,3>", {1, 2, 3}},   {"1,2,3", {1, 2, 3}},   {"any< 1, 2, 3 and more", {1, 2, 3}},
        {"<1,2,3,4>", {1, 2, 3}}, {"<<1,2,3", {9, 2, 3}},
    };
    for (const auto& [text, read] : cases) {
        SCOPED_TRACE(text);
        bivector value(9, 9, 9);
        EXPECT_TRUE(Trait::setValueFromText(value, text));
        EXPECT_EQ(value, read);
    }
}

TEST(BiVector, readsTheSameTextAgainIfACommaIsMissing)
{
    bivector value(9, 9, 9);
    EXPECT_TRUE(Trait::setValueFromText(value, "<5>"));
    EXPECT_EQ(value, bivector(5, 5, 5));
    EXPECT_TRUE(Trait::setValueFromText(value, "<1,2"));
    EXPECT_EQ(value, bivector(1, 2, 2));
}

TEST(BiVector, acceptsTextWithAtLeastOneReadableNumber)
{
    bivector value(9, 8, 7);
    EXPECT_TRUE(Trait::setValueFromText(value, "<x,2,x>"));
    EXPECT_EQ(value, bivector(9, 2, 7));
    EXPECT_TRUE(Trait::setValueFromText(value, "<,,3"));
    EXPECT_EQ(value, bivector(9, 2, 3));
}

TEST(BiVector, keepsItsValueWhenNothingCanBeRead)
{
    for (const char* text : {"", "<", "<,,>", "x", "<x,y,z>", ",", "<1<"}) {
        SCOPED_TRACE(text);
        bivector value(9, 8, 7);
        const bool read = Trait::setValueFromText(value, text);
        EXPECT_EQ(read, std::string(text) == "<1<");
        EXPECT_EQ(value, read ? bivector(1, 1, 1) : bivector(9, 8, 7));
    }
}

TEST(BiVector, isReadInTheSameWayAsAnInput)
{
    bivector value;
    EXPECT_TRUE(VInputValueTrait<bivector>::setValueFromText(value, "<1,2,3>"));
    EXPECT_EQ(value, bivector(1, 2, 3));
    EXPECT_FALSE(VInputValueTrait<bivector>::setValueFromText(value, ""));
}

} // namespace GyrePhysicalSpaceBiVectorTest
