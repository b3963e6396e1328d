#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

// Runs the program with a fault at each call of a function in turn. A run that reports success
// must have written the whole result; any other leaves the old file or a complete one. Set
// FAULTS_EVERY=1 for each call; without it, a sample of the calls fails.

namespace ProgramFaultsTest {

using testing::AnyOf;
using testing::HasSubstr;

namespace {

const std::string network = networkHead + clockInQuarters + object("reader", "TimeReader")
                            + object("sum", "Adder", "connect = { a = 'reader.out' }\nset = { b = 2 }\n")
                            + object("echo", "Echo", "set = { text = \"two words\" }\n") + column("sum", "sum.sum")
                            + column("text", "echo.out");

const std::string table = "step,sum,text\n0,2,two words\n1,2.25,two words\n2,2.5,two words\n3,2.75,two words\n4,3,two "
                          "words\n";

// A command that writes a file, and the file.
struct Task {
    std::vector<std::string> arguments;
    std::string result;
};

class ProgramFaults : public testing::Test {
protected:
    ProgramFaults() { filesHaveNames = false; }

    struct Outcome {
        ProcessResult process;
        std::string file;
        std::vector<std::string> names;
        long calls = 0;
    };

    // Runs the program in the folder; the call `number` of a kind fails, or none if it is 0.
    static Outcome run(const TestFolder& folder, const std::vector<std::string>& arguments, const std::string& kind,
                       long number)
    {
        const TestFolder report;
        const std::vector<std::string> fault{"FAULT_KIND=" + kind, "FAULT_AT=" + std::to_string(number),
                                             "FAULT_COUNT=" + report.file("count"),
                                             filesHaveNames ? "FAULT_NAMED=1" : "FAULT_NAMED="};
        Outcome outcome;
        outcome.process = runTarn(arguments, {.environment = fault, .shell = "cd '" + folder.path() + "'"});
        outcome.names = folder.names();
        if (number == 0)
            outcome.calls = std::atol(contentOf(report.file("count")).c_str());
        return outcome;
    }

    // Whether the file system lacks unnamed temporary files.
    static inline bool filesHaveNames = false;

    static Outcome run(const Task& task, const std::string& kind, long number)
    {
        const TestFolder folder;
        folder.write("net.toml", network);
        folder.write(task.result, "old");
        Outcome outcome = run(folder, task.arguments, kind, number);
        outcome.file = contentOf(folder.file(task.result));
        return outcome;
    }

    // Fails each call of a kind in turn, or some of them, and passes the outcomes to `check` with
    // the content that the file has without a fault.
    template<class Check>
    static void failInTurn(const Task& task, const std::string& kind, Check&& check)
    {
        const Outcome fine = run(task, kind, 0);
        ASSERT_EQ(fine.process.status, 0) << fine.process.err;
        ASSERT_GT(fine.calls, 0);
        constexpr long Sample = 30;
        const long step = std::getenv("FAULTS_EVERY") ? 1 : std::max(1l, fine.calls / Sample);
        for (long number = 1; number <= fine.calls; number += step) {
            SCOPED_TRACE(kind + " " + std::to_string(number) + " of " + std::to_string(fine.calls));
            const Outcome outcome = run(task, kind, number);
            EXPECT_THAT(outcome.names, testing::UnorderedElementsAre("net.toml", task.result)) << outcome.process.err;
            check(outcome, fine.file);
            if (HasFailure())
                return;
        }
    }

    // A run that reports success wrote the table `whole`. Any other leaves the old table or one
    // with all rows, in which values are missing or old after a failed update.
    static void expectTable(const Outcome& outcome, const std::string& whole)
    {
        if (outcome.process.status == 0) {
            EXPECT_EQ(outcome.file, whole);
            return;
        }
        const bool hasAllRows = std::ranges::count(outcome.file, '\n') == std::ranges::count(whole, '\n')
                                && outcome.file.starts_with("step,sum,text\n") && outcome.file.ends_with('\n');
        EXPECT_TRUE(outcome.file == "old" || hasAllRows) << outcome.file;
    }
};

const Task tableOfRun{{"run", "net.toml", "--table=table.csv"}, "table.csv"};
const Task canonicalNetwork{{"convert", "net.toml", "out.toml"}, "out.toml"};

} // namespace

TEST_F(ProgramFaults, expectTheTableOfARunWithoutFaults)
{
    const Outcome outcome = run(tableOfRun, "write", 0);
    EXPECT_EQ(outcome.process.status, 0);
    EXPECT_EQ(outcome.file, table);
}

TEST_F(ProgramFaults, leaveTheOldTableIfAnyWriteFails)
{
    failInTurn(tableOfRun, "write", [](const Outcome& outcome, const std::string&) {
        EXPECT_EQ(outcome.process.status, 4);
        EXPECT_EQ(outcome.file, "old");
        EXPECT_THAT(outcome.process.err, HasSubstr("table.csv"));
    });
}

TEST_F(ProgramFaults, leaveTheOldNetworkIfAnyWriteFails)
{
    failInTurn(canonicalNetwork, "write", [](const Outcome& outcome, const std::string&) {
        EXPECT_EQ(outcome.process.status, 4);
        EXPECT_EQ(outcome.file, "old");
    });
}

TEST_F(ProgramFaults, leaveOnlyWholePicturesIfTheDiskIsFullFromAnyWriteOn)
{
    const std::string pictures = "format = 1\nlibraries = ['earth', 'quakes']\n" + clockInQuarters
                                 + object("run", "Run")
                                 + object("writer", "PictureWriter",
                                          "set = { frames = 'frame-#.svg', width = 90, height = 90 }\n"
                                          "connect = { step = 'run.stepped' }\n");
    const TestFolder whole;
    whole.write("net.toml", pictures);
    const Outcome fine = run(whole, {"run", "net.toml"}, "write", 0);
    ASSERT_EQ(fine.process.status, 0) << fine.process.err;
    ASSERT_EQ(fine.names.size(), 6u);
    for (long number = 1; number <= fine.calls; number += std::getenv("FAULTS_EVERY") ? 1 : 3) {
        SCOPED_TRACE(std::to_string(number) + " of " + std::to_string(fine.calls));
        const TestFolder folder;
        folder.write("net.toml", pictures);
        const Outcome outcome = run(folder, {"run", "net.toml"}, "write", number);
        EXPECT_EQ(outcome.process.status, 1);
        EXPECT_THAT(outcome.process.err, HasSubstr("frame-"));
        EXPECT_LT(outcome.names.size(), fine.names.size());
        EXPECT_THAT(fine.names, testing::IsSupersetOf(outcome.names));
        for (const std::string& name : outcome.names)
            EXPECT_EQ(contentOf(folder.file(name)), contentOf(whole.file(name))) << name;
    }
}

TEST_F(ProgramFaults, leaveTheOldTableAndNameMissingPicturesOnAFullFileSystem)
{
    const TestFolder folder;
    folder.write("net.toml", "format = 1\nlibraries = ['earth', 'quakes']\n" + clockInQuarters + object("run", "Run")
                                 + object("writer", "PictureWriter",
                                          "set = { frames = 'full/frame-#.svg', width = 90, height = 90 }\n"
                                          "connect = { step = 'run.stepped' }\n"));
    // A limit of the size of files replaces the file system where users must not mount any.
    const std::string run = "\"$@\"; status=$?; cat full/table.csv; ls -A full; exit $status";
    const std::string mount = "mount -t tmpfs -o size=8k none full";
    const std::string shell = "cd '" + folder.path() + "'; mkdir full; if unshare -rm " + mount
                              + " 2>/dev/null; then exec unshare -rm sh -c '" + mount + " || exit 99; "
                              + "printf old > full/table.csv; cat /dev/zero > full/zeros 2>/dev/null; " + run
                              + "' sh \"$@\"; fi; printf old > full/table.csv; : > full/zeros; ulimit -f 0; " + run;
    const ProcessResult result = runTarn({"run", "net.toml", "--table=full/table.csv"}, {{}, shell});
    EXPECT_EQ(result.status, 4) << result.err;
    EXPECT_EQ(result.out, "oldtable.csv\nzeros\n");
    EXPECT_THAT(result.err, HasSubstr("  writer: error: "));
    EXPECT_THAT(result.err, HasSubstr("tarn: cannot write " + folder.file("full/table.csv") + ": "));
}

TEST_F(ProgramFaults, neverCauseAnIncompleteTableOrAWrongStatusIfAnAllocationFails)
{
    failInTurn(tableOfRun, "allocation", [](const Outcome& outcome, const std::string& whole) {
        EXPECT_THAT(outcome.process.status, AnyOf(0, 1, 2, 4)) << outcome.process.err;
        expectTable(outcome, whole);
        EXPECT_FALSE(outcome.process.status != 0 && outcome.process.err.empty());
    });
}

TEST_F(ProgramFaults, neverCauseAnIncompleteNetworkIfAnAllocationFails)
{
    failInTurn(canonicalNetwork, "allocation", [](const Outcome& outcome, const std::string& whole) {
        EXPECT_THAT(outcome.process.status, AnyOf(0, 1, 2, 4)) << outcome.process.err;
        // The message about a network that was written may fail, too.
        EXPECT_TRUE(outcome.file == whole || (outcome.process.status != 0 && outcome.file == "old")) << outcome.file;
    });
}

TEST_F(ProgramFaults, endTheProgramWithAMessageIfAllMemoryIsUsed)
{
    failInTurn(tableOfRun, "memory", [](const Outcome& outcome, const std::string& whole) {
        EXPECT_THAT(outcome.process.status, AnyOf(0, 1, 2, 4)) << outcome.process.err;
        expectTable(outcome, whole);
    });
}

TEST_F(ProgramFaults, leaveAWholeTableIfASignalArrivesAtAnyMoment)
{
    for (const char* const kind : {"signal", "interrupt"}) {
        failInTurn(tableOfRun, kind, [](const Outcome& outcome, const std::string& whole) {
            // 1015: outside of the evaluation the signal ends the program directly.
            EXPECT_THAT(outcome.process.status, AnyOf(0, 143, 1000 + 15)) << outcome.process.err;
            EXPECT_TRUE(outcome.file == whole || (outcome.process.status != 0 && outcome.file == "old"))
                << outcome.file;
        });
    }
}

TEST_F(ProgramFaults, leaveAWholeNetworkIfASignalArrivesAtAnyMoment)
{
    for (const char* const kind : {"signal", "interrupt"}) {
        failInTurn(canonicalNetwork, kind, [](const Outcome& outcome, const std::string& whole) {
            // Before and after the conversion the program ends by the signal.
            EXPECT_THAT(outcome.process.status, AnyOf(0, 128 + 15, 1000 + 15)) << outcome.process.err;
            if (outcome.process.status == 0)
                EXPECT_EQ(outcome.file, whole) << "the signal came too late";
            else if (outcome.process.status == 128 + 15)
                EXPECT_EQ(outcome.file, "old");
            else
                EXPECT_THAT(outcome.file, AnyOf(testing::StrEq("old"), testing::StrEq(whole)));
        });
    }
}

TEST_F(ProgramFaults, leaveNoTemporaryFileOnFileSystemsWithoutUnnamedFiles)
{
    filesHaveNames = true;
    const auto expectWholeFiles = [](const Outcome& outcome, const std::string& whole) {
        EXPECT_TRUE(outcome.file == whole || (outcome.process.status != 0 && outcome.file == "old")) << outcome.file;
    };
    for (const char* const kind : {"interrupt", "write"}) {
        for (const Task& task : {tableOfRun, canonicalNetwork})
            failInTurn(task, kind, expectWholeFiles);
    }
    failInTurn(canonicalNetwork, "insist", expectWholeFiles);
}

} // namespace ProgramFaultsTest
