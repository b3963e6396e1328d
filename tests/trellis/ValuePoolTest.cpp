#include <trellis/ValuePool.hpp>

#include "support/TestNetwork.hpp"

#include <random>

namespace ValuePoolTest {

using namespace Orla;
using testing::ElementsAre;

namespace {

// A value that keeps an object alive, like those that represent objects.
struct Holding final : Typed<double> {
    explicit Holding(const StrongPtr<Node>& theNode) : node{theNode} {}
    double get() const override { return 0; }
    void set(const double&) override {}
    StrongPtr<Node> node;
};

class ValuePoolTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace

TEST_F(ValuePoolTest, hasAName)
{
    EXPECT_EQ(pool->Name(), "pool");
    EXPECT_EQ(ValuePool().Name(), "");
    EXPECT_EQ(pool->root(), pool);
}

TEST_F(ValuePoolTest, findsAVariableByNameAndByParameter)
{
    const auto parameter = testParameter("limit");
    const auto value = testValue(4.5);
    EXPECT_FALSE(pool->retrieveValue("limit"));
    EXPECT_FALSE(pool->findVariable(*parameter));
    pool->createVariable(parameter.get(), value);
    EXPECT_EQ(pool->retrieveValue("limit"), value);
    EXPECT_EQ(pool->findVariable(*parameter), value);
    EXPECT_EQ(pool->lookUp(*parameter), value.get());
    EXPECT_EQ(pool->variableCount(), 1u);
    EXPECT_FALSE(pool->retrieveValue("Limit"));
    EXPECT_FALSE(pool->findVariable(*testParameter("limit"))) << "another parameter of the same name";
}

TEST_F(ValuePoolTest, ignoresNull)
{
    pool->createVariable(nullptr, testValue(1.0));
    pool->createVariable(testParameter("limit").get(), nullptr);
    EXPECT_EQ(pool->variableCount(), 0u);
    EXPECT_FALSE(pool->retrieveValue("limit"));
}

TEST_F(ValuePoolTest, returnsTheReplacedValueOfAParameter)
{
    const auto parameter = testParameter("limit");
    const auto beside = testParameter("beside");
    const StrongPtr<VValueBase> kept = beside->getLocalValue(pool);
    for (int i = 0; i < 5; ++i) {
        const auto value = testValue(double{1} * i);
        pool->createVariable(parameter.get(), value);
        EXPECT_EQ(parameter->getValueBase(pool), value);
        EXPECT_EQ(beside->getValueBase(pool), kept);
        EXPECT_EQ(pool->retrieveValue("limit"), value);
    }
    EXPECT_EQ(pool->variableCount(), 2u);
    EXPECT_EQ(livingTestValues, 4u) << "two prototypes and two variables";
}

TEST_F(ValuePoolTest, removesTheOldValueOfAReplacedVariable)
{
    const auto node = makeNode("node");
    const StrongPtr<VParameter> parameter = node->findSlot("in")->parameter();
    const WeakPtrImpl<VValueBase> old = parameter->getLocalValue(pool);
    const auto value = testValue(2.0);
    pool->createVariable(parameter.get(), value);
    EXPECT_EQ(parameter->getValueBase(pool), value);
    EXPECT_TRUE(old.expired());
    EXPECT_EQ(node->findSlot("in")->getValueBase(pool), value);
    EXPECT_EQ(pool->retrieveValue("in"), value);
}

TEST_F(ValuePoolTest, keepsANameUntilAllItsParametersAreDestroyed)
{
    auto first = testParameter("limit", 1.0);
    auto second = testParameter("limit", 2.0);
    const StrongPtr<VValueBase> value = first->createLocalVariable(pool);
    second->createLocalVariable(pool);
    first.reset();
    EXPECT_EQ(pool->retrieveValue("limit"), value);
    EXPECT_EQ(second->getValueBase(pool), value);
    second.reset();
    EXPECT_FALSE(pool->retrieveValue("limit"));
}

TEST_F(ValuePoolTest, keepsVariablesOfDifferentPoolsApart)
{
    const auto parameter = testParameter("limit", 1.0);
    std::vector<StrongPtr<ValuePool>> pools;
    for (int i = 0; i < 10; ++i) {
        pools.push_back(Loam::makeStrong<ValuePool>());
        Node::write(pools.back(), makeNode("node")->addInput("unused"), 1.0);
        StrongPtr<Typed<double>>(parameter->getLocalValue(pools.back()))->set(i);
    }
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < pools.size(); ++i)
            EXPECT_EQ(contentOf(parameter->getValueBase(pools[i])), static_cast<double>(i));
    }
}

TEST_F(ValuePoolTest, distinguishesANewPoolFromADestroyedOne)
{
    const auto parameter = testParameter("limit");
    for (int i = 0; i < 20; ++i) {
        const auto each = Loam::makeStrong<ValuePool>(); // most likely at the address of the previous one
        EXPECT_FALSE(parameter->getValueBase(each));
        EXPECT_TRUE(parameter->getLocalValue(each));
        EXPECT_TRUE(parameter->getValueBase(each));
    }
}

TEST_F(ValuePoolTest, keepsInputsOfTheSameNameApart)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    first->write(pool, "in", 1.0);
    second->write(pool, "in", 2.0);
    EXPECT_EQ(first->read(pool, "in"), 1);
    EXPECT_EQ(second->read(pool, "in"), 2);
    EXPECT_FALSE(pool->retrieveValue("in")) << "the name is ambiguous";
    EXPECT_EQ(pool->variableCount(), 2u);
}

TEST_F(ValuePoolTest, keepsAnInputAndAnOutputOfTheSameNameApart)
{
    const auto node = Loam::makeStrong<Node>("node");
    const StrongPtr<VSlot> input = node->addInput("data", 1.0);
    const StrongPtr<VSlot> output = node->addOutput("data", 2.0);
    const StrongPtr<VSlot> textOutput = node->addOutput<std::string>("data 2", "text");
    Node::write(pool, output, 5.0);
    EXPECT_EQ(contentOf(input->getLocalValue(pool)), 1);
    EXPECT_EQ(contentOf(output->getLocalValue(pool)), 5);
    EXPECT_EQ(contentOf<std::string>(textOutput->getLocalValue(pool)), "text");
    EXPECT_EQ(pool->variableCount(), 3u);
}

TEST_F(ValuePoolTest, keepsParametersWithoutAnOwnerApart)
{
    const auto first = testParameter("limit", 1.0);
    const auto second = testParameter("limit", 2.0);
    const auto third = testParameter("limit", 3.0);
    EXPECT_EQ(contentOf(first->getLocalValue(pool)), 1);
    EXPECT_EQ(contentOf(second->getLocalValue(pool)), 2);
    EXPECT_EQ(contentOf(third->getLocalValue(pool)), 3);
    EXPECT_EQ(contentOf(pool->retrieveValue("limit")), 1) << "the first one has the name";
    EXPECT_EQ(pool->variableCount(), 3u);
}

TEST_F(ValuePoolTest, sharesAVariableBetweenWriterAndReaders)
{
    const auto writer = makeNode("writer");
    const auto reader = makeNode("reader");
    connect(writer, reader);
    writer->write(pool, "out", 5.0);
    EXPECT_EQ(contentOf(reader->findSlot("in")->getValueBase(pool)), 5);
    EXPECT_EQ(pool->variableCount(), 1u);
    EXPECT_EQ(reader->findSlot("in")->getValueBase(pool), writer->findOutput("out")->getValueBase(pool));
}

TEST_F(ValuePoolTest, finds100000VariablesByNameAndByParameter)
{
    std::vector<StrongPtr<VParameter>> parameters;
    constexpr std::size_t Count = 100'000;
    for (std::size_t i = 0; i < Count; ++i) {
        parameters.push_back(testParameter("parameter " + std::to_string(i), static_cast<double>(i)));
        parameters.back()->createLocalVariable(pool);
    }
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        const std::size_t index = random() % Count;
        EXPECT_EQ(contentOf(pool->findVariable(*parameters[index])), static_cast<double>(index));
        EXPECT_EQ(contentOf(pool->retrieveValue(parameters[index]->Name())), static_cast<double>(index));
    }
    EXPECT_EQ(pool->variableCount(), Count);
}

TEST_F(ValuePoolTest, keepsItsNamesWhileParametersAreAddedAndDestroyed)
{
    // Around the size at which the pool changes how it looks names up.
    std::vector<StrongPtr<VParameter>> parameters;
    std::mt19937 random(2);
    double next = 0;
    for (int step = 0; step < 2000; ++step) {
        if (parameters.empty() || random() % (parameters.size() < 30 ? 5 : 2) != 0) {
            ++next;
            parameters.push_back(testParameter(std::to_string(next), next));
            parameters.back()->createLocalVariable(pool);
        } else {
            const auto victim = parameters.begin() + static_cast<std::ptrdiff_t>(random() % parameters.size());
            const std::string name = (*victim)->Name();
            parameters.erase(victim);
            ASSERT_FALSE(pool->retrieveValue(name));
        }
        ASSERT_EQ(pool->variableCount(), parameters.size());
        for (const StrongPtr<VParameter>& parameter : parameters) {
            const StrongPtr<VValueBase> value = pool->retrieveValue(parameter->Name());
            ASSERT_TRUE(value);
            ASSERT_EQ(value, parameter->getValueBase(pool));
            ASSERT_EQ(value->Text(), parameter->DefaultValue()->Text());
        }
    }
}

TEST_F(ValuePoolTest, mayBeDestroyedBeforeOrAfterParametersAndContainers)
{
    for (const std::string order : {"pcn", "pnc", "cpn", "cnp", "npc", "ncp"}) {
        SCOPED_TRACE(order);
        StrongPtr<ValuePool> first(new ValuePool("first"));
        StrongPtr<ValuePool> second(new ValuePool("second"));
        StrongPtr<VParameter> plain = testParameter("in");
        std::vector<StrongPtr<Node>> nodes{makeNode("writer"), makeNode("reader")};
        connect(nodes[0], nodes[1]);
        StrongPtr<VSlot> slot = nodes[1]->findSlot("in");
        for (const auto& each : {first, second}) {
            plain->getLocalValue(each);
            runAll(nodes, each);
            nodes[0]->write(each, "in", 3.0);
        }
        for (const char what : order) {
            if (what == 'p') {
                first.reset();
                second.reset();
            } else if (what == 'c') {
                plain.reset();
            } else {
                nodes.clear();
                if (first) {
                    EXPECT_EQ(contentOf(slot->getValueBase(first)), 1) << "the slot keeps the writer's output";
                }
            }
        }
        EXPECT_FALSE(slot->container());
        EXPECT_FALSE(slot->getValueBase(first));
    }
}

TEST_F(ValuePoolTest, keepsTheLastValuesOfADestroyedObject)
{
    auto writer = makeNode("writer");
    const auto reader = makeNode("reader");
    connect(writer, reader);
    runAll({writer, reader}, pool);
    EXPECT_EQ(reader->read(pool, "out"), 2);
    writer.reset();
    EXPECT_EQ(contentOf(reader->findSlot("in")->getValueBase(pool)), 1);
    runAll({reader}, pool);
    EXPECT_EQ(reader->read(pool, "out"), 2);
    reader->detach(reader->findSlot("in"));
    EXPECT_EQ(pool->variableCount(), 1u) << "the old one has no readers left";
}

TEST_F(ValuePoolTest, removesVariablesThatHoldTheLastPointerToAnObject)
{
    // The object's own variables are removed in the middle of an operation of the pool.
    const auto parameter = testParameter("holder");
    std::vector<StrongPtr<VParameter>> others;
    for (int i = 0; i < 40; ++i) {
        others.push_back(testParameter(std::to_string(i), 1.0));
        others.back()->getLocalValue(pool);
    }
    const auto enterObject = [&] {
        const auto node = makeNode("node", {"a", "b", "c", "d"});
        runAll({node}, pool);
        pool->createVariable(parameter.get(), Loam::makeStrong<Holding>(node));
    };
    const auto expectTheOthers = [&] {
        EXPECT_EQ(Node::living, 0u);
        for (const StrongPtr<VParameter>& other : others)
            EXPECT_EQ(contentOf(other->getValueBase(pool)), 1);
    };

    enterObject();
    EXPECT_EQ(Node::living, 1u);
    const auto number = testValue(5.0);
    pool->createVariable(parameter.get(), number);
    EXPECT_EQ(parameter->getValueBase(pool), number);
    EXPECT_EQ(pool->retrieveValue("holder"), number);
    expectTheOthers();

    enterObject();
    auto namesake = testParameter("holder", 2.0);
    pool->createVariable(namesake.get(), testValue(3.0));
    pool->createVariable(parameter.get(), number);
    expectTheOthers();
    EXPECT_EQ(contentOf(namesake->getValueBase(pool)), 3);
    namesake.reset();

    enterObject();
    auto shortLived = testParameter("holder");
    pool->createVariable(shortLived.get(), parameter->getValueBase(pool));
    pool->createVariable(parameter.get(), number);
    EXPECT_EQ(Node::living, 1u);
    shortLived.reset();
    expectTheOthers();

    enterObject();
    pool.reset();
    EXPECT_EQ(Node::living, 0u);
}

} // namespace ValuePoolTest
