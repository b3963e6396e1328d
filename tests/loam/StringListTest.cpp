#include <loam/StringList.hpp>

#include <gtest/gtest.h>

namespace StringListTest {

using namespace Loam;

namespace {

std::vector<std::string> contentOf(const StringList& list)
{
    return {list.begin(), list.end()};
}

using Strings = std::vector<std::string>;

} // namespace

static_assert(std::is_same_v<StrongPtr<StringList>, StrongPtr<StringList, StringList>>);
static_assert(std::is_same_v<StringList::value_type, std::string>);
static_assert(StringList::npos == ~std::size_t{0});

TEST(StringList, splitsATextIntoPieces)
{
    const struct {
        const char* text;
        Strings pieces;
    } cases[] = {
        {"", {}},
        {"a", {"a"}},
        {"a,b,c", {"a", "b", "c"}},
        {"a,,b", {"a", "", "b"}},
        {",a", {"", "a"}},
        {"a,", {"a"}},
        {",", {""}},
        {",,", {"", ""}},
        {" a , b ", {" a ", " b "}},
        {"\"a,b\"", {"\"a", "b\""}},
    };
    for (const auto& [text, pieces] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(contentOf(StringList(text, ',')), pieces);
    }
    EXPECT_EQ(contentOf(StringList("a,b;c", ';')), (Strings{"a,b", "c"}));
}

TEST(StringList, keepsOrderAndDuplicates)
{
    StringList list;
    EXPECT_TRUE(list.empty());
    for (const char* string : {"b", "a", "b"})
        list.append(string);
    EXPECT_EQ(list.size(), 3u);
    EXPECT_FALSE(list.empty());
    EXPECT_EQ(contentOf(list), (Strings{"b", "a", "b"}));
    EXPECT_EQ(list[1], "a");
    for (int i = 0; i < 10; ++i)
        list.append(list[1]);
    EXPECT_EQ(list[12], "a") << "a list may append one of its own strings";
}

TEST(StringList, findsTheFirstEqualString)
{
    const StringList list("one,two,two,,Three", ',');
    const struct {
        std::string string;
        std::size_t place;
    } cases[] = {
        {"one", 0},
        {"two", 1},
        {"", 3},
        {"Three", 4},
        {"three", StringList::npos},
        {"tw", StringList::npos},
        {std::string("two\0", 4), StringList::npos},
    };
    for (const auto& [string, place] : cases) {
        SCOPED_TRACE(string);
        EXPECT_EQ(list.find(string), place);
        EXPECT_EQ(list.contains(string), place != StringList::npos);
    }
    EXPECT_FALSE(StringList().contains(""));
    EXPECT_EQ(list.find(std::string_view("one and more").substr(0, 3)), 0u) << "a substring needs no copy";
}

TEST(StringList, removesEveryOccurrence)
{
    StringList list("a,b,a,c,a", ',');
    EXPECT_EQ(list.remove("x"), 0u);
    EXPECT_EQ(list.remove("a"), 3u);
    EXPECT_EQ(contentOf(list), (Strings{"b", "c"}));
}

TEST(StringList, removesAStringGivenByOneOfItsElements)
{
    StringList list("a long string with a separate allocation,b,a long string with a separate allocation", ',');
    EXPECT_EQ(list.remove(list[0]), 2u);
    EXPECT_EQ(contentOf(list), Strings{"b"});
}

TEST(StringList, equalsAListOfTheSameStringsInTheSameOrder)
{
    EXPECT_EQ(StringList("a,b", ','), StringList("a;b", ';'));
    EXPECT_NE(StringList("a,b", ','), StringList("b,a", ','));
    EXPECT_NE(StringList("a", ','), StringList("a,a", ','));
    EXPECT_EQ(StringList(), StringList("", ','));
}

TEST(StringList, copiesItsStringsButNotItsOwners)
{
    const auto list = makeStrong<StringList>("a,b", ',');
    const auto copy = makeStrong<StringList>(*list);
    EXPECT_NE(copy, list);
    copy->append("c");
    EXPECT_EQ(list->size(), 2u);

    StringList assigned("former,strings", ',');
    assigned = *copy;
    EXPECT_EQ(assigned, *copy);
    assigned.clear();
    EXPECT_TRUE(assigned.empty());
    EXPECT_EQ(copy->size(), 3u);
}

TEST(StringList, takesTheStringsInBraces)
{
    EXPECT_EQ(contentOf(StringList{"b", "a", "b"}), (Strings{"b", "a", "b"}));
    EXPECT_EQ(contentOf({"a,b", ""}), (Strings{"a,b", ""})) << "strings are not split";
    EXPECT_EQ(contentOf(StringList{"a,b", ','}), (Strings{"a", "b"})) << "a text and its separator";
    EXPECT_TRUE(StringList{}.empty());
}

} // namespace StringListTest
