#include <trellis/VExecutor.hpp>

#include "support/TestNetwork.hpp"

#include <chrono>
#include <stdexcept>

namespace VExecutorTest {

using namespace Orla;
using testing::ElementsAre;

namespace {

// Keeps tasks until the end, like a thread pool that is busy elsewhere.
class Busy final : public VExecutor {
public:
    unsigned concurrency() const noexcept override { return 2; }
    void execute(std::function<void()> task) override { tasks.push_back(std::move(task)); }
    std::vector<std::function<void()>> tasks;
};

class VExecutorTest : public ExecutorTest {};

} // namespace

TEST_F(VExecutorTest, handsAnUpdateOverInAMicrosecondUnlessItSaysOtherwise)
{
    EXPECT_EQ(Busy{}.handOverTime(), std::chrono::microseconds{1});
}

TEST_F(VExecutorTest, mayRunItsTasksAfterTheEvaluation)
{
    Busy busy;
    std::vector<StrongPtr<Node>> nodes;
    for (int i = 0; i < 20; ++i)
        nodes.push_back(makeNode("node"));
    for (const StrongPtr<Node>& node : nodes)
        VScheduler::schedule(node, 0, pool);
    EXPECT_EQ(run(pool, busy).updates, 20u);
    EXPECT_FALSE(busy.tasks.empty());
    pool.reset();
    nodes.clear();
    for (const auto& task : busy.tasks)
        task(); // long after the run
}

TEST_F(VExecutorTest, propagatesExceptionsOfTheExecutor)
{
    struct Throwing final : VExecutor {
        unsigned concurrency() const noexcept override { return 2; }
        void execute(std::function<void()>) override { throw std::runtime_error{"no threads"}; }
    } throwing;
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    const auto reader = makeNode("reader");
    connect(a, reader);
    runAll({a, b, reader}, pool);
    runsOf({a, b, reader});
    for (const StrongPtr<Node>& node : {a, b})
        VScheduler::schedule(node, 0, pool);
    EXPECT_THROW(run(pool, throwing), std::runtime_error);
    EXPECT_THAT(runsOf({a, b, reader}), ElementsAre(1, 1, 0));
    EXPECT_TRUE(VScheduler::isDue(reader, pool));
    EXPECT_EQ(VScheduler::run(pool).updates, 1u);
}

} // namespace VExecutorTest
