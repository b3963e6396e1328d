#include <trellis/VManagedObject.hpp>

#include "support/TestNetwork.hpp"

#include <limits>

namespace VManagedObjectTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Thing : VManagedObject {
    using VManagedObject::VManagedObject;
};

struct Visitor : VManagedObjectIterator {
    explicit Visitor(std::function<bool(const StrongPtr<VManagedObject>&)> theReaction = {})
        : reaction{std::move(theReaction)}
    {
    }

    bool apply(const StrongPtr<VManagedObject>& object) override
    {
        names.push_back(object->Name());
        return !reaction || reaction(object);
    }

    std::function<bool(const StrongPtr<VManagedObject>&)> reaction;
    std::vector<std::string> names;
};

constexpr int Lowest = std::numeric_limits<int>::min();
constexpr int Highest = std::numeric_limits<int>::max();

class VManagedObjectTest : public FrameworkTest {
protected:
    ~VManagedObjectTest() override
    {
        Visitor remover([](const StrongPtr<VManagedObject>& object) { return VManagedObject::remove(object); });
        VManagedObject::traverse(remover, Lowest, Highest);
    }

    static StrongPtr<Thing> add(const std::string& name, int level = 0)
    {
        auto thing = Loam::makeStrong<Thing>(name, level);
        EXPECT_TRUE(VManagedObject::add(thing));
        return thing;
    }

    static std::vector<std::string> namesBetween(int from, int to)
    {
        Visitor visitor;
        EXPECT_TRUE(VManagedObject::traverse(visitor, from, to));
        return visitor.names;
    }
};

} // namespace

TEST_F(VManagedObjectTest, isKeptAliveUntilItIsRemoved)
{
    auto thing = Loam::makeStrong<Thing>("thing", 3);
    EXPECT_EQ(thing->Name(), "thing");
    EXPECT_EQ(thing->level(), 3);
    EXPECT_FALSE(thing->isRegistered());
    EXPECT_FALSE(VManagedObject::remove(thing));
    EXPECT_TRUE(VManagedObject::add(thing));
    EXPECT_TRUE(thing->isRegistered());
    EXPECT_FALSE(VManagedObject::add(thing));
    EXPECT_EQ(VManagedObject::count(), 1u);

    const WeakPtrImpl<Thing> weak = thing;
    thing.reset();
    ASSERT_FALSE(weak.expired());
    EXPECT_TRUE(VManagedObject::remove(weak.lock()));
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(VManagedObjectTest, rejectsNull)
{
    EXPECT_FALSE(VManagedObject::add(nullptr));
    EXPECT_FALSE(VManagedObject::remove(nullptr));
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(VManagedObjectTest, isVisitedByLevelAndThenInInsertionOrder)
{
    for (const auto& [name, level] : {std::pair{"d", 2}, {"b", 0}, {"e", 2}, {"a", -1}, {"c", 0}, {"f", Highest}})
        add(name, level);
    EXPECT_THAT(namesBetween(Lowest, Highest), ElementsAre("a", "b", "c", "d", "e", "f"));
    EXPECT_THAT(namesBetween(0, 2), ElementsAre("b", "c", "d", "e"));
    EXPECT_THAT(namesBetween(1, 1), IsEmpty());
    EXPECT_THAT(namesBetween(2, 0), IsEmpty());
    EXPECT_THAT(namesBetween(Highest, Highest), ElementsAre("f"));
}

TEST_F(VManagedObjectTest, isVisitedUntilAVisitReturnsFalse)
{
    add("a");
    add("b");
    add("c");
    Visitor visitor([](const StrongPtr<VManagedObject>& object) { return object->Name() != "b"; });
    EXPECT_FALSE(VManagedObject::traverse(visitor, 0, 0));
    EXPECT_THAT(visitor.names, ElementsAre("a", "b"));
}

TEST_F(VManagedObjectTest, isNotVisitedIfItIsAddedDuringATraversal)
{
    add("a", 1);
    add("b", 1);
    Visitor visitor([](const StrongPtr<VManagedObject>& object) {
        for (int level = 0; level < 4; ++level)
            add(object->Name() + " later", level);
        return true;
    });
    EXPECT_TRUE(VManagedObject::traverse(visitor, Lowest, Highest));
    EXPECT_THAT(visitor.names, ElementsAre("a", "b"));
    EXPECT_EQ(VManagedObject::count(), 10u);
}

TEST_F(VManagedObjectTest, isNotVisitedIfItIsRemovedDuringATraversal)
{
    for (const char* name : {"a", "b", "c", "d", "e"})
        add(name, name[0] == 'e' ? 1 : 0);
    Visitor visitor([](const StrongPtr<VManagedObject>& object) {
        if (object->Name() == "b") {
            for (const char* name : {"a", "b", "c", "e"})
                VManagedObject::remove(VManagedObject::find(name));
            // A nested traversal while this one is at a removed entry.
            EXPECT_THAT(namesBetween(Lowest, Highest), ElementsAre("d"));
            VManagedObject::add(object);
        }
        return true;
    });
    EXPECT_TRUE(VManagedObject::traverse(visitor, Lowest, Highest));
    EXPECT_THAT(visitor.names, ElementsAre("a", "b", "d"));
    EXPECT_THAT(namesBetween(Lowest, Highest), ElementsAre("d", "b"));
}

TEST_F(VManagedObjectTest, mayRemoveOthersWhenItIsDestroyed)
{
    struct Owner : Thing {
        Owner() : Thing{"owner", 0} {}
        ~Owner() override { VManagedObject::remove(VManagedObject::find("owned")); }
    };
    add("first");
    VManagedObject::add(Loam::makeStrong<Owner>());
    add("owned");
    add("last");
    VManagedObject::remove(VManagedObject::find("owner"));
    EXPECT_THAT(namesBetween(Lowest, Highest), ElementsAre("first", "last"));
}

TEST_F(VManagedObjectTest, mayBeRemovedThroughThePointerPassedToAVisitor)
{
    struct Removing : VManagedObjectIterator {
        bool apply(const StrongPtr<VManagedObject>& object) override { return VManagedObject::remove(object); }
    } removing;
    add("a");
    add("b");
    EXPECT_TRUE(VManagedObject::traverse(removing, 0, 0));
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(VManagedObjectTest, survivesAVisitThatThrows)
{
    add("a");
    add("b");
    Visitor visitor([](const StrongPtr<VManagedObject>& object) -> bool {
        VManagedObject::remove(object);
        throw 1;
    });
    EXPECT_THROW(VManagedObject::traverse(visitor, 0, 0), int);
    EXPECT_THAT(namesBetween(0, 0), ElementsAre("b"));
    add("c");
    EXPECT_THAT(namesBetween(0, 0), ElementsAre("b", "c"));
}

} // namespace VManagedObjectTest
