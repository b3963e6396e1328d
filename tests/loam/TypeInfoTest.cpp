#include <loam/TypeInfo.hpp>

#include <gtest/gtest.h>

#include <map>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace TypeInfoTest {

using namespace Loam;

static_assert(std::is_convertible_v<const std::type_info&, TypeInfo>, "a typeid converts to a TypeInfo");
static_assert(std::is_trivially_copyable_v<TypeInfo>);
static_assert(!std::is_default_constructible_v<TypeInfo>, "a TypeInfo always names a type");

} // namespace TypeInfoTest

namespace Orla {

struct VHour {
    virtual ~VHour() = default;
};
struct VDay : VHour {};

} // namespace Orla

namespace TypeInfoTest {

namespace {

struct Local {};

// A type of another library, with the given mangled name.
class ForeignType : public std::type_info {
public:
    explicit ForeignType(const char* name) : std::type_info(name) {}
};

} // namespace

TEST(TypeInfo, equalsTheTypeItWasMadeFrom)
{
    const TypeInfo time = typeid(Orla::VHour);
    EXPECT_EQ(time, TypeInfo(typeid(Orla::VHour)));
    EXPECT_EQ(time, typeid(const Orla::VHour&));
    EXPECT_NE(time, TypeInfo(typeid(Orla::VHour*)));
    EXPECT_EQ(&time.info(), &typeid(Orla::VHour));
    EXPECT_STREQ(time.name(), typeid(Orla::VHour).name());

    const Orla::VDay date;
    const Orla::VHour& base = date;
    EXPECT_EQ(TypeInfo(typeid(base)), TypeInfo(typeid(Orla::VDay)));

    TypeInfo changed = time;
    changed = typeid(int);
    EXPECT_EQ(changed, typeid(int));
}

TEST(TypeInfo, isOrderedLikeStdTypeInfo)
{
    const std::vector<TypeInfo> types{typeid(int),         typeid(double), typeid(Orla::VHour),
                                      typeid(std::string), typeid(Local),  typeid(Local*)};
    for (const TypeInfo& a : types) {
        for (const TypeInfo& b : types) {
            EXPECT_EQ(a < b, a.info().before(b.info()));
            EXPECT_EQ(a > b, b.info().before(a.info()));
            EXPECT_EQ(a <= b, !b.info().before(a.info()));
            EXPECT_EQ(a <=> b == 0, a == b);
        }
    }
}

TEST(TypeInfo, servesAsAKeyOfOrderedAndUnorderedMaps)
{
    std::map<TypeInfo, int> ordered{{typeid(int), 1}, {typeid(double), 2}};
    EXPECT_EQ(ordered.at(typeid(double)), 2);
    EXPECT_EQ(ordered.count(typeid(float)), 0u);

    std::unordered_map<TypeInfo, int> unordered{{typeid(int), 1}, {typeid(double), 2}};
    EXPECT_EQ(unordered.at(typeid(double)), 2);
    EXPECT_EQ(unordered.count(typeid(float)), 0u);
}

TEST(TypeInfo, equalsAndHashesLikeTheSameTypeOfAnotherLibrary)
{
    const std::string name = typeid(Orla::VHour).name();
    const ForeignType foreign(name.c_str());
    EXPECT_EQ(TypeInfo(foreign), TypeInfo(typeid(Orla::VHour)));
    EXPECT_EQ(std::hash<TypeInfo>()(foreign), std::hash<TypeInfo>()(typeid(Orla::VHour)));
    EXPECT_EQ(TypeInfo(foreign) <=> TypeInfo(typeid(Orla::VHour)), std::strong_ordering::equal);
}

TEST(TypeKey, isTheSameForATypeInEveryLibrary)
{
    EXPECT_EQ(typeKey(typeid(Orla::VHour)), typeid(Orla::VHour).name());
    EXPECT_NE(typeKey(typeid(Orla::VHour)), typeKey(typeid(Orla::VDay)));

    const std::string name = typeid(std::vector<Orla::VHour>).name();
    EXPECT_EQ(typeKey(ForeignType(name.c_str())), typeKey(typeid(std::vector<Orla::VHour>)));
}

TEST(TypeKey, distinguishesNamesakesInUnnamedNamespaces)
{
    EXPECT_EQ(typeKey(typeid(Local)), typeKey(typeid(Local)));
    EXPECT_NE(typeKey(typeid(Local)), typeKey(typeid(Local*)));

    const std::string name = typeid(Local).name();
    const std::string otherName = name;
    EXPECT_NE(typeKey(ForeignType(name.c_str())), typeKey(typeid(Local)));
    EXPECT_NE(typeKey(ForeignType(name.c_str())), typeKey(ForeignType(otherName.c_str())));

    const std::string list = typeid(std::vector<Local>).name();
    EXPECT_NE(typeKey(ForeignType(list.c_str())), typeKey(typeid(std::vector<Local>)));
}

TEST(TypeKey, distinguishesNamesakesMarkedAsLocalByTheCompiler)
{
    // The mark is an asterisk that is not part of the name.
    const std::string marked = "*ZL8functionvE5Local";
    const std::string otherMarked = marked;
    const ForeignType type(marked.c_str());
    const ForeignType other(otherMarked.c_str());
    ASSERT_STREQ(type.name(), other.name());
    ASSERT_NE(type, other);
    EXPECT_NE(typeKey(type), typeKey(other));
    EXPECT_EQ(typeKey(type), typeKey(type));
}

TEST(TypeKey, ownsItsText)
{
    std::string name = "N5Vivid5ColorE";
    const std::string key = typeKey(ForeignType(name.c_str()));
    name.assign(name.size(), '#');
    EXPECT_EQ(key, "N5Vivid5ColorE");
}

} // namespace TypeInfoTest
