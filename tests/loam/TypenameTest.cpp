#include <loam/Typename.hpp>

#include <loam/StrongPtr.hpp>
#include <loam/TypeInfo.hpp>
#include <loam/WeakPtr.hpp>

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace TypenameTest {

using namespace Loam;

} // namespace TypenameTest

namespace Orla {

struct VTime {
    struct Unit {};
    template<class T>
    struct Of {};
};

struct VDate {};
struct Level3ultra {};
template<class T, unsigned long size, int offset>
struct Grid {};

namespace {

struct Hidden {};

} // namespace

} // namespace Orla

namespace TypenameTest {

namespace {

struct Unnamed {};

// A type of another library, with the given mangled name.
class ForeignType : public std::type_info {
public:
    explicit ForeignType(const char* name) : std::type_info(name) {}
};

std::string nameOf(const char* mangled)
{
    return Typename(ForeignType(mangled));
}

} // namespace

TEST(Typename, isThePlainNameIfNoNameWasSet)
{
    using Orla::VDate;
    using Orla::VTime;
    struct Local {};

    const struct {
        const std::type_info& type;
        const char* name;
    } cases[] = {
        {typeid(double), "double"},
        {typeid(unsigned long long), "unsigned long long"},
        {typeid(std::string), "string"},
        {typeid(VTime), "VTime"},
        {typeid(VTime::Unit), "Unit"},
        {typeid(VTime::Of<VDate>), "Of<VDate>"},
        {typeid(VTime::Of<VTime::Of<std::string>>), "Of<Of<string>>"},
        {typeid(VTime::Of<unsigned long long>), "Of<unsigned long long>"},
        {typeid(Orla::Grid<VTime, 10, -3>), "Grid<VTime,10,-3>"},
        {typeid(Orla::Grid<VTime::Unit, 0, 64>), "Grid<Unit,0,64>"},
        {typeid(Orla::Level3ultra), "Level3ultra"},
        {typeid(Orla::Hidden), "Hidden"},
        {typeid(Unnamed), "Unnamed"},
        {typeid(Local), "Local"},
        {typeid(StrongPtr<VTime>), "StrongPtr<VTime>"},
        {typeid(WeakPtr<VTime>), "WeakPtr<VTime>"},
        {typeid(VTime::Of<StrongPtr<VDate>>), "Of<StrongPtr<VDate>>"},
    };
    for (const auto& [type, name] : cases) {
        SCOPED_TRACE(type.name());
        EXPECT_EQ(Typename(type), name);
        EXPECT_EQ(Typename(type), name) << "on the second query";
    }
}

TEST(Typename, isQualifiedOnlyIfThePlainNameIsTaken)
{
    EXPECT_EQ(nameOf("N4Mila4ClipE"), "Clip");
    EXPECT_EQ(nameOf("N4Mona4ClipE"), "Mona::Clip");
    EXPECT_EQ(nameOf("N4Mila4Mona4ClipE"), "Mila::Mona::Clip");
    EXPECT_EQ(nameOf("4Clip"), "Clip #2");
    EXPECT_EQ(nameOf("N4Mila4ClipE"), "Clip");
    EXPECT_EQ(nameOf("4Clip"), "Clip #2");
}

TEST(Typename, numbersIndistinguishableNamesakes)
{
    // As in several source files.
    const std::string first = "N4Mila12_GLOBAL__N_16DetailE";
    const std::string second = first;
    const std::string third = first;
    EXPECT_EQ(nameOf(first.c_str()), "Detail");
    EXPECT_EQ(nameOf(second.c_str()), "Mila::(anonymous namespace)::Detail");
    EXPECT_EQ(nameOf(third.c_str()), "Mila::(anonymous namespace)::Detail #2");
    EXPECT_EQ(nameOf(second.c_str()), "Mila::(anonymous namespace)::Detail");
}

TEST(Typename, isNeverEmptyWhateverTheNameOfTheType)
{
    for (const char* text : {"?", "garbage", "N", "a<b", ">", ")", "(", "f(", "{", "4Odd"})
        EXPECT_EQ(nameOf(text), text);
    EXPECT_EQ(nameOf("::"), "::");
    EXPECT_EQ(nameOf("2::"), ":: #2");
    EXPECT_EQ(nameOf("5a::b>"), "b>");
    EXPECT_EQ(nameOf("a>::c"), "c");
}

TEST(SetTypename, acceptsNamesOfAnyCharacters)
{
    struct Arrangement {};
    EXPECT_EQ(Typename(typeid(Arrangement)), "Arrangement");
    EXPECT_TRUE(setTypename(typeid(Arrangement), "Bounding Box []"));
    EXPECT_EQ(Typename(typeid(Arrangement)), "Bounding Box []");
    EXPECT_TRUE(setTypename(typeid(Arrangement), "Bounding Box []")) << "the same name again";
    EXPECT_EQ(Typename(typeid(Arrangement)), "Bounding Box []");
}

TEST(SetTypename, refusesEmptyNamesAndNamesSetForAnotherType)
{
    struct Owner {};
    struct Rival {};
    ASSERT_TRUE(setTypename(typeid(Owner), "owned"));
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(setTypename(typeid(Rival), "owned"));
    EXPECT_FALSE(setTypename(typeid(Rival), ""));
    EXPECT_FALSE(setTypename(typeid(Owner), ""));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(Typename(typeid(Owner)), "owned");
    EXPECT_EQ(Typename(typeid(Rival)), "Rival");

    ASSERT_TRUE(setTypename(typeid(Rival), "rival"));
    EXPECT_FALSE(setTypename(typeid(Rival), "owned"));
    EXPECT_EQ(Typename(typeid(Rival)), "rival") << "a refusal leaves the name unchanged";
}

TEST(SetTypename, releasesTheFormerName)
{
    struct Mover {};
    struct Follower {};
    ASSERT_TRUE(setTypename(typeid(Mover), "first place"));
    ASSERT_TRUE(setTypename(typeid(Mover), "second place"));
    EXPECT_EQ(Typename(typeid(Mover)), "second place");
    EXPECT_TRUE(setTypename(typeid(Follower), "first place"));
    EXPECT_FALSE(setTypename(typeid(Follower), "second place"));
    EXPECT_EQ(Typename(typeid(Follower)), "first place");
}

TEST(SetTypename, takesOverANameThatWasOnlyDerived)
{
    struct Named {};
    EXPECT_EQ(nameOf("N4Mila5StyleE"), "Style");
    EXPECT_EQ(nameOf("N4Mona5StyleE"), "Mona::Style");
    EXPECT_TRUE(setTypename(typeid(Named), "Style"));
    EXPECT_EQ(Typename(typeid(Named)), "Style");
    EXPECT_EQ(nameOf("N4Mila5StyleE"), "Mila::Style") << "the other type gets another name";
    EXPECT_EQ(nameOf("N4Mona5StyleE"), "Mona::Style");
    EXPECT_EQ(nameOf("N4Mila5StyleE"), "Mila::Style");

    // A released name is not restored automatically.
    ASSERT_TRUE(setTypename(typeid(Named), "named"));
    EXPECT_EQ(nameOf("N4Mila5StyleE"), "Mila::Style");
}

TEST(SetTypename, reservesADerivedName)
{
    struct Settled {};
    struct Claimant {};
    EXPECT_EQ(Typename(typeid(Settled)), "Settled");
    EXPECT_TRUE(setTypename(typeid(Settled), "Settled"));
    EXPECT_FALSE(setTypename(typeid(Claimant), "Settled"));
    EXPECT_EQ(Typename(typeid(Settled)), "Settled");
}

TEST(SetTypename, reservesTheNameAgainstLaterTypes)
{
    struct Early {};
    ASSERT_TRUE(setTypename(typeid(Early), "Latecomer"));
    EXPECT_EQ(nameOf("N4Mila9LatecomerE"), "Mila::Latecomer");
}

TEST(SetTypename, appliesToTheTypeInEveryLibrary)
{
    const std::string mangled = "N4Mila6SharedE";
    const std::string copy = mangled;
    ASSERT_TRUE(setTypename(ForeignType(mangled.c_str()), "shared by all"));
    EXPECT_EQ(nameOf(copy.c_str()), "shared by all");
    EXPECT_TRUE(setTypename(ForeignType(copy.c_str()), "shared by all"));
}

TEST(SetTypename, refersToNothingInAnUnloadedLibrary)
{
    std::string mangled = "N4Mila9EphemeralE";
    std::string name = "a name in the library";
    ASSERT_TRUE(setTypename(ForeignType(mangled.c_str()), name));
    mangled.assign(mangled.size(), '#');
    name.assign(name.size(), '#');
    EXPECT_EQ(nameOf("N4Mila9EphemeralE"), "a name in the library");
    EXPECT_TRUE(unsetTypename(ForeignType("N4Mila9EphemeralE")));
    EXPECT_EQ(nameOf("N4Mila9EphemeralE"), "Ephemeral");
}

TEST(UnsetTypename, removesTheNameThatWasSet)
{
    struct Guest {};
    struct Successor {};
    EXPECT_FALSE(unsetTypename(typeid(Guest))) << "it has no name yet";
    EXPECT_EQ(Typename(typeid(Guest)), "Guest");
    EXPECT_FALSE(unsetTypename(typeid(Guest))) << "the name was not set";
    EXPECT_EQ(Typename(typeid(Guest)), "Guest");

    ASSERT_TRUE(setTypename(typeid(Guest), "the guest"));
    EXPECT_TRUE(unsetTypename(typeid(Guest)));
    EXPECT_FALSE(unsetTypename(typeid(Guest)));
    EXPECT_EQ(Typename(typeid(Guest)), "Guest");
    EXPECT_TRUE(setTypename(typeid(Successor), "the guest")) << "the name is free";
    EXPECT_EQ(Typename(typeid(Successor)), "the guest");
}

TEST(UnsetTypename, releasesTheNameToATypeOfThatPlainName)
{
    struct Former {};
    ASSERT_TRUE(setTypename(typeid(Former), "Vacancy"));
    ASSERT_TRUE(unsetTypename(typeid(Former)));
    EXPECT_EQ(nameOf("N4Mila7VacancyE"), "Vacancy");
}

TEST(ReleaseTypename, leavesTheNameToTheTypeOfTheReloadedLibrary)
{
    const std::string before = "N12_GLOBAL__N_18ReloadedE";
    const std::string after = before;
    EXPECT_EQ(nameOf(before.c_str()), "Reloaded");
    releaseTypename(ForeignType(before.c_str()));
    EXPECT_EQ(nameOf(after.c_str()), "Reloaded");
    releaseTypename(ForeignType(before.c_str())); // has no name
    EXPECT_EQ(nameOf(after.c_str()), "Reloaded");
}

TEST(ReleaseTypename, keepsANameThatWasSet)
{
    const std::string local = "N12_GLOBAL__N_15NamedE";
    ASSERT_TRUE(setTypename(ForeignType(local.c_str()), "named by hand"));
    releaseTypename(ForeignType(local.c_str()));
    EXPECT_EQ(nameOf(local.c_str()), "named by hand");
}

TEST(ReleaseTypename, keepsTheNameOfATypeThatOtherLibrariesMayHave)
{
    EXPECT_EQ(nameOf("N4Mila6CommonE"), "Common");
    releaseTypename(ForeignType("N4Mila6CommonE"));
    EXPECT_EQ(nameOf("N5Other6CommonE"), "Other::Common");
    EXPECT_EQ(nameOf("N4Mila6CommonE"), "Common");
}

TEST(Typename, isUniqueWhenThreadsQueryConcurrently)
{
    constexpr int threadCount = 8;
    constexpr int typeCount = 200;
    const auto mangled = [](int scope, int type) {
        const std::string number = std::to_string(1000 + type);
        return "N3Ns" + std::to_string(scope) + "9Type" + number + "xE";
    };
    std::vector<std::map<std::string, std::string>> found(threadCount);
    std::vector<std::thread> threads;
    for (auto& names : found) {
        threads.emplace_back([&names, &mangled] {
            for (int type = 0; type != typeCount; ++type) {
                for (int scope = 0; scope != 3; ++scope) {
                    const std::string key = mangled(scope, type);
                    names[key] = nameOf(key.c_str());
                    const std::string set = "thread type " + std::to_string(type);
                    if (setTypename(ForeignType(key.c_str()), set))
                        unsetTypename(ForeignType(key.c_str()));
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::set<std::string> names;
    for (int type = 0; type != typeCount; ++type) {
        for (int scope = 0; scope != 3; ++scope)
            EXPECT_TRUE(names.insert(nameOf(mangled(scope, type).c_str())).second);
    }
    for (const auto& thread : found)
        EXPECT_EQ(thread.size(), std::size_t{3 * typeCount});
}

TEST(Typename, isQualifiedWithItsScopesOnRequest)
{
    EXPECT_EQ(qualifiedTypename(typeid(Orla::VTime::Unit)), "Orla::VTime::Unit");
    EXPECT_EQ(qualifiedTypename(typeid(Unnamed)), "TypenameTest::(anonymous namespace)::Unnamed");
    EXPECT_EQ(qualifiedTypename(ForeignType("not mangled")), "not mangled");
}

} // namespace TypenameTest
