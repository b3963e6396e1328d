#include <trellis/VDescription.hpp>

#include <gmock/gmock.h>

#include <limits>
#include <vector>

namespace VDescriptionTest {

using namespace Orla;
using testing::ElementsAre;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

static_assert(VLimits{}.contains(nan) && VLimits{}.contains(infinity) && !VLimits{}.isSet());
static_assert(VLimits{0, 1}.contains(0) && VLimits{0, 1}.contains(1) && !VLimits{0, 1}.contains(1.5));
static_assert(!VLimits{0, infinity}.contains(nan) && VLimits{0, infinity}.contains(infinity));
static_assert(!VLimits{0, 1, true, true}.contains(0) && !VLimits{0, 1, true, true}.contains(1));
static_assert(VLimits{1, 1}.isInOrder() && !VLimits{1, 1, true}.isInOrder() && !VLimits{2, 1}.isInOrder());
static_assert(!VLimits{nan, 1}.isInOrder() && !VLimits{0, nan}.isInOrder());
static_assert(!VLimits{infinity, infinity}.isInOrder() && !VLimits{-infinity, -infinity}.isInOrder());

TEST(VDescription, consistsOfTheDeclaredParts)
{
    const VDescriptionLiteral parts = describe("Half the side.")
                                          .in("m")
                                          .from(0)
                                          .below(1e7)
                                          .finite()
                                          .softLimits(1, 100)
                                          .step(0.5)
                                          .logarithmic()
                                          .advanced()
                                          .onlyIf("mode", "a", "b")
                                          .parts();
    EXPECT_EQ(parts.sentence, "Half the side.");
    EXPECT_EQ(parts.unit, "m");
    EXPECT_EQ(parts.limits, (VLimits{0, 1e7, false, true}));
    EXPECT_TRUE(parts.isFinite);
    EXPECT_EQ(parts.softLimits, (VLimits{1, 100}));
    EXPECT_EQ(parts.step, 0.5);
    EXPECT_TRUE(parts.isLogarithmic);
    EXPECT_EQ(parts.visibility, VVisibility::Advanced);
    EXPECT_EQ(parts.conditionInput, "mode");
    EXPECT_THAT(parts.conditionValues, ElementsAre("a", "b"));
}

TEST(VDescription, tellsHowATextIsEdited)
{
    const auto kindOf = [](const VDescription<VDescribes::Text>& text) { return text.parts().textKind; };
    EXPECT_THAT(describe("A file.").asInputFile("json", "geojson").parts().extensions, ElementsAre("json", "geojson"));
    EXPECT_THAT(describe("A file.").asOutputFile("png").parts().extensions, ElementsAre("png"));
    EXPECT_EQ(kindOf(describe("A file.").asInputFile()), VTextKind::InputFile);
    EXPECT_EQ(kindOf(describe("A file.").asOutputFile()), VTextKind::OutputFile);
    EXPECT_EQ(kindOf(describe("A folder.").asFolder()), VTextKind::Folder);
    EXPECT_EQ(kindOf(describe("A colour.").asColor()), VTextKind::Color);
    EXPECT_EQ(kindOf(describe("A page.").asWebPage()), VTextKind::WebPage);
    EXPECT_EQ(kindOf(describe("A text.").asMultiLine()), VTextKind::MultiLine);
}

TEST(VDescription, hasOneVisibility)
{
    EXPECT_EQ(describe("A slot.").parts().visibility, VVisibility::Ordinary);
    EXPECT_EQ(describe("A slot.").hidden().parts().visibility, VVisibility::Hidden);
    EXPECT_EQ(describe("A slot.").asPrivateState().parts().visibility, VVisibility::PrivateState);
}

TEST(VDescription, takesExclusiveLimits)
{
    EXPECT_EQ(describe("A number.").above(0).to(5).parts().limits, (VLimits{0, 5, true, false}));
    EXPECT_EQ(describe("A number.").to(infinity).parts().limits, VLimits{}) << "an infinite end does not limit";
}

} // namespace VDescriptionTest
