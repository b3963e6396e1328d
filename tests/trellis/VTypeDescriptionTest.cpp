#include <trellis/VTypeDescription.hpp>

#include <trellis/VObjectCreator.hpp>

#include <gmock/gmock.h>

namespace VTypeDescriptionTest {

using namespace Orla;
using testing::ElementsAre;

namespace {

class Lamp final : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }
};

} // namespace

TEST(VTypeDescription, isKeptByTheCreatorOfTheType)
{
    const VObjectType<Lamp> type{"DescribedLamp", describeType("Gives light.")
                                                      .details("It is bright.")
                                                      .category("Houses")
                                                      .keywords("light", "bulb")
                                                      .page("https://example.org")};
    const StrongPtr<VObjectCreator> creator = VObjectCreator::find("DescribedLamp");
    ASSERT_TRUE(creator && creator->description());
    const VTypeDescription::Parts& parts = creator->description()->parts();
    EXPECT_EQ(parts.sentence, "Gives light.");
    EXPECT_EQ(parts.details, "It is bright.");
    EXPECT_EQ(parts.category, "Houses");
    EXPECT_THAT(parts.keywords, ElementsAre("light", "bulb"));
    EXPECT_EQ(parts.page, "https://example.org");
}

TEST(VTypeDescription, isOptionalAndLeavesThePreferencesOfTheType)
{
    const VObjectType<Lamp> plain{"PlainLamp"};
    EXPECT_FALSE(VObjectCreator::find("PlainLamp")->description());
    const StrongPtr<VCreationPreferences> preferences{new VCreationPreferences("default", "light")};
    const VObjectType<Lamp> described{"PreferredLamp", describeType("Gives light."), preferences};
    EXPECT_EQ(VObjectCreator::find("PreferredLamp")->create("lamp", 0, nullptr)->creationPreferences(), preferences);
}

} // namespace VTypeDescriptionTest
