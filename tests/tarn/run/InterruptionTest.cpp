#include <tarn/run/Interruption.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <string>

#include <poll.h>

namespace InterruptionTest {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string slowNetwork(const std::string& listens)
{
    return "format = 1\nlibraries = ['testobjects']\n[[object]]\nname = 'slow'\ntype = 'Slow'\nset = { listens = "
           + listens + " }\n";
}

} // namespace

TEST(Interruption, cancelsTheEvaluation)
{
    const Tarn::Interruption interruption;
    EXPECT_EQ(Tarn::Interruption::signal(), 0);
    EXPECT_FALSE(interruption.cancellation().isCancelled());
    std::raise(SIGTERM);
    EXPECT_EQ(Tarn::Interruption::signal(), SIGTERM);
    EXPECT_TRUE(interruption.cancellation().isCancelled());
}

TEST(Interruption, makesItsDescriptorReadable)
{
    const Tarn::Interruption interruption;
    pollfd waiting{interruption.descriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&waiting, 1, 0), 0);
    std::raise(SIGTERM);
    EXPECT_EQ(::poll(&waiting, 1, 0), 1);
}

TEST(Interruption, renewsACancellationThatAnObjectUsed)
{
    Tarn::Interruption interruption;
    Orla::VCancellation(interruption.cancellation()).cancel();
    interruption.renew();
    EXPECT_FALSE(interruption.cancellation().isCancelled());
    std::raise(SIGTERM);
    EXPECT_TRUE(interruption.cancellation().isCancelled());
    interruption.renew();
    EXPECT_TRUE(interruption.cancellation().isCancelled());
}

TEST(Interruption, restoresTheSignalHandlers)
{
    struct sigaction before {};
    ::sigaction(SIGINT, nullptr, &before);
    {
        const Tarn::Interruption interruption;
    }
    struct sigaction after {};
    ::sigaction(SIGINT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, before.sa_handler);
}

TEST(Interruption, leavesIgnoredSignalsIgnored)
{
    std::signal(SIGHUP, SIG_IGN);
    {
        const Tarn::Interruption interruption;
        std::raise(SIGHUP);
        EXPECT_EQ(Tarn::Interruption::signal(), 0);
    }
    std::signal(SIGHUP, SIG_DFL);
}

TEST(Interruption, endsTheRunAndLeavesTheOldTable)
{
    const struct {
        int signal;
        int status;
    } cases[] = {{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
    for (const auto& [signal, status] : cases) {
        SCOPED_TRACE(signal);
        const TestFolder folder;
        folder.write("table.csv", "old");
        TarnProcess process{{"run", folder.write("net.toml", slowNetwork("1")), "--table=" + folder.file("table.csv")}};
        ASSERT_TRUE(process.waitForMessage("slow object at work"));
        process.send(signal);
        const ProcessResult result = process.wait();
        EXPECT_EQ(result.status, status);
        EXPECT_THAT(result.err, HasSubstr("tarn: interrupted in step 0; no table was written\n"));
        EXPECT_EQ(contentOf(folder.file("table.csv")), "old");
        EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv"));
    }
}

TEST(Interruption, leavesCompleteRowsOnStandardOutput)
{
    const TestFolder folder;
    TarnProcess process{{"run", folder.write("net.toml", slowNetwork("1")), "--table=-"}};
    ASSERT_TRUE(process.waitForMessage("slow object at work"));
    process.send(SIGINT);
    const ProcessResult result = process.wait();
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.out, "step\n");
    EXPECT_THAT(result.err, HasSubstr("tarn: interrupted in step 0; the table ends before that step\n"));
}

TEST(Interruption, endsObjectsThatIgnoreIt)
{
    const TestFolder folder;
    folder.write("table.csv", "old");
    TarnProcess process{{"run", folder.write("net.toml", slowNetwork("0")), "--table=" + folder.file("table.csv")}};
    ASSERT_TRUE(process.waitForMessage("slow object at work"));
    process.send(SIGINT);
    const ProcessResult result = process.wait();
    EXPECT_EQ(result.status, 130);
    EXPECT_THAT(result.err, HasSubstr("tarn: interrupted; object \"slow\" did not stop in time\n"));
    EXPECT_EQ(contentOf(folder.file("table.csv")), "old");
    EXPECT_EQ(contentOf(folder.file("table.csv.incomplete")), "step\n");
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv", "table.csv.incomplete"));
}

TEST(Interruption, endsImmediatelyOnTheSecondSignal)
{
    const TestFolder folder;
    TarnProcess process{{"run", folder.write("net.toml", slowNetwork("0"))}};
    ASSERT_TRUE(process.waitForMessage("slow object at work"));
    process.send(SIGTERM);
    process.send(SIGINT);
    const ProcessResult result = process.wait();
    // The system chooses which of two pending signals it delivers first.
    EXPECT_TRUE(result.status == 143 || result.status == 130) << result.status;
    EXPECT_THAT(result.err, HasSubstr("tarn: interrupted a second time\n"));
}

} // namespace InterruptionTest
