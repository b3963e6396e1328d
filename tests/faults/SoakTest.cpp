#include "Memory.hpp"

#include "tarn/LoadedLibraries.hpp"
#include "tarn/NetworkTexts.hpp"

#include <tarn/network/Session.hpp>
#include <tarn/run/Evaluation.hpp>
#include <tarn/run/TableWriter.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VManagedObject.hpp>
#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VValueCreator.hpp>

#include <loam/Chunk.hpp>
#include <loam/OutputFile.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

// Repeats what a long run repeats and compares what is alive. The environment variables
// SOAK_STEPS and SOAK_LOADS make the tests longer.

namespace SoakTest {

namespace {

std::uint64_t setting(const char* name, std::uint64_t usual)
{
    const char* const text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 10) : usual;
}

struct Living {
    std::size_t objects = 0;
    std::size_t values = 0;
    unsigned long long chunkBytes = 0;
    long blocks = 0; // of memory, for whatever purpose
};

Living living()
{
    return {Orla::VManagedObject::count(), 0, Loam::ChunkBase::TotalMemsize, Memory::blocks()};
}

// Queues and tables allocate a block more or less, depending on addresses.
constexpr long Tolerance = 16;

void expectSame(const Living& found, const Living& expected)
{
    EXPECT_EQ(found.objects, expected.objects);
    EXPECT_EQ(found.values, expected.values);
    EXPECT_EQ(found.chunkBytes, expected.chunkBytes);
    EXPECT_LE(found.blocks, expected.blocks + Tolerance); // tables may also shrink
}

// Has a clock, a loop that settles, charts, actions, texts, failures and a status.
std::string network(std::uint64_t steps)
{
    return networkHead + object("clock", "GlobalTime", "set = { time = '0[0," + std::to_string(steps - 1) + "]@1' }\n")
           + object("reader", "TimeReader") + object("fails", "Failing", "set = { how = 'return' }\n")
           + object("sum", "Adder", "connect = { a = 'reader.out' }\n")
           + object("one", "Counter", "set = { limit = 5 }\nconnect = { in = 'two.out' }\n")
           + object("two", "Counter", "set = { limit = 5 }\nconnect = { in = 'one.out' }\n")
           + object("maker", "Chartmaker", "set = { charts = 'plan,globe' }\n") + object("follower", "Follower")
           + object("run", "Run") + object("count", "ActionCounter", "connect = { trigger = 'run.stepped' }\n")
           + object("teller", "Teller", "set = { text = 'a status that is longer than a short string' }\n")
           + object("all", "Everything", "set = { 'double[]' = '1,2,3' }\n") + column("sum", "sum.sum")
           + column("count", "count.count") + column("loop", "two.out");
}

// Returns what is alive after `steps` steps.
Living after(std::uint64_t steps, std::uint64_t allSteps)
{
    const TestFolder folder;
    Living result;
    {
        const Tarn::Session session =
            Tarn::Session::load(folder.write("net.toml", network(allSteps)), {.stepLimit = steps});
        EXPECT_TRUE(session.faults().empty()) << session.faults().lines().front();
        Loam::OutputFile output{"/dev/null"};
        Tarn::TableWriter table{output};
        const Orla::VCancellation cancellation;
        Tarn::EvaluationTask task;
        task.table = &table;
        Tarn::Context context{session};
        const Tarn::EvaluationSummary summary = Tarn::evaluate(session, context, task, cancellation);
        EXPECT_EQ(summary.steps, steps);
        const Orla::VNetwork::Scope scope{session.network()};
        result = living();
        result.values = context.pool()->variableCount();
    }
    return result;
}

class Soak : public LoadedLibraries {
protected:
    Soak()
    {
        ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1);
        Orla::VActionNotifier::add(m_warnings);
    }
    ~Soak() override { ::unsetenv("TARN_LIBRARIES"); }

private:
    // One of the objects fails in each step.
    struct Silence final : Orla::VActionNotifier {
        bool warned(const std::string&) override { return true; }
    };
    Orla::StrongPtr<Silence> m_warnings = Loam::makeStrong<Silence>();
};

} // namespace

TEST_F(Soak, leavesAsMuchAliveAfterManyStepsAsAfterFew)
{
    const std::uint64_t steps = setting("SOAK_STEPS", 10000);
    after(100, steps); // the first run also fills what the process keeps
    const Living before = living();
    const Living few = after(100, steps);
    EXPECT_GT(few.objects, 10u);
    EXPECT_GT(few.chunkBytes, before.chunkBytes);
    EXPECT_GT(few.values, 30u);
    expectSame(after(steps, steps), few);
    expectSame(living(), before);
}

TEST(RepeatedLoading, leavesNothingRegisteredAndNothingAllocated)
{
    const auto loadAndUnload = [] {
        Tarn::Libraries libraries{{STANDARD_FOLDER, TEST_OBJECTS_FOLDER}};
        ASSERT_TRUE(libraries.load(Tarn::StandardLibrary));
        ASSERT_TRUE(libraries.load("testobjects"));
        ASSERT_TRUE(Orla::VObjectCreator::find("Adder"));
        EXPECT_TRUE(libraries.unload());
    };
    const auto values = Orla::VValueCreator::names();
    for (int i = 0; i < 3; ++i)
        loadAndUnload();
    const Living before = living();
    const std::uint64_t loads = setting("SOAK_LOADS", 100);
    for (std::uint64_t i = 0; i < loads; ++i)
        loadAndUnload();
    expectSame(living(), before);
    EXPECT_EQ(Orla::VValueCreator::names(), values);
    EXPECT_FALSE(Orla::VObjectCreator::find("Adder"));
}

} // namespace SoakTest
