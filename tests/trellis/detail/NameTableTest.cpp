#include <trellis/detail/NameTable.hpp>

#include <gmock/gmock.h>

namespace NameTableTest {

using Orla::Detail::NameTable;
using testing::IsNull;
using testing::Pointee;
using testing::UnorderedElementsAre;

TEST(NameTable, findsNothingWhileItIsEmpty)
{
    EXPECT_THAT(NameTable<int>().find("any"), IsNull());
}

TEST(NameTable, findsEachOfManyNamesThatDifferInOneCharacter)
{
    NameTable<int> table;
    for (int i = 0; i < 10'000; ++i)
        table["StrongPtr<Chunk<" + std::to_string(i) + ">>"] = i;
    for (int i = 0; i < 10'000; ++i)
        ASSERT_THAT(table.find("StrongPtr<Chunk<" + std::to_string(i) + ">>"), Pointee(i));
    EXPECT_THAT(table.find("StrongPtr<Chunk<10000>>"), IsNull());
}

TEST(NameTable, distinguishesNamesOfEveryLength)
{
    NameTable<std::size_t> table;
    const std::string name(100, '\0'); // the characters add nothing to a hash
    for (std::size_t length = 0; length <= name.size(); ++length)
        table[std::string_view(name).substr(0, length)] = length;
    for (std::size_t length = 0; length <= name.size(); ++length)
        EXPECT_THAT(table.find(std::string_view(name).substr(0, length)), Pointee(length));
}

TEST(NameTable, keepsReferencesValidWhileItGrows)
{
    NameTable<int> table;
    int& first = table["first"];
    for (int i = 0; i < 1000; ++i)
        table[std::to_string(i)] = i;
    first = 5;
    EXPECT_THAT(table.find("first"), Pointee(5));
}

TEST(NameTable, visitsEachNameOnce)
{
    NameTable<int> table;
    for (const char* const name : {"a", "b", "a", "c"})
        ++table[name];
    std::vector<std::pair<std::string, int>> visited;
    table.forEach([&](const std::string& name, int value) { visited.emplace_back(name, value); });
    EXPECT_THAT(visited, UnorderedElementsAre(std::pair("a", 2), std::pair("b", 1), std::pair("c", 1)));
}

} // namespace NameTableTest
