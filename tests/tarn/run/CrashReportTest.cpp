#include <tarn/run/CrashReport.hpp>

#include "support/Sanitizers.hpp"
#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <csignal>
#include <string>

namespace CrashReportTest {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const TarnProcess::Options oddLibraries{.environment = {"TARN_LIBRARIES=" ODD_LIBRARIES_FOLDER}, .shell = {}};

// Returns a network of three steps in which the object "bad one" crashes in the second.
std::string networkThatCrashes(const std::string& how)
{
    return "format = 1\nlibraries = ['crashingobjects']\n"
           "[[object]]\nname = 'clock'\ntype = 'GlobalTime'\nset = { time = '0[0,2]@1' }\n"
           "[[object]]\nname = 'bad one'\ntype = 'Crasher'\nset = { how = '"
           + how + "' }\n[[column]]\ntitle = 'out'\nvalue = 'bad one.out'\n";
}

ProcessResult runCrashing(const TestFolder& folder, const std::string& how, const std::vector<std::string>& options)
{
    std::vector<std::string> arguments{"run", folder.write("net.toml", networkThatCrashes(how))};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runTarn(arguments, oddLibraries);
}

} // namespace

TEST(CrashReport, namesTheObjectThatCrashed)
{
    const struct {
        const char* how;
        const char* what;
        int signal;
    } cases[] = {
        {"fault", "segmentation fault", SIGSEGV},
        {"overflow", "segmentation fault", SIGSEGV},
        {"division", "arithmetic exception", SIGFPE},
        {"abort", "abort", SIGABRT},
        {"terminate", "abort", SIGABRT},
    };
    for (const auto& [how, what, signal] : cases) {
        SCOPED_TRACE(how);
        const TestFolder folder;
        const ProcessResult result = runCrashing(folder, how, {});
        EXPECT_THAT(result.err, HasSubstr(std::string("tarn: crashed (") + what + ") in object \"bad one\"\n"));
#ifndef SANITIZED // sanitizers exit with a status of their own
        EXPECT_EQ(result.status, 1000 + signal);
#else
        EXPECT_GT(signal, 0);
#endif
    }
}

TEST(CrashReport, namesTheObjectsThatRanWhenAnotherThreadCrashed)
{
    const TestFolder folder;
    EXPECT_THAT(runCrashing(folder, "fault in a thread", {}).err,
                HasSubstr("tarn: crashed (segmentation fault) while object \"bad one\" ran\n"));
}

TEST(CrashReport, hasTheTextOfAnExceptionThatWasNotCaught)
{
    const TestFolder folder;
    EXPECT_THAT(runCrashing(folder, "throw in noexcept", {}).err,
                HasSubstr("tarn: exception that was not caught: lost ?[1m\n"
                          "tarn: crashed (abort) in object \"bad one\"\n"));
}

TEST(CrashReport, leavesProcessesThatAnObjectForksAlone)
{
    const struct {
        const char* how;
        const char* outcome;
    } cases[] = {
#ifndef SANITIZED // sanitizers exit with a status of their own
        {"forked exit", "status 3"},
        {"forked fault", "signal 11"},
#endif
        {"forked signal", "signal 15"}};
    for (const auto& [how, outcome] : cases) {
        SCOPED_TRACE(how);
        const TestFolder folder;
        const ProcessResult result = runCrashing(folder, how, {"--table=" + folder.file("table.csv")});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, StartsWith(std::string("tarn: error: Crasher \"bad one\" failed: ") + outcome));
        EXPECT_EQ(contentOf(folder.file("table.csv")), "step,out\n0,0\n1,\n2,\n");
        EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv"));
    }
}

TEST(CrashReport, leavesTheRowsAndTheTraceUpToTheCrash)
{
    const TestFolder folder;
    folder.write("table.csv", "old");
    folder.write("trace.json", "old");
    runCrashing(folder, "fault", {"--table=" + folder.file("table.csv"), "--trace=" + folder.file("trace.json")});
    EXPECT_EQ(contentOf(folder.file("table.csv")), "old");
    EXPECT_EQ(contentOf(folder.file("table.csv.incomplete")), "step,out\n0,0\n");
    const auto trace = nlohmann::json::parse(contentOf(folder.file("trace.json")));
    const auto& last = trace["traceEvents"].back();
    EXPECT_EQ(last["ph"], "B");
    EXPECT_EQ(last["name"], "bad one");
    EXPECT_EQ(last["args"]["step"], 1);
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv", "table.csv.incomplete", "trace.json"));
}

TEST(CrashReport, leavesTheTraceOnStandardOutputUsable)
{
    const TestFolder folder;
    const ProcessResult result = runCrashing(folder, "fault", {"--trace=-"});
    EXPECT_EQ(nlohmann::json::parse(result.out)["traceEvents"].back()["name"], "bad one");
}

TEST(CrashReport, treatsACallOfExitInAnUpdateAsAnError)
{
    for (const char* how : {"exit", "quick_exit", "_exit", "_Exit"}) {
        SCOPED_TRACE(how);
        const TestFolder folder;
        const ProcessResult result = runCrashing(folder, how, {"--table=" + folder.file("table.csv")});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr("tarn: exit was called in object \"bad one\"\n"));
        EXPECT_EQ(contentOf(folder.file("table.csv.incomplete")), "step,out\n0,0\n");
        EXPECT_THAT(folder.names(), Not(testing::Contains("table.csv")));
    }
}

TEST(CrashReport, treatsACallOfExitInAConstructorAsAnError)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", "format = 1\nlibraries = ['crashingobjects']\n[[object]]\n"
                                                      "name = 'early'\ntype = 'QuitterInConstructor'\n");
    const ProcessResult result = runTarn({"check", file}, oddLibraries);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "tarn: exit was called while creating the object \"early\"\n");
}

TEST(CrashReport, restoresTheSignalHandlers)
{
    struct sigaction before {};
    ::sigaction(SIGSEGV, nullptr, &before);
    {
        const Tarn::CrashReport report;
        struct sigaction during {};
        ::sigaction(SIGSEGV, nullptr, &during);
        EXPECT_NE(during.sa_sigaction, before.sa_sigaction);
    }
    struct sigaction after {};
    ::sigaction(SIGSEGV, nullptr, &after);
    EXPECT_EQ(after.sa_sigaction, before.sa_sigaction);
}

TEST(CrashReport, namesTheLibraryWhoseInitializationThrows)
{
    const TestFolder folder;
    folder.write("table.csv", "old");
    const std::string network = folder.write("net.toml", "format = 1\nlibraries = ['throwinglibrary']\n");
    const std::vector<std::vector<std::string>> commands{
        {"run", network, "--table=" + folder.file("table.csv")}, {"check", network}, {"libraries", "throwinglibrary"}};
    for (const std::vector<std::string>& arguments : commands) {
        SCOPED_TRACE(arguments.front());
        const ProcessResult result = runTarn(arguments, oddLibraries);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "tarn: library \"throwinglibrary\" cannot be loaded: its initialization threw an "
                              "exception: no?[1m licence\n");
        EXPECT_EQ(contentOf(folder.file("table.csv")), "old");
        EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv"));
    }
}

TEST(CrashReport, namesTheLibraryWhoseInitializationExhaustsTheMemory)
{
    const ProcessResult result =
        runTarn({"libraries", "throwinglibrary"},
                {.environment = {"TARN_LIBRARIES=" ODD_LIBRARIES_FOLDER, "TEST_NO_MEMORY=1"}, .shell = {}});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "tarn: library \"throwinglibrary\" cannot be loaded: its initialization ran out of memory\n");
}

} // namespace CrashReportTest
