#include <loam/Typename.hpp>

#include <loam/StrongPtr.hpp>
#include <loam/TypeInfo.hpp>
#include <loam/WeakPtr.hpp>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <deque>
#include <fstream>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <queue>
#include <set>
#include <stack>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

using namespace Loam;

namespace Orla {

struct VTime {
    struct Unit {};
    template<class T>
    struct Of {};

    auto operator<(int) const
    {
        struct InLess {};
        return InLess{};
    }
    template<class T>
    auto operator<<(T) const
    {
        struct InShift {};
        return InShift{};
    }
    auto operator()(int) const&
    {
        struct InCall {};
        return InCall{};
    }
    auto operator[](int)
    {
        struct InIndex {};
        return InIndex{};
    }
};

struct VDate {};
struct VObject;
enum class Direction { Left, Right };

namespace {

struct Hidden {};

} // namespace

inline namespace v2 {

struct [[gnu::abi_tag("new")]] Tagged {};

} // namespace v2

template<class T, class Allocator = std::allocator<T>>
struct Grid {};
template<class... T>
struct Pack {};
template<int number, char letter, Direction direction, bool truth, unsigned long long large>
struct Values {};
template<auto function>
struct Caller {};
template<template<class...> class Template>
struct OfTemplate {};

inline auto local()
{
    struct Local {};
    return Local{};
}

template<class T>
auto localOfTemplate(T, std::vector<T>)
{
    struct LocalOfTemplate {};
    return LocalOfTemplate{};
}

inline auto lambda()
{
    return [](VDate) {
        struct InLambda {};
        return InLambda{};
    };
}

} // namespace Orla

namespace {

struct Unnamed {};
template<class T>
struct UnnamedOf {};

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
    using std::string;
    using Orla::VDate;
    using Orla::VTime;
    using Time = VTime;

    const struct {
        const std::type_info& type;
        const char* name;
    } cases[] = {
        {typeid(bool), "bool"},
        {typeid(unsigned long long), "unsigned long long"},
        {typeid(double), "double"},
        {typeid(Time), "VTime"},
        {typeid(VTime::Unit), "Unit"},
        {typeid(VTime::Of<VDate>), "Of<VDate>"},
        {typeid(Orla::Hidden), "Hidden"},
        {typeid(Orla::Tagged), "Tagged"},
        {typeid(Unnamed), "Unnamed"},
        {typeid(UnnamedOf<Unnamed>), "UnnamedOf<Unnamed>"},
        {typeid(Orla::local()), "Local"},
        {typeid(Orla::localOfTemplate(VTime{}, {})), "LocalOfTemplate"},
        {typeid(VTime{} < 1), "InLess"},
        {typeid(VTime{} << VTime{}), "InShift"},
        {typeid(VTime{}(1)), "InCall"},
        {typeid(VTime{}[1]), "InIndex"},

        {typeid(VTime*), "VTime*"},
        {typeid(const VTime*), "VTime const*"},
        {typeid(VTime* const*), "VTime* const*"},
        {typeid(Orla::VObject*), "VObject*"},
        {typeid(VTime[3]), "VTime[3]"},
        {typeid(VTime(*)[3][4]), "VTime(*)[3][4]"},
        {typeid(void (*)(VTime, const VDate&)), "void(*)(VTime,VDate const&)"},
        {typeid(VTime(int)), "VTime(int)"},
        {typeid(VTime(VDate::*)(int) const), "VTime(VDate::*)(int) const"},
        {typeid(VTime VDate::*), "VTime VDate::*"},
        {typeid(VTime::Unit VTime::*), "Unit VTime::*"},
        {typeid(std::function<VTime&(VDate&&)>), "function<VTime&(VDate&&)>"},
        {typeid(std::function<void()>), "function<void()>"},

        {typeid(string), "string"},
        {typeid(std::wstring), "wstring"},
        {typeid(std::u8string), "u8string"},
        {typeid(std::u16string), "u16string"},
        {typeid(std::u32string), "u32string"},
        {typeid(std::string_view), "string_view"},
        {typeid(std::ostream), "ostream"},
        {typeid(std::ofstream), "ofstream"},
        {typeid(std::wofstream), "wofstream"},
        {typeid(std::basic_ofstream<char16_t>), "basic_ofstream<char16_t>"},
        {typeid(std::vector<VTime>), "vector<VTime>"},
        {typeid(std::vector<std::vector<string>>), "vector<vector<string>>"},
        {typeid(std::vector<const VTime*>), "vector<VTime const*>"},
        {typeid(std::deque<int>), "deque<int>"},
        {typeid(std::list<string>), "list<string>"},
        {typeid(std::set<VTime*>), "set<VTime*>"},
        {typeid(std::set<int, std::greater<int>>), "set<int,greater<int>>"},
        {typeid(std::set<int, std::less<>>), "set<int,less<void>>"},
        {typeid(std::multiset<std::vector<int>>), "multiset<vector<int>>"},
        {typeid(std::map<string, int>), "map<string,int>"},
        {typeid(std::map<const char*, std::vector<VTime>>), "map<char const*,vector<VTime>>"},
        {typeid(std::map<void (*)(int), int>), "map<void(*)(int),int>"},
        {typeid(std::unordered_map<string, VTime>), "unordered_map<string,VTime>"},
        {typeid(std::unordered_set<int>), "unordered_set<int>"},
        {typeid(std::stack<VTime>), "stack<VTime>"},
        {typeid(std::queue<VTime>), "queue<VTime>"},
        {typeid(std::queue<int, std::list<int>>), "queue<int,list<int>>"},
        {typeid(std::priority_queue<int>), "priority_queue<int>"},
        {typeid(std::unique_ptr<VTime>), "unique_ptr<VTime>"},
        {typeid(std::unique_ptr<int[]>), "unique_ptr<int[]>"},
        {typeid(std::shared_ptr<const VTime>), "shared_ptr<VTime const>"},
        {typeid(std::pair<int, std::less<int>>), "pair<int,less<int>>"},
        {typeid(std::tuple<>), "tuple<>"},
        {typeid(std::tuple<int, std::vector<int>>), "tuple<int,vector<int>>"},
        {typeid(std::tuple<int, std::less<int>>), "tuple<int,less<int>>"},
        {typeid(std::variant<int, std::less<int>>), "variant<int,less<int>>"},
        {typeid(std::allocator<int>), "allocator<int>"},
        {typeid(std::array<int, 3>), "array<int,3>"},
        {typeid(std::chrono::steady_clock), "steady_clock"},
        {typeid(std::chrono::duration<long, std::ratio<1, 7>>), "duration<long,ratio<1,7>>"},

        {typeid(Orla::Grid<VTime>), "Grid<VTime>"},
        {typeid(Orla::Pack<>), "Pack<>"},
        {typeid(Orla::Pack<int, std::vector<int>>), "Pack<int,vector<int>>"},
        {typeid(Orla::Values<-3, 'x', Orla::Direction::Right, true, 7>), "Values<-3,(char)120,(Direction)1,true,7>"},
        {typeid(Orla::Caller<&Orla::lambda>), "Caller<&lambda>"},
        {typeid(Orla::OfTemplate<std::vector>), "OfTemplate<vector>"},
        {typeid(StrongPtr<VTime>), "StrongPtr<VTime>"},
        {typeid(std::vector<StrongPtr<VDate>>), "vector<StrongPtr<VDate>>"},
        {typeid(WeakPtr<VTime>), "WeakPtr<VTime>"},
    };
    for (const auto& [type, name] : cases) {
        SCOPED_TRACE(type.name());
        EXPECT_EQ(Typename(type), name);
        EXPECT_EQ(Typename(type), name) << "on the second query";
    }
}

TEST(Typename, isPlainForLambdasAndTypesInsideThem)
{
    const auto lambda = Orla::lambda();
    EXPECT_EQ(Typename(typeid(lambda(Orla::VDate{}))), "InLambda");
    EXPECT_EQ(nameOf("ZNK4Mila4BoatclIiEEvT_E5Cargo"), "Cargo") << "as in generic lambdas";
    EXPECT_EQ(Typename(typeid(lambda)).find("Orla"), std::string::npos) << Typename(typeid(lambda));
}

TEST(Typename, isOnlyAsQualifiedAsNecessary)
{
    EXPECT_EQ(nameOf("N4Mila4ClipE"), "Clip");
    EXPECT_EQ(nameOf("N4Mona4ClipE"), "Mona::Clip");
    EXPECT_EQ(nameOf("N4Mila4Mona4ClipE"), "Mila::Mona::Clip");
    EXPECT_EQ(nameOf("4Clip"), "Clip #2");
    EXPECT_EQ(nameOf("N4Mila4ClipE"), "Clip");
    EXPECT_EQ(nameOf("4Clip"), "Clip #2");

    // The same applies to templates and their arguments.
    EXPECT_EQ(nameOf("St6vectorIN4Mila4ClipESaIS1_EE"), "vector<Clip>");
    EXPECT_EQ(nameOf("St6vectorIN4Mona4ClipESaIS1_EE"), "vector<Mona::Clip>");
    EXPECT_EQ(nameOf("N4Mila6vectorIN4Mona4ClipEEE"), "Mila::vector<Mona::Clip>");
}

TEST(Typename, containsStdOnlyIfNothingElseHelps)
{
    EXPECT_EQ(nameOf("N4Mila12forward_listIiEE"), "forward_list<int>");
    EXPECT_EQ(nameOf("St12forward_listIiSaIiEE"), "std::forward_list<int>");
    EXPECT_EQ(nameOf("N4Mila10wstringbufE"), "wstringbuf");
    EXPECT_EQ(nameOf("NSt7__cxx1115basic_stringbufIwSt11char_traitsIwESaIwEEE"), "std::wstringbuf");
}

TEST(Typename, keepsArgumentsThatOnlyResembleDefaults)
{
    EXPECT_EQ(nameOf("St3setIiSt4lessIPiESaIiEE"), "set<int,less<int*>>");
    EXPECT_EQ(nameOf("St10unique_ptrIiSt14default_deleteIA_iEE"), "unique_ptr<int,default_delete<int[]>>");
}

TEST(Typename, supportsNonAsciiNames)
{
    EXPECT_EQ(nameOf("N3\xc3\xa9t5PlageE"), "Plage");
    EXPECT_EQ(nameOf("5\xc3\xa9t\xc3\xa9"), "\xc3\xa9t\xc3\xa9");
}

TEST(Typename, namesTheFunctionOfALocalTypeIfNecessary)
{
    EXPECT_EQ(nameOf("ZN4Mila1fEiE4Item"), "Item");
    EXPECT_EQ(nameOf("ZN4Mila1gEiE4Item"), "g(int)::Item");
    EXPECT_EQ(nameOf("ZN4Mona1gEiE4Item"), "Mona::g(int)::Item");
    EXPECT_EQ(nameOf("ZN4Mila1gEiE4Item_0"), "Mila::g(int)::Item");
    EXPECT_EQ(nameOf("ZN4Mila1gEiE4Item_1"), "Mila::g(int)::Item #2");
    EXPECT_EQ(nameOf("ZNK4Mila1kIiEEvT_E4Item"), "k<int>(int) const::Item");
    EXPECT_EQ(nameOf("ZN4Mila4BoatD1EvE4Item"), "~Boat()::Item");
    EXPECT_EQ(nameOf("ZNK4Mila4BoatclEiE4Item"), "operator()(int) const::Item");
}

TEST(Typename, numbersIndistinguishableNamesakes)
{
    // As in several source files.
    const std::string first = "N4Mila12_GLOBAL__N_16DetailE";
    const std::string second = first;
    const std::string third = first;
    EXPECT_EQ(nameOf(first.c_str()), "Detail");
    EXPECT_EQ(nameOf(second.c_str()), "Mila::Detail");
    EXPECT_EQ(nameOf(third.c_str()), "Mila::Detail #2");
    EXPECT_EQ(nameOf(second.c_str()), "Mila::Detail");
}

TEST(Typename, isPlainAtAnyDepthOfNestedTemplates)
{
    std::string mangled = "N4Mona3TagE";
    std::string name = "Tag";
    for (int depth = 0; depth != 50; ++depth) {
        mangled = "N4Mila3BoxI" + mangled + "EE";
        name = "Box<" + name + ">";
    }
    EXPECT_EQ(nameOf(mangled.c_str()), name);
}

TEST(Typename, isTheMangledNameIfItCannotBeDemangled)
{
    for (const char* text : {"?", "garbage", "N", "::", "<", ">", "a<b", "(", "f(", "{", "4Odd"})
        EXPECT_EQ(nameOf(text), text);
}

TEST(Typename, isTheDemangledNameIfItsFormIsUnknown)
{
    const struct {
        const char* mangled;
        const char* name;
    } cases[] = {
        {"3a,b", "a,b"},
        {"3a)b", "a)b"},
        {"3a<b", "a<b #2"}, // the name is already taken
        {"3a>b", "a>b"},
        {"2{{", "{{"},
        {"2::", ":: #2"},
        {"4f(::", "f(::"},
        {"8operator", "operator"},
        {"9operator<", "operator<"},
        {"10operator()", "operator()"},
    };
    ASSERT_EQ(nameOf("a<b"), "a<b");
    ASSERT_EQ(nameOf("::"), "::");
    for (const auto& [mangled, name] : cases)
        EXPECT_EQ(nameOf(mangled), name);
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
