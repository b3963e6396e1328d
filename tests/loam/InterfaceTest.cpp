#include <loam/Interface.hpp>

#include <gtest/gtest.h>

namespace InterfaceTest {

using namespace Loam;

namespace {

struct Shape : InterfaceBase {
    explicit Shape(int cornerCount = 0) : corners{cornerCount} {}
    int corners;
};

struct Square : Shape {
    Square() : Shape{4} {}
};

struct Colour : InterfaceBase {};

} // namespace

static_assert(std::is_same_v<StrongPtr<Shape>, StrongPtr<Shape, InterfaceBase>>);

TEST(InterfaceContainer, findsAnInterfaceByItsClassOrABase)
{
    InterfaceContainer container;
    const auto square = makeStrong<Square>();
    const auto colour = makeStrong<Colour>();
    EXPECT_TRUE(container.add(colour));
    EXPECT_TRUE(container.add(square));
    EXPECT_EQ(container.find<Square>(), square);
    EXPECT_EQ(container.find<Shape>(), square);
    EXPECT_EQ(container.find<Colour>(), colour);
    EXPECT_EQ(container.find<Shape>()->corners, 4);
}

TEST(InterfaceContainer, findsTheInterfaceAddedFirst)
{
    InterfaceContainer container;
    const auto first = makeStrong<Shape>(3);
    const auto second = makeStrong<Square>();
    container.add(first);
    container.add(second);
    EXPECT_EQ(container.find<Shape>(), first);
    EXPECT_EQ(container.find<InterfaceBase>(), first);
    EXPECT_EQ(container.find<Square>(), second);
}

TEST(InterfaceContainer, returnsNullForAClassThatItDoesNotHold)
{
    InterfaceContainer container;
    EXPECT_FALSE(container.find<Shape>());
    container.add(makeStrong<Shape>());
    EXPECT_FALSE(container.find<Square>());
    EXPECT_FALSE(container.find<Colour>());
}

TEST(InterfaceContainer, addsEachInterfaceOnceAndRejectsNull)
{
    InterfaceContainer container;
    EXPECT_TRUE(container.empty());
    const auto shape = makeStrong<Shape>();
    EXPECT_TRUE(container.add(shape));
    EXPECT_FALSE(container.add(shape));
    EXPECT_FALSE(container.add(nullptr));
    EXPECT_EQ(container.size(), 1u);
    EXPECT_FALSE(container.empty());
}

TEST(InterfaceContainer, keepsAnInterfaceAliveUntilItIsRemoved)
{
    InterfaceContainer container;
    auto shape = makeStrong<Shape>();
    const WeakPtr<Shape> weak = shape;
    container.add(shape);
    shape.reset();
    ASSERT_FALSE(weak.expired());
    EXPECT_TRUE(container.remove(container.find<Shape>()));
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(container.empty());
}

TEST(InterfaceContainer, removesOnlyInterfacesThatItHolds)
{
    InterfaceContainer container;
    container.add(makeStrong<Shape>());
    EXPECT_FALSE(container.remove(makeStrong<Shape>()));
    EXPECT_FALSE(container.remove(nullptr));
    EXPECT_EQ(container.size(), 1u);
}

TEST(InterfaceContainer, iteratesInInsertionOrder)
{
    InterfaceContainer container;
    for (const int corners : {5, 3, 4})
        container.add(makeStrong<Shape>(corners));
    container.remove(*(container.begin() + 1));
    std::vector<int> seen;
    for (const StrongPtr<InterfaceBase>& interface : container)
        seen.push_back(StrongPtr<Shape>(interface)->corners);
    EXPECT_EQ(seen, (std::vector{5, 4}));
}

} // namespace InterfaceTest
