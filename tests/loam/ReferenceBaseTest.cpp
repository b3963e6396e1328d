#include <loam/ReferenceBase.hpp>

#include <loam/StrongPtr.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace ReferenceBaseTest {

using namespace Loam;

namespace {

std::string events;

// Records the events of its life.
class Logged : public ReferenceBase<Logged> {
public:
    explicit Logged(char name = 'x') : m_name{name}
    {
        ++living;
        events += {m_name, '+', ' '};
    }
    Logged(const Logged& other) : ReferenceBase{other}, m_name{other.m_name} { ++living; }
    Logged& operator=(const Logged&) = default;

    ~Logged() override
    {
        --living;
        events += {m_name, '-', ' '};
    }

    void extremeUnction() override { events += {m_name, '!', ' '}; }

    static inline int living = 0;

private:
    char m_name;
};

class ReferenceBaseTest : public testing::Test {
protected:
    void SetUp() override { events.clear(); }
    void TearDown() override { EXPECT_EQ(Logged::living, 0); }
};

// Checks its own weak pointer at each stage of its life.
struct SelfWatching : ReferenceBase<SelfWatching> {
    explicit SelfWatching(WeakPtr<SelfWatching>& theWatch) : watch{theWatch}
    {
        watch = WeakPtr<SelfWatching>(this);
        note("constructor");
        watch.lock(); // the first strong pointer, but not an owner
        note("after a strong pointer was released");
    }

    ~SelfWatching() override { note("destructor"); }
    void extremeUnction() override { note("extremeUnction"); }

    void note(const std::string& stage) const
    {
        const bool lockable = watch.lock() != nullptr;
        EXPECT_EQ(lockable, !watch.expired());
        events += stage + (lockable ? ": alive; " : ": null; ");
    }

    WeakPtr<SelfWatching>& watch;
};

enum class Leaves { Nothing, Weak, Strong, Both };

struct Kept {
    WeakPtr<Logged> weak;
    StrongPtr<Logged> strong;
};

// Its constructor throws after handing out pointers.
template<class Base>
struct Failing : Base {
    Failing(Leaves leaves, Kept& kept)
    {
        const WeakPtr<Logged> self(this);
        if (leaves == Leaves::Weak || leaves == Leaves::Both)
            kept.weak = self;
        if (leaves == Leaves::Strong || leaves == Leaves::Both)
            kept.strong = self.lock();
        throw std::runtime_error{"failed"};
    }
};

struct alignas(128) Wide : Logged {
    using Logged::Logged;
    double numbers[20] = {};
};

template<class T>
void expectAThrowingConstructorToLeaveOnlyExpiredPointers()
{
    for (const Leaves leaves : {Leaves::Nothing, Leaves::Weak, Leaves::Strong, Leaves::Both}) {
        SCOPED_TRACE(static_cast<int>(leaves));
        Kept kept;
        events.clear();
        EXPECT_THROW(new T(leaves, kept), std::runtime_error);
        EXPECT_EQ(events, "x+ x- ") << "an incomplete object gets no extreme unction";
        EXPECT_TRUE(kept.weak.expired());
        EXPECT_FALSE(WeakPtr<Logged>(kept.strong).lock());
        kept.strong.reset();
        EXPECT_TRUE(kept.weak.expired());
        EXPECT_EQ(events, "x+ x- ");
    }
}

char failingArgument()
{
    throw std::runtime_error{"no argument"};
}

struct Pair : ReferenceBase<Pair> {
    Pair(const StrongPtr<Logged>& theFirst, const StrongPtr<Logged>& theSecond) : first{theFirst}, second{theSecond} {}
    StrongPtr<Logged> first, second;
};

struct Chained : ReferenceBase<Chained> {
    explicit Chained(const StrongPtr<Chained>& theNext = {}) : next{theNext} { ++living; }
    Chained(char, const StrongPtr<Chained>& theNext) : Chained{theNext} {}
    ~Chained() override { --living; }
    StrongPtr<Chained> next;
    static inline int living = 0;
};

struct Holder : ReferenceBase<Holder> {
    Logged before{'b'};
    Logged after{'a'};
};

StrongPtr<Logged>& outlivesTheStatic()
{
    static StrongPtr<Logged> pointer;
    return pointer;
}

} // namespace

static_assert(!std::is_default_constructible_v<Counted> && !std::is_copy_constructible_v<ReferenceBase<Logged>>,
              "roots are base classes only");
static_assert(std::has_virtual_destructor_v<Counted>);

template<class T>
concept CanBeMadeInArrays = requires { new T[2]; };
static_assert(!CanBeMadeInArrays<Logged>, "an array cannot hold the counts");

TEST_F(ReferenceBaseTest, callsExtremeUnctionOnceAndThenTheDestructor)
{
    auto first = makeStrong<Logged>();
    auto second = first;
    first.reset();
    EXPECT_EQ(events, "x+ ");
    second.reset();
    EXPECT_EQ(events, "x+ x! x- ");
}

TEST_F(ReferenceBaseTest, hasAnExtremeUnctionThatDoesNothingByDefault)
{
    struct Plain : ReferenceBase<Plain> {
        explicit Plain(bool& flag) : destroyed{flag} {}
        ~Plain() override { destroyed = true; }
        bool& destroyed;
    };
    bool destroyed = false;
    auto plain = makeStrong<Plain>(destroyed);
    plain->extremeUnction();
    EXPECT_FALSE(destroyed);
    plain.reset();
    EXPECT_TRUE(destroyed);
}

TEST_F(ReferenceBaseTest, isNotRevivedByAPointerCreatedInExtremeUnction)
{
    struct Clinging : Logged {
        explicit Clinging(StrongPtr<Clinging>& pointer) : kept{pointer} {}
        void extremeUnction() override
        {
            StrongPtr<Clinging>(this).reset();
            kept = StrongPtr<Clinging>(this);
            Logged::extremeUnction();
        }
        StrongPtr<Clinging>& kept;
    };
    StrongPtr<Clinging> kept;
    makeStrong<Clinging>(kept);
    EXPECT_EQ(events, "x+ x! x- ");
    EXPECT_FALSE(WeakPtr<Clinging>(kept).lock());
    kept.reset();
    EXPECT_EQ(events, "x+ x! x- ");
}

TEST_F(ReferenceBaseTest, expiresWhenTheLastOwnerReleasesIt)
{
    WeakPtr<SelfWatching> watch;
    auto object = makeStrong<SelfWatching>(watch);
    object->note("owned");
    object.reset();
    EXPECT_EQ(events, "constructor: alive; after a strong pointer was released: alive; owned: alive; "
                      "extremeUnction: null; destructor: null; ");
}

TEST_F(ReferenceBaseTest, isKeptAliveByAPointerPromotedInItsConstructor)
{
    struct Sharing : Logged {
        explicit Sharing(StrongPtr<Logged>& pointer) { pointer = WeakPtr<Logged>(this).lock(); }
    };
    StrongPtr<Logged> shared;
    makeStrong<Sharing>(shared).reset();
    EXPECT_EQ(Logged::living, 1);
    shared.reset();
    EXPECT_EQ(events, "x+ x! x- ");
}

TEST_F(ReferenceBaseTest, givesObjectsCreatedInConstructorArgumentsTheirOwnCounts)
{
    {
        const auto pair = makeStrong<Pair>(makeStrong<Logged>('1'), makeStrong<Logged>('2'));
        const StrongPtr<Pair> direct(new Pair(StrongPtr<Logged>(new Logged('3')), StrongPtr<Logged>(new Logged('4'))));
        for (const StrongPtr<Pair>& each : {pair, direct}) {
            EXPECT_NE(each->first.referenceBlock(), each->second.referenceBlock());
            EXPECT_NE(&each->referenceBlock(), each->first.referenceBlock());
            EXPECT_EQ(each->first.referenceBlock()->strongCount(), 1u);
        }
        direct->first.reset();
        EXPECT_EQ(events.substr(events.size() - 6), "3! 3- ");
    }
    EXPECT_EQ(Logged::living, 0);
    {
        const StrongPtr<Chained> chain(
            new Chained('x', StrongPtr<Chained>(new Chained('y', StrongPtr<Chained>(new Chained)))));
        EXPECT_EQ(Chained::living, 3);
    }
    EXPECT_EQ(Chained::living, 0);
}

TEST_F(ReferenceBaseTest, survivesConstructorArgumentsThatThrow)
{
    EXPECT_THROW(new Logged(failingArgument()), std::runtime_error);
    EXPECT_THROW(new Wide(failingArgument()), std::runtime_error);
    EXPECT_THROW(new Pair(StrongPtr<Logged>(new Logged('1')), StrongPtr<Logged>(new Logged(failingArgument()))),
                 std::runtime_error);
    // The next object must not mistake a stale note for its own.
    const auto next = makeStrong<Logged>();
    EXPECT_EQ(next.referenceBlock()->strongCount(), 1u);
}

TEST_F(ReferenceBaseTest, leavesOnlyExpiredPointersWhenAConstructorThrows)
{
    expectAThrowingConstructorToLeaveOnlyExpiredPointers<Failing<Logged>>();
}

TEST_F(ReferenceBaseTest, leavesOnlyExpiredPointersWhenAConstructorOfAWideClassThrows)
{
    expectAThrowingConstructorToLeaveOnlyExpiredPointers<Failing<Wide>>();
}

TEST_F(ReferenceBaseTest, countsAnObjectCreatedWithItsRootFirst)
{
    struct Rooted : ReferenceBase<Rooted> {
        Rooted(bool fails, WeakPtr<Rooted>& theWatch) : ReferenceBase{RootFirst{}}, watch{theWatch}
        {
            watch = WeakPtr<Rooted>(this);
            if (fails)
                throw std::runtime_error{"failed"};
        }
        void extremeUnction() override { events += "unction "; }
        ~Rooted() override { events += "destructor "; }
        WeakPtr<Rooted>& watch;
    };
    WeakPtr<Rooted> watch;
    {
        const StrongPtr<Rooted> object(new (RootFirst{}) Rooted(false, watch));
        EXPECT_EQ(object.referenceBlock()->strongCount(), 1u);
        EXPECT_EQ(watch.lock(), object);
    }
    EXPECT_EQ(events, "unction destructor ");
    EXPECT_TRUE(watch.expired());
    EXPECT_THROW(new (RootFirst{}) Rooted(true, watch), std::runtime_error);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(events, "unction destructor ");
}

TEST_F(ReferenceBaseTest, countsObjectsOfAnyAlignment)
{
    struct alignas(4096) Page : Logged {};
    std::vector<StrongPtr<Logged>> objects;
    std::vector<WeakPtr<Logged>> watches;
    for (int i = 0; i < 8; ++i) {
        objects.push_back(makeStrong<Wide>('w'));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(objects.back().get()) % 128, 0u);
        objects.push_back(makeStrong<Page>());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(objects.back().get()) % 4096, 0u);
        watches.insert(watches.end(), objects.end() - 2, objects.end());
    }
    EXPECT_EQ(Logged::living, 16);
    events.clear();
    objects.front().reset();
    EXPECT_EQ(events, "w! w- ");
    objects.clear();
    EXPECT_EQ(Logged::living, 0);
    for (const WeakPtr<Logged>& watch : watches)
        EXPECT_TRUE(watch.expired());
}

TEST_F(ReferenceBaseTest, letsAWideObjectWatchItself)
{
    struct alignas(64) WideWatching : SelfWatching {
        using SelfWatching::SelfWatching;
    };
    WeakPtr<SelfWatching> watch;
    makeStrong<WideWatching>(watch);
    EXPECT_EQ(events, "constructor: alive; after a strong pointer was released: alive; "
                      "extremeUnction: null; destructor: null; ");
}

TEST_F(ReferenceBaseTest, isNotDeletedByPointersIfItIsALocalVariable)
{
    WeakPtr<Logged> weak;
    {
        Logged local;
        weak = WeakPtr<Logged>(&local);
        StrongPtr<Logged>(&local).reset();
        weak.lock().reset();
        EXPECT_EQ(events, "x+ ") << "without an owner there is no last owner";
        EXPECT_FALSE(weak.expired());
    }
    EXPECT_EQ(events, "x+ x- ");
    EXPECT_TRUE(weak.expired());
    EXPECT_FALSE(weak.lock());
}

TEST_F(ReferenceBaseTest, isNotDeletedByPointersIfItIsAMember)
{
    auto holder = makeStrong<Holder>();
    const WeakPtr<Logged> before(&holder->before);
    StrongPtr<Logged> after(&holder->after);
    StrongPtr<Logged>(&holder->before).reset();
    EXPECT_EQ(events, "b+ a+ ");
    EXPECT_FALSE(before.expired());

    holder.reset();
    EXPECT_EQ(events, "b+ a+ a- b- ");
    EXPECT_TRUE(before.expired());
    EXPECT_FALSE(WeakPtr<Logged>(after).lock());
    after.reset();
    EXPECT_EQ(events, "b+ a+ a- b- ");
}

TEST_F(ReferenceBaseTest, worksInContainersOfTheStandardLibrary)
{
    {
        std::vector<Logged> objects(3);
        const WeakPtr<Logged> watch(&objects[1]);
        EXPECT_TRUE(watch.lock());
        const std::optional<Logged> optional(std::in_place, 'o');
        const auto shared = std::make_shared<Logged>('s');
        const auto unique = std::make_unique<Logged>('u');
        EXPECT_TRUE(WeakPtr<Logged>(unique.get()).lock());
        EXPECT_EQ(Logged::living, 6);
    }
    EXPECT_EQ(Logged::living, 0);
}

TEST_F(ReferenceBaseTest, mayBeConstructedInMemoryOfTheCaller)
{
    alignas(Logged) std::byte memory[sizeof(Logged)];
    Logged* placed = new (memory) Logged('p');
    const WeakPtr<Logged> watch(placed);
    StrongPtr<Logged>(placed).reset();
    EXPECT_FALSE(watch.expired());
    placed->~Logged();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(events, "p+ p- ");
}

TEST_F(ReferenceBaseTest, mayBeDeletedBeforeItHasAnOwner)
{
    auto* object = new Logged;
    const WeakPtr<Logged> watch(object);
    delete object;
    EXPECT_EQ(events, "x+ x- ");
    EXPECT_TRUE(watch.expired());
    Logged* none = nullptr;
    delete none;
    Wide* noneWide = nullptr;
    delete noneWide;
}

TEST_F(ReferenceBaseTest, givesACopyItsOwnCounts)
{
    const auto original = makeStrong<Logged>();
    const StrongPtr<Logged> second = original;
    const auto copy = makeStrong<Logged>(*original);
    EXPECT_EQ(original.referenceBlock()->strongCount(), 2u);
    EXPECT_EQ(copy.referenceBlock()->strongCount(), 1u);
    *copy = *original;
    EXPECT_EQ(copy.referenceBlock()->strongCount(), 1u);
    EXPECT_NE(copy, original);
}

TEST_F(ReferenceBaseTest, expiresWhenAStaticObjectIsDestroyed)
{
    // In a separate process: its statics are destroyed before strong pointers to them.
    EXPECT_EXIT(
        {
            static WeakPtr<Logged> weak;
            outlivesTheStatic(); // constructed first, destroyed last
            struct Check {
                ~Check() { std::_Exit(weak.expired() && !WeakPtr<Logged>(outlivesTheStatic()).lock() ? 0 : 1); }
            };
            static Check runsAfterTheObject;
            static Logged object;
            weak = WeakPtr<Logged>(&object);
            outlivesTheStatic() = StrongPtr<Logged>(&object);
            StrongPtr<Logged>(&object).reset();
            std::exit(weak.expired() ? 2 : 3);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ReferenceBaseTest, letsAPointerOutliveAStaticObject)
{
    EXPECT_EXIT(
        {
            outlivesTheStatic();
            static Logged object;
            outlivesTheStatic() = StrongPtr<Logged>(&object);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace ReferenceBaseTest
