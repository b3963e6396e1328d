#include <loam/StrongPtr.hpp>

#include <gtest/gtest.h>

#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace StrongPtrTest {

using namespace Loam;

namespace {

struct Root : ReferenceBase<Root> {
    Root() { ++living; }
    ~Root() override { --living; }
    static inline int living = 0;
};

struct Leaf : Root {
    int number = 7;
};

struct OtherLeaf : Root {};

// Mix-ins that share one root, like those of processing objects.
struct Left : virtual Root {
    int left = 1;
};
struct Right : virtual Root {
    int right = 2;
};
struct Both : Left, Right {
    int both = 3;
};

struct Link : ReferenceBase<Link> {
    explicit Link(const StrongPtr<Link>& theNext = {}) : next{theNext} {}
    StrongPtr<Link> next;
};

class StrongPtrTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(Root::living, 0); }
};

template<class Pointer>
std::uint32_t owners(const Pointer& pointer)
{
    return pointer.referenceBlock()->strongCount();
}

struct Declared;
struct DeclaredRoot;

// Only the declaration is visible here.
StrongPtr<Declared> passOn(const StrongPtr<Declared, DeclaredRoot>& pointer)
{
    StrongPtr<Declared> copy = pointer;
    StrongPtr<Declared> moved = std::move(copy);
    copy = moved;
    copy.swap(moved);
    return copy == pointer ? copy : nullptr;
}

} // namespace

static_assert(std::is_same_v<StrongPtr<Leaf>, StrongPtr<Leaf, Root>>);
static_assert(std::is_same_v<StrongPtr<Root>, StrongPtr<Root, Root>>);
static_assert(std::is_same_v<StrongPtr<Declared>, StrongPtr<Declared, DeclaredRoot>>, "a declaration is enough");
static_assert(std::is_same_v<WeakPtrImpl<Declared>, WeakPtrImpl<Declared, DeclaredRoot>>);
static_assert(std::is_same_v<StrongPtr<Declared>::element_type, Declared>);

static_assert(std::is_convertible_v<StrongPtr<Leaf>, StrongPtr<Root>>);
static_assert(std::is_convertible_v<StrongPtr<Leaf>, StrongPtr<const Leaf>>);
static_assert(std::is_convertible_v<std::nullptr_t, StrongPtr<Leaf>>);
static_assert(!std::is_convertible_v<StrongPtr<Root>, StrongPtr<Leaf>>, "a cast that may fail is explicit");
static_assert(std::is_constructible_v<StrongPtr<Leaf>, StrongPtr<Root>>);
static_assert(!std::is_convertible_v<Leaf*, StrongPtr<Leaf>>, "sharing ownership is explicit");
static_assert(!std::is_convertible_v<WeakPtr<Leaf>, StrongPtr<Leaf>>, "a promotion that may fail is explicit");
static_assert(!std::is_convertible_v<StrongPtr<Leaf>, bool> && !std::is_convertible_v<StrongPtr<Leaf>, Leaf*>);
static_assert(std::is_nothrow_move_constructible_v<StrongPtr<Leaf>>);
static_assert(std::is_nothrow_move_assignable_v<StrongPtr<Leaf>>);
static_assert(sizeof(StrongPtr<Leaf>) == 2 * sizeof(void*));

namespace {

struct Declared : Root {};

} // namespace

TEST_F(StrongPtrTest, sharesOwnershipWithItsCopies)
{
    StrongPtr<Leaf> first(new Leaf);
    EXPECT_EQ(owners(first), 1u);
    {
        const StrongPtr<Leaf> second = first;
        const StrongPtr<Leaf> third(first.get());
        EXPECT_EQ(owners(first), 3u);
        EXPECT_EQ(second->number, 7);
        EXPECT_EQ((*third).number, 7);
    }
    EXPECT_EQ(owners(first), 1u);
    first = nullptr;
    EXPECT_EQ(Root::living, 0);
    EXPECT_FALSE(first);
}

TEST_F(StrongPtrTest, isEmptyWithoutAnObject)
{
    for (const StrongPtr<Leaf>& pointer :
         {StrongPtr<Leaf>(), StrongPtr<Leaf>(nullptr), StrongPtr<Leaf>(static_cast<Leaf*>(nullptr)),
          StrongPtr<Leaf>(StrongPtr<Root>()), StrongPtr<Leaf>(WeakPtr<Leaf>())}) {
        EXPECT_FALSE(pointer);
        EXPECT_EQ(pointer.get(), nullptr);
        EXPECT_EQ(pointer.referenceBlock(), nullptr);
        EXPECT_EQ(pointer, nullptr);
        EXPECT_EQ(pointer, StrongPtr<Root>());
    }
}

TEST_F(StrongPtrTest, movesWithoutTouchingACount)
{
    auto first = makeStrong<Leaf>();
    ReferenceBlock& block = *first.referenceBlock();
    StrongPtr<Leaf> second = std::move(first);
    EXPECT_FALSE(first);
    EXPECT_EQ(first.referenceBlock(), nullptr);
    EXPECT_EQ(block.strongCount(), 1u);
    StrongPtr<Root> base = std::move(second);
    EXPECT_FALSE(second);
    EXPECT_EQ(second.referenceBlock(), nullptr);
    EXPECT_EQ(block.strongCount(), 1u);
    StrongPtr<Root> target = makeStrong<Leaf>();
    target = std::move(base);
    EXPECT_EQ(Root::living, 1);
    EXPECT_EQ(block.strongCount(), 1u);
}

TEST_F(StrongPtrTest, survivesSelfAssignment)
{
    auto pointer = makeStrong<Leaf>();
    auto& same = pointer;
    pointer = same;
    EXPECT_EQ(owners(pointer), 1u);
    pointer = std::move(same);
    ASSERT_TRUE(pointer);
    EXPECT_EQ(owners(pointer), 1u);
}

TEST_F(StrongPtrTest, mayBeAssignedAMemberOfItsObject)
{
    auto chain = makeStrong<Link>(makeStrong<Link>(makeStrong<Link>()));
    int length = 0;
    for (; chain; chain = chain->next)
        ++length;
    EXPECT_EQ(length, 3);
}

TEST_F(StrongPtrTest, releasesTheOldObjectAfterTakingTheNewOne)
{
    struct Asking : ReferenceBase<Asking> {
        Asking(StrongPtr<Asking>& theHolder, bool& flag) : holder{theHolder}, sawItself{flag} {}
        ~Asking() override { sawItself = holder.get() == this; }
        StrongPtr<Asking>& holder;
        bool& sawItself;
    };
    StrongPtr<Asking> holder;
    bool sawItself = true;
    holder = makeStrong<Asking>(holder, sawItself);
    holder.reset();
    EXPECT_FALSE(sawItself);

    sawItself = true;
    holder = makeStrong<Asking>(holder, sawItself);
    holder = nullptr;
    EXPECT_FALSE(sawItself);
}

TEST_F(StrongPtrTest, convertsToBasesAndChecksDowncasts)
{
    const auto leaf = makeStrong<Leaf>();
    const StrongPtr<Root> root = leaf;
    EXPECT_EQ(owners(leaf), 2u);
    EXPECT_EQ(StrongPtr<Leaf>(root).get(), leaf.get());

    const StrongPtr<OtherLeaf> wrong(root);
    EXPECT_FALSE(wrong);
    EXPECT_EQ(wrong.referenceBlock(), nullptr) << "a failed cast returns an empty pointer";
    EXPECT_EQ(owners(leaf), 2u);
}

TEST_F(StrongPtrTest, castsAcrossMixIns)
{
    const StrongPtr<Left> left = makeStrong<Both>();
    const StrongPtr<Right> right(left);
    ASSERT_TRUE(right);
    EXPECT_EQ(right->right, 2);
    EXPECT_EQ(StrongPtr<Both>(right)->both, 3);
    EXPECT_EQ(owners(left), 2u);
    EXPECT_FALSE(StrongPtr<Leaf>(left));
}

TEST_F(StrongPtrTest, isEqualForTheSameObjectThroughAnyBase)
{
    const auto both = makeStrong<Both>();
    const StrongPtr<Left> left = both;
    const StrongPtr<Right> right = both;
    const StrongPtr<Root> root = right;
    EXPECT_NE(static_cast<const void*>(left.get()), static_cast<const void*>(right.get()));
    EXPECT_TRUE(left == right && right == left && both == root && root == left);
    EXPECT_FALSE(left != right);
    EXPECT_TRUE(both != makeStrong<Both>());
    EXPECT_TRUE(left != nullptr && nullptr != left);

    std::unordered_set<StrongPtr<Root>> set{left, right, root, makeStrong<Leaf>()};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_TRUE(set.contains(both));
}

TEST_F(StrongPtrTest, swapsItsCounts)
{
    auto first = makeStrong<Leaf>();
    auto second = makeStrong<Leaf>();
    const Leaf* const firstObject = first.get();
    const StrongPtr<Leaf> kept = first;
    first.swap(second);
    EXPECT_EQ(second.get(), firstObject);
    EXPECT_EQ(owners(second), 2u);
    EXPECT_EQ(owners(first), 1u);
}

TEST_F(StrongPtrTest, needsOnlyADeclarationToBePassedOn)
{
    const auto pointer = makeStrong<Declared>();
    const StrongPtr<Declared> same = passOn(pointer);
    EXPECT_EQ(same, pointer);
    EXPECT_EQ(owners(pointer), 2u);
}

TEST_F(StrongPtrTest, forwardsConstructorArguments)
{
    struct Taking : ReferenceBase<Taking> {
        Taking(std::vector<int>&& theNumbers, int& theCount) : numbers{std::move(theNumbers)} { ++theCount; }
        std::vector<int> numbers;
    };
    int count = 0;
    std::vector<int> numbers(5);
    const auto taking = makeStrong<Taking>(std::move(numbers), count);
    EXPECT_EQ(taking->numbers.size(), 5u);
    EXPECT_TRUE(numbers.empty());
    EXPECT_EQ(count, 1);
}

TEST_F(StrongPtrTest, releasesLongChainsFromEitherEnd)
{
    std::vector<StrongPtr<Link>> links{makeStrong<Link>()};
    for (int i = 0; i < 1000; ++i)
        links.push_back(makeStrong<Link>(links.back()));
    const WeakPtr<Link> first = links.front();
    const StrongPtr<Link> last = links.back();
    links.clear();
    EXPECT_FALSE(first.expired());
    last->next.reset();
    EXPECT_TRUE(first.expired());
}

} // namespace StrongPtrTest
