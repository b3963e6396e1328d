#include <fathom/VConnectionTypeColors.hpp> // first: the header must be self-contained

#include <gtest/gtest.h>

#include <string>

namespace VConnectionTypeColorsTest {

using namespace Orla;

namespace {

// Read during static initialization.
const std::string visibilityAtStart = Tarn::renderobject_visibility;

struct Coloured {};
struct Uncoloured {};

TEST(VConnectionTypeColors, alwaysDrawNumbersGreen)
{
    EXPECT_EQ(VConnectionTypeColors::get(typeid(int)), "green");
    VConnectionTypeColors::set(typeid(double), "red");
    EXPECT_EQ(VConnectionTypeColors::get(typeid(double)), "green");
    VConnectionTypeColors::set(typeid(int), "red");
    EXPECT_EQ(VConnectionTypeColors::get(typeid(int)), "green");
}

TEST(VConnectionTypeColors, keepTheLastColourOfAType)
{
    EXPECT_EQ(VConnectionTypeColors::get(typeid(Coloured)), "");
    VConnectionTypeColors::set(typeid(Coloured), "#123456");
    VConnectionTypeColors::set(typeid(Coloured), "blue");
    EXPECT_EQ(VConnectionTypeColors::get(typeid(Coloured)), "blue");
    EXPECT_EQ(VConnectionTypeColors::get(typeid(Uncoloured)), "");
}

TEST(RenderProperties, haveTheirNamesDuringStaticInitialization)
{
    EXPECT_EQ(visibilityAtStart, "visibility");
    EXPECT_STREQ(Tarn::renderobject_visibility, "visibility");
    EXPECT_STREQ(Tarn::rendertime_contribution, "rendertimecontribution");
}

} // namespace

} // namespace VConnectionTypeColorsTest
