#include <fathom/CommandLineParser.hpp> // first: the header must be self-contained

#include <loam/Environment.hpp>

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

namespace CommandLineParserTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<CommandLineParser>);
static_assert(std::is_same_v<decltype(CommandLineParser::getDataDirs()), const std::list<std::string>&>);

namespace {

namespace fs = std::filesystem;

// Records its options and arguments and refuses one given text.
class Recorder final : public CommandLineParser {
public:
    explicit Recorder(std::string refused = "refuse me") : m_refused{std::move(refused)} {}

    bool processOption(const std::string& text) override { return note("option " + text, text); }
    bool processArgument(const std::string& text) override { return note("argument " + text, text); }

    std::vector<std::string> seen;

private:
    bool note(const std::string& text, const std::string& word)
    {
        seen.push_back(text);
        return word != m_refused;
    }

    std::string m_refused;
};

bool process(CommandLineParser& parser, std::vector<std::string> words)
{
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return parser.process(static_cast<int>(words.size()), pointers.data());
}

// The list of data directories is built once per process, so each of these tests
// requests it in a child process, which starts without one.
class DataDirsDeathTest : public testing::Test {
protected:
    // The child process continues from here, in the same folder.
    DataDirsDeathTest() { GTEST_FLAG_SET(death_test_style, "fast"); }

    void SetUp() override
    {
        std::string path = (fs::canonical(testing::TempDir()) / "CommandLineParser XXXXXX").string();
        ASSERT_NE(mkdtemp(path.data()), nullptr) << path;
        m_folder = path;
        fs::create_directory(m_folder / "here");
    }

    void TearDown() override
    {
        std::error_code error;
        fs::remove_all(m_folder, error);
    }

    void write(const std::string& name) const { std::ofstream(m_folder / name) << name; }

    std::string path(const std::string& name) const { return (m_folder / name).string(); }

    // The working directory of the child process.
    std::string current() const { return path("here"); }

    static std::string builtIn() { return Loam::getExecutableDir() + "/../../data"; }

    // Runs `body`, prints its output and its result between marks, and exits.
    void runInChildProcess(const std::string& dataVariable, const std::function<std::string()>& body) const
    {
        fs::current_path(current());
        ::setenv("TARN_DATA", dataVariable.c_str(), 1);
        testing::internal::CaptureStdout();
        std::string result = body();
        result = testing::internal::GetCapturedStdout() + result;
        std::fprintf(stderr, "{{%s}}", result.c_str());
        std::exit(0);
    }

    static std::string dataDirs()
    {
        std::string all;
        for (const std::string& directory : CommandLineParser::getDataDirs())
            all += directory + "\n";
        return all;
    }

    static auto printed(const std::string& text) { return testing::HasSubstr("{{" + text + "}}"); }

private:
    fs::path m_folder;
};

} // namespace

TEST(CommandLineParser, callsNoHandlerForAProgramWithoutArguments)
{
    Recorder parser;
    EXPECT_TRUE(process(parser, {"program"}));
    EXPECT_TRUE(process(parser, {}));
    EXPECT_TRUE(parser.process(0, nullptr));
    EXPECT_TRUE(parser.process(-1, nullptr));
    EXPECT_THAT(parser.seen, IsEmpty());
}

TEST(CommandLineParser, distinguishesOptionsByTheFirstCharacterAndStripsOnlyThat)
{
    const struct {
        const char* text;
        const char* seen;
    } cases[] = {
        {"-fast", "option fast"},
        {"--fast", "option -fast"},
        {"-+fast", "option +fast"},
        {"-size=3", "option size=3"},
        {"-", "option "},
        {"+file", "argument file"},
        {"++file", "argument +file"},
        {"+-file", "argument -file"},
        {"+", "argument "},
        {"file", "argument file"},
        {"a-b", "argument a-b"},
        {" -file", "argument  -file"},
        {"", "argument "},
    };
    for (const auto& [text, seen] : cases) {
        SCOPED_TRACE(text);
        Recorder parser;
        EXPECT_TRUE(process(parser, {"program", text}));
        EXPECT_THAT(parser.seen, ElementsAre(seen));
    }
}

TEST(CommandLineParser, passesArgumentsInOrderWithoutTheProgramName)
{
    Recorder parser;
    EXPECT_TRUE(process(parser, {"-program", "b", "-a", "+c", "b"}));
    EXPECT_THAT(parser.seen, ElementsAre("argument b", "option a", "argument c", "argument b"));
}

TEST(CommandLineParser, stopsAfterAHandlerRefuses)
{
    for (const char* refused : {"two", "-two"}) {
        SCOPED_TRACE(refused);
        Recorder parser{"two"};
        EXPECT_FALSE(process(parser, {"program", "one", refused, "three", "-four", "five"}));
        EXPECT_EQ(parser.seen.size(), 2u);
    }
    Recorder parser{"last"};
    EXPECT_FALSE(process(parser, {"program", "one", "last"}));
}

TEST(CommandLineParser, skipsNullEntries)
{
    char name[] = "program";
    char text[] = "-a";
    char* entries[] = {name, nullptr, text, nullptr};
    Recorder parser;
    EXPECT_TRUE(parser.process(4, entries));
    EXPECT_THAT(parser.seen, ElementsAre("option a"));
}

TEST(CommandLineParser, reportsWhatItIgnoresByDefault)
{
    CommandLineParser parser;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(process(parser, {"program", "-%s%n", "100%d", "+x", "-"}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Ignored option '%s%n' -> define own overload to process\n"
                                                      "Ignored argument '100%d' -> define own overload to process\n"
                                                      "Ignored argument 'x' -> define own overload to process\n"
                                                      "Ignored option '' -> define own overload to process\n");
}

TEST(CommandLineParser, reportsTheWholeOfATextWithAZeroByte)
{
    CommandLineParser parser;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(parser.processOption(std::string("a\0b", 3)));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string("Ignored option 'a\0b' -> define own overload to process\n", 55));
}

TEST_F(DataDirsDeathTest, listTheWorkingDirectoryTheProgramsDataAndTheVariablesEntries)
{
    EXPECT_EXIT(runInChildProcess("C:\\data;D:\\more", dataDirs), testing::ExitedWithCode(0),
                printed(current() + "\n" + builtIn() + "\nC:/data\nD:/more\n"));
}

TEST_F(DataDirsDeathTest, haveTwoEntriesWithoutTheVariable)
{
    EXPECT_EXIT(runInChildProcess("", dataDirs), testing::ExitedWithCode(0),
                printed(current() + "\n" + builtIn() + "\n"));
    const auto unset = [] {
        ::unsetenv("TARN_DATA");
        return dataDirs();
    };
    EXPECT_EXIT(runInChildProcess("/gone", unset), testing::ExitedWithCode(0),
                printed(current() + "\n" + builtIn() + "\n"));
}

TEST_F(DataDirsDeathTest, keepEmptyEntriesOfTheVariable)
{
    EXPECT_EXIT(runInChildProcess(";/a;;/b c", dataDirs), testing::ExitedWithCode(0),
                printed(current() + "\n" + builtIn() + "\n\n/a\n\n/b c\n"));
}

TEST_F(DataDirsDeathTest, omitADeletedWorkingDirectory)
{
    const auto deleted = [this] {
        fs::remove(current());
        return dataDirs();
    };
    EXPECT_EXIT(runInChildProcess("/a", deleted), testing::ExitedWithCode(0), printed(builtIn() + "\n/a\n"));
}

TEST_F(DataDirsDeathTest, areFixedByTheFirstCall)
{
    const auto askedTwice = [] {
        const std::list<std::string>* const first = &CommandLineParser::getDataDirs();
        ::setenv("TARN_DATA", "/later", 1);
        fs::current_path("/");
        return dataDirs() + (first == &CommandLineParser::getDataDirs() ? "same" : "another");
    };
    EXPECT_EXIT(runInChildProcess("/early", askedTwice), testing::ExitedWithCode(0),
                printed(current() + "\n" + builtIn() + "\n/early\nsame"));
}

TEST_F(DataDirsDeathTest, areNotFixedByConstructingAParser)
{
    const auto parserFirst = [] {
        const CommandLineParser parser;
        ::setenv("TARN_DATA", "/later", 1);
        return dataDirs();
    };
    EXPECT_EXIT(runInChildProcess("/early", parserFirst), testing::ExitedWithCode(0),
                printed(current() + "\n" + builtIn() + "\n/later\n"));
}

TEST_F(DataDirsDeathTest, areBuiltOnceForConcurrentCallers)
{
    const auto manyThreads = [] {
        std::vector<std::future<const std::list<std::string>*>> lists;
        for (int i = 0; i < 8; ++i)
            lists.push_back(std::async(std::launch::async, [] { return &CommandLineParser::getDataDirs(); }));
        bool same = true;
        for (auto& list : lists)
            same = list.get() == &CommandLineParser::getDataDirs() && same;
        return dataDirs() + (same ? "same" : "another");
    };
    EXPECT_EXIT(runInChildProcess("/a", manyThreads), testing::ExitedWithCode(0),
                printed(current() + "\n" + builtIn() + "\n/a\nsame"));
}

TEST_F(DataDirsDeathTest, resolveANameToTheFirstMatchingFile)
{
    fs::create_directories(path("a"));
    fs::create_directories(path("b"));
    write("a/100%s.txt");
    write("b/100%s.txt");
    EXPECT_EXIT(
        runInChildProcess(path("a") + ";" + path("b"), [] { return CommandLineParser().resolvePath("100%s.txt"); }),
        testing::ExitedWithCode(0),
        printed("Checking file '" + current() + "/100%s.txt'... invalid\nChecking file '" + builtIn()
                + "/100%s.txt'... invalid\nChecking file '" + path("a/100%s.txt") + "'... valid\n"
                + path("a/100%s.txt")));
    write("here/100%s.txt");
    EXPECT_EXIT(runInChildProcess(path("a"), [] { return CommandLineParser().resolvePath("100%s.txt"); }),
                testing::ExitedWithCode(0),
                printed("Checking file '" + path("here/100%s.txt") + "'... valid\n" + path("here/100%s.txt")));
}

TEST_F(DataDirsDeathTest, resolveTheNameOfAMissingFileToItself)
{
    fs::create_directories(path("a/file"));
    EXPECT_EXIT(runInChildProcess(path("a"), [] { return CommandLineParser().resolvePath("file"); }),
                testing::ExitedWithCode(0),
                printed("Checking file '" + current() + "/file'... invalid\nChecking file '" + builtIn()
                        + "/file'... invalid\nChecking file '" + path("a/file") + "'... invalid\nfile"))
        << "a directory with that name is not a file";
}

TEST_F(DataDirsDeathTest, areSearchedForAbsoluteNamesToo)
{
    write("here/file");
    EXPECT_EXIT(runInChildProcess("", [this] { return CommandLineParser().resolvePath(path("here/file")); }),
                testing::ExitedWithCode(0),
                printed("Checking file '" + current() + "/" + path("here/file") + "'... invalid\nChecking file '"
                        + builtIn() + "/" + path("here/file") + "'... invalid\n" + path("here/file")));
    EXPECT_EXIT(runInChildProcess("", [] { return CommandLineParser().resolvePath("/file"); }),
                testing::ExitedWithCode(0),
                printed("Checking file '" + current() + "//file'... valid\n" + current() + "//file"));
}

} // namespace CommandLineParserTest
