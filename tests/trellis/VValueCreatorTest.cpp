#include <trellis/VValueCreator.hpp>

#include "support/TestNetwork.hpp"

#include <loam/TypeInfo.hpp>
#include <loam/Typename.hpp>

namespace VValueCreatorTest {

using namespace Orla;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

template<class T>
struct Creator : VValueCreator {
    Creator() : VValueCreator{typeid(T)} {}

    StrongPtr<VValueBase> create(const std::string& text, bool& ok) override
    {
        const StrongPtr<VValueBase> value = testValue<T>();
        ok = value->setValueFromText(text);
        return value;
    }
};

// As of a library that was loaded again: types of one name, local to different files.
namespace First {
struct Depth {};
} // namespace First
namespace Second {
struct Depth {};
} // namespace Second

class VValueCreatorTest : public FrameworkTest {};

} // namespace

TEST_F(VValueCreatorTest, createsValuesOfItsTypeByName)
{
    const auto creator = Loam::makeStrong<Creator<double>>();
    EXPECT_EQ(creator->valueType(), typeid(double));
    EXPECT_TRUE(VValueCreator::registerCreator(creator, "a number"));
    EXPECT_EQ(VValueCreator::find("a number"), creator);
    EXPECT_THAT(VValueCreator::names(), Contains("a number"));

    bool ok = false;
    EXPECT_EQ(contentOf(VValueCreator::createValue("a number", "4.5", ok)), 4.5);
    EXPECT_TRUE(ok);
}

TEST_F(VValueCreatorTest, returnsTheValueEvenIfTheTextIsRefused)
{
    const auto creator = Loam::makeStrong<Creator<double>>();
    VValueCreator::registerCreator(creator, "a number");
    bool ok = true;
    EXPECT_EQ(contentOf(VValueCreator::createValue("a number", "many", ok)), 0);
    EXPECT_FALSE(ok);
}

TEST_F(VValueCreatorTest, returnsNullForAnUnregisteredType)
{
    bool ok = true;
    EXPECT_FALSE(VValueCreator::createValue("nothing", "1", ok));
    EXPECT_FALSE(ok);
    EXPECT_FALSE(VValueCreator::find("nothing"));
    EXPECT_FALSE(VValueCreator::registerCreator(nullptr, "nothing"));
    const WeakPtrImpl<VValueCreator> destroyed = Loam::makeStrong<Creator<double>>();
    EXPECT_FALSE(VValueCreator::registerCreator(destroyed, "nothing"));
    EXPECT_THAT(VValueCreator::names(), Not(Contains("nothing")));
}

TEST_F(VValueCreatorTest, waitsForAnEarlierCreatorOfItsType)
{
    auto first = Loam::makeStrong<Creator<double>>();
    const auto second = Loam::makeStrong<Creator<double>>();
    EXPECT_TRUE(VValueCreator::registerCreator(first, "a number"));
    EXPECT_TRUE(VValueCreator::registerCreator(second, "a number"));
    EXPECT_EQ(VValueCreator::find("a number"), first);
    first.reset();
    EXPECT_EQ(VValueCreator::find("a number"), second);
}

TEST_F(VValueCreatorTest, isRefusedUnderTheNameOfAnotherType)
{
    const auto first = Loam::makeStrong<Creator<double>>();
    const auto second = Loam::makeStrong<Creator<std::string>>();
    EXPECT_TRUE(VValueCreator::registerCreator(first, "taken"));
    EXPECT_FALSE(VValueCreator::registerCreator(second, "taken"));
    EXPECT_EQ(VValueCreator::find("taken"), first);
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("\"taken\""), HasSubstr("taken by type double of "),
                                              HasSubstr("refused for type std::"))));
    EXPECT_TRUE(VValueCreator::registerCreator(second, "a free name"));
}

TEST_F(VValueCreatorTest, mayHaveSeveralNames)
{
    const auto creator = Loam::makeStrong<Creator<double>>();
    EXPECT_TRUE(VValueCreator::registerCreator(creator, "one name"));
    EXPECT_TRUE(VValueCreator::registerCreator(creator, "another name"));
    EXPECT_EQ(VValueCreator::find("one name"), creator);
    EXPECT_EQ(VValueCreator::find("another name"), creator);
    EXPECT_THAT(VValueCreator::names(), testing::IsSupersetOf({"another name", "one name"}));
    EXPECT_TRUE(std::ranges::is_sorted(VValueCreator::names()));
}

TEST_F(VValueCreatorTest, releasesTheNameOfALocalTypeForTheReloadedLibrary)
{
    struct Maker : VValueCreator {
        Maker() : VValueCreator{typeid(First::Depth)} {}
        StrongPtr<VValueBase> create(const std::string&, bool&) override { return nullptr; }
    };
    {
        const auto creator = Loam::makeStrong<Maker>();
        EXPECT_EQ(Loam::Typename(typeid(First::Depth)), "Depth");
    }
    EXPECT_EQ(Loam::Typename(typeid(Second::Depth)), "Depth");
}

TEST_F(VValueCreatorTest, listsEveryRegisteredCreatorOfAName)
{
    const auto first = Loam::makeStrong<Creator<double>>();
    const auto rival = Loam::makeStrong<Creator<std::string>>();
    VValueCreator::registerCreator(first, "shared");
    VValueCreator::registerCreator(rival, "shared");
    EXPECT_THAT(VValueCreator::creators(),
                testing::IsSupersetOf({StrongPtr<VValueCreator>(first), StrongPtr<VValueCreator>(rival)}));
    EXPECT_EQ(VValueCreator::libraries("shared").size(), 2u);
    EXPECT_THAT(VValueCreator::libraries("none"), testing::IsEmpty());
    EXPECT_EQ(warnings().size(), 1u);
}

} // namespace VValueCreatorTest
