#include <trellis/VHistory.hpp>

#include "support/TestNetwork.hpp"
#include "support/Threads.hpp"

#include <optional>
#include <string>
#include <vector>

namespace VHistoryTest {

using namespace Orla;
using Cause = VHistory::Cause;

namespace {

class VHistoryTest : public ExecutorTest {
protected:
    std::string reason() const
    {
        const std::optional<VHistory> history = VScheduler::history(pool);
        return history ? history->text() : "none";
    }
};

} // namespace

TEST_F(VHistoryTest, isEmptyForObjectsThatDependOnTheirInputsOnly)
{
    const StrongPtr<Node> first = makeNode("first");
    const StrongPtr<Node> second = makeNode("second");
    connect(first, second);
    runAll({first, second}, pool);
    EXPECT_EQ(reason(), "none");
    EXPECT_FALSE(VScheduler::history(nullptr));
}

TEST_F(VHistoryTest, namesTheFirstObjectThatDeclaresIt)
{
    const StrongPtr<Node> first = makeNode("first");
    const StrongPtr<Node> second = makeNode("second");
    connect(first, second);
    first->dependsOnEarlierUpdates();
    second->dependsOnEarlierUpdates();
    runAll({first, second}, pool);
    EXPECT_EQ(reason(), "object \"first\" depends on its earlier updates");
}

TEST_F(VHistoryTest, namesAnObjectThatKeepsState)
{
    const StrongPtr<Node> node = makeNode("counter");
    node->keepsState();
    runAll({node}, pool);
    EXPECT_EQ(VScheduler::history(pool)->cause, Cause::KeepsState);
    EXPECT_EQ(reason(), "object \"counter\" keeps state in its members");
}

TEST_F(VHistoryTest, isEmptyForAnObjectThatOnlyRunsInOnePool)
{
    const StrongPtr<Node> node = makeNode("key");
    node->runsInOnePool();
    runAll({node}, pool);
    EXPECT_TRUE(node->isInOnePool());
    EXPECT_EQ(reason(), "none");
}

TEST_F(VHistoryTest, namesAMemberOfALoop)
{
    const auto settle = [](Node& self, VRequest& request, double) {
        self.writeIfDifferent(request.valuePool(), "out", 1.0);
        return true;
    };
    const StrongPtr<Node> alone = makeNode("alone");
    alone->work = settle;
    connect(alone, alone);
    runAll({alone}, pool);
    EXPECT_EQ(reason(), "object \"alone\" is a member of a loop");

    const StrongPtr<Node> first = makeNode("first");
    const StrongPtr<Node> second = makeNode("second");
    connect(first, second);
    connect(second, first);
    first->work = second->work = settle;
    pool = Loam::makeStrong<ValuePool>("other");
    runAll({first, second}, pool);
    EXPECT_EQ(VScheduler::history(pool)->cause, Cause::Loop);
}

TEST_F(VHistoryTest, namesAnInputThatItsObjectChanges)
{
    const StrongPtr<Node> node = makeNode("selector", {"in", "choice"});
    node->work = [](Node& self, VRequest& request, double) {
        self.writeIfDifferent(request.valuePool(), "choice", self.read(request.valuePool(), "in"));
        return true;
    };
    runAll({node}, pool);
    EXPECT_EQ(reason(), "none");

    node->write(pool, "in", 2.0);
    VScheduler::run(pool);
    EXPECT_EQ(reason(), "object \"selector\" changes its input \"choice\"");
}

TEST_F(VHistoryTest, ignoresInputsThatOthersChange)
{
    const StrongPtr<Node> node = makeNode("node");
    runAll({node}, pool);
    node->write(pool, "in", 2.0);
    VScheduler::run(pool);
    EXPECT_EQ(reason(), "none");
}

TEST_F(VHistoryTest, namesAnObjectThatWritesFiles)
{
    const StrongPtr<Node> node = makeNode("picture");
    const StrongPtr<Node> other = makeNode("other");
    node->work = [](Node& self, VRequest& request, double) {
        return !self.resultFile("map.png", request.valuePool()).empty();
    };
    EXPECT_NE(node->resultFile("map.png", pool), "");
    runAll({other}, pool);
    EXPECT_EQ(reason(), "none");
    runAll({node}, pool);
    EXPECT_EQ(reason(), "object \"picture\" writes files");
}

TEST_F(VHistoryTest, isNoticedInConcurrentUpdates)
{
    std::vector<StrongPtr<Node>> nodes;
    for (int i = 0; i < 20; ++i) {
        nodes.push_back(makeNode(std::to_string(i)));
        nodes.back()->work = [](Node& self, VRequest& request, double) {
            return !self.resultFile("map.png", request.valuePool()).empty() && self.writeSum(request.valuePool());
        };
        VScheduler::schedule(nodes.back(), 0, pool);
    }
    Threads threads;
    run(pool, threads);
    EXPECT_TRUE(threads.wasUsed());
    EXPECT_EQ(VScheduler::history(pool)->cause, Cause::WritesFile);
}

TEST_F(VHistoryTest, belongsToOnePool)
{
    const StrongPtr<Node> node = makeNode("picture");
    node->work = [](Node& self, VRequest& request, double) {
        return !self.resultFile("map.png", request.valuePool()).empty();
    };
    runAll({node}, pool);
    EXPECT_FALSE(VScheduler::history(StrongPtr<ValuePool>(new ValuePool)));
}

TEST_F(VHistoryTest, namesTheOutputInItsText)
{
    EXPECT_EQ((VHistory{Cause::ReadsOutput, "sum", "total"}.text()),
              "object \"sum\" reads its earlier output \"total\"");
}

} // namespace VHistoryTest
