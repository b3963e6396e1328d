#include <trellis/VSlotContainer.hpp>

#include "support/TestNetwork.hpp"

namespace VSlotContainerTest {

using namespace Orla;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class VSlotContainerTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};

    // Returns the current value of the input "in" of `node`.
    double input(const StrongPtr<Node>& node) const { return contentOf(node->findSlot("in")->getLocalValue(pool)); }
};

// Collects the names of the slots that it visits.
struct Names : VSlotIterator {
    bool apply(const StrongPtr<VSlot>& slot) override
    {
        names.push_back(slot->name());
        if (reaction)
            reaction(slot);
        return slot->name() != last;
    }
    std::vector<std::string> names;
    std::string last;
    std::function<void(const StrongPtr<VSlot>&)> reaction;
};

std::vector<std::string> calls;
void setup(VSlotContainer*, const VSlotSet& inputs)
{
    calls.push_back("with " + std::to_string(inputs.size()));
}

// Adds the two others. If this is the first of the three in the set, at least one of
// them comes after it.
template<int Number>
void addingSetup(VSlotContainer* that, const VSlotSet&)
{
    calls.push_back("adding");
    that->setupFunctions().insert({&addingSetup<1>, &addingSetup<2>, &addingSetup<3>});
}

} // namespace

TEST_F(VSlotContainerTest, holdsInputsAndOutputsByName)
{
    const auto node = Loam::makeStrong<Node>("node");
    const auto parameter = testParameter("p", 1.0);
    const StrongPtr<VSlot> input = node->addParameter("a", 3, parameter, true);
    const StrongPtr<VSlot> passive = node->addParameter("b", 0, testParameter("q"), false);
    const auto result = testParameter("r");
    const StrongPtr<VSlot> output = node->registerOutput(result, "a");
    EXPECT_EQ(node->findSlot("a"), input);
    EXPECT_EQ(node->findOutput("a"), output);
    EXPECT_FALSE(node->findSlot("c"));
    EXPECT_FALSE(node->findOutput("b"));
    EXPECT_EQ(input->expertLevel(), 3);
    EXPECT_FALSE(input->hasFlag(VSlot::Passive));
    EXPECT_TRUE(passive->hasFlag(VSlot::Passive));
    EXPECT_TRUE(output->hasFlag(VSlot::Output));
    EXPECT_EQ(result->source().lock(), node);
    EXPECT_EQ(node->inputs().size(), 2u);
    EXPECT_EQ(node->outputs().size(), 1u);
}

TEST_F(VSlotContainerTest, refusesASecondSlotOfANameWithAWarning)
{
    const auto node = makeNode("node");
    const StrongPtr<VSlot> input = node->findSlot("in");
    const StrongPtr<VSlot> output = node->findOutput("out");
    EXPECT_FALSE(node->addParameter("in", 0, testParameter("p"), true));
    EXPECT_FALSE(node->registerOutput(testParameter("p"), "out"));
    EXPECT_FALSE(node->addParameter("new", 0, nullptr, true));
    EXPECT_FALSE(node->registerOutput(nullptr, "new"));
    EXPECT_THAT(warnings(), ElementsAre(AllOf(HasSubstr("input \"in\""), HasSubstr("Node \"node\"")),
                                        AllOf(HasSubstr("output \"out\""), HasSubstr("Node \"node\"")),
                                        AllOf(HasSubstr("input \"new\""), HasSubstr("Node \"node\"")),
                                        AllOf(HasSubstr("output \"new\""), HasSubstr("Node \"node\""))));
    EXPECT_EQ(node->findSlot("in"), input);
    EXPECT_EQ(node->findOutput("out"), output);
}

TEST_F(VSlotContainerTest, keepsTheSourceOfAParameterThatIsRegisteredTwice)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    const StrongPtr<VParameter> output = first->findOutput("out")->parameter();
    EXPECT_TRUE(second->registerOutput(output, "first's"));
    EXPECT_EQ(output->source().lock(), first);
}

TEST_F(VSlotContainerTest, removesAnInput)
{
    const auto writer = makeNode("writer");
    const auto node = makeNode("node", {"in", "other"});
    connect(writer, node);
    StrongPtr<VSlot> input = node->findSlot("in");
    EXPECT_TRUE(node->removeParameter(input));
    EXPECT_FALSE(node->removeParameter(input));
    EXPECT_FALSE(writer->removeParameter(node->findSlot("other")));
    EXPECT_FALSE(node->removeParameter(nullptr));
    EXPECT_FALSE(node->findSlot("in"));
    EXPECT_EQ(input->container(), nullptr);
    EXPECT_THAT(writer->findOutput("out")->parameter()->readers(), IsEmpty());
    EXPECT_FALSE(node->attachOutput(writer->findOutput("out"), input, ""));
    EXPECT_EQ(warnings().size(), 1u);
    EXPECT_TRUE(node->addInput("in")) << "the name is free again";
}

TEST_F(VSlotContainerTest, connectsReplacesAndDetaches)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    const auto reader = makeNode("reader");
    const StrongPtr<VSlot> slot = reader->findSlot("in");
    const StrongPtr<VParameter> own = slot->ownParameter();
    EXPECT_FALSE(reader->detach(slot));

    EXPECT_TRUE(connect(first, reader));
    EXPECT_TRUE(slot->isConnected());
    EXPECT_EQ(slot->parameter(), first->findOutput("out")->parameter());
    EXPECT_EQ(slot->ownParameter(), own);
    EXPECT_EQ(reader->findSlot(first->findOutput("out")->parameter()), slot);

    EXPECT_TRUE(connect(second, reader));
    EXPECT_EQ(slot->parameter(), second->findOutput("out")->parameter());
    EXPECT_THAT(first->findOutput("out")->parameter()->readers(), IsEmpty());
    EXPECT_FALSE(reader->findSlot(first->findOutput("out")->parameter()));

    EXPECT_TRUE(reader->detach(slot));
    EXPECT_EQ(slot->parameter(), own);
    EXPECT_FALSE(slot->isConnected());
    EXPECT_FALSE(reader->detach(slot));
    EXPECT_FALSE(reader->detach(nullptr));
    EXPECT_FALSE(first->detach(slot)) << "it belongs to another container";
}

TEST_F(VSlotContainerTest, refusesAnotherTypeNamesBothAndChangesNothing)
{
    const auto writer = makeNode("writer", {});
    writer->addOutput<std::string>("text");
    writer->addOutput<Interval>("interval");
    const auto old = makeNode("old");
    const auto reader = makeNode("reader");
    connect(old, reader);
    const StrongPtr<VSlot> slot = reader->findSlot("in");
    runAll({reader}, pool);
    const auto& readers = old->findOutput("out")->parameter()->readers();
    ASSERT_THAT(readers, ElementsAre(slot.get()));

    const struct {
        const char* output;
        const char* member;
        std::vector<std::string> mentions;
    } cases[] = {
        {"text", "", {"string", "double"}},
        {"interval", "", {"Interval", "double"}},
        {"interval", "middle", {"Interval", "\"middle\"", "low, high"}},
        {"text", "low", {"string", "\"low\""}},
    };
    for (const auto& [output, member, mentions] : cases) {
        SCOPED_TRACE(std::string(output) + '.' + member);
        const Loam::Result<void> done = reader->tryAttachOutput(writer->findOutput(output), slot, member);
        ASSERT_FALSE(done);
        EXPECT_THAT(warnings(), IsEmpty());
        EXPECT_FALSE(connect(writer, reader, "in", member, output));
        const std::vector<std::string> warned = warnings();
        ASSERT_EQ(warned.size(), 1u);
        for (const std::string& mention : mentions) {
            EXPECT_THAT(done.reason(), HasSubstr(mention));
            EXPECT_THAT(warned[0], HasSubstr(mention));
        }
        EXPECT_THAT(warned[0], AllOf(HasSubstr("\"in\""), HasSubstr("\"reader\"")));
    }
    EXPECT_EQ(slot->parameter(), old->findOutput("out")->parameter());
    EXPECT_EQ(slot->member(), "");
    EXPECT_THAT(readers, ElementsAre(slot.get()));
    EXPECT_FALSE(VScheduler::isDue(reader, pool));
    EXPECT_THAT(writer->findOutput("text")->parameter()->readers(), IsEmpty());
}

TEST_F(VSlotContainerTest, refusesSlotsThatAreNotItsInputs)
{
    const auto writer = makeNode("writer");
    const auto reader = makeNode("reader");
    const StrongPtr<VSlot> in = reader->findSlot("in");
    const StrongPtr<VSlot> out = writer->findOutput("out");
    EXPECT_EQ(writer->tryAttachOutput(out, in, "").reason(), "the slot is not an input of Node \"writer\"");
    EXPECT_EQ(reader->tryAttachOutput(out, nullptr, "").reason(), "the slot is not an input of Node \"reader\"");
    EXPECT_EQ(reader->tryAttachOutput(out, reader->findOutput("out"), "").reason(),
              "the slot is not an input of Node \"reader\"");
    EXPECT_EQ(reader->tryAttachOutput(nullptr, in, "").reason(), "the source is null");
    EXPECT_EQ(reader->tryAttachParameter(nullptr, in, "").reason(), "the source is null");
    EXPECT_FALSE(reader->findSlot("in")->isConnected());
}

TEST_F(VSlotContainerTest, selectsAComponentAndWritesThroughIt)
{
    const auto writer = makeNode("writer", {});
    writer->addOutput("interval", Interval{3, 4});
    const auto reader = makeNode("reader");
    EXPECT_TRUE(connect(writer, reader, "in", "low", "interval"));
    EXPECT_EQ(input(reader), 3);
    EXPECT_TRUE(connect(writer, reader, "in", "high", "interval")) << "another member makes a different connection";
    EXPECT_EQ(reader->findSlot("in")->member(), "high");
    EXPECT_EQ(input(reader), 4);
    reader->write(pool, "in", 7.0);
    EXPECT_EQ(writer->read<Interval>(pool, "interval"), (Interval{3, 7}));
    reader->detach(reader->findSlot("in"));
    EXPECT_EQ(reader->findSlot("in")->member(), "");
    EXPECT_EQ(input(reader), 0);
}

TEST_F(VSlotContainerTest, readsTheInputOfAnotherContainer)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    EXPECT_TRUE(second->attachParameter(first->findSlot("in")->parameter(), second->findSlot("in"), ""));
    first->write(pool, "in", 5.0);
    EXPECT_TRUE(VScheduler::isDue(first, pool));
    EXPECT_TRUE(VScheduler::isDue(second, pool));
    EXPECT_EQ(input(second), 5);
}

TEST_F(VSlotContainerTest, findsTheInputThatReadsAParameter)
{
    const auto parameter = testParameter("shared");
    const auto many = makeNode("many", {});
    for (int i = 0; i < 30; ++i)
        many->addInput("in " + std::to_string(i));
    EXPECT_FALSE(many->findSlot(parameter));
    EXPECT_FALSE(many->findSlot(StrongPtr<VParameter>()));
    many->attachParameter(parameter, many->findSlot("in 17"), "");
    EXPECT_EQ(many->findSlot(parameter), many->findSlot("in 17"));
    std::vector<StrongPtr<Node>> readers;
    for (int i = 0; i < 50; ++i) {
        readers.push_back(makeNode("reader"));
        readers.back()->attachParameter(parameter, readers.back()->findSlot("in"), "");
    }
    EXPECT_EQ(many->findSlot(parameter), many->findSlot("in 17"));
    EXPECT_EQ(readers[40]->findSlot(parameter), readers[40]->findSlot("in"));
    EXPECT_FALSE(makeNode("none")->findSlot(parameter));
}

TEST_F(VSlotContainerTest, visitsInputsOfAnExpertLevelAndAbove)
{
    const auto node = Loam::makeStrong<Node>("node");
    for (const auto& [name, level] : {std::pair{"a", 0}, {"b", 5}, {"c", 2}, {"d", -1}, {"e", 5}})
        node->addParameter(name, level, testParameter(name), true);
    Names names;
    EXPECT_TRUE(node->iterateParameters(names, 2));
    EXPECT_THAT(names.names, ElementsAre("b", "c", "e"));
    Names ended;
    ended.last = "b";
    EXPECT_FALSE(node->iterateParameters(ended, -10));
    EXPECT_THAT(ended.names, ElementsAre("a", "b"));
}

TEST_F(VSlotContainerTest, allowsAddingAndRemovingInputsDuringAVisit)
{
    const auto node = makeNode("node", {"a", "b", "c"});
    Names names;
    names.reaction = [&node](const StrongPtr<VSlot>& slot) {
        if (slot->name() == "a") {
            node->removeParameter(node->findSlot("b"));
            node->removeParameter(slot);
            for (int i = 0; i < 50; ++i)
                node->addInput(std::to_string(i));
        }
    };
    EXPECT_TRUE(node->iterateParameters(names, 0));
    EXPECT_THAT(names.names, ElementsAre("a", "c"));
}

TEST_F(VSlotContainerTest, runsEachSetupFunctionOnceWithItsInputs)
{
    const auto node = makeNode("node", {"a", "b"});
    EXPECT_TRUE(node->setupFunctions().insert(&setup).second);
    EXPECT_FALSE(node->setupFunctions().insert(&setup).second);
    calls.clear();
    node->runSetupFunctions();
    EXPECT_THAT(calls, ElementsAre("with 2"));

    std::set<VSlotContainer::SetupFunction> three{&addingSetup<1>, &addingSetup<2>, &addingSetup<3>};
    node->setupFunctions() = {*three.begin()};
    calls.clear();
    node->runSetupFunctions();
    EXPECT_EQ(calls.size(), 1u) << "functions added meanwhile run the next time";
    node->runSetupFunctions();
    EXPECT_EQ(calls.size(), 4u);
}

TEST_F(VSlotContainerTest, describesItselfByTypeAndName)
{
    EXPECT_EQ(makeNode("scene")->typeAndName(), "Node \"scene\"");
    struct Bare : VSlotContainer {};
    EXPECT_EQ(Loam::makeStrong<Bare>()->typeAndName(), "Bare");
    EXPECT_EQ(Loam::makeStrong<Bare>()->object(), nullptr);
    const auto node = makeNode("node");
    EXPECT_EQ(node->object(), node.get());
}

TEST_F(VSlotContainerTest, describesItselfByTheDeclaredTypeOfAClassWithSeveral)
{
    const auto node = makeNode("scene");
    EXPECT_EQ(node->typeName(), "Node");
    EXPECT_FALSE(node->hasTypeName());
    node->setTypeName("Scene");
    EXPECT_TRUE(node->hasTypeName());
    EXPECT_EQ(node->typeName(), "Scene");
    EXPECT_EQ(node->typeAndName(), "Scene \"scene\"");
}

TEST_F(VSlotContainerTest, leavesItsReadersTheLastValuesWhenItIsDestroyed)
{
    auto writer = makeNode("writer");
    const auto reader = makeNode("reader");
    connect(writer, reader);
    runAll({writer, reader}, pool);
    const StrongPtr<VParameter> output = writer->findOutput("out")->parameter();
    writer.reset();
    EXPECT_FALSE(output->owner());
    EXPECT_TRUE(reader->findSlot("in")->isConnected());
    EXPECT_EQ(input(reader), 1);
    EXPECT_EQ(runAll({reader}, pool).failures, 0u);
    EXPECT_EQ(reader->read(pool, "out"), 2);
}

} // namespace VSlotContainerTest
