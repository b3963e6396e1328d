#include <fathom/VDescriptionOf.hpp>

#include <fathom/Range.hpp>

#include <gmock/gmock.h>

#include <string>
#include <type_traits>

namespace VDescriptionOfTest {

using namespace Orla;

// check-errors.py has the descriptions that do not compile.

TEST(VDescriptionOf, hasThePartsOfTheDescription)
{
    const VDescriptionOf<double> width = describe("The width.").in("m").from(0).to(5);
    EXPECT_EQ(width.parts(), describe("The width.").in("m").from(0).to(5).parts());
}

TEST(VDescriptionOf, limitsTheNumbersOfValuesThatConsistOfThem)
{
    const VDescriptionOf<Range> days = describe("The days.").above(0);
    EXPECT_EQ(days.parts().limits, describe("The days.").above(0).parts().limits);
}

TEST(VDescriptionOf, statesTheKindOfATextOnly)
{
    const VDescriptionOf<std::string> file = describe("The file.").asInputFile("csv");
    EXPECT_EQ(file.parts().textKind, VTextKind::InputFile);
}

TEST(VDescriptionOf, isNotMadeFromAnythingElse)
{
    EXPECT_FALSE((std::is_constructible_v<VDescriptionOf<double>, int>));
    EXPECT_FALSE(std::is_default_constructible_v<VDescriptionOf<double>>);
}

} // namespace VDescriptionOfTest
