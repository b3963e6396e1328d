#include <loam/Ageable.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <type_traits>
#include <vector>

namespace AgeableTest {

using namespace Loam;

static_assert(!std::is_convertible_v<Ageable::Age, Ageable>, "a number is not an age stamp");
static_assert(std::is_trivially_copyable_v<Ageable>);
static_assert(sizeof(Ageable) == sizeof(Ageable::Age));

TEST(Ageable, startsWithTheGlobalAge)
{
    const Ageable first;
    EXPECT_EQ(first.stamp(), Ageable::GlobalTime.load());
    const Ageable second;
    EXPECT_EQ(first, second) << "creating a value changes nothing";
}

TEST(Ageable, becomesTheYoungestWhenTouched)
{
    Ageable first;
    Ageable second;
    first.touch();
    EXPECT_TRUE(first.isYoungerThan(second));
    EXPECT_FALSE(second.isYoungerThan(first));
    EXPECT_EQ(first.stamp(), Ageable::GlobalTime.load());

    second.touch();
    EXPECT_TRUE(second.isYoungerThan(first));
    EXPECT_EQ(second.stamp(), first.stamp() + 1);

    const Ageable third;
    EXPECT_EQ(third, second);
}

TEST(Ageable, isNotYoungerThanItselfOrItsCopy)
{
    Ageable age;
    age.touch();
    const Ageable copy = age;
    EXPECT_FALSE(age.isYoungerThan(age));
    EXPECT_FALSE(age.isYoungerThan(copy));
    EXPECT_EQ(copy.stamp(), age.stamp());
}

TEST(Ageable, isOrderedFromOldToYoung)
{
    const Ageable old{3};
    const Ageable young{5};
    EXPECT_LT(old, young);
    EXPECT_GT(young, old);
    EXPECT_NE(old, young);
    EXPECT_TRUE(young.isYoungerThan(old));
    EXPECT_EQ(old.stamp(), 3u);
}

TEST(Ageable, givesEachAgeOnceWhenThreadsTouchConcurrently)
{
    constexpr std::size_t Touches = 5'000;
    std::vector<std::vector<Ageable::Age>> ages(4);
    std::vector<std::thread> threads;
    for (std::vector<Ageable::Age>& mine : ages) {
        threads.emplace_back([&mine] {
            Ageable age;
            for (std::size_t i = 0; i < Touches; ++i) {
                age.touch();
                mine.push_back(age.stamp());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::vector<Ageable::Age> all;
    for (const std::vector<Ageable::Age>& mine : ages) {
        EXPECT_TRUE(std::ranges::is_sorted(mine));
        all.insert(all.end(), mine.begin(), mine.end());
    }
    std::ranges::sort(all);
    EXPECT_EQ(std::ranges::adjacent_find(all), all.end());
    EXPECT_EQ(all.size(), ages.size() * Touches);
    EXPECT_EQ(all.back(), Ageable::GlobalTime.load());
}

} // namespace AgeableTest
