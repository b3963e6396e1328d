#include <trellis/detail/IdTable.hpp>

#include <loam/StrongPtr.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace IdTableTest {

using namespace Orla;
using namespace Orla::Detail;

namespace {

using Content = std::unordered_map<std::uint64_t, std::string>;

template<class Value>
std::unordered_map<std::uint64_t, Value> contentOf(IdTable<Value>& table)
{
    std::unordered_map<std::uint64_t, Value> content;
    table.forEach([&content](std::uint64_t id, const Value& value) {
        EXPECT_TRUE(content.emplace(id, value).second) << id << " is contained twice";
    });
    return content;
}

} // namespace

TEST(IdTable, startsEmpty)
{
    IdTable<int> table;
    EXPECT_TRUE(table.empty());
    EXPECT_EQ(table.size(), 0u);
    EXPECT_EQ(table.find(1), nullptr);
    EXPECT_FALSE(table.erase(1));
    EXPECT_TRUE(table.release().empty());
}

TEST(IdTable, createsMissingEntries)
{
    IdTable<std::string> table;
    EXPECT_EQ(table[7], "");
    table[7] = "seven";
    table[8] += "eight";
    EXPECT_EQ(*table.find(7), "seven");
    EXPECT_EQ(table.size(), 2u);
    EXPECT_FALSE(table.empty());
    EXPECT_EQ(contentOf(table), (Content{{7, "seven"}, {8, "eight"}}));
}

TEST(IdTable, behavesLikeAMapUnderRandomOperations)
{
    std::mt19937_64 random(20'180'203);
    // Few numbers that collide often, consecutive numbers like those of the framework,
    // and numbers that differ only in the upper bits.
    const struct {
        std::uint64_t range;
        std::uint64_t factor;
    } cases[] = {{5, 1}, {40, 1}, {3000, 1}, {63, std::uint64_t{1} << 58}, {500, 0x9E3779B97F4A7C15u}};
    for (const auto& [range, factor] : cases) {
        SCOPED_TRACE(range);
        IdTable<std::string> table;
        Content expected;
        for (int step = 0; step < 8'000; ++step) {
            const std::uint64_t id = (random() % range + 1) * factor;
            switch (random() % 4) {
            case 0:
                table[id] = expected[id] = std::to_string(step);
                break;
            case 1:
                table[id];
                expected[id];
                break;
            case 2:
                ASSERT_EQ(table.erase(id), expected.erase(id) == 1);
                break;
            default:
                const std::string* found = table.find(id);
                ASSERT_EQ(found != nullptr, expected.contains(id));
                if (found) {
                    ASSERT_EQ(*found, expected[id]);
                }
            }
            ASSERT_EQ(table.size(), expected.size());
        }
        EXPECT_EQ(contentOf(table), expected);
        for (const auto& [id, value] : Content(expected)) {
            ASSERT_TRUE(table.erase(id));
            ASSERT_FALSE(table.erase(id));
            expected.erase(id);
            ASSERT_EQ(contentOf(table), expected);
        }
    }
}

TEST(IdTable, releasesItsValues)
{
    IdTable<std::unique_ptr<int>> table;
    for (int i = 1; i <= 100; ++i)
        table[static_cast<std::uint64_t>(i)] = std::make_unique<int>(i);
    int sum = 0;
    for (const std::unique_ptr<int>& value : table.release())
        sum += *value;
    EXPECT_EQ(sum, 5050);
    EXPECT_TRUE(table.empty());
    EXPECT_EQ(table.find(1), nullptr);
    table[1] = std::make_unique<int>(1);
    EXPECT_EQ(table.size(), 1u);
}

TEST(IdTable, isConsistentWhenTheDestructorOfAnErasedValueReadsIt)
{
    struct Looking : Loam::ReferenceBase<Looking> {
        Looking(const std::vector<std::uint64_t>& theIds, IdTable<Loam::StrongPtr<Looking>>& theTable, int& theCount)
            : ids{theIds}, table{theTable}, found{theCount}
        {
        }
        ~Looking() override
        {
            for (const std::uint64_t id : ids)
                found += table.find(id) != nullptr;
        }
        const std::vector<std::uint64_t>& ids;
        IdTable<Loam::StrongPtr<Looking>>& table;
        int& found;
    };
    // As full as the table gets, so entries occupy each other's places.
    std::mt19937_64 random(9);
    std::vector<std::uint64_t> ids(192);
    std::ranges::generate(ids, [&random] { return random() | 1; });
    int found = 0;
    IdTable<Loam::StrongPtr<Looking>> table;
    for (const std::uint64_t id : ids)
        table[id] = Loam::makeStrong<Looking>(ids, table, found);
    while (!ids.empty()) {
        found = 0;
        const std::uint64_t id = ids.front(); // the first of its neighbours
        ids.erase(ids.begin());
        table.erase(id);
        EXPECT_EQ(found, static_cast<int>(ids.size()));
        EXPECT_EQ(table.size(), ids.size());
    }
}

} // namespace IdTableTest
