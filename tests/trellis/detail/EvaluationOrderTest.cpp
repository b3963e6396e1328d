#include "support/Sanitizers.hpp"
#include "support/TestNetwork.hpp"

#include <algorithm>
#include <array>
#include <random>

namespace EvaluationOrderTest {

// The evaluation order, as shown by the numbers of the containers. The next evaluation
// computes it.

using namespace Orla;

namespace {

class EvaluationOrderTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};

    // Creates an object that writes nothing, so loops end at once.
    StrongPtr<Node> makeQuiet(const std::string& name, int inputs = 1)
    {
        auto node = makeNode(name, {});
        for (int i = 0; i < inputs; ++i)
            node->addInput("in " + std::to_string(i));
        node->work = [](Node&, VRequest&, double) { return true; };
        return node;
    }

    // Computes the order.
    void evaluate(const StrongPtr<Node>& any) { runAll({any}, pool); }
};

} // namespace

TEST_F(EvaluationOrderTest, isCorrectInWhateverOrderObjectsAreConnected)
{
    constexpr std::size_t Count = 30;
    std::vector<std::size_t> links;
    for (std::size_t i = 1; i < Count; ++i)
        links.push_back(i);
    std::mt19937 random(6);
    for (int round = 0; round < 20; ++round) {
        std::vector<StrongPtr<Node>> chain;
        for (std::size_t i = 0; i < Count; ++i)
            chain.push_back(makeQuiet(std::to_string(i)));
        if (round == 1)
            std::ranges::reverse(links);
        else if (round > 1)
            std::ranges::shuffle(links, random);
        for (const std::size_t link : links) {
            connect(chain[link - 1], chain[link], "in 0");
            if (round % 3 == 2)
                evaluate(chain[link]);
        }
        evaluate(chain[0]);
        for (std::size_t i = 1; i < Count; ++i)
            ASSERT_LT(chain[i - 1]->evaluationOrder(), chain[i]->evaluationOrder()) << round;
    }
}

TEST_F(EvaluationOrderTest, putsReadersAfterTheirSourcesInRandomNetworks)
{
    // Makes and cuts connections at random, and with them loops. A transitive closure
    // shows which objects form a loop.
    constexpr std::size_t Count = 9;
    constexpr std::size_t Inputs = 3;
    constexpr std::size_t None = Count;
    std::mt19937 random(7);
    for (int network = 0; network < 40; ++network) {
        std::vector<StrongPtr<Node>> nodes;
        for (std::size_t i = 0; i < Count; ++i)
            nodes.push_back(makeQuiet(std::to_string(i), Inputs));
        std::array<std::array<std::size_t, Inputs>, Count> sources;
        for (auto& inputs : sources)
            inputs.fill(None);

        for (int step = 0; step < 40; ++step) {
            for (unsigned changes = random() % 4; changes > 0; --changes) {
                const std::size_t reader = random() % Count;
                const std::size_t input = random() % Inputs;
                const std::string name = "in " + std::to_string(input);
                if (random() % 5 < 2) {
                    nodes[reader]->detach(nodes[reader]->findSlot(name));
                    sources[reader][input] = None;
                } else {
                    const std::size_t source = random() % Count;
                    connect(nodes[source], nodes[reader], name);
                    sources[reader][input] = source;
                }
            }
            if (random() % 6 == 0) {
                const std::size_t victim = random() % Count;
                nodes[victim] = makeQuiet(std::to_string(victim), Inputs);
                sources[victim].fill(None);
                for (auto& inputs : sources)
                    std::ranges::replace(inputs, victim, None);
            }
            if (random() % 2 == 0)
                continue;
            evaluate(nodes[random() % Count]);

            std::array<std::array<bool, Count>, Count> reaches{};
            for (std::size_t reader = 0; reader < Count; ++reader) {
                for (const std::size_t source : sources[reader]) {
                    if (source != None)
                        reaches[source][reader] = true;
                }
            }
            for (std::size_t via = 0; via < Count; ++via) {
                for (std::size_t a = 0; a < Count; ++a) {
                    for (std::size_t b = 0; b < Count; ++b)
                        reaches[a][b] = reaches[a][b] || (reaches[a][via] && reaches[via][b]);
                }
            }
            const auto orderOf = [&](std::size_t i) { return nodes[i]->evaluationOrder(); };
            for (std::size_t a = 0; a < Count; ++a) {
                for (std::size_t b = 0; b < Count; ++b) {
                    if (!reaches[a][b] || a == b)
                        continue;
                    if (reaches[b][a]) {
                        ASSERT_NE(orderOf(a), orderOf(b)) << network << '.' << step << ": a loop";
                    } else {
                        ASSERT_LT(orderOf(a), orderOf(b)) << network << '.' << step << ": " << b << " reads " << a;
                    }
                }
            }
        }
    }
}

TEST_F(EvaluationOrderTest, putsNoOutsiderBetweenTheMembersOfALoop)
{
    const auto entry = makeQuiet("entry", 0);
    const auto a = makeQuiet("a", 2);
    const auto b = makeQuiet("b");
    const auto c = makeQuiet("c");
    const auto reader = makeQuiet("reader");
    connect(entry, a, "in 0");
    connect(a, reader, "in 0");
    connect(a, b, "in 0");
    connect(b, c, "in 0");
    connect(c, a, "in 1");
    evaluate(entry);
    const std::uint32_t first = a->evaluationOrder();
    EXPECT_GT(first, entry->evaluationOrder());
    EXPECT_EQ(b->evaluationOrder(), first + 1) << "from the entry on, each member after its source";
    EXPECT_EQ(c->evaluationOrder(), first + 2);
    EXPECT_GT(reader->evaluationOrder(), first + 2);
}

TEST_F(EvaluationOrderTest, isCorrectAgainAfterALoopIsOpened)
{
    for (const bool byDestruction : {false, true}) {
        for (std::size_t cut = 0; cut < 5; ++cut) {
            SCOPED_TRACE(testing::Message() << byDestruction << ' ' << cut);
            std::vector<StrongPtr<Node>> ring;
            for (int i = 0; i < 5; ++i) {
                ring.push_back(makeQuiet(std::to_string(i)));
                if (i > 0)
                    connect(ring[ring.size() - 2], ring.back(), "in 0");
            }
            connect(ring.back(), ring.front(), "in 0");
            evaluate(ring[2]);
            if (byDestruction)
                ring[cut] = nullptr;
            else
                ring[cut]->detach(ring[cut]->findSlot("in 0"));
            for (std::size_t i = 0; i < 5; ++i) {
                if (ring[i])
                    evaluate(ring[i]);
            }
            for (std::size_t step = 0; step < 4; ++step) {
                const StrongPtr<Node>& source = ring[(cut + step) % 5];
                const StrongPtr<Node>& reader = ring[(cut + step + 1) % 5];
                if (source && reader) {
                    EXPECT_LT(source->evaluationOrder(), reader->evaluationOrder());
                }
            }
        }
    }
}

TEST_F(EvaluationOrderTest, followsPassedInputsAndSharedParameters)
{
    const auto source = makeQuiet("source");
    const auto deep = makeQuiet("deep");
    connect(source, deep, "in 0");
    const auto passing = makeQuiet("passing");
    passing->registerOutput(passing->findSlot("in 0"));
    const auto reader = makeQuiet("reader");
    connect(passing, reader, "in 0", "", "in 0");
    const auto downstream = makeQuiet("downstream");
    connect(reader, downstream, "in 0");
    connect(deep, passing, "in 0");
    evaluate(source);
    EXPECT_LT(deep->evaluationOrder(), passing->evaluationOrder());
    EXPECT_LT(deep->evaluationOrder(), reader->evaluationOrder());
    EXPECT_LT(reader->evaluationOrder(), downstream->evaluationOrder());

    // An input that another container reads passes on its own source.
    const auto owner = makeQuiet("owner");
    const auto sharing = makeQuiet("sharing");
    sharing->attachParameter(owner->findSlot("in 0")->parameter(), sharing->findSlot("in 0"), "");
    evaluate(source);
    EXPECT_LT(owner->evaluationOrder(), sharing->evaluationOrder());
    connect(downstream, owner, "in 0");
    evaluate(source);
    EXPECT_LT(downstream->evaluationOrder(), owner->evaluationOrder());
    EXPECT_LT(downstream->evaluationOrder(), sharing->evaluationOrder());
}

TEST_F(EvaluationOrderTest, considersAnOutputDeclaredAfterItIsRead)
{
    const auto source = makeQuiet("source");
    const auto writer = makeQuiet("writer");
    connect(source, writer, "in 0");
    const auto reader = makeQuiet("reader");
    const auto downstream = makeQuiet("downstream");
    connect(reader, downstream, "in 0");
    evaluate(source);
    const auto parameter = testParameter("late");
    reader->attachParameter(parameter, reader->findSlot("in 0"), "");
    writer->registerOutput(parameter, "late");
    evaluate(source);
    EXPECT_LT(writer->evaluationOrder(), reader->evaluationOrder());
    EXPECT_LT(reader->evaluationOrder(), downstream->evaluationOrder());
}

TEST_F(EvaluationOrderTest, isComputedForLongLoopsOnAnOrdinaryStack)
{
#if defined(SANITIZED)
    constexpr std::size_t Count = 30'000; // stack frames are several times larger
#else
    constexpr std::size_t Count = 100'000;
#endif
    std::vector<StrongPtr<Node>> ring;
    for (std::size_t i = 0; i < Count; ++i)
        ring.push_back(makeQuiet("member"));
    for (std::size_t i = Count; i > 0; --i)
        connect(ring[i - 1], ring[i % Count], "in 0");
    evaluate(ring[0]);
    std::vector<std::uint32_t> orders;
    for (const StrongPtr<Node>& node : ring)
        orders.push_back(node->evaluationOrder());
    std::ranges::sort(orders);
    EXPECT_EQ(std::ranges::adjacent_find(orders), orders.end());
}

} // namespace EvaluationOrderTest
