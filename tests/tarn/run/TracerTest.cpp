#include <tarn/run/Tracer.hpp>

#include "tarn/NetworkTexts.hpp"

#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>

#include <loam/FileError.hpp>
#include <loam/OutputFile.hpp>

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

namespace TracerTest {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Sleeper final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return true;
    }

private:
    Orla::TypedSlot<double> m_in{this, "in", 0, 0};
};

// Returns the updates of a trace, each as "NAME STEP: REASON, OUTCOME".
std::vector<std::string> updatesOf(const json& trace)
{
    std::vector<std::string> updates;
    for (const json& event : trace["traceEvents"]) {
        if (event["ph"] == "X" && event["cat"] != "step")
            updates.push_back(event["name"].get<std::string>() + ' ' + event["args"]["step"].dump() + ": "
                              + event["args"]["reason"].get<std::string>() + ", "
                              + event["args"]["outcome"].get<std::string>());
    }
    return updates;
}

ProcessResult run(const TestFolder& folder, const std::string& network, const std::vector<std::string>& options)
{
    folder.write("net.toml", networkHead + network);
    std::vector<std::string> arguments{"run", "net.toml"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runTarn(arguments, {.environment = {}, .shell = "cd '" + folder.path() + "'"});
}

} // namespace

TEST(Tracer, writesCompleteEventsInMicroseconds)
{
    const TestFolder folder;
    const auto pool = Loam::makeStrong<Orla::ValuePool>("pool");
    const auto sleeper = Loam::makeStrong<Sleeper>("\xFF\"sleeper\"\n\u202e", 0, nullptr);
    sleeper->enableRequestProcessing();
    {
        Loam::OutputFile output{folder.file("trace.json")};
        Tarn::Tracer tracer{output, pool, "a title"};
        tracer.beginStep(41);
        Orla::VScheduler::schedule(sleeper, 2.5, pool);
        Orla::VScheduler::run(pool);
        tracer.finish();
        output.commit();
        // This update is not traced.
        Orla::VScheduler::schedule(sleeper, 0, pool);
        Orla::VScheduler::run(pool);
    }
    EXPECT_THAT(contentOf(folder.file("trace.json")), HasSubstr("\\n\\u202e\""));
    const json trace = json::parse(contentOf(folder.file("trace.json")));
    ASSERT_EQ(trace["traceEvents"].size(), 3u);
    EXPECT_EQ(trace["traceEvents"][0],
              json::parse(R"({"name":"process_name","ph":"M","pid":1,"tid":1,"args":{"name":"a title"}})"));
    const json& update = trace["traceEvents"][1];
    EXPECT_EQ(update["name"], "\uFFFD\"sleeper\"\n\u202e");
    EXPECT_THAT(update["cat"].get<std::string>(), HasSubstr("Sleeper"));
    EXPECT_EQ(update["ph"], "X");
    EXPECT_EQ(update["pid"], 1);
    EXPECT_EQ(update["tid"], 1);
    EXPECT_EQ(update["args"], json::parse(R"({"step":41,"reason":"scheduled with 2.5","outcome":"done"})"));
    EXPECT_GE(update["dur"].get<double>(), 2000);
    const json& step = trace["traceEvents"][2];
    EXPECT_EQ(step["name"], "step 41");
    EXPECT_LE(step["ts"].get<double>(), update["ts"].get<double>());
    EXPECT_GE(step["ts"].get<double>() + step["dur"].get<double>(),
              update["ts"].get<double>() + update["dur"].get<double>());
}

TEST(Tracer, throwsAtTheEndIfItCouldNotWrite)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    const auto pool = Loam::makeStrong<Orla::ValuePool>("pool");
    const auto sleeper = Loam::makeStrong<Sleeper>(std::string(1 << 20, 'x'), 0, nullptr);
    sleeper->enableRequestProcessing();
    Loam::OutputFile output{"/dev/full"};
    Tarn::Tracer tracer{output, pool, "a title"};
    Orla::VScheduler::schedule(sleeper, 0, pool);
    EXPECT_EQ(Orla::VScheduler::run(pool).updates, 1u);
    EXPECT_THROW(tracer.finish(), Loam::FileError);
}

TEST(Tracer, stopsObservingWhenItIsDestroyed)
{
    const TestFolder folder;
    const auto pool = Loam::makeStrong<Orla::ValuePool>("pool");
    const auto sleeper = Loam::makeStrong<Sleeper>("sleeper", 0, nullptr);
    sleeper->enableRequestProcessing();
    {
        Loam::OutputFile output{folder.file("trace.json")};
        const Tarn::Tracer tracer{output, pool, "a title"};
    }
    Orla::VScheduler::schedule(sleeper, 0, pool);
    EXPECT_EQ(Orla::VScheduler::run(pool).updates, 1u);
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(Tracer, recordsWhyEachObjectRan)
{
    const TestFolder folder;
    const std::string network = clockInQuarters + object("a", "Adder", "connect = { a = 'clock.GlobalTime.time' }\n")
                                + object("still", "Adder") + object("f", "Failing");
    const ProcessResult result = run(folder, network, {"--steps=2", "--trace=trace.json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    const json trace = json::parse(contentOf(folder.file("trace.json")));
    EXPECT_EQ(trace["traceEvents"][0]["args"]["name"], "tarn run net.toml");
    EXPECT_THAT(updatesOf(trace),
                ElementsAre("clock 0: clock.time changed, done", "still 0: scheduled with 0, done",
                            "a 0: scheduled with 0, done", "f 0: scheduled with 0, done",
                            "clock 1: clock.time changed, done", "a 1: clock.GlobalTime changed, done",
                            "f 1: clock.GlobalTime changed, failed"));
}

TEST(Tracer, doesNotChangeTheResults)
{
    const TestFolder folder;
    const std::string network =
        clockInQuarters + object("a", "Adder", "connect = { a = 'clock.GlobalTime.time' }\n") + column("sum", "a.sum");
    const ProcessResult plain = run(folder, network, {"--table=-"});
    const ProcessResult traced = run(folder, network, {"--table=-", "--trace=trace.json"});
    EXPECT_EQ(traced.status, 0);
    EXPECT_EQ(traced.out, plain.out);
    EXPECT_EQ(traced.err, plain.err);
}

TEST(Tracer, writesToStandardOutput)
{
    const TestFolder folder;
    const ProcessResult result = run(folder, object("a", "Adder"), {"--trace=-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(updatesOf(json::parse(result.out)), ElementsAre("a 0: scheduled with 0, done"));
}

TEST(Tracer, writesACompleteTraceWhenTheRunIsCancelled)
{
    const TestFolder folder;
    const ProcessResult result =
        run(folder, object("a", "Adder") + object("c", "Canceller"), {"--trace=trace.json", "--table=table.csv"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "trace.json"));
    EXPECT_THAT(updatesOf(json::parse(contentOf(folder.file("trace.json")))),
                ElementsAre("a 0: scheduled with 0, done", "c 0: scheduled with 0, cancelled"));
}

TEST(Tracer, writesACompleteTraceAfterASignal)
{
    const TestFolder folder;
    const std::string trace = folder.file("trace.json");
    TarnProcess process{{"run", folder.write("net.toml", networkHead + object("s", "Slow")), "--trace=" + trace}};
    ASSERT_TRUE(process.waitForMessage("slow object at work"));
    process.send(SIGINT);
    EXPECT_EQ(process.wait().status, 130);
    EXPECT_THAT(updatesOf(json::parse(contentOf(trace))), ElementsAre("s 0: scheduled with 0, cancelled"));
}

} // namespace TracerTest
