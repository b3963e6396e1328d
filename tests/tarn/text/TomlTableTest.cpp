#include <tarn/text/TomlTable.hpp>

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace TomlTableTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

toml::table parse(const std::string& text)
{
    Faults faults{"file"};
    std::optional<toml::table> table = parseToml(text, faults);
    EXPECT_THAT(faults.lines(), IsEmpty());
    return table ? std::move(*table) : toml::table{}; // a copy would have no places
}

std::vector<std::string> faultsOf(const std::string& text)
{
    Faults faults{"file"};
    EXPECT_FALSE(parseToml(text, faults));
    return faults.lines();
}

} // namespace

TEST(TomlTable, hasItsEntriesInFileOrderWithTheirPlaces)
{
    const toml::table table = parse("b = 1\na = 'x'\n\n[c]\nd = 2\n");
    std::vector<std::string> keys;
    for (const auto& [key, value] : entriesOf(table))
        keys.push_back(key.text + ' ' + std::to_string(key.place.line) + ':' + std::to_string(key.place.column) + ' '
                       + std::to_string(placeOf(*value).column));
    EXPECT_THAT(keys, ElementsAre("b 1:1 5", "a 2:1 5", "c 4:2 1"));
}

TEST(TomlTable, namesTheTypeOfEachValue)
{
    const toml::table table = parse("a = {}\nb = []\nc = ''\nd = 1\ne = 1.5\nf = true\ng = 2020-01-02\n"
                                    "h = 10:20:30\ni = 2020-01-02T10:20:30Z\n");
    std::vector<std::string> kinds;
    for (const auto& [key, value] : entriesOf(table))
        kinds.emplace_back(kindOf(*value));
    EXPECT_THAT(kinds, ElementsAre("a table", "an array", "a text", "an integer", "a number", "a truth value", "a date",
                                   "a time of day", "a date with a time"));
}

TEST(TomlTable, countsHowDeepTablesAndArraysAreNested)
{
    EXPECT_EQ(nestingOf(*parse("x = 1").get("x")), 0u);
    EXPECT_EQ(nestingOf(*parse("x = []").get("x")), 1u);
    EXPECT_EQ(nestingOf(*parse("x = [1, { a = [2] }]").get("x")), 3u);
}

TEST(TomlTable, isMissingWithOneFaultIfTheTextIsNotToml)
{
    EXPECT_THAT(faultsOf("a = 1\nb = \xff\n"), ElementsAre("file:2:5: invalid UTF-8 from here on"));
    EXPECT_THAT(faultsOf("a = 1\nb =\n"), ElementsAre(StartsWith("file:2:")));
    std::string key = "a";
    for (int i = 0; i < 20; ++i)
        key += ".a";
    EXPECT_THAT(faultsOf(key + " = 1\n"), ElementsAre("file:1:1: a key of more than 16 parts"));
}

} // namespace TomlTableTest
