#include <tarn/mpi/MpiRanks.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

// Runs the program with the real launcher, which may be run as root here and may start more
// processes than there are cores.

namespace MpiRanksTest {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string launcherSettings = "export OMPI_ALLOW_RUN_AS_ROOT=1 OMPI_ALLOW_RUN_AS_ROOT_CONFIRM=1 TMPDIR=/tmp"
                                     " OMPI_MCA_btl=self,vader OMPI_MCA_btl_vader_single_copy_mechanism=none"
                                     " OMPI_MCA_orte_abort_print_stack=0; ";

class MpiRanksTest : public testing::Test {
protected:
    /// Starts `tarn-mpi run net.toml` in \p ranks processes, each after the shell's \p setup.
    TarnProcess start(int ranks, std::vector<std::string> options, const std::string& setup = ":") const
    {
        options.insert(options.begin(), {"run", "net.toml"});
        m_folder.write("rank.sh", setup + "\nexec \"$@\"\n");
        return TarnProcess{options,
                           {{},
                            launcherSettings + "cd '" + m_folder.path() + "'; set -- mpirun --oversubscribe -n "
                                + std::to_string(ranks) + " sh rank.sh \"$@\""}};
    }

    ProcessResult run(int ranks, const std::vector<std::string>& options, const std::string& setup = ":") const
    {
        return start(ranks, options, setup).wait();
    }

    void writeNetwork(const std::string& network) const { m_folder.write("net.toml", networkHead + network); }

    std::string table() const { return contentOf(m_folder.file("t.csv")); }
    bool hasTable() const { return std::filesystem::exists(m_folder.file("t.csv")); }

    const TestFolder m_folder;
};

const std::string sleeper = clockInQuarters + object("sleeper", "Sleeper") + column("out", "sleeper.out");
const std::string fuse = object("fuse", "Fuse") + column("out", "fuse.out");

const std::string inRank1 = "[ \"$OMPI_COMM_WORLD_RANK\" = 1 ] && ";

std::string numbers(int count)
{
    std::string texts;
    for (int i = 0; i < count; ++i)
        texts += (i > 0 ? "," : "") + std::to_string(i);
    return texts;
}

} // namespace

TEST_F(MpiRanksTest, writeTheSameBytesAsASingleProcess)
{
    writeNetwork(sleeper);
    const std::string sweep = "--sweep=sleeper.in=" + numbers(40) + ",-1,7";
    const ProcessResult single = run(1, {sweep, "--table=t.csv", "--print=sleeper.out"});
    const std::string expected = table();
    EXPECT_EQ(single.status, 1);
    EXPECT_THAT(expected, AllOf(HasSubstr("\n39,39,4,40\n"), HasSubstr("\n40,-1,0,\n"), HasSubstr("\n41,7,0,7\n")));
    EXPECT_THAT(single.err, HasSubstr("42 cases, 210 steps, 1 failed case: 40\n"));
    for (const int ranks : {2, 3, 5}) {
        SCOPED_TRACE(ranks);
        std::filesystem::remove(m_folder.file("t.csv"));
        const ProcessResult result = run(ranks, {sweep, "--table=t.csv", "--print=sleeper.out"});
        EXPECT_EQ(result.status, single.status);
        EXPECT_EQ(result.out, single.out);
        EXPECT_EQ(table(), expected);
        EXPECT_THAT(result.err, HasSubstr("42 cases, 210 steps, 1 failed case: 40\n"));
    }
    EXPECT_EQ(run(2, {sweep, "--table=-", "--jobs=2"}).out, expected);
}

TEST_F(MpiRanksTest, evaluateCasesThatDependOnEarlierOnesInRank0)
{
    writeNetwork(object("tally", "Tally") + column("count", "tally.count"));
    const ProcessResult result = run(3, {"--sweep=tally.in=" + numbers(4), "--table=-", "--steps=1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "case,tally.in,step,count\n0,0,0,1\n1,1,0,2\n2,2,0,3\n3,3,0,4\n");
}

TEST_F(MpiRanksTest, performOtherCommandsOnce)
{
    writeNetwork(sleeper);
    EXPECT_EQ(run(3, {"--table=-", "--steps=1"}).out, "step,out\n0,0\n");
    EXPECT_EQ(run(3, {"--help"}).out, runTarn({"run", "--help"}, {{}, launcherSettings + ":"}).out);
}

TEST_F(MpiRanksTest, endWithTheFaultsOfTheNetworkOnce)
{
    writeNetwork(sleeper);
    const ProcessResult result = run(3, {"--sweep=sleeper.none=1,2", "--table=t.csv"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("cannot vary \"sleeper.none\""));
    EXPECT_EQ(result.err.find("cannot vary"), result.err.rfind("cannot vary"));
    EXPECT_FALSE(hasTable());
    EXPECT_EQ(run(3, {"--unknown"}).status, 3);
}

TEST_F(MpiRanksTest, endWithTheMessageOfARankThatCannotLoadTheNetwork)
{
    writeNetwork(sleeper);
    const ProcessResult result =
        run(3, {"--sweep=sleeper.in=1,2", "--table=t.csv"}, inRank1 + "export TARN_LIBRARIES=/nowhere");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, AllOf(HasSubstr("rank 1: net.toml:2:14: library \"testobjects\" was not found"),
                                  HasSubstr("rank 1: net.toml: 2 faults; nothing was evaluated")));
    EXPECT_THAT(m_folder.names(), ElementsAre("net.toml", "rank.sh"));
}

TEST_F(MpiRanksTest, endIfTheTableCannotBeWritten)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    writeNetwork(sleeper);
    const ProcessResult result = run(3, {"--sweep=sleeper.in=" + numbers(20), "--table=/dev/full"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr("/dev/full"));
}

TEST_F(MpiRanksTest, listCasesWhoseFilesCannotBeWrittenInARank)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    writeNetwork(object("clock", "GlobalTime", "set = { time = '0[0,0]@1' }\n") + object("report", "Reporter"));
    std::filesystem::create_symlink("/dev/full", m_folder.file("report-case1.txt"));
    const ProcessResult result = run(2, {"--sweep=report.text=a,b,c"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, AllOf(HasSubstr("3 cases, 3 steps, 1 failed case: 1\n"),
                                  HasSubstr("report: error: cannot write the report (case 1)\n")));
    EXPECT_EQ(contentOf(m_folder.file("report-case2.txt")), "c 0");
}

TEST_F(MpiRanksTest, endAndCanBeResumedIfARankIsKilled)
{
    writeNetwork(fuse);
    const std::vector<std::string> options{"--sweep=fuse.in=0,1,2,3,4,5,6,7,8,9", "--table=t.csv"};
    m_folder.write("fuse", std::to_string(SIGKILL));
    const ProcessResult killed = run(2, options);
    EXPECT_EQ(killed.status, 128 + SIGKILL);
    EXPECT_FALSE(hasTable());

    std::filesystem::remove(m_folder.file("fuse"));
    std::vector<std::string> more = options;
    more.emplace_back("--resume");
    const ProcessResult resumed = run(3, more);
    EXPECT_EQ(resumed.status, 0);
    const std::string expected = table();
    EXPECT_EQ(run(1, options).status, 0);
    EXPECT_EQ(table(), expected);
}

TEST_F(MpiRanksTest, endIfTheLauncherIsInterrupted)
{
    writeNetwork(object("slow", "Slow"));
    TarnProcess job = start(2, {"--sweep=slow.listens=1,2,3,4", "--table=t.csv"});
    EXPECT_TRUE(job.waitForMessage("slow object at work"));
    job.send(SIGINT);
    const ProcessResult result = job.wait();
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("tarn: interrupted; no case is complete\n"));
    EXPECT_FALSE(hasTable());
}

TEST_F(MpiRanksTest, areNotPartOfTheOtherPrograms)
{
    for (const char* file : {TARN_ONLY_PROGRAM, TARN_LIBRARY}) {
        const ProcessResult result = TarnProcess{{}, {{}, std::string("set -- ldd '") + file + "'"}}.wait();
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out,
                    AllOf(HasSubstr("libfathom.so"), Not(HasSubstr("libmpi")), Not(HasSubstr("libopen-rte"))));
    }
}

} // namespace MpiRanksTest
