#include "support/TestNetwork.hpp"

#include <trellis/VNetwork.hpp>

#include <cstdlib>
#include <limits>
#include <random>

namespace NetworkObjectsTest {

// The registry of a network's objects, observed through `VManagedObject` and `VNetwork`.

using namespace Orla;
using testing::ElementsAre;

namespace {

struct Thing : VManagedObject {
    using VManagedObject::VManagedObject;
};

StrongPtr<Thing> add(const std::string& name, int level = 0)
{
    auto thing = Loam::makeStrong<Thing>(name, level);
    EXPECT_TRUE(VManagedObject::add(thing));
    return thing;
}

std::vector<std::string> namesBetween(int from, int to)
{
    struct : VManagedObjectIterator {
        bool apply(const StrongPtr<VManagedObject>& object) override
        {
            names.push_back(object->Name());
            return true;
        }
        std::vector<std::string> names;
    } visitor;
    VManagedObject::traverse(visitor, from, to);
    return visitor.names;
}

// Removes another object, warns and uses the registry while the program exits.
struct Talking : Node {
    explicit Talking(const std::string& name) : Node{name}
    {
        addInput("in");
        addOutput("out");
    }
    ~Talking() override
    {
        VActionNotifier::Warning(Name() + " is destroyed");
        VManagedObject::remove(VManagedObject::find("second"));
        VManagedObject::add(Loam::makeStrong<Thing>("late", 0));
        constexpr int Lowest = std::numeric_limits<int>::min();
        constexpr int Highest = std::numeric_limits<int>::max();
        EXPECT_LE(namesBetween(Lowest, Highest).size(), VManagedObject::count());
        removeParameter(findSlot("in"));
    }
};

[[noreturn]] void exitWithRegisteredObjects()
{
    static StrongPtr<Node> kept; // constructed first, destroyed last
    kept = Loam::makeStrong<Talking>("kept");
    {
        const std::vector<StrongPtr<Node>> nodes{Loam::makeStrong<Talking>("first"),
                                                 Loam::makeStrong<Talking>("second"),
                                                 Loam::makeStrong<Talking>("third"), kept};
        for (const StrongPtr<Node>& node : nodes)
            VObject::finishCreation(node);
        for (std::size_t i = 1; i < nodes.size(); ++i)
            connect(nodes[i], nodes[i - 1]);
        connect(nodes[0], nodes[3]);
    }
    VManagedObject::remove(kept);
    std::exit(0);
}

class NetworkObjectsTest : public FrameworkTest {
protected:
    ~NetworkObjectsTest() override { VManagedObject::forEachObject(&VManagedObject::remove); }
};

} // namespace

TEST_F(NetworkObjectsTest, areFoundByNameOnTheLowestLevelFirst)
{
    const auto high = add("name", 5);
    const auto first = add("name", 1);
    const auto second = add("name", 1);
    EXPECT_EQ(VManagedObject::find("name"), first);
    VManagedObject::remove(first);
    EXPECT_EQ(VManagedObject::find("name"), second);
    VManagedObject::remove(second);
    EXPECT_EQ(VManagedObject::find("name"), high);
    EXPECT_FALSE(VManagedObject::find("Name"));
    EXPECT_TRUE(VManagedObject::add(first));
    EXPECT_EQ(VManagedObject::find("name"), first);
}

TEST_F(NetworkObjectsTest, areFoundByTheirLastName)
{
    const auto thing = add("old");
    const auto other = add("other");
    for (const std::string name : {"new", "a name that is longer than those that a string keeps in itself", "x"}) {
        SCOPED_TRACE(name);
        const std::string former = thing->Name();
        EXPECT_TRUE(VManagedObject::rename(thing, name));
        EXPECT_EQ(thing->Name(), name);
        EXPECT_EQ(VManagedObject::find(name), thing);
        EXPECT_FALSE(VManagedObject::find(former));
    }
    EXPECT_TRUE(VManagedObject::rename(other, "x"));
    EXPECT_EQ(VManagedObject::find("x"), thing) << "names may be equal";
    VManagedObject::remove(thing);
    EXPECT_EQ(VManagedObject::find("x"), other);
}

TEST_F(NetworkObjectsTest, areRemovedInAnyOrder)
{
    std::vector<StrongPtr<Thing>> things;
    for (int i = 0; i < 300; ++i)
        things.push_back(add(std::to_string(i), i % 3));
    std::mt19937 random(8);
    while (!things.empty()) {
        const auto victim = things.begin() + static_cast<std::ptrdiff_t>(random() % things.size());
        const std::string name = (*victim)->Name();
        EXPECT_TRUE(VManagedObject::remove(*victim));
        EXPECT_FALSE((*victim)->isRegistered());
        things.erase(victim);
        ASSERT_EQ(VManagedObject::count(), things.size());
        ASSERT_FALSE(VManagedObject::find(name));
        for (int level = 0; level < 3; ++level) {
            std::vector<std::string> expected;
            for (const StrongPtr<Thing>& thing : things) {
                if (thing->level() == level)
                    expected.push_back(thing->Name());
            }
            ASSERT_EQ(namesBetween(level, level), expected);
        }
    }
}

TEST_F(NetworkObjectsTest, mayStayRegisteredUntilTheProgramExits)
{
    EXPECT_EXIT(exitWithRegisteredObjects(), testing::ExitedWithCode(0), "");
}

TEST_F(NetworkObjectsTest, areFoundByAPreference)
{
    struct Computed final : VCreationPreferences {
        bool contains(const std::string& word) const override { return word == "wanted"; }
    };
    const auto plain = Loam::makeStrong<VCreationPreferences>("wanted", "more");
    const auto later = Loam::makeStrong<VCreationPreferences>("other", "");
    const std::pair<const char*, StrongPtr<VCreationPreferences>> made[] = {
        {"none", nullptr}, {"plain", plain}, {"later", later}, {"computed", Loam::makeStrong<Computed>()}};
    std::vector<StrongPtr<Node>> nodes;
    for (const auto& [name, preferences] : made) {
        nodes.push_back(Loam::makeStrong<Node>(name, 0, preferences));
        nodes.back()->addOutput("out");
        VObject::finishCreation(nodes.back());
    }
    const auto found = [] {
        std::vector<std::string> names;
        VObject::forEachOutput(
            typeid(double),
            [&](const StrongPtr<VObject>& object, const StrongPtr<VSlot>&) { names.push_back(object->Name()); },
            "wanted");
        return names;
    };
    EXPECT_THAT(found(), ElementsAre("plain", "computed"));
    later->add("wanted");
    EXPECT_THAT(found(), ElementsAre("plain", "later", "computed"));
    VManagedObject::remove(nodes[1]);
    EXPECT_THAT(found(), ElementsAre("later", "computed"));
    for (const StrongPtr<Node>& node : nodes)
        VManagedObject::remove(node);
}

TEST_F(NetworkObjectsTest, includeOneUniqueObjectPerKindThatIsHeldWeakly)
{
    VNetwork network;
    auto chart = Loam::makeStrong<Thing>("chart", 0);
    const auto clock = Loam::makeStrong<Thing>("clock", 0);
    EXPECT_FALSE(network.uniqueObject(typeid(double)));
    network.setUniqueObject(typeid(double), chart);
    network.setUniqueObject(typeid(int), clock);
    EXPECT_EQ(network.uniqueObject(typeid(double)), chart);
    EXPECT_EQ(network.uniqueObject(typeid(int)), clock);
    EXPECT_FALSE(VNetwork{}.uniqueObject(typeid(int))) << "another network has its own";
    chart.reset();
    EXPECT_FALSE(network.uniqueObject(typeid(double)));
    network.setUniqueObject(typeid(double), clock);
    EXPECT_EQ(network.uniqueObject(typeid(double)), clock);
}

} // namespace NetworkObjectsTest
