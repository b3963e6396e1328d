#include <tarn/commands/RunStudy.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace RunStudyTest {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class RunStudyTest : public testing::Test {
protected:
    ProcessResult run(const std::string& network, std::vector<std::string> options) const
    {
        m_folder.write("net.toml", networkHead + network);
        options.insert(options.begin(), {"run", "net.toml"});
        return runTarn(options, {{}, "cd '" + m_folder.path() + "'"});
    }

    std::string table() const { return contentOf(m_folder.file("t.csv")); }

    const TestFolder m_folder;
};

const std::string adder = object("a", "Adder") + column("sum", "a.sum");
const std::string sleeper = clockInQuarters + object("sleeper", "Sleeper") + column("out", "sleeper.out");

const std::string fuse = object("fuse", "Fuse") + column("out", "fuse.out");

std::vector<std::string> with(std::vector<std::string> options, const std::string& option)
{
    options.push_back(option);
    return options;
}

} // namespace

TEST_F(RunStudyTest, writesOneRowPerCaseAndStepWithTheVariedTexts)
{
    const ProcessResult result =
        run(clockInQuarters + adder, {"--sweep=a.a=1,2", "--sweep=a.b=10,20", "--steps=2", "--table=-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "case,a.a,a.b,step,sum\n"
                          "0,1,10,0,11\n0,1,10,1,11\n"
                          "1,1,20,0,21\n1,1,20,1,21\n"
                          "2,2,10,0,12\n2,2,10,1,12\n"
                          "3,2,20,0,22\n3,2,20,1,22\n");
    EXPECT_EQ(result.err, "net.toml: 2 objects, 4 cases, 8 steps\n");
}

TEST_F(RunStudyTest, acceptsTextsWithCommasAndNamesWithEqualSigns)
{
    const ProcessResult result = run(object("a=b", "Echo") + object("d", "Dotted") + column("out", "a=b.out"),
                                     {"--sweep=a=b.text=\"1,2\",x=y", "--sweep=d.in.a=b=3", "--table=-"});
    EXPECT_EQ(result.out, "case,a=b.text,d.in.a=b,step,out\n0,\"1,2\",3,0,\"1,2\"\n1,x=y,3,0,x=y\n");
}

TEST_F(RunStudyTest, readsCasesFromAFile)
{
    m_folder.write("cases.csv", "a.a,a.b\r\n1,2\r\n3,4\r\n");
    EXPECT_EQ(run(adder, {"--sweep-file=cases.csv", "--table=-"}).out, "case,a.a,a.b,step,sum\n0,1,2,0,3\n1,3,4,0,7\n");
}

TEST_F(RunStudyTest, combinesAFileWithOptions)
{
    m_folder.write("cases.csv", "a.a\n1\n2\n");
    EXPECT_EQ(run(adder, {"--sweep=a.b=10,20", "--sweep-file=cases.csv", "--table=-"}).out,
              "case,a.a,a.b,step,sum\n0,1,10,0,11\n1,1,20,0,21\n2,2,10,0,12\n3,2,20,0,22\n");
}

TEST_F(RunStudyTest, writesTheSameBytesForEachNumberOfJobs)
{
    const std::string numbers = "--sweep=sleeper.in=0,1,2,3,4,5,-1,7,8,9,10,11,12,13,14,15";
    const ProcessResult serial = run(sleeper, {numbers, "--table=t.csv"});
    const std::string expected = table();
    EXPECT_EQ(serial.status, 1);
    for (const char* jobs : {"--jobs=1", "--jobs=2", "--jobs=3", "--jobs=0", "--jobs=20"}) {
        SCOPED_TRACE(jobs);
        EXPECT_EQ(run(sleeper, {numbers, "--table=t.csv", jobs}).status, serial.status);
        EXPECT_EQ(table(), expected);
        EXPECT_EQ(run(sleeper, {numbers, "--table=-", jobs}).out, expected);
    }
}

TEST_F(RunStudyTest, writesTheSameStepsForEachNumberOfJobs)
{
    const std::string network = object("clock", "GlobalTime", "set = { time = '0[0,50]@1' }\n")
                                + object("sleeper", "Sleeper") + column("out", "sleeper.out");
    const std::string expected = run(network, {"--table=-", "--print=sleeper.out"}).out;
    for (const char* jobs : {"--jobs=1", "--jobs=3"}) {
        const ProcessResult result = run(network, {"--table=-", "--print=sleeper.out", jobs});
        EXPECT_EQ(result.out, expected);
        EXPECT_EQ(result.err, "net.toml: 2 objects, 51 steps\n");
    }
}

TEST_F(RunStudyTest, reportsWhyStepsAreEvaluatedInOrder)
{
    const ProcessResult result =
        run(object("clock", "GlobalTime", "set = { time = '0[0,50]@1' }\n") + object("integral", "Integrator"),
            {"--jobs=3"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("tarn: --jobs=3: the steps are evaluated in order, because object \"integral\" "
                                      "reads its earlier output \"sum\"\n"));
}

TEST_F(RunStudyTest, listsFailedCasesAndContinues)
{
    const ProcessResult result = run(sleeper, {"--sweep=sleeper.in=1,-2,-3,4", "--table=-", "--steps=1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "case,sleeper.in,step,out\n0,1,0,1\n1,-2,0,\n2,-3,0,\n3,4,0,4\n");
    EXPECT_THAT(result.err, HasSubstr("net.toml: 2 objects, 4 cases, 4 steps, 2 failed cases: 1, 2\n"
                                      "  error: 1 failure, the first in step 0 (cases 1, 2)\n"
                                      "  sleeper: error: the number is negative (cases 1, 2)\n"));
}

TEST_F(RunStudyTest, printsOutputsOfEachCase)
{
    EXPECT_EQ(run(adder, {"--sweep=a.b=1,2", "--print=a.sum"}).out, "case 0: a.sum: 1\ncase 1: a.sum: 2\n");
}

TEST_F(RunStudyTest, refusesInputsThatCannotBeVaried)
{
    const struct {
        std::vector<std::string> options;
        std::string message;
    } cases[] = {
        {{"--sweep=a.c=1"}, "cannot vary \"a.c\": Adder \"a\" has no input \"c\""},
        {{"--sweep=b.a=1"}, "cannot vary \"b.a\": the input is connected"},
        {{"--sweep=a.b=1,x"}, "cannot vary \"a.b\": the text \"x\" is refused"},
        {{"--sweep=a.b=1", "--sweep=a.b=2"}, "--sweep=a.b=2: the input \"a.b\" is varied twice"},
        {{"--sweep=a.b=\"1"}, "the quote is not closed, at character 1"},
        {{"--sweep=a.b"}, "expected --sweep=OBJECT.SLOT=TEXT,..."},
        {{"--sweep=a.a=1", "--print=a.none"}, "--print=a.none: "},
    };
    for (const auto& [options, message] : cases) {
        const ProcessResult result =
            run(object("a", "Adder") + object("b", "Adder", "connect = { a = 'a.sum' }\n"), options);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, AllOf(HasSubstr(message), HasSubstr("1 fault; nothing was evaluated")));
    }
}

TEST_F(RunStudyTest, refusesTooManyCombinations)
{
    std::string texts = "0";
    for (int i = 1; i < 1000; ++i)
        texts += "," + std::to_string(i);
    const ProcessResult result = run(object("a", "Adder") + object("b", "Adder"),
                                     {"--sweep=a.a=" + texts, "--sweep=a.b=" + texts, "--sweep=b.a=" + texts});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("a study has at most 10000000 cases, found 1000000 times 1000"));
}

TEST_F(RunStudyTest, refusesAFileWithFaults)
{
    const struct {
        std::string text;
        std::string message;
    } cases[] = {
        {"a.a,a.b\n1,2\n3\n", "cases.csv:3:1: found 1 field, expected one per title, 2\n"},
        {"a.a,a.b\n1,\"2\n", "cases.csv:2:3: the quote is not closed\n"},
        {"a.a\n", "--sweep-file: expected a row with the names of inputs and one row per case, found 1 row\n"},
        {"", "found 0 rows\n"},
        {"a.a,a.a\n1,2\n", "--sweep-file: the input \"a.a\" is varied twice\n"},
        {"a.c\n1\n", "cannot vary \"a.c\": Adder \"a\" has no input \"c\""},
    };
    for (const auto& [text, message] : cases) {
        m_folder.write("cases.csv", text);
        const ProcessResult result = run(adder, {"--sweep-file=cases.csv", "--table=t.csv"});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr(message));
        EXPECT_THAT(m_folder.names(), ElementsAre("cases.csv", "net.toml"));
    }
    EXPECT_EQ(run(adder, {"--sweep-file=none.csv"}).status, 4);
}

TEST_F(RunStudyTest, refusesAColumnWithTheTitleOfAnotherColumn)
{
    EXPECT_THAT(run(adder + column("case", "a.sum") + column("a.a", "a.sum"), {"--sweep=a.a=1"}).err,
                AllOf(HasSubstr("the column \"case\" has the title"), HasSubstr("the column \"a.a\" has the title")));
}

TEST_F(RunStudyTest, refusesOptionsThatDoNotFit)
{
    const struct {
        std::vector<std::string> options;
        std::string message;
    } cases[] = {
        {{"--sweep=a.a=1", "--trace=t.json"}, "--trace shows one evaluation"},
        {{"--sweep=a.a=1", "--watch"}, "--watch repeats one evaluation"},
        {{"--watch", "--jobs=2"}, "--jobs has no effect with --watch"},
        {{"--sweep=a.a=1", "--resume"}, "--resume needs --table=FILE.csv"},
        {{"--sweep=a.a=1", "--resume", "--table=-"}, "--resume needs --table=FILE.csv"},
        {{"--resume", "--table=t.csv"}, "--resume continues a study"},
        {{"--jobs=-1"}, "--jobs=-1: expected a whole number, 0 or more"},
        {{"--jobs=1000000"}, "--jobs=1000000: expected at most 10000"},
    };
    for (const auto& [options, message] : cases) {
        const ProcessResult result = run(adder, options);
        EXPECT_EQ(result.status, 3);
        EXPECT_THAT(result.err, HasSubstr(message));
    }
}

TEST_F(RunStudyTest, resumesAnInterruptedStudyWithTheSameResult)
{
    const std::vector<std::string> options{"--sweep=fuse.in=2,3,4,5,6,7", "--table=t.csv"};
    EXPECT_EQ(run(fuse, options).status, 0);
    const std::string expected = table();
    std::filesystem::remove(m_folder.file("t.csv"));

    m_folder.write("fuse", std::to_string(SIGINT));
    const ProcessResult interrupted = run(fuse, options);
    EXPECT_EQ(interrupted.status, 130);
    EXPECT_EQ(interrupted.err, "tarn: interrupted; 3 complete cases of 6: 0-2\n"
                               "tarn: the table was not written; --resume evaluates the other cases\n");
    EXPECT_THAT(m_folder.names(), ElementsAre("fuse", "net.toml", "t.csv.study"));

    m_folder.write("fuse", std::to_string(SIGKILL));
    EXPECT_EQ(run(fuse, with(options, "--resume")).status, 1000 + SIGKILL);

    std::filesystem::remove(m_folder.file("fuse"));
    const ProcessResult resumed = run(fuse, with(options, "--resume"));
    EXPECT_EQ(resumed.status, 0);
    EXPECT_EQ(resumed.err, "tarn: resuming: 3 cases of 6 are complete\nnet.toml: 1 object, 6 cases, 6 steps\n");
    EXPECT_EQ(table(), expected);
    EXPECT_THAT(m_folder.names(), ElementsAre("net.toml", "t.csv"));
}

TEST_F(RunStudyTest, evaluatesFailedCasesAgainWhenItIsResumed)
{
    const std::string network =
        fuse + object("reader", "FileReader", "set = { file = 'line' }\n") + column("line", "reader.line");
    const std::vector<std::string> options{"--sweep=fuse.in=4,5", "--table=t.csv"};
    m_folder.write("fuse", std::to_string(SIGKILL));
    EXPECT_EQ(run(network, options).status, 1000 + SIGKILL);
    std::filesystem::remove(m_folder.file("fuse"));
    m_folder.write("line", "found\n");
    const ProcessResult resumed = run(network, with(options, "--resume"));
    EXPECT_EQ(resumed.status, 0);
    EXPECT_EQ(table(), "case,fuse.in,step,out,line\n0,4,0,4,found\n1,5,0,5,found\n");
}

TEST_F(RunStudyTest, doesNotOverwriteTheCasesOfAnInterruptedStudy)
{
    const std::vector<std::string> options{"--sweep=fuse.in=4,5", "--table=t.csv"};
    m_folder.write("fuse", std::to_string(SIGKILL));
    EXPECT_EQ(run(fuse, options).status, 1000 + SIGKILL);
    const ProcessResult again = run(fuse, options);
    EXPECT_EQ(again.status, 4);
    EXPECT_THAT(again.err, HasSubstr("t.csv.study has 1 complete case of an interrupted study; --resume continues it"));
    for (const char* other : {"--set=fuse.in=1", "--sweep=fuse.in=4,6", "--steps=1"}) {
        EXPECT_EQ(run(fuse, {"--sweep=fuse.in=4,5", "--table=t.csv", "--resume", other}).status,
                  std::string(other).starts_with("--sweep") ? 2 : 4);
    }
    EXPECT_THAT(run(fuse, {"--sweep=fuse.in=4,6", "--table=t.csv", "--resume"}).err,
                HasSubstr("t.csv.study belongs to another study"));
}

TEST_F(RunStudyTest, keepsNoCasesIfNoneIsComplete)
{
    m_folder.write("fuse", std::to_string(SIGTERM));
    const ProcessResult result = run(fuse, {"--sweep=fuse.in=5,6", "--table=t.csv"});
    EXPECT_EQ(result.status, 143);
    EXPECT_EQ(result.err, "tarn: interrupted; no case is complete\n");
    EXPECT_THAT(m_folder.names(), ElementsAre("fuse", "net.toml"));
}

TEST_F(RunStudyTest, refusesToResumeCasesThatDependOnEarlierOnes)
{
    const ProcessResult result = run(object("tally", "Tally"), {"--sweep=tally.in=4,5", "--table=t.csv", "--resume"});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr("depend on earlier cases, because object \"tally\" keeps state"));
}

TEST_F(RunStudyTest, namesTheCaseThatCrashesAndKeepsTheOthers)
{
    m_folder.write("net.toml",
                   "format = 1\nlibraries = ['crashingobjects']\n" + object("c", "Crasher") + column("out", "c.out"));
    const ProcessResult result =
        runTarn({"run", "net.toml", "--sweep=c.how=,fault", "--table=t.csv"},
                {{}, "export TARN_LIBRARIES='" ODD_LIBRARIES_FOLDER "'; ulimit -c 0; cd '" + m_folder.path() + "'"});
    EXPECT_THAT(result.err, HasSubstr("tarn: crashed (segmentation fault) in object \"c\" of case 1\n"));
    EXPECT_THAT(contentOf(m_folder.file("t.csv.study")), HasSubstr("\n{\"case\":0,"));
    EXPECT_FALSE(std::filesystem::exists(m_folder.file("t.csv")));
}

TEST_F(RunStudyTest, exitsWithStatus4WhenTheTableCannotBeWritten)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    EXPECT_EQ(run(adder, {"--sweep=a.b=1,2", "--table=/dev/full"}).status, 4);
}

TEST_F(RunStudyTest, keepsNoCasesBesideADevice)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    std::filesystem::create_symlink("/dev/null", m_folder.file("t.csv"));
    m_folder.write("fuse", std::to_string(SIGKILL));
    EXPECT_EQ(run(fuse, {"--sweep=fuse.in=4,5", "--table=t.csv"}).status, 1000 + SIGKILL);
    EXPECT_THAT(m_folder.names(), ElementsAre("fuse", "net.toml", "t.csv"));
}

} // namespace RunStudyTest
