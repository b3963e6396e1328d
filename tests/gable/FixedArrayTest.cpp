#include <gable/FixedArray.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

namespace FixedArrayTest {

using namespace Gyre;

using Point = FixedArray<double, 3>;
using Pair = FixedArray<int, 2>;

static_assert(std::is_aggregate_v<Point> && std::is_trivially_copyable_v<Point> && std::is_standard_layout_v<Point>);
static_assert(sizeof(FixedArray<Point, 4>) == 12 * sizeof(double), "nested arrays are contiguous");
static_assert(std::is_same_v<Point::value_type, double>);
static_assert(Point::size() == 3);

static_assert(std::is_same_v<decltype(FixedArray{1, 2}), Pair>);
static_assert(std::is_same_v<decltype(FixedArray{1.5}), FixedArray<double, 1>>);

template<class... Elements>
concept CanBeDeduced = requires(Elements... elements) { FixedArray{elements...}; };
static_assert(CanBeDeduced<int, int>);
static_assert(!CanBeDeduced<int, double>, "mixed types have no element type");

static_assert(Pair{{1, 2}} == Pair{{1, 2}} && Pair{{1, 2}} != Pair{{1, 3}} && Pair{{1, 2}} != Pair{{0, 2}});
static_assert(Pair{{1, 9}} < Pair{{2, 0}} && Pair{{1, 9}} > Pair{{1, 8}} && Pair{{1, 9}} <= Pair{{1, 9}});
static_assert(!std::is_convertible_v<double, FixedArray<double, 1>>);

static_assert([] {
    Pair pair{{3, 4}};
    pair[1] = 7;
    return pair[0] + pair[1] == 10 && *pair.data() == 3 && pair.end() - pair.begin() == 2;
}());

TEST(FixedArray, fillsMissingElementsWithZeroes)
{
    const FixedArray<int, 4> array{{5, 6}};
    EXPECT_EQ(array, (FixedArray<int, 4>{{5, 6, 0, 0}}));
    EXPECT_EQ(Point{}, (Point{{0, 0, 0}}));
}

TEST(FixedArray, hasTheMemoryLayoutOfAPlainArray)
{
    FixedArray<Point, 2> array{{Point{{1, 2, 3}}, Point{{4, 5, 6}}}};
    const double* numbers = array[0].data();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(numbers), reinterpret_cast<std::uintptr_t>(&array));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(array[1].data()) - reinterpret_cast<std::uintptr_t>(numbers),
              3 * sizeof(double));
}

TEST(FixedArray, iteratesFromFirstToLast)
{
    Point point{{1, 2, 3}};
    for (double& number : point)
        number *= 2;
    std::string seen;
    for (const double number : std::as_const(point))
        seen += std::to_string(static_cast<int>(number)) + ' ';
    EXPECT_EQ(seen, "2 4 6 ");
    EXPECT_EQ(point.end(), point.begin() + 3);
    EXPECT_EQ(std::as_const(point).data(), point.data());
    EXPECT_TRUE(std::ranges::is_sorted(point));
}

TEST(FixedArray, writesTheIndexedElement)
{
    for (std::size_t index = 0; index < Point::size(); ++index) {
        Point point{};
        point[index] = 1;
        for (std::size_t other = 0; other < Point::size(); ++other)
            EXPECT_EQ(std::as_const(point)[other], other == index ? 1 : 0);
    }
}

TEST(FixedArray, usesTheComparisonOfItsElements)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Point odd{{1, nan, 3}};
    EXPECT_FALSE(odd == odd);
    EXPECT_FALSE(odd < odd || odd > odd);
    EXPECT_LT(odd, (Point{{2, 0, 0}})) << "the first difference decides";
    EXPECT_EQ((Point{{0.0, 0, 0}}), (Point{{-0.0, 0, 0}}));
    EXPECT_EQ((FixedArray<std::string, 2>{{"a", "b"}}), (FixedArray<std::string, 2>{{"a", "b"}}));
}

TEST(FixedArray, isCopiedElementByElement)
{
    FixedArray<std::string, 2> first{{"one", "two"}};
    FixedArray<std::string, 2> second = first;
    second[0] = "three";
    EXPECT_EQ(first[0], "one");
    first = second;
    EXPECT_EQ(first, second);
}

} // namespace FixedArrayTest
