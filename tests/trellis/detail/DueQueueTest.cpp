#include "support/TestNetwork.hpp"

#include <algorithm>
#include <random>

namespace DueQueueTest {

// The queue of due objects, observed through the order in which they run.

using namespace Orla;
using testing::ElementsAre;

namespace {

class DueQueueTest : public RecordingTest {};

} // namespace

TEST_F(DueQueueTest, holdsObjectsOfEqualOrderAsTheyBecomeDue)
{
    std::vector<StrongPtr<Node>> nodes;
    for (const char* name : {"a", "b", "c", "d", "e"})
        nodes.push_back(makeRecorder(name));
    for (const std::size_t i : {3u, 0u, 4u, 2u, 1u, 0u, 3u})
        VScheduler::schedule(nodes[i], 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(ran, ElementsAre("d", "a", "e", "c", "b")) << "an object that is already due keeps its place";
}

TEST_F(DueQueueTest, holdsSourcesBeforeTheirReaders)
{
    // Several objects of each order number from 0 to 29, due in random order.
    std::vector<StrongPtr<Node>> sources;
    std::vector<StrongPtr<Node>> nodes;
    for (int i = 0; i < 30; ++i) {
        sources.push_back(makeRecorder("source"));
        if (i > 0)
            connect(sources[static_cast<std::size_t>(i) - 1], sources.back());
        for (int k = 0; k < 4; ++k) {
            nodes.push_back(makeRecorder(std::to_string(i)));
            if (i > 0)
                connect(sources[static_cast<std::size_t>(i) - 1], nodes.back());
        }
    }
    runAll(sources, pool);
    VScheduler::run(pool);
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        std::ranges::shuffle(nodes, random);
        ran.clear();
        const std::size_t count = random() % nodes.size() + 1;
        for (std::size_t i = 0; i < count; ++i)
            VScheduler::schedule(nodes[i], 0, pool);
        EXPECT_EQ(VScheduler::run(pool).updates, count);
        std::vector<int> orders;
        for (const std::string& name : ran)
            orders.push_back(std::stoi(name));
        EXPECT_TRUE(std::ranges::is_sorted(orders));
        EXPECT_EQ(orders.size(), count);
    }
}

} // namespace DueQueueTest
