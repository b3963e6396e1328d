#include <loam/WeakPtr.hpp>

#include <gtest/gtest.h>

#include <type_traits>
#include <unordered_set>

namespace WeakPtrTest {

using namespace Loam;

namespace {

struct Root : ReferenceBase<Root> {
    int number = 7;
};

struct Leaf : Root {};

// A mix-in that is watched without knowledge of the whole object.
struct MixIn : virtual Root {
    explicit MixIn(WeakPtr<MixIn>* self = nullptr)
    {
        if (self)
            *self = WeakPtr<MixIn>(this);
    }
    int mixed = 1;
};
struct Second : virtual Root {
    int second = 2;
};
struct Joined : MixIn, Second {
    explicit Joined(WeakPtr<MixIn>* self = nullptr) : MixIn{self} {}
};

std::uint32_t watchers(const StrongPtr<Root>& object)
{
    return object.referenceBlock()->weakCount() - 1; // without the object itself
}

struct Declared;

} // namespace

static_assert(std::is_same_v<WeakPtrImpl<Leaf>, WeakPtrImpl<Leaf, Root>>);
static_assert(std::is_same_v<WeakPtr<Leaf>, WeakPtrImpl<Leaf, Root>>);
static_assert(std::is_same_v<WeakPtrImpl<Declared>, WeakPtrImpl<Declared, Root>>, "a declaration is enough");
static_assert(std::is_convertible_v<StrongPtr<Leaf>, WeakPtr<Root>> && std::is_convertible_v<Leaf*, WeakPtr<Leaf>>);
static_assert(std::is_convertible_v<WeakPtr<Leaf>, WeakPtr<Root>>);
static_assert(!std::is_convertible_v<WeakPtr<Root>, WeakPtr<Leaf>>);
static_assert(!std::is_convertible_v<WeakPtr<Leaf>, bool>);
static_assert(std::is_nothrow_move_constructible_v<WeakPtr<Leaf>>);
static_assert(sizeof(WeakPtr<Leaf>) == 2 * sizeof(void*));

TEST(WeakPtr, doesNotKeepItsObjectAlive)
{
    auto leaf = makeStrong<Leaf>();
    const WeakPtr<Leaf> weak = leaf;
    EXPECT_TRUE(weak);
    EXPECT_FALSE(weak.expired());
    EXPECT_EQ(leaf.referenceBlock()->strongCount(), 1u);
    leaf.reset();
    EXPECT_FALSE(weak);
    EXPECT_TRUE(weak.expired());
    EXPECT_FALSE(weak.lock());
    EXPECT_FALSE(StrongPtr<Root>(weak));
}

TEST(WeakPtr, keepsItsObjectAliveThroughALock)
{
    auto leaf = makeStrong<Leaf>();
    const WeakPtr<Leaf> weak = leaf;
    {
        const StrongPtr<Leaf> locked = weak.lock();
        leaf.reset();
        EXPECT_FALSE(weak.expired());
        EXPECT_EQ(locked->number, 7);
    }
    EXPECT_TRUE(weak.expired());
}

TEST(WeakPtr, isEmptyWithoutAnObject)
{
    for (const WeakPtr<Leaf>& weak : {WeakPtr<Leaf>(), WeakPtr<Leaf>(nullptr),
                                      WeakPtr<Leaf>(static_cast<Leaf*>(nullptr)), WeakPtr<Leaf>(StrongPtr<Leaf>())}) {
        EXPECT_TRUE(weak.expired());
        EXPECT_FALSE(weak.lock());
        EXPECT_EQ(weak.referenceBlock(), nullptr);
    }
}

TEST(WeakPtr, countsCopiesButNotMoves)
{
    const auto leaf = makeStrong<Leaf>();
    WeakPtr<Leaf> first = leaf;
    WeakPtr<Leaf> second = first;
    EXPECT_EQ(watchers(leaf), 2u);
    WeakPtr<Leaf> third = std::move(second);
    EXPECT_EQ(watchers(leaf), 2u);
    EXPECT_EQ(second.referenceBlock(), nullptr);
    auto& same = third;
    third = same;
    EXPECT_EQ(third.lock(), leaf);
    third = std::move(first);
    EXPECT_EQ(watchers(leaf), 1u);
    first = third;
    first.swap(second);
    EXPECT_EQ(watchers(leaf), 2u);
    EXPECT_EQ(second.lock(), leaf);
    second.reset();
    third = nullptr;
    EXPECT_EQ(watchers(leaf), 0u);
}

TEST(WeakPtr, refersToAMixInAndExpiresWithTheWholeObject)
{
    WeakPtr<MixIn> view;
    auto joined = makeStrong<Joined>(&view);
    EXPECT_EQ(view.lock()->mixed, 1);
    EXPECT_EQ(view, joined);
    EXPECT_EQ(view.referenceBlock(), &joined->referenceBlock());
    joined.reset();
    EXPECT_TRUE(view.expired());
}

TEST(WeakPtr, convertsToBasesWhileTheObjectLives)
{
    auto joined = makeStrong<Joined>();
    const WeakPtr<Joined> weak = joined;
    const WeakPtr<Second> second = weak;
    const WeakPtr<Root> root = second;
    EXPECT_EQ(second.lock()->second, 2);
    EXPECT_EQ(root.lock()->number, 7);
    EXPECT_EQ(joined.referenceBlock()->strongCount(), 1u);
    EXPECT_EQ(watchers(joined), 3u);
    joined.reset();
    EXPECT_TRUE(second.expired() && root.expired());
}

TEST(WeakPtr, convertsToAnEmptyPointerAfterTheObjectIsDestroyed)
{
    auto joined = makeStrong<Joined>();
    const WeakPtr<Joined> weak = joined;
    joined.reset();
    // Conversion to a virtual base would read the destroyed object.
    const WeakPtr<Root> root = weak;
    EXPECT_TRUE(root.expired());
    EXPECT_EQ(root.referenceBlock(), nullptr);
    EXPECT_EQ(weak.referenceBlock()->weakCount(), 1u);
}

TEST(WeakPtr, isPromotedToAnyClassOfTheObject)
{
    const auto joined = makeStrong<Joined>();
    const WeakPtr<MixIn> view = joined;
    EXPECT_EQ(StrongPtr<Joined>(view), joined);
    EXPECT_EQ(StrongPtr<Second>(view)->second, 2);
    EXPECT_EQ(StrongPtr<Root>(view)->number, 7);
    EXPECT_FALSE(StrongPtr<Leaf>(view));
    EXPECT_EQ(joined.referenceBlock()->strongCount(), 1u);
}

TEST(WeakPtr, isEqualIfTheObjectIsOrWasTheSame)
{
    auto joined = makeStrong<Joined>();
    const WeakPtr<MixIn> mixIn = joined;
    const WeakPtr<Second> second = joined;
    EXPECT_TRUE(mixIn == second && second == mixIn && mixIn == joined && joined == second);
    EXPECT_TRUE(mixIn != WeakPtr<MixIn>(makeStrong<Joined>()));
    const WeakPtr<MixIn> copy = mixIn;
    joined.reset();
    EXPECT_TRUE(copy == mixIn && mixIn == second) << "expired pointers still compare by object";
    EXPECT_TRUE(mixIn != WeakPtr<MixIn>());

    const std::unordered_set<WeakPtr<MixIn>> set{mixIn, copy, WeakPtr<MixIn>(makeStrong<Joined>())};
    EXPECT_EQ(set.size(), 2u);
}

} // namespace WeakPtrTest
