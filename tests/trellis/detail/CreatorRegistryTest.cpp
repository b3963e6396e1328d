#include <trellis/detail/CreatorRegistry.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace CreatorRegistryTest {

using namespace Orla;
using namespace Orla::Detail;
using Loam::makeStrong;
using Loam::StrongPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Creator : Loam::ReferenceBase<Creator> {};
using Registry = CreatorRegistry<Creator>;

// Returns the owner with the file "NAME.so", or with another name.
Registry::Owner owner(const std::string& file)
{
    return {file, file.substr(0, file.find('.'))};
}

// Destroyed after the registry, which is created later.
struct LateUser {
    ~LateUser()
    {
        if (isAsking)
            std::fputs(creatorRegistry<Creator>() ? "the registry exists" : "the registry is destroyed", stderr);
    }

    bool isAsking = false;
};

LateUser lateUser;

} // namespace

TEST(CreatorRegistry, findsCreatorsByName)
{
    Registry registry;
    EXPECT_FALSE(registry.find("VTime"));
    const auto time = makeStrong<Creator>();
    const auto range = makeStrong<Creator>();
    EXPECT_EQ(registry.add(time, "VTime", "T", owner("first.so")), "");
    EXPECT_EQ(registry.add(range, "Range", "R", owner("first.so")), "");
    EXPECT_EQ(registry.find("VTime"), time);
    EXPECT_EQ(registry.find("Range"), range);
    EXPECT_FALSE(registry.find("range"));
    EXPECT_THAT(registry.names(), ElementsAre("Range", "VTime"));
}

TEST(CreatorRegistry, doesNotKeepCreatorsAlive)
{
    Registry registry;
    auto creator = makeStrong<Creator>();
    registry.add(creator, "VTime", "T", owner("first.so"));
    EXPECT_EQ(creator.referenceBlock()->strongCount(), 1u);
    creator.reset();
    EXPECT_FALSE(registry.find("VTime"));
    EXPECT_THAT(registry.names(), IsEmpty());
}

TEST(CreatorRegistry, usesASecondCreatorOfATypeOnceTheFirstIsDestroyed)
{
    Registry registry;
    auto first = makeStrong<Creator>();
    auto second = makeStrong<Creator>();
    auto third = makeStrong<Creator>();
    for (const StrongPtr<Creator>& creator : {first, second, third})
        EXPECT_EQ(registry.add(creator, "VTime", "T", owner("a.so")), "");
    EXPECT_EQ(registry.find("VTime"), first);
    EXPECT_THAT(registry.names(), ElementsAre("VTime"));
    second.reset();
    EXPECT_EQ(registry.find("VTime"), first);
    first.reset();
    EXPECT_EQ(registry.find("VTime"), third);
    third.reset();
    EXPECT_FALSE(registry.find("VTime"));
}

TEST(CreatorRegistry, refusesAnotherTypeWhileTheNameIsTaken)
{
    Registry registry;
    auto holder = makeStrong<Creator>();
    auto waiting = makeStrong<Creator>();
    const auto other = makeStrong<Creator>();
    registry.add(holder, "VTime", "T", owner("holder.so"));
    registry.add(waiting, "VTime", "T", owner("waiting.so"));
    EXPECT_EQ(registry.add(other, "VTime", "other T", owner("other.so")), "holder.so");
    EXPECT_EQ(registry.find("VTime"), holder);
    holder.reset();
    EXPECT_EQ(registry.add(other, "VTime", "other T", owner("other.so")), "waiting.so");
}

TEST(CreatorRegistry, findsRivalsOnlyWithTheirLibraryWhileTheNameIsTaken)
{
    Registry registry;
    auto holder = makeStrong<Creator>();
    const auto rival = makeStrong<Creator>();
    auto successor = makeStrong<Creator>();
    registry.add(holder, "VTime", "T", owner("holder.so"));
    registry.add(rival, "VTime", "other T", owner("rival.so"));
    EXPECT_EQ(registry.add(successor, "VTime", "T", owner("successor.so")), "") << "it has the type of the holder";
    EXPECT_THAT(registry.libraries("VTime"), ElementsAre("holder", "rival"));
    EXPECT_THAT(registry.names(), ElementsAre("VTime"));
    EXPECT_EQ(registry.find("VTime"), holder);
    EXPECT_EQ(registry.find("rival:VTime"), rival);
    EXPECT_EQ(registry.find("holder:VTime"), holder);
    EXPECT_EQ(registry.find("successor:VTime"), successor);
    EXPECT_FALSE(registry.find("none:VTime"));
    EXPECT_FALSE(registry.find(":VTime"));
    EXPECT_FALSE(registry.find("rival:"));
    EXPECT_EQ(registry.creators().size(), 3u);

    holder.reset();
    EXPECT_EQ(registry.find("VTime"), successor);
    successor.reset();
    EXPECT_EQ(registry.find("VTime"), rival);
    EXPECT_THAT(registry.libraries("VTime"), ElementsAre("rival"));
    EXPECT_THAT(registry.libraries("none"), IsEmpty());
}

TEST(CreatorRegistry, prefersANameThatContainsAColon)
{
    Registry registry;
    const auto plain = makeStrong<Creator>();
    const auto scoped = makeStrong<Creator>();
    registry.add(plain, "Type", "P", owner("library.so"));
    EXPECT_EQ(registry.find("library:Type"), plain);
    registry.add(scoped, "library:Type", "S", owner("other.so"));
    EXPECT_EQ(registry.find("library:Type"), scoped);
}

TEST(CreatorRegistry, holdsACreatorOnceEvenIfItIsAddedTwice)
{
    Registry registry;
    auto first = makeStrong<Creator>();
    const auto second = makeStrong<Creator>();
    registry.add(first, "VTime", "T", owner("a.so"));
    registry.add(second, "VTime", "T", owner("b.so"));
    EXPECT_EQ(registry.add(first, "VTime", "T", owner("a.so")), "");
    EXPECT_EQ(first.referenceBlock()->weakCount(), 2u) << "the object itself and one entry";
    first.reset();
    EXPECT_EQ(registry.find("VTime"), second);
}

TEST(CreatorRegistry, mayBeQueriedWhileLibrariesComeAndGo)
{
    Registry registry;
    const auto lasting = makeStrong<Creator>();
    registry.add(lasting, "lasting", "L", owner("main"));
    std::atomic<bool> done = false;
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) {
            const std::string name = "name " + std::to_string(i % 10);
            const auto creator = makeStrong<Creator>();
            EXPECT_EQ(registry.add(creator, name, name, owner("library")), "");
            EXPECT_TRUE(registry.find(name)); // the other thread may hold an older creator of the name
        }
        done = true;
    });
    while (!done) {
        const std::vector<std::string> names = registry.names();
        EXPECT_THAT(names, testing::Contains("lasting"));
        for (const std::string& name : names)
            registry.find(name);
        EXPECT_EQ(registry.find("lasting"), lasting);
    }
    other.join();
    EXPECT_THAT(registry.names(), ElementsAre("lasting"));
}

TEST(CreatorRegistryDeathTest, isNullAfterItWasDestroyedAtExit)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto createAndExit = [] {
        lateUser.isAsking = true;
        std::exit(creatorRegistry<Creator>() ? 0 : 1);
    };
    EXPECT_EXIT(createAndExit(), testing::ExitedWithCode(0), "the registry is destroyed");
}

} // namespace CreatorRegistryTest
