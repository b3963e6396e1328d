#include <trellis/VObject.hpp>

#include <trellis/VFileObserver.hpp>
#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>

#include "support/TestNetwork.hpp"

namespace VObjectTest {

using namespace Orla;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::vector<std::string> steps;

// Records the steps of its creation.
struct Staged : Node {
    Staged(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : Node{name, level, preferences}
    {
        addInput("in");
        addOutput("out");
        setupFunctions().insert(&setup);
        note("constructor");
    }

    static void setup(VSlotContainer* that, const VSlotSet& inputs)
    {
        static_cast<Staged*>(that->object())->note("set-up of " + std::to_string(inputs.size()));
    }

    void note(const std::string& step) const
    {
        steps.push_back(step + (isRequestProcessingEnabled() ? ", enabled" : "") + (isRegistered() ? ", known" : ""));
    }
};

struct Wordy : Node {
    Wordy(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : Node{name, level, preferences}
    {
        addOutput<std::string>("text");
    }
};

// Passes an input on and has an output of the same type.
struct Passing : Node {
    Passing(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : Node{name, level, preferences}
    {
        registerOutput(addInput("in", 5.0));
        addOutput("out", 6.0);
    }
};

struct Announcements : VActionNotifier {
    void objectCreated(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer&,
                       const StrongPtr<VObjectCreator>& creator) override
    {
        if (const StrongPtr<Staged> staged{object})
            staged->note("announced by " + (creator ? creator->typeName() : "no creator"));
    }
};

struct Outputs : VOutputIterator {
    bool apply(const StrongPtr<VObject>& object, const std::type_info& type, const StrongPtr<VSlot>& output) override
    {
        EXPECT_EQ(type, output->type());
        names.push_back(object->Name() + "." + output->name());
        if (reaction)
            reaction(object);
        return names.size() < limit;
    }
    std::vector<std::string> names;
    std::size_t limit = 100;
    std::function<void(const StrongPtr<VObject>&)> reaction;
};

class VObjectTest : public FrameworkTest {
protected:
    VObjectTest() { steps.clear(); }
    ~VObjectTest() override
    {
        for (const StrongPtr<Node>& node : announced)
            VManagedObject::remove(node);
    }

    StrongPtr<Node> announce(const StrongPtr<Node>& node)
    {
        VObject::finishCreation(node);
        announced.push_back(node);
        return node;
    }

    std::vector<StrongPtr<Node>> announced;
};

} // namespace

static_assert(std::is_base_of_v<VManagedObject, VObject> && std::is_base_of_v<VSlotContainer, VObject>);

TEST_F(VObjectTest, findsFilesInTheFolderOfItsNetwork)
{
    VNetwork network{"/data/quakes"};
    const VNetwork::Scope scope{network};
    const auto node = makeNode("node");
    const auto pool = Loam::makeStrong<ValuePool>("run");
    EXPECT_EQ(node->inputFile("week.json"), "/data/quakes/week.json");
    EXPECT_EQ(node->resultFile("map.png", pool), "/data/quakes/map.png");
    EXPECT_EQ(node->resultFile("/tmp/map.png", pool), "/tmp/map.png");
    EXPECT_EQ(node->resultFile("map.png", nullptr), "/data/quakes/map.png");
}

TEST_F(VObjectTest, reportsTheFilesThatItUsesToTheObserverOfItsNetwork)
{
    struct Files final : VFileObserver {
        void reads(const VObject& object, const std::string& name, const std::string& path) override
        {
            used.push_back(object.Name() + " reads " + name + " from " + path);
        }
        void writes(const VObject& object, const std::string& path) override
        {
            used.push_back(object.Name() + " writes " + path);
        }

        std::vector<std::string> used;
    } files;
    VNetwork network{"/data"};
    const VNetwork::Scope scope{network};
    const auto node = makeNode("node");
    EXPECT_EQ(network.fileObserver(), nullptr);
    network.setFileObserver(&files);
    EXPECT_EQ(node->inputFile("week.json"), "/data/week.json");
    EXPECT_EQ(node->resultFile("map.png", Loam::makeStrong<ValuePool>("run", "case7")), "/data/map-case7.png");
    network.setFileObserver(nullptr);
    EXPECT_EQ(node->inputFile("day.json"), "/data/day.json");
    EXPECT_THAT(files.used,
                ElementsAre("node reads week.json from /data/week.json", "node writes /data/map-case7.png"));
}

TEST_F(VObjectTest, addsTheTagOfThePoolToTheNamesOfResults)
{
    VNetwork network{"/data"};
    const VNetwork::Scope scope{network};
    const auto node = makeNode("node");
    const auto pool = Loam::makeStrong<ValuePool>("seventh", "case7");
    EXPECT_EQ(node->resultFile("map.png", pool), "/data/map-case7.png");
    EXPECT_EQ(node->resultFile("maps.d/map", pool), "/data/maps.d/map-case7");
    EXPECT_EQ(node->resultFile(".hidden", pool), "/data/.hidden-case7");
    EXPECT_EQ(node->resultFile("/tmp/map.tar.gz", pool), "/tmp/map.tar-case7.gz");
    EXPECT_EQ(node->inputFile("week.json"), "/data/week.json");
}

TEST_F(VObjectTest, isCreatedInFourSteps)
{
    const auto notifier = Loam::makeStrong<Announcements>();
    VActionNotifier::add(notifier);
    const VObjectType<Staged> type{"Staged"};
    const StrongPtr<VObject> object = VObject::createObject("Staged", "my object");
    ASSERT_TRUE(object);
    EXPECT_EQ(object->Name(), "my object");
    EXPECT_EQ(VManagedObject::find("my object"), object);
    EXPECT_THAT(steps, ElementsAre("constructor", "set-up of 1", "announced by Staged, enabled, known"));
    VManagedObject::remove(object);
}

TEST_F(VObjectTest, isNotCreatedForAnUnregisteredType)
{
    EXPECT_FALSE(VObject::createObject("Unknown", "name"));
    VObject::finishCreation(nullptr);
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(VObjectTest, isNotEvaluatedBeforeItsProcessingIsEnabled)
{
    const auto pool = Loam::makeStrong<ValuePool>();
    const auto node = Loam::makeStrong<Node>("node");
    node->addInput("in");
    EXPECT_FALSE(VScheduler::schedule(node, 0, pool));
    node->write(pool, "in", 1.0);
    EXPECT_FALSE(VScheduler::isDue(pool));
    node->enableRequestProcessing();
    EXPECT_TRUE(VScheduler::schedule(node, 0, pool));
}

TEST_F(VObjectTest, keepsItsCreationPreferences)
{
    const auto preferences = Loam::makeStrong<VCreationPreferences>("local", "");
    EXPECT_EQ(Loam::makeStrong<Node>("node", 0, preferences)->creationPreferences(), preferences);
    EXPECT_FALSE(Loam::makeStrong<Node>("node")->creationPreferences());
}

TEST_F(VObjectTest, findsTheOutputsOfAType)
{
    const auto first = announce(makeNode("first"));
    const auto second = announce(Loam::makeStrong<Wordy>("second", 0, nullptr));
    const auto third = announce(Loam::makeStrong<Passing>("third", -1, nullptr));
    const auto unknown = makeNode("unknown");
    Outputs numbers;
    EXPECT_TRUE(VObject::findOutputObjects(typeid(double), numbers));
    EXPECT_THAT(numbers.names, ElementsAre("third.in", "third.out", "first.out"));
    Outputs texts;
    EXPECT_TRUE(VObject::findOutputObjects(typeid(std::string), texts));
    EXPECT_THAT(texts.names, ElementsAre("second.text"));
    Outputs two;
    two.limit = 2;
    EXPECT_FALSE(VObject::findOutputObjects(typeid(double), two));
    EXPECT_THAT(two.names, ElementsAre("third.in", "third.out"));
}

TEST_F(VObjectTest, mayAddOutputsOrBeRemovedDuringAnIteration)
{
    const auto first = announce(makeNode("first"));
    announce(makeNode("second"));
    Outputs outputs;
    outputs.reaction = [&](const StrongPtr<VObject>& object) {
        if (outputs.names.size() == 1) {
            for (int i = 0; i < 20; ++i)
                first->addOutput<std::string>(std::to_string(i));
            VManagedObject::remove(object);
        }
    };
    VObject::findOutputObjects(typeid(double), outputs);
    EXPECT_THAT(outputs.names, ElementsAre("first.out", "second.out"));
}

TEST_F(VObjectTest, isCreatedAndConnectedForAnInput)
{
    const VObjectType<Staged> type{"Provider"};
    const auto node = makeNode("node");
    const auto preferences = Loam::makeStrong<VCreationPreferences>("local", "");
    const StrongPtr<VObject> provider =
        VObject::attachNewObject(node.get(), node->findSlot("in"), "Provider", preferences);
    ASSERT_TRUE(provider);
    EXPECT_EQ(provider->Name(), "Provider");
    EXPECT_EQ(provider->creationPreferences(), preferences);
    EXPECT_TRUE(provider->isRegistered() && provider->isRequestProcessingEnabled());
    EXPECT_EQ(node->findSlot("in")->parameter(), provider->findOutput("out")->parameter());
    VManagedObject::remove(provider);
}

TEST_F(VObjectTest, leavesTheInputUnchangedIfTheTypeOrOutputIsMissing)
{
    const VObjectType<Wordy> wordy{"Wordy"};
    const auto node = makeNode("node");
    const auto other = makeNode("other");
    connect(other, node);
    const StrongPtr<VSlot> slot = node->findSlot("in");
    EXPECT_FALSE(VObject::attachNewObject(node.get(), slot, "Unknown", nullptr));
    EXPECT_THAT(warnings(),
                ElementsAre(AllOf(HasSubstr("\"Unknown\""), HasSubstr("\"in\""), HasSubstr("Node \"node\""))));
    EXPECT_FALSE(VObject::attachNewObject(node.get(), slot, "Wordy", nullptr));
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("Wordy"), HasSubstr("double"), HasSubstr("\"in\""),
                                              HasSubstr("Node \"node\""))));
    EXPECT_EQ(slot->parameter(), other->findOutput("out")->parameter());
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(VObjectTest, isNotCreatedForAMissingInput)
{
    const VObjectType<Staged> type{"Provider"};
    const auto node = makeNode("node");
    const auto other = makeNode("other");
    EXPECT_FALSE(VObject::attachNewObject(nullptr, node->findSlot("in"), "Provider", nullptr));
    EXPECT_FALSE(VObject::attachNewObject(node.get(), nullptr, "Provider", nullptr));
    EXPECT_FALSE(VObject::attachNewObject(node.get(), other->findSlot("in"), "Provider", nullptr));
    EXPECT_EQ(VManagedObject::count(), 0u);
    EXPECT_THAT(steps, IsEmpty());
    warnings();
}

} // namespace VObjectTest
