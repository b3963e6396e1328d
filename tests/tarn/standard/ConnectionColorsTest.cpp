#include <fathom/VConnectionTypeColors.hpp>

#include <trellis/VValueCreator.hpp>

#include "tarn/LoadedLibraries.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <cstddef>
#include <set>
#include <string>

namespace ConnectionColorsTest {

namespace {

class ConnectionColors : public LoadedLibraries {
protected:
    /// Returns the colour of the value type that is registered as \p name.
    static std::string colorOf(const std::string& name)
    {
        const auto creator = Orla::VValueCreator::find(name);
        return creator ? Orla::VConnectionTypeColors::get(creator->valueType()) : "the type is not registered";
    }
};

const char* const typesWithOwnColours[] = {
    "VTime",   "Range",         "VChart", "VChartList",        "VInteractionEvent",
    "VCamera", "VObjectStatus", "string", "StrongPtr<VAction>"};

// Returns the contrast to white after WCAG 2.1: (L1 + 0.05) / (L2 + 0.05) with the relative
// luminances L1 and L2 of the colours, of which that of white is 1.
double contrastToWhite(const std::string& color)
{
    double luminance = 0;
    const double weights[] = {0.2126, 0.7152, 0.0722};
    for (std::size_t i = 0; i < 3; ++i) {
        const double value = std::stoi(color.substr(1 + 2 * i, 2), nullptr, 16) / 255.0;
        luminance += weights[i] * (value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
    }
    return 1.05 / (luminance + 0.05);
}

} // namespace

TEST_F(ConnectionColors, differBetweenTheCommonTypes)
{
    std::set<std::string> colors;
    for (const std::string type : typesWithOwnColours) {
        SCOPED_TRACE(type);
        const std::string color = colorOf(type);
        EXPECT_THAT(color, testing::MatchesRegex("#[0-9A-F]{6}"));
        EXPECT_TRUE(colors.insert(color).second) << color;
    }
    EXPECT_FALSE(colors.contains(colorOf("Enum")));
}

TEST_F(ConnectionColors, areTheSameForAllKindsOfChoices)
{
    for (const std::string type : {"FlagList", "StrongPtr<StringSelection>", "StrongPtr<MultipleStringSelection>"}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(colorOf(type), colorOf("Enum"));
    }
    EXPECT_NE(colorOf("Enum"), "");
}

TEST_F(ConnectionColors, areVisibleOnWhite)
{
    for (const std::string type : typesWithOwnColours)
        EXPECT_GE(contrastToWhite(colorOf(type)), 2) << type << ": " << colorOf(type);
    EXPECT_GE(contrastToWhite(colorOf("Enum")), 2);
}

} // namespace ConnectionColorsTest
