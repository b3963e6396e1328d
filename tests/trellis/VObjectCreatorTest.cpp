#include <trellis/VObjectCreator.hpp>

#include "support/TestNetwork.hpp"

#include <loam/Environment.hpp>
#include <loam/Typename.hpp>

#include <optional>

namespace VObjectCreatorTest {

using namespace Orla;
using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

struct Ticker : Node {
    Ticker(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : Node{name, level, preferences}
    {
        addOutput("out");
    }
};
struct Counter : Ticker {
    using Ticker::Ticker;
};

// As of a library that was loaded again: types of one name, local to different files.
namespace First {
struct Twin : Ticker {
    using Ticker::Ticker;
};
} // namespace First
namespace Second {
struct Twin : Ticker {
    using Ticker::Ticker;
};
} // namespace Second

class VObjectCreatorTest : public FrameworkTest {};

} // namespace

TEST_F(VObjectCreatorTest, createsUnfinishedObjectsOfItsType)
{
    const VObjectType<Ticker> type{"Ticker"};
    const StrongPtr<VObjectCreator> creator = VObjectCreator::find("Ticker");
    ASSERT_TRUE(creator);
    EXPECT_EQ(creator->typeName(), "Ticker");
    EXPECT_EQ(creator->objectType(), typeid(Ticker));
    EXPECT_THAT(VObjectCreator::names(), Contains("Ticker"));

    const StrongPtr<VObject> object = creator->create("my ticker", 4, nullptr);
    EXPECT_TRUE(StrongPtr<Ticker>(object));
    EXPECT_EQ(object->Name(), "my ticker");
    EXPECT_EQ(object->level(), 4);
    EXPECT_TRUE(object->findOutput("out"));
    EXPECT_FALSE(object->isRequestProcessingEnabled());
    EXPECT_FALSE(object->isRegistered());
}

TEST_F(VObjectCreatorTest, usesItsDefaultPreferencesIfTheCallerHasNone)
{
    const auto defaults = Loam::makeStrong<VCreationPreferences>("unique", "");
    const auto own = Loam::makeStrong<VCreationPreferences>("local", "");
    const VObjectType<Ticker> type{"Ticker", defaults};
    const StrongPtr<VObjectCreator> creator = VObjectCreator::find("Ticker");
    EXPECT_EQ(creator->create("a", 0, nullptr)->creationPreferences(), defaults);
    EXPECT_EQ(creator->create("b", 0, own)->creationPreferences(), own);
}

TEST_F(VObjectCreatorTest, isRemovedWithItsLibrary)
{
    {
        const VObjectType<Ticker> type{"Ticker"};
        EXPECT_TRUE(VObjectCreator::find("Ticker"));
    }
    EXPECT_FALSE(VObjectCreator::find("Ticker"));
    EXPECT_THAT(VObjectCreator::names(), Not(Contains("Ticker")));
}

TEST_F(VObjectCreatorTest, releasesTheNameOfALocalTypeForTheReloadedLibrary)
{
    {
        const VObjectType<First::Twin> type{"Twin"};
        EXPECT_EQ(Loam::Typename(typeid(First::Twin)), "Twin");
    }
    EXPECT_EQ(Loam::Typename(typeid(Second::Twin)), "Twin");
}

TEST_F(VObjectCreatorTest, belongsToTheFileOfItsClassOrTheOneItNames)
{
    TypedObjectCreator<Ticker> creator;
    EXPECT_EQ(creator.file(), Loam::getLibraryPath(&typeid(Ticker)));
    creator.setFile("/objects/ticker.py");
    EXPECT_EQ(creator.file(), "/objects/ticker.py");
}

TEST_F(VObjectCreatorTest, isFoundByItsFileIfFilesHaveDifferentTypesOfAName)
{
    TypedObjectCreator<Ticker> first;
    first.setFile("/objects/first.py");
    TypedObjectCreator<Ticker> second;
    second.setFile("/objects/second.py");
    VObjectCreator::registerCreator(&first, "Ticker");
    VObjectCreator::registerCreator(&second, "Ticker");
    EXPECT_THAT(VObjectCreator::libraries("Ticker"), testing::ElementsAre("first.py", "second.py"));
    EXPECT_EQ(VObjectCreator::find("second.py:Ticker").get(), &second);
    EXPECT_EQ(VObjectCreator::find("Ticker").get(), &first);
}

TEST_F(VObjectCreatorTest, waitsForAnEarlierCreatorOfItsType)
{
    std::optional<VObjectType<Ticker>> first(std::in_place, "Ticker");
    const StrongPtr<VObjectCreator> before = VObjectCreator::find("Ticker");
    const VObjectType<Ticker> second{"Ticker"};
    EXPECT_EQ(VObjectCreator::find("Ticker"), before);
    first.reset();
    ASSERT_TRUE(VObjectCreator::find("Ticker"));
    EXPECT_NE(VObjectCreator::find("Ticker"), before);
}

TEST_F(VObjectCreatorTest, isRefusedUnderTheNameOfAnotherType)
{
    const VObjectType<Ticker> ticker{"taken"};
    const VObjectType<Counter> counter{"taken"};
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("\"taken\""), ContainsRegex("taken by type [^;]*Ticker of "),
                                              ContainsRegex("refused for type [^;]*Counter of "))));
    EXPECT_EQ(VObjectCreator::find("taken")->objectType(), typeid(Ticker));
    EXPECT_FALSE(VObjectCreator::registerCreator(nullptr, "missing"));
    EXPECT_FALSE(VObjectCreator::find("missing"));
}

TEST_F(VObjectCreatorTest, isFoundAsTheUniqueProviderOfAType)
{
    EXPECT_FALSE(VObjectCreator::findUnique(typeid(double)));
    const VObjectType<Counter> plain{"A counter"};
    const VObjectType<Ticker> unique{"B ticker", nullptr, &typeid(double)};
    const StrongPtr<VObjectCreator> found = VObjectCreator::findUnique(typeid(double));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->typeName(), "B ticker");
    EXPECT_FALSE(VObjectCreator::findUnique(typeid(float)));
}

} // namespace VObjectCreatorTest
