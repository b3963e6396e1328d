#include "support/TestNetwork.hpp"
#include "support/Threads.hpp"

#include <array>
#include <latch>
#include <thread>

namespace RunningObjectsTest {

// The running objects, as the scheduler reports them.

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

std::vector<std::string> running()
{
    std::array<const VObject*, 16> objects{};
    std::vector<std::string> names;
    for (std::size_t i = 0, count = VScheduler::running(objects); i < count; ++i)
        names.push_back(objects[i]->Name());
    return names;
}

class RunningObjectsTest : public FrameworkTest {
protected:
    StrongPtr<ValuePool> pool{new ValuePool("pool")};
};

} // namespace

TEST_F(RunningObjectsTest, areListedDuringTheirUpdatesOnly)
{
    const auto node = makeNode("node");
    std::vector<std::string> during;
    node->work = [&during](Node&, VRequest&, double) {
        during = running();
        return true;
    };
    EXPECT_THAT(running(), IsEmpty());
    VScheduler::schedule(node, 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(during, ElementsAre("node"));
    EXPECT_THAT(running(), IsEmpty());
}

TEST_F(RunningObjectsTest, areNotListedAfterAFailure)
{
    const auto node = makeNode("node");
    node->work = [](Node&, VRequest&, double) -> bool { throw 5; };
    VScheduler::schedule(node, 0, pool);
    EXPECT_EQ(VScheduler::run(pool).failures, 1u);
    EXPECT_EQ(warnings().size(), 1u);
    EXPECT_THAT(running(), IsEmpty());
}

TEST_F(RunningObjectsTest, startWithTheInnermostOneOfThisThread)
{
    const auto outer = makeNode("outer");
    const auto inner = makeNode("inner");
    const StrongPtr<ValuePool> other(new ValuePool("other"));
    std::vector<std::vector<std::string>> seen;
    inner->work = [&seen](Node&, VRequest&, double) {
        seen.push_back(running());
        return true;
    };
    outer->work = [&](Node&, VRequest&, double) {
        VScheduler::schedule(inner, 0, other);
        VScheduler::run(other);
        seen.push_back(running());
        return true;
    };
    VScheduler::schedule(outer, 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(seen, ElementsAre(ElementsAre("inner"), ElementsAre("outer")));
}

TEST_F(RunningObjectsTest, includeThoseOfOtherThreads)
{
    const auto mine = makeNode("mine");
    const auto theirs = makeNode("theirs");
    const StrongPtr<ValuePool> other(new ValuePool("other"));
    std::latch started{1};
    std::latch seen{1};
    theirs->work = [&](Node&, VRequest&, double) {
        started.count_down();
        seen.wait();
        return true;
    };
    VScheduler::schedule(theirs, 0, other);
    std::thread thread([&] { VScheduler::run(other); });
    started.wait();
    std::vector<std::string> names;
    mine->work = [&](Node&, VRequest&, double) {
        names = running();
        return true;
    };
    EXPECT_THAT(running(), ElementsAre("theirs"));
    VScheduler::schedule(mine, 0, pool);
    VScheduler::run(pool);
    EXPECT_THAT(names, ElementsAre("mine", "theirs"));
    std::array<const VObject*, 0> none;
    EXPECT_EQ(VScheduler::running(none), 0u);
    seen.count_down();
    thread.join();
    EXPECT_THAT(running(), IsEmpty());
}

} // namespace RunningObjectsTest
