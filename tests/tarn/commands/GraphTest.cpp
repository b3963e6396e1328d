#include <tarn/commands/Commands.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace GraphTest {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

ProcessResult graph(const TestFolder& folder, const std::string& network, const std::string& output)
{
    folder.write("sub/net.toml", networkHead + network);
    return runTarn({"graph", "sub/net.toml", "--output=" + output}, {{}, "cd '" + folder.path() + "'"});
}

} // namespace

TEST(GraphCommand, writesTheTextForGraphvizToStandardOutput)
{
    const TestFolder folder;
    const ProcessResult result =
        graph(folder, object("a", "Adder") + object("b", "Adder", "connect = { a = 'a.sum' }\n"), "-");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, StartsWith("digraph "));
    EXPECT_EQ(result.err, "sub/net.toml: 2 objects, 1 connection, drawn to standard output\n");
}

TEST(GraphCommand, writesTheFormatOfTheExtensionIntoTheFolderInWhichItWasStarted)
{
    const TestFolder folder;
    const struct {
        const char* output;
        const char* start;
    } cases[] = {{"net.dot", "digraph "}, {"net.svg", "<?xml "}, {"net.png", "\x89PNG\r\n"}};
    for (const auto& [output, start] : cases) {
        SCOPED_TRACE(output);
        const ProcessResult result = graph(folder, object("a", "Adder"), output);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "sub/net.toml: 1 object, 0 connections, drawn to " + std::string(output) + "\n");
        EXPECT_THAT(contentOf(folder.file(output)), StartsWith(start));
    }
}

TEST(GraphCommand, recommendsTheTextFormForPicturesOfLargeNetworks)
{
    const TestFolder folder;
    std::string network = object("o0", "Adder");
    for (int i = 1; i <= 1000; ++i)
        network += object("o" + std::to_string(i), "Adder", "connect.a = 'o" + std::to_string(i / 2) + ".sum'\n");
    const std::string note = "sub/net.toml: note: with 1001 objects the picture is laid out roughly and may take "
                             "minutes; --output=FILE.dot writes the text form at once\n";
    const std::string drawn = "sub/net.toml: 1001 objects, 1000 connections, drawn to ";
    EXPECT_EQ(graph(folder, network, "net.svg").err, note + drawn + "net.svg\n");
    EXPECT_THAT(contentOf(folder.file("net.svg")), HasSubstr("o1000"));
    EXPECT_EQ(graph(folder, network, "net.dot").err, drawn + "net.dot\n");
}

TEST(GraphCommand, refusesOtherExtensionsAndAMissingOutput)
{
    for (const std::string output : {"x.pdf", "x", "svg", "x.svg.gz"}) {
        SCOPED_TRACE(output);
        const TestFolder folder;
        const ProcessResult result = graph(folder, "", output);
        EXPECT_EQ(result.status, 3);
        EXPECT_THAT(result.err,
                    HasSubstr("tarn: --output=" + output + ": expected a name that ends in .svg, .png or .dot\n"));
        EXPECT_THAT(folder.names(), ElementsAre("sub"));
    }
    const ProcessResult missing = runTarn({"graph", "net.toml"});
    EXPECT_EQ(missing.status, 3);
    EXPECT_THAT(missing.err, HasSubstr("tarn: no --output, expected --output=FILE.svg|.png|.dot\n"));
}

TEST(GraphCommand, refusesToOverwriteItsNetwork)
{
    const TestFolder folder;
    const std::string network = networkHead + object("a", "Adder");
    folder.write("net.dot", network);
    std::filesystem::create_symlink("net.dot", folder.file("link.svg"));
    for (const std::string output : {"net.dot", "./net.dot", "link.svg"}) {
        SCOPED_TRACE(output);
        const ProcessResult result =
            runTarn({"graph", "net.dot", "--output=" + output}, {{}, "cd '" + folder.path() + "'"});
        EXPECT_EQ(result.status, 3);
        EXPECT_THAT(result.err, StartsWith("tarn: --output=" + output + " would overwrite the network\n"));
        EXPECT_EQ(contentOf(folder.file("net.dot")), network);
    }
}

TEST(GraphCommand, leavesTheOldFileIfItIsInterrupted)
{
    const TestFolder folder;
    folder.write("net.svg", "old");
    const ProcessResult result = graph(folder, object("interrupted", "Interrupted"), "net.svg");
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.err, "tarn: interrupted; nothing was written\n");
    EXPECT_EQ(contentOf(folder.file("net.svg")), "old");
    EXPECT_EQ(graph(folder, object("interrupted", "Interrupted"), "-").out, "");
    EXPECT_THAT(folder.names(), ElementsAre("net.svg", "sub"));
}

TEST(GraphCommand, drawsNothingIfThereAreFaults)
{
    const TestFolder folder;
    const ProcessResult result = graph(folder, object("a", "Addder"), "net.svg");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err,
              "sub/net.toml:5:8: object \"a\": no library has an object type \"Addder\"; did you mean \"Adder\"?\n"
              "sub/net.toml: 1 fault; nothing was drawn\n");
    EXPECT_THAT(folder.names(), ElementsAre("sub"));
}

} // namespace GraphTest
