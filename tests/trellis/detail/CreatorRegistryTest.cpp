#include <trellis/detail/CreatorRegistry.hpp>

#include <gmock/gmock.h>

#include <atomic>
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

} // namespace

TEST(CreatorRegistry, findsCreatorsByName)
{
    Registry registry;
    EXPECT_FALSE(registry.find("VTime"));
    const auto time = makeStrong<Creator>();
    const auto range = makeStrong<Creator>();
    EXPECT_EQ(registry.add(time, "VTime", "T", "first.so"), "");
    EXPECT_EQ(registry.add(range, "Range", "R", "first.so"), "");
    EXPECT_EQ(registry.find("VTime"), time);
    EXPECT_EQ(registry.find("Range"), range);
    EXPECT_FALSE(registry.find("range"));
    EXPECT_THAT(registry.names(), ElementsAre("Range", "VTime"));
}

TEST(CreatorRegistry, doesNotKeepCreatorsAlive)
{
    Registry registry;
    auto creator = makeStrong<Creator>();
    registry.add(creator, "VTime", "T", "first.so");
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
        EXPECT_EQ(registry.add(creator, "VTime", "T", "a.so"), "");
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
    registry.add(holder, "VTime", "T", "holder.so");
    registry.add(waiting, "VTime", "T", "waiting.so");
    EXPECT_EQ(registry.add(other, "VTime", "other T", "other.so"), "holder.so");
    EXPECT_EQ(registry.find("VTime"), holder);
    holder.reset();
    EXPECT_EQ(registry.add(other, "VTime", "other T", "other.so"), "waiting.so");
    waiting.reset();
    EXPECT_FALSE(registry.find("VTime")) << "a refused creator does not wait";
    EXPECT_EQ(registry.add(other, "VTime", "other T", "other.so"), "");
    EXPECT_EQ(registry.find("VTime"), other);
}

TEST(CreatorRegistry, holdsACreatorOnceEvenIfItIsAddedTwice)
{
    Registry registry;
    auto first = makeStrong<Creator>();
    const auto second = makeStrong<Creator>();
    registry.add(first, "VTime", "T", "a.so");
    registry.add(second, "VTime", "T", "b.so");
    EXPECT_EQ(registry.add(first, "VTime", "T", "a.so"), "");
    EXPECT_EQ(first.referenceBlock()->weakCount(), 2u) << "the object itself and one entry";
    first.reset();
    EXPECT_EQ(registry.find("VTime"), second);
}

TEST(CreatorRegistry, mayBeQueriedWhileLibrariesComeAndGo)
{
    Registry registry;
    const auto lasting = makeStrong<Creator>();
    registry.add(lasting, "lasting", "L", "main");
    std::atomic<bool> done = false;
    std::thread other([&] {
        for (int i = 0; i < 2000; ++i) {
            const std::string name = "name " + std::to_string(i % 10);
            const auto creator = makeStrong<Creator>();
            EXPECT_EQ(registry.add(creator, name, name, "library"), "");
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

} // namespace CreatorRegistryTest
