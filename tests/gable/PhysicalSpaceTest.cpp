#include <gable/PhysicalSpace.hpp> // first: checks that the header is self-contained

#include <gtest/gtest.h>

#include <type_traits>

namespace PhysicalSpaceTest {

using namespace Gyre;

using point = PhysicalSpace::point;
using vector = PhysicalSpace::vector;
using bivector = PhysicalSpace::bivector;

static_assert(!std::is_same_v<point, bivector>);
static_assert(!std::is_convertible_v<point, vector> && !std::is_convertible_v<bivector, point>);
static_assert(std::is_base_of_v<FixedArray<double, 3>, point> && std::is_base_of_v<FixedArray<double, 3>, bivector>);
static_assert(sizeof(point) == 3 * sizeof(double) && std::is_trivially_copyable_v<point>);
static_assert(std::is_same_v<decltype(point{} - point{}), vector>);
static_assert(std::is_same_v<decltype(point{} + vector{}), point>);

template<class A, class B>
concept Addable = requires(A a, B b) { a + b; };
static_assert(!Addable<point, point>, "the sum of two points has no meaning");

static_assert(point(1, 2, 3) - point(0, 1, 5) == vector(1, 1, -2));
static_assert(point(1, 2, 3) + vector(1, 1, 1) == point(2, 3, 4));
static_assert(point(1, 2, 3) - vector(1, 1, 1) == point(0, 1, 2));
static_assert(2 * vector(1, 2, 3) == vector(2, 4, 6) && vector(2, 4, 6) / 2 == vector(1, 2, 3));
static_assert(dot(vector(1, 2, 3), vector(4, 5, 6)) == 32);
static_assert(cross(vector(1, 0, 0), vector(0, 1, 0)) == vector(0, 0, 1), "right-handed");
static_assert(wedge(vector(1, 0, 0), vector(0, 1, 0)) == bivector(0, 0, 1));
static_assert(bivector(1, 2, 3) + bivector(1, 1, 1) == bivector(2, 3, 4) && bivector(1, 2, 3) * 2 == bivector(2, 4, 6));

TEST(PhysicalSpace, accessesCoordinatesByNameAndByIndex)
{
    point place;
    EXPECT_EQ(place, point(0, 0, 0));
    place.x() = 1;
    place.y() = 2;
    place[2] = 3;
    EXPECT_EQ(place, point(1, 2, 3));
    EXPECT_EQ(place.z(), 3.0);
    FixedArray<double, 3>& plain = place;
    plain[0] = 9;
    EXPECT_EQ(place.x(), 9.0);
    EXPECT_EQ(vector(plain), vector(9, 2, 3));
}

} // namespace PhysicalSpaceTest
