#include "support/Sanitizers.hpp"
#include "support/TestNetwork.hpp"
#include "support/Threads.hpp"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <random>
#include <set>
#include <thread>

namespace ConcurrentRunTest {

// Evaluates one pool in several threads.

using namespace Orla;
using namespace std::chrono_literals;
using testing::Each;
using testing::ElementsAre;

namespace {

using Nodes = std::vector<StrongPtr<Node>>;

// Lets two updates return only together.
class Meeting {
public:
    bool wait()
    {
        std::unique_lock lock{m_mutex};
        ++m_count;
        m_changed.notify_all();
        return m_changed.wait_for(lock, std::chrono::seconds(20), [this] { return m_count >= 2; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0;
};

struct RecordingListener final : VValueListener {
    explicit RecordingListener(std::vector<std::string>& theEntries, std::string theName)
        : entries{theEntries}, name{std::move(theName)}
    {
    }
    void valueChanged(const ValueNotifierList&, const StrongPtr<ValuePool>&) override { entries.push_back(name); }
    std::vector<std::string>& entries;
    std::string name;
};

class ConcurrentRunTest : public ExecutorTest {};

} // namespace

TEST_F(ConcurrentRunTest, runsIndependentObjectsConcurrently)
{
    Meeting meeting;
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    for (const StrongPtr<Node>& node : {a, b}) {
        node->work = [&meeting](Node& self, VRequest& request, double) {
            return meeting.wait() && self.writeSum(request.valuePool());
        };
        VScheduler::schedule(node, 0, pool);
    }
    Threads threads;
    const VScheduler::Summary summary = run(pool, threads);
    EXPECT_EQ(summary.updates, 2u);
    EXPECT_EQ(summary.failures, 0u);
}

TEST_F(ConcurrentRunTest, runsObjectsOfDifferentDepthConcurrently)
{
    // Only one of the two has a source.
    for (const bool isFirst : {false, true}) {
        SCOPED_TRACE(isFirst);
        Meeting meeting;
        const auto source = makeNode("source");
        const auto deep = makeNode("deep");
        connect(source, deep);
        const auto flat = makeNode("flat");
        for (const StrongPtr<Node>& node : {deep, flat}) {
            node->work = [&meeting](Node& self, VRequest& request, double) {
                return meeting.wait() && self.writeSum(request.valuePool());
            };
        }
        const Nodes order = isFirst ? Nodes{flat, source} : Nodes{source, flat};
        for (const StrongPtr<Node>& node : order)
            VScheduler::schedule(node, 0, pool);
        Threads threads;
        EXPECT_EQ(run(pool, threads).failures, 0u);
        EXPECT_THAT(runsOf({source, deep, flat}), Each(1u));
    }
}

TEST_F(ConcurrentRunTest, givesTheSameResultsAndNotificationsAsASerialRun)
{
#if defined(SANITIZED)
    constexpr unsigned Networks = 200;
#else
    constexpr unsigned Networks = 2000;
#endif
    // Updates count as short never, always, or when they are short.
    constexpr std::chrono::nanoseconds handOverTimes[] = {0s, 1h, 1us};
    for (unsigned seed = 0; seed < Networks; ++seed) {
        std::mt19937 random(seed);
        const Nodes nodes = makeRandomNetwork(random, 4 + random() % 20);
        for (const StrongPtr<Node>& node : nodes) {
            if (random() % 8 == 0)
                node->work = [](Node&, VRequest&, double) { return false; };
        }
        std::vector<std::string> serial;
        std::vector<std::string> concurrent;
        const auto second = Loam::makeStrong<ValuePool>("second");
        VScheduler::Summary summaries[2];
        for (const bool isConcurrent : {false, true}) {
            std::vector<std::string>& entries = isConcurrent ? concurrent : serial;
            std::vector<StrongPtr<RecordingListener>> logs;
            for (const StrongPtr<Node>& node : nodes) {
                logs.push_back(Loam::makeStrong<RecordingListener>(entries, node->Name()));
                if (seed % 2 == 0)
                    node->findOutput("out")->parameter()->addListener(logs.back());
            }
            const auto& each = isConcurrent ? second : pool;
            std::mt19937 order(seed);
            Nodes due = nodes;
            std::ranges::shuffle(due, order);
            Threads threads(3, handOverTimes[seed % 3]);
            VRequest request(each);
            // Only the second evaluation knows which updates are short.
            for (int i = 0; i < 2; ++i) {
                for (const StrongPtr<Node>& node : due)
                    VScheduler::schedule(node, 0, each);
                summaries[isConcurrent] = isConcurrent ? VScheduler::run(request, threads) : VScheduler::run(request);
            }
            for (const std::string& warning : warnings())
                entries.push_back(warning);
        }
        ASSERT_EQ(serial, concurrent) << seed;
        ASSERT_EQ(summaries[0].updates, summaries[1].updates);
        ASSERT_EQ(summaries[0].failures, summaries[1].failures);
        ASSERT_EQ(summaries[0].waiting, summaries[1].waiting);
        for (const StrongPtr<Node>& node : nodes)
            ASSERT_EQ(node->read(pool, "out"), node->read(second, "out")) << seed;
        pool = Loam::makeStrong<ValuePool>("pool");
    }
}

TEST_F(ConcurrentRunTest, runsShortUpdatesInTheCallingThreadFromTheSecondRunOn)
{
    std::mutex mutex;
    std::set<std::thread::id> threads;
    Nodes nodes;
    for (int i = 0; i < 8; ++i) {
        nodes.push_back(makeNode("node"));
        nodes.back()->work = [&](Node&, VRequest&, double) {
            const std::lock_guard lock{mutex};
            threads.insert(std::this_thread::get_id());
            return true;
        };
    }
    const auto threadsOfARun = [&](std::chrono::nanoseconds handOverTime) {
        threads.clear();
        for (const StrongPtr<Node>& node : nodes)
            VScheduler::schedule(node, 0, pool);
        Threads executor(3, handOverTime);
        EXPECT_EQ(run(pool, executor).updates, 8u);
        return threads;
    };
    threadsOfARun(1h);
    EXPECT_THAT(threadsOfARun(1h), ElementsAre(std::this_thread::get_id()));
}

TEST_F(ConcurrentRunTest, doesNotAddALongUpdateToTheTimeOfTheShortOneAfterIt)
{
    const auto first = makeNode("first");
    const auto beside = makeNode("beside");
    const auto slow = makeNode("slow");
    slow->work = [](Node& self, VRequest& request, double) {
        std::this_thread::sleep_for(120ms);
        return self.writeSum(request.valuePool());
    };
    connect(first, slow);
    Nodes readers;
    for (int i = 0; i < 3; ++i) {
        readers.push_back(makeNode("reader"));
        connect(slow, readers.back());
    }
    bool wasUsed = true;
    for (int i = 0; i < 4; ++i) {
        for (const StrongPtr<Node>& node : {first, beside})
            node->findSlot("in")->set(pool, std::to_string(1 + i));
        Threads threads(3, 100ms);
        EXPECT_EQ(run(pool, threads).updates, 6u);
        wasUsed = threads.wasUsed();
    }
    EXPECT_FALSE(wasUsed);
}

TEST_F(ConcurrentRunTest, handsAnObjectOverAgainWhenItsUpdatesBecomeLong)
{
    Meeting meeting;
    bool isLong = false;
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    for (const StrongPtr<Node>& node : {a, b}) {
        node->work = [&](Node&, VRequest&, double) {
            if (isLong)
                std::this_thread::sleep_for(20ms);
            return true;
        };
    }
    const auto runBoth = [&] {
        Threads threads(3, 10ms);
        for (const StrongPtr<Node>& node : {a, b})
            VScheduler::schedule(node, 0, pool);
        return run(pool, threads).failures;
    };
    for (int i = 0; i < 2; ++i)
        runBoth();
    isLong = true;
    for (int i = 0; i < 2; ++i)
        runBoth();
    for (const StrongPtr<Node>& node : {a, b})
        node->work = [&](Node&, VRequest&, double) { return meeting.wait(); };
    EXPECT_EQ(runBoth(), 0u);
}

TEST_F(ConcurrentRunTest, keepsDueObjectsWhenItIsCancelled)
{
    Nodes nodes;
    VRequest request(pool);
    VCancellation cancellation = request.cancellation();
    for (int i = 0; i < 50; ++i) {
        nodes.push_back(makeNode(std::to_string(i)));
        nodes.back()->work = [i, cancellation](Node& self, VRequest& handed, double) mutable {
            if (i == 10)
                cancellation.cancel();
            return self.writeSum(handed.valuePool());
        };
    }
    const auto reader = makeNode("reader");
    connect(nodes[49], reader);
    for (const StrongPtr<Node>& node : nodes)
        VScheduler::schedule(node, 0, pool);
    Threads threads;
    EXPECT_EQ(VScheduler::run(request, threads).outcome, VScheduler::Outcome::Cancelled);
    EXPECT_TRUE(VScheduler::isDue(nodes[49], pool));
    for (const StrongPtr<Node>& node : nodes)
        node->work = nullptr;
    EXPECT_EQ(VScheduler::run(pool).outcome, VScheduler::Outcome::Done);
    EXPECT_EQ(reader->read(pool, "out"), 2);
}

TEST_F(ConcurrentRunTest, runsLoopsLikeASerialRun)
{
    const auto a = makeNode("a");
    const auto b = makeNode("b");
    connect(a, b);
    connect(b, a);
    b->work = [](Node& self, VRequest& request, double) {
        const double next = std::min(20.0, self.read(request.valuePool(), "in"));
        return self.writeIfDifferent(request.valuePool(), "out", next) || true;
    };
    const auto beside = makeNode("beside");
    for (const StrongPtr<Node>& node : {a, b, beside})
        VScheduler::schedule(node, 0, pool);
    Threads threads;
    const VScheduler::Summary summary = run(pool, threads);
    EXPECT_EQ(summary.stopped, 0u);
    EXPECT_EQ(b->read(pool, "out"), 20);
    EXPECT_EQ(beside->runs, 1u);
}

TEST_F(ConcurrentRunTest, letsConcurrentUpdatesChangeTheNetwork)
{
    for (int round = 0; round < 20; ++round) {
        Nodes nodes;
        for (int i = 0; i < 10; ++i) {
            nodes.push_back(makeNode(std::to_string(i)));
            nodes.back()->work = [](Node& self, VRequest& request, double) {
                const auto added = makeNode("added");
                VObject::finishCreation(added);
                VManagedObject::remove(added);
                return self.writeSum(request.valuePool());
            };
        }
        const auto each = Loam::makeStrong<ValuePool>();
        for (const StrongPtr<Node>& node : nodes)
            VScheduler::schedule(node, 0, each);
        Threads threads;
        EXPECT_EQ(run(each, threads).updates, 10u);
    }
}

TEST_F(ConcurrentRunTest, combinesSchedulingByConcurrentUpdates)
{
    const auto target = makeNode("target");
    std::vector<double> precisions;
    target->work = [&precisions](Node&, VRequest&, double precision) {
        precisions.push_back(precision);
        return true;
    };
    Nodes nodes;
    for (int i = 1; i <= 4; ++i) {
        nodes.push_back(makeNode(std::to_string(i)));
        nodes.back()->work = [&target, i](Node&, VRequest& request, double) {
            return VScheduler::schedule(target, i, request.valuePool());
        };
        VScheduler::schedule(nodes.back(), 0, pool);
    }
    Threads threads;
    run(pool, threads);
    EXPECT_THAT(precisions, ElementsAre(4));
}

namespace {

// Writes a number to an object's input when a value changes.
struct Writing final : VValueListener {
    explicit Writing(StrongPtr<VSlot> theInput) : input{std::move(theInput)} {}
    void valueChanged(const ValueNotifierList&, const StrongPtr<ValuePool>& pool) override
    {
        Node::write(pool, input, 5.0);
    }
    StrongPtr<VSlot> input;
};

} // namespace

TEST_F(ConcurrentRunTest, runsAnObjectAgainAfterAListenerWritesItsInput)
{
    const auto first = makeNode("first");
    const auto second = makeNode("second");
    const auto listener = Loam::makeStrong<Writing>(second->findSlot("in"));
    first->findOutput("out")->parameter()->addListener(listener);
    for (const StrongPtr<Node>& node : {first, second})
        VScheduler::schedule(node, 0, pool);
    Threads threads;
    EXPECT_EQ(run(pool, threads).outcome, VScheduler::Outcome::Done);
    EXPECT_EQ(second->read(pool, "out"), 6);
    EXPECT_FALSE(VScheduler::isDue(pool));
}

TEST_F(ConcurrentRunTest, runsAnObjectAfterListenersHaveWrittenItsInputs)
{
    // "deep" would be ready long before "slow" returns.
    const auto slow = makeNode("slow");
    slow->work = [](Node& self, VRequest& request, double) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return self.writeSum(request.valuePool());
    };
    const auto source = makeNode("source");
    const auto deep = makeNode("deep", {"x", "y"});
    connect(source, deep, "x");
    const auto listener = Loam::makeStrong<Writing>(deep->findSlot("y"));
    slow->findOutput("out")->parameter()->addListener(listener);
    for (const StrongPtr<Node>& node : {source, slow})
        VScheduler::schedule(node, 0, pool);
    Threads threads;
    run(pool, threads);
    EXPECT_EQ(deep->read(pool, "out"), 7);
    EXPECT_EQ(deep->runs, 1u);
}

TEST_F(ConcurrentRunTest, runsAnObjectAgainIfItIsScheduledAfterAnEarlyStart)
{
    Meeting meeting;
    const auto source = makeNode("source");
    const auto deep = makeNode("deep");
    connect(source, deep);
    std::vector<double> precisions;
    deep->work = [&](Node&, VRequest&, double precision) {
        precisions.push_back(precision);
        return meeting.wait();
    };
    const auto slow = makeNode("slow");
    slow->work = [&](Node&, VRequest& request, double) {
        return meeting.wait() && VScheduler::schedule(deep, 3, request.valuePool());
    };
    for (const StrongPtr<Node>& node : {source, slow})
        VScheduler::schedule(node, 0, pool);
    Threads threads;
    EXPECT_EQ(run(pool, threads).failures, 0u);
    EXPECT_THAT(precisions, ElementsAre(0, 3));
}

TEST_F(ConcurrentRunTest, runsObjectsThatShareMoreThanValuesInTurn)
{
    std::vector<std::string> order; // shared by the objects
    std::vector<std::string> expected;
    Nodes nodes;
    for (int i = 0; i < 20; ++i) {
        nodes.push_back(makeNode(std::to_string(i)));
        if (i % 3 == 0)
            continue; // runs concurrently with the others
        expected.push_back(nodes.back()->Name());
        nodes.back()->runsInTurn();
        nodes.back()->work = [&order, i](Node& self, VRequest& request, double) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20 - i)); // the later, the faster
            order.push_back(self.Name());
            return self.writeSum(request.valuePool());
        };
    }
    for (const StrongPtr<Node>& node : nodes)
        VScheduler::schedule(node, 0, pool);
    Threads threads;
    EXPECT_EQ(run(pool, threads).updates, 20u);
    EXPECT_EQ(order, expected);
}

} // namespace ConcurrentRunTest
