#include "support/TestNetwork.hpp"

namespace WiringTest {

// Connections, above all those through inputs that are passed on, observed through slots.

using namespace Orla;
using testing::IsEmpty;

namespace {

class WiringTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};

    // Creates a node that passes its input "in" on as an output of the same name.
    static StrongPtr<Node> makePassing(const std::string& name)
    {
        auto node = makeNode(name);
        EXPECT_TRUE(node->registerOutput(node->findSlot("in")));
        node->work = [](Node&, VRequest&, double) { return true; };
        return node;
    }

    static bool follow(const StrongPtr<Node>& passing, const StrongPtr<Node>& reader, const std::string& member = {})
    {
        return connect(passing, reader, "in", member, "in");
    }

    // Returns the current value of the input "in" of `node`.
    double input(const StrongPtr<Node>& node) const { return contentOf(node->findSlot("in")->getLocalValue(pool)); }
};

} // namespace

TEST_F(WiringTest, passesAnInputOnAsAnOutput)
{
    const auto passing = makePassing("passing");
    EXPECT_EQ(passing->findOutput("in"), passing->findSlot("in"));
    const auto other = makeNode("other");
    EXPECT_FALSE(other->registerOutput(passing->findSlot("in"))) << "it belongs to another container";
    EXPECT_FALSE(passing->registerOutput(passing->findSlot("in"))) << "it is already registered";
    EXPECT_FALSE(passing->registerOutput(StrongPtr<VSlot>()));

    follow(passing, other);
    passing->write(pool, "in", 5.0);
    EXPECT_EQ(input(other), 5);
    EXPECT_TRUE(VScheduler::isDue(other, pool));
}

TEST_F(WiringTest, reconnectsFollowersWhenAPassedInputIsReconnected)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    std::vector<StrongPtr<Node>> passing;
    for (const char* name : {"p0", "p1", "p2"}) {
        passing.push_back(makePassing(name));
        if (passing.size() > 1)
            follow(passing[passing.size() - 2], passing.back());
    }
    const auto reader = makeNode("reader");
    follow(passing.back(), reader);
    const auto expectAllToRead = [&](const StrongPtr<Node>& source) {
        const StrongPtr<VParameter> expected = source->findOutput("out")->parameter();
        for (const StrongPtr<Node>& node : {passing[0], passing[1], passing[2], reader})
            EXPECT_EQ(node->findSlot("in")->parameter(), expected) << node->Name();
        EXPECT_EQ(expected->readers().size(), 4u);
    };
    connect(first, passing[0]);
    expectAllToRead(first);
    connect(second, passing[0]);
    expectAllToRead(second);
    EXPECT_THAT(first->findOutput("out")->parameter()->readers(), IsEmpty());

    passing[0]->detach(passing[0]->findSlot("in"));
    EXPECT_EQ(reader->findSlot("in")->parameter(), passing[0]->findSlot("in")->ownParameter());
    passing[0]->write(pool, "in", 8.0);
    EXPECT_EQ(input(reader), 8);
}

TEST_F(WiringTest, doesNotReconnectFormerFollowersThatReadElsewhere)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    const auto passing = makePassing("passing");
    connect(first, passing);
    const auto elsewhere = makeNode("elsewhere");
    const auto detached = makeNode("detached");
    const auto direct = makeNode("direct");
    const auto direct2 = makeNode("direct through its parameter");
    for (const StrongPtr<Node>& node : {elsewhere, detached, direct, direct2})
        follow(passing, node);
    connect(second, elsewhere);
    detached->detach(detached->findSlot("in"));
    connect(first, direct); // reads the same, but no longer through "passing"
    direct2->attachParameter(first->findOutput("out")->parameter(), direct2->findSlot("in"), "");

    const auto third = makeNode("third");
    connect(third, passing);
    EXPECT_EQ(elsewhere->findSlot("in")->parameter(), second->findOutput("out")->parameter());
    EXPECT_FALSE(detached->findSlot("in")->isConnected());
    EXPECT_EQ(direct->findSlot("in")->parameter(), first->findOutput("out")->parameter());
    EXPECT_EQ(direct2->findSlot("in")->parameter(), first->findOutput("out")->parameter());
}

TEST_F(WiringTest, followsAgainAfterADirectConnection)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    const auto passing = makePassing("passing");
    const auto reader = makeNode("reader");
    connect(first, passing);
    for (int i = 0; i < 3; ++i) {
        follow(passing, reader);
        connect(first, reader);
    }
    follow(passing, reader);
    connect(second, passing);
    EXPECT_EQ(reader->findSlot("in")->parameter(), second->findOutput("out")->parameter());
    EXPECT_EQ(second->findOutput("out")->parameter()->readers().size(), 2u);
}

TEST_F(WiringTest, passesOnTheComponentThatAnInputReads)
{
    const auto writer = makeNode("writer", {});
    writer->addOutput("interval", Interval{3, 4});
    const auto passing = makePassing("passing");
    const auto early = makeNode("early");
    const auto late = makeNode("late");
    follow(passing, early);
    ASSERT_TRUE(connect(writer, passing, "in", "high", "interval"));
    ASSERT_TRUE(follow(passing, late));
    EXPECT_EQ(input(passing), 4);
    EXPECT_EQ(input(early), 4);
    EXPECT_EQ(input(late), 4);

    ASSERT_TRUE(connect(writer, passing, "in", "low", "interval"));
    EXPECT_EQ(input(early), 3);
    EXPECT_EQ(input(late), 3);

    const auto plain = makeNode("plain");
    connect(plain, passing);
    EXPECT_EQ(early->findSlot("in")->member(), "");
    EXPECT_EQ(input(late), 0);
}

TEST_F(WiringTest, selectsAComponentOfAPassedInputThatReadsAComponent)
{
    const auto writer = makeNode("writer", {});
    writer->addOutput("framed", Framed{{3, 4}, 5});
    writer->addOutput("interval", Interval{7, 8});
    const auto passing = makeNode("passing", {});
    passing->addInput<Interval>("in", {1, 2});
    passing->registerOutput(passing->findSlot("in"));
    const auto reader = makeNode("reader");
    ASSERT_TRUE(follow(passing, reader, "high"));
    EXPECT_EQ(input(reader), 2);
    ASSERT_TRUE(connect(writer, passing, "in", "inner", "framed"));
    EXPECT_EQ(input(reader), 4);
    ASSERT_TRUE(connect(writer, passing, "in", "", "interval"));
    EXPECT_EQ(input(reader), 8);
    ASSERT_TRUE(connect(writer, passing, "in", "inner", "framed"));
    ASSERT_TRUE(follow(passing, reader, "low"));
    EXPECT_EQ(input(reader), 3);
    passing->detach(passing->findSlot("in"));
    EXPECT_EQ(input(reader), 1);
}

TEST_F(WiringTest, handlesARingOfPassedInputs)
{
    const auto source = makeNode("source");
    std::vector<StrongPtr<Node>> ring;
    for (const char* name : {"r0", "r1", "r2"}) {
        ring.push_back(makePassing(name));
        if (ring.size() > 1)
            follow(ring[ring.size() - 2], ring.back());
    }
    EXPECT_TRUE(follow(ring.back(), ring.front()));
    const StrongPtr<VParameter> before = ring[0]->findSlot("in")->parameter();
    for (const StrongPtr<Node>& node : ring)
        EXPECT_EQ(node->findSlot("in")->parameter(), before);

    connect(source, ring[1]);
    for (const StrongPtr<Node>& node : ring)
        EXPECT_EQ(node->findSlot("in")->parameter(), source->findOutput("out")->parameter());
    ring[1]->detach(ring[1]->findSlot("in"));
    for (const StrongPtr<Node>& node : ring)
        EXPECT_EQ(node->findSlot("in")->parameter(), ring[1]->findSlot("in")->ownParameter());

    // An object that reads itself is the shortest ring.
    const auto self = makePassing("self");
    EXPECT_TRUE(follow(self, self));
    connect(source, self);
    EXPECT_EQ(self->findSlot("in")->parameter(), source->findOutput("out")->parameter());
}

TEST_F(WiringTest, handlesARingThatSelectsAComponentInEveryRound)
{
    // A number with a number as its component.
    const VValueComponents halves{
        typeid(double), {{"half", &typeid(double), [](VValueBase& whole) {
                              return StrongPtr<VValueBase>(
                                  testValue(StrongPtr<Typed<double>>(WeakPtrImpl<VValueBase>(&whole))->get() / 2));
                          }}}};
    const auto first = makePassing("first");
    const auto second = makePassing("second");
    const auto source = makeNode("source");
    follow(first, second, "half");
    follow(second, first, "half");
    follow(first, second, "half");
    connect(source, first);
    source->write(pool, "out", 8.0);
    EXPECT_EQ(input(first), 8);
    EXPECT_EQ(input(second), 4);
    follow(second, first);
    EXPECT_EQ(input(first), 4);
}

TEST_F(WiringTest, survivesTheDestructionOfFollowersAndPassingObjects)
{
    const auto source = makeNode("source");
    auto passing = makePassing("passing");
    auto follower = makeNode("follower");
    const auto staying = makeNode("staying");
    follow(passing, follower);
    follow(passing, staying);
    follower.reset();
    connect(source, passing);
    EXPECT_EQ(staying->findSlot("in")->parameter(), source->findOutput("out")->parameter());
    passing->removeParameter(passing->findSlot("in"));
    EXPECT_FALSE(passing->findOutput("in"));
    EXPECT_EQ(staying->findSlot("in")->parameter(), source->findOutput("out")->parameter());
    passing.reset();
    EXPECT_EQ(source->findOutput("out")->parameter()->readers().size(), 1u);
}

TEST_F(WiringTest, followsAnInputThatIsAttachedByItsParameter)
{
    const auto passing = makeNode("passing");
    const auto reader = makeNode("reader");
    const auto source = makeNode("source");
    ASSERT_TRUE(reader->attachParameter(passing->findSlot("in")->parameter(), reader->findSlot("in"), ""));
    source->write(pool, "out", 7.0);
    connect(source, passing);
    EXPECT_EQ(contentOf(reader->findSlot("in")->getLocalValue(pool)), 7);
    passing->detach(passing->findSlot("in"));
    passing->write(pool, "in", 3.0);
    EXPECT_EQ(contentOf(reader->findSlot("in")->getLocalValue(pool)), 3);
}

TEST_F(WiringTest, removesADestroyedReaderFromItsParameter)
{
    const auto parameter = testParameter("shared");
    std::vector<StrongPtr<Node>> readers;
    for (int i = 0; i < 5; ++i) {
        readers.push_back(makeNode("reader"));
        ASSERT_TRUE(readers.back()->attachParameter(parameter, readers.back()->findSlot("in"), ""));
    }
    EXPECT_EQ(parameter->readers().size(), 5u);
    readers.erase(readers.begin() + 1);
    readers.front()->detach(readers.front()->findSlot("in"));
    EXPECT_THAT(parameter->readers(),
                testing::UnorderedElementsAre(readers[1]->findSlot("in").get(), readers[2]->findSlot("in").get(),
                                              readers[3]->findSlot("in").get()));
    parameter->touchValue(pool);
    EXPECT_FALSE(VScheduler::isDue(readers[0], pool));
    for (const std::size_t i : {1u, 2u, 3u})
        EXPECT_TRUE(VScheduler::isDue(readers[i], pool));
}

TEST_F(WiringTest, reusesTheCellOfARemovedInputButNotItsValue)
{
    const auto node = makeNode("node", {});
    const StrongPtr<VSlot> first = node->addInput("first");
    const std::uint32_t cell = first->place().cell;
    node->write(pool, "first", 5.0);
    runAll({node}, pool);
    node->removeParameter(first);
    EXPECT_EQ(first->place().cell, VSlotPlace::NoCell);
    const StrongPtr<VSlot> second = node->addInput("second", 1.0);
    EXPECT_EQ(second->place().cell, cell);
    EXPECT_EQ(contentOf(second->getLocalValue(pool)), 1);
}

} // namespace WiringTest
