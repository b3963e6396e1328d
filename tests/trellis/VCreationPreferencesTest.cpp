#include <trellis/VCreationPreferences.hpp>

#include <gmock/gmock.h>

#include <limits>

namespace VCreationPreferencesTest {

using namespace Orla;
using testing::ElementsAre;

namespace {

VCreationPreferences wordsOf(std::initializer_list<const char*> words)
{
    VCreationPreferences preferences;
    for (const char* word : words)
        preferences.add(word);
    return preferences;
}

} // namespace

TEST(VCreationPreferences, areASetOfWordsInInsertionOrder)
{
    VCreationPreferences preferences{"unique", "GlobalTime"};
    EXPECT_TRUE(preferences.add("local"));
    EXPECT_FALSE(preferences.add("unique"));
    EXPECT_FALSE(preferences.add(""));
    EXPECT_THAT(preferences.words(), ElementsAre("unique", "GlobalTime", "local"));
    EXPECT_TRUE(preferences.contains("local"));
    EXPECT_FALSE(preferences.contains("Local"));
    EXPECT_FALSE(preferences.contains(""));
}

TEST(VCreationPreferences, ignoreEmptyWords)
{
    EXPECT_THAT((VCreationPreferences{"", "wish"}.words()), ElementsAre("wish"));
    EXPECT_THAT((VCreationPreferences{"purpose", ""}.words()), ElementsAre("purpose"));
    EXPECT_TRUE((VCreationPreferences{"", ""}.words().empty()));
    EXPECT_TRUE(VCreationPreferences().words().empty());
}

TEST(VCreationPreferences, weighTheNumberOfMissingWords)
{
    const auto has = wordsOf({"a", "b", "c"});
    EXPECT_EQ(has.weight(wordsOf({})), 0);
    EXPECT_EQ(has.weight(wordsOf({"a", "c"})), 0) << "additional words do not count";
    EXPECT_EQ(has.weight(wordsOf({"a", "x"})), 1);
    EXPECT_EQ(has.weight(wordsOf({"x", "y", "b"})), 2);
    EXPECT_EQ(VCreationPreferences().weight(has), 3);
}

TEST(VCreationPreferences, addOnlyTheHandicapOfTheCandidate)
{
    auto has = wordsOf({"a"});
    auto wanted = wordsOf({"a", "b"});
    EXPECT_EQ(has.handicap(), 0);
    has.setHandicap(-0.5);
    wanted.setHandicap(100);
    EXPECT_EQ(has.handicap(), -0.5);
    EXPECT_EQ(has.weight(wanted), 0.5);
}

TEST(VCreationPreferences, useTheWordsOfADerivedClass)
{
    struct Everything : VCreationPreferences {
        bool contains(const std::string&) const override { return true; }
    };
    EXPECT_EQ(Everything().weight(wordsOf({"a", "b"})), 0);
}

TEST(VCreationPreferences, areFoundAmongInterfaces)
{
    Loam::InterfaceContainer interfaces;
    const auto preferences = Loam::makeStrong<VCreationPreferences>("unique", "GlobalTime");
    interfaces.add(preferences);
    EXPECT_EQ(interfaces.find<VCreationPreferences>(), preferences);
}

} // namespace VCreationPreferencesTest
