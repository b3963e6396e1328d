#include <tarn/commands/Commands.hpp>

#include "tarn/ExampleNetworks.hpp"
#include "tarn/NetworkTexts.hpp"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <string>

namespace DiffTest {

using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

const std::string first =
    object("x", "Adder", "set.a = 1\n") + object("y", "Adder", "connect.a = 'x.sum'\n") + column("sum", "y.sum");

} // namespace

TEST(DiffCommand, hasStatus0ForEqualNetworks)
{
    const ProcessResult result =
        compare(first, "# the same\n" + object("y", "Adder", "connect = { a = 'x.sum' }\nset.b = 0\n")
                           + object("x", "Adder", "set = { a = '1.0' }\n") + column("sum", "y.sum"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "a.toml, b.toml: no differences\n");
}

TEST(DiffCommand, listsDifferencesAndHasStatus1)
{
    const ProcessResult result = compare(first, object("x", "Adder", "set.a = 2\n") + column("sum", "x.sum"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "a.toml:8:8: object \"y\" of type \"Adder\" is removed\n"
                          "b.toml:6:9: object \"x\", input \"a\": \"2\" instead of \"1\"\n"
                          "b.toml:8:9: column \"sum\": \"x.sum\" instead of \"y.sum\"\n");
    EXPECT_EQ(result.err, "a.toml, b.toml: 3 differences\n");
}

TEST(DiffCommand, printsJsonThatNamesBothSides)
{
    const ProcessResult result =
        compare(first, object("x", "Adder", "set.a = 2\n") + column("sum", "x.sum"), {"--json"});
    EXPECT_EQ(result.status, 1);
    const Json report = Json::parse(result.out);
    EXPECT_EQ(report["before"], "a.toml");
    EXPECT_EQ(report["after"], "b.toml");
    ASSERT_EQ(report["differences"].size(), 3u);
    const Json& input = report["differences"][1];
    EXPECT_EQ(input["object"], "x");
    EXPECT_EQ(input["part"], "a");
    EXPECT_EQ(input["before"]["texts"], Json{"1"});
    EXPECT_EQ(input["after"]["texts"], Json{"2"});
    EXPECT_EQ(input["after"]["place"]["line"], 6);
}

TEST(DiffCommand, reportsTheFaultsOfBothNetworks)
{
    const ProcessResult result = compare(object("x", "Adder", "set.c = 1\n"), object("x", "Adder", "conect = {}\n"));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "a.toml:6:5: object \"x\": Adder has no input \"c\"; available: a, b\n"
                          "a.toml: 1 fault; nothing was compared\n"
                          "b.toml:6:1: object \"x\": unknown key \"conect\"; did you mean \"connect\"?\n"
                          "b.toml: 1 fault; nothing was compared\n");
}

TEST(DiffCommand, reportsUnknownPartsWithStatus2)
{
    const ProcessResult result = compare(first, first + object("odd", "Strange"), {"--json"});
    EXPECT_EQ(result.status, 2);
    const Json report = Json::parse(result.out);
    EXPECT_EQ(report["differences"][0]["object"], "odd");
    ASSERT_EQ(report["unknown"].size(), 1u);
    EXPECT_THAT(report["unknown"][0].get<std::string>(), HasSubstr("no library has an object type \"Strange\""));
    EXPECT_THAT(result.err, HasSubstr("b.toml: 1 fault; unknown parts were compared as texts\n"
                                      "a.toml, b.toml: 1 difference\n"));
}

TEST(DiffCommand, readsBothFilesBeforeItLoadsAny)
{
    const TestFolder folder;
    const std::string net = folder.write("net.toml", networkHead + object("t", "Talker"));
    const ProcessResult result = runTarn({"diff", net, folder.file("none.toml")});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.err, "tarn: cannot read " + folder.file("none.toml") + ": No such file or directory\n");
    EXPECT_EQ(runTarn({"diff", net}).status, 3);
}

TEST(DiffCommand, comparesNetworksInFoldersWithLibrariesOfTheirOwn)
{
    const TestFolder folder;
    for (const std::string name : {"one", "two"}) {
        folder.write(name + "/net.toml", networkHead + first);
        folder.write(name + "/lib/testobjects.so", contentOf(TEST_OBJECTS_FOLDER "/testobjects.so"));
    }
    const ProcessResult result =
        runTarn({"diff", "one/net.toml", "two/net.toml"}, {{"TARN_LIBRARIES="}, "cd '" + folder.path() + "'"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "one/net.toml, two/net.toml: no differences\n");
}

TEST(DiffCommand, findsNoDifferenceBetweenAnExampleAndItsCanonicalForm)
{
    const TestFolder folder;
    for (const std::string& network : exampleNetworks()) {
        SCOPED_TRACE(network);
        ASSERT_EQ(runTarn({"convert", "--keep-names", network, folder.file("copy.toml")}).status, 0);
        const ProcessResult result = runTarn({"diff", network, folder.file("copy.toml")});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out, "");
    }
}

} // namespace DiffTest
