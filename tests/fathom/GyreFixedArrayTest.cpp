#include <fathom/GyreFixedArray.hpp> // first: the header must be self-contained

#include <gtest/gtest.h>

namespace GyreFixedArrayTest {

using namespace Orla;

using Triple = Gyre::FixedArray<int, 3>;
using Trait = VValueTrait<Triple>;

TEST(IntegerTriple, isWrittenInBrackets)
{
    EXPECT_EQ(Trait::Text({{1, -2, 3}}), "[1,-2,3]");
}

TEST(IntegerTriple, intentionallyReadsAllThreeNumbersIntoItsFirstElement)
{
    Triple triple{{7, 8, 9}};
    EXPECT_TRUE(Trait::setValueFromText(triple, "[1,2,3]"));
    EXPECT_EQ(triple, (Triple{{3, 8, 9}}));
}

TEST(IntegerTriple, refusesTextThatIsNotThreeNumbers)
{
    const struct {
        const char* text;
        int first;
    } cases[] = {
        {"", 7},        {"[1,2]", 7},  {"[1,2,3,4]", 7}, {",2,3", 7}, {"[x,2,3]", 7}, {"[1,x,3]", 1},
        {"[1,2,x]", 2}, {"[1,,3]", 1}, {"[1,2,", 7},     {"x", 7},    {"[,2,3]", 7},  {"[9999999999,2,3]", 7},
    };
    for (const auto& [text, first] : cases) {
        SCOPED_TRACE(text);
        Triple triple{{7, 8, 9}};
        EXPECT_FALSE(Trait::setValueFromText(triple, text));
        EXPECT_EQ(triple, (Triple{{first, 8, 9}}));
    }
}

TEST(IntegerTriple, skipsTheFirstCharacterWhateverItIs)
{
    Triple triple{{7, 8, 9}};
    EXPECT_TRUE(Trait::setValueFromText(triple, "12,2,4"));
    EXPECT_EQ(triple[0], 4);
}

TEST(Text3, writesThreeNumbersInBraces)
{
    EXPECT_EQ(Text3(Gyre::FixedArray<double, 3>{{0, -1.5, 1e300}}), "{0,-1.5,1e+300}");
}

} // namespace GyreFixedArrayTest
