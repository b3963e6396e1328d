#include <tarn/commands/Commands.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gtest/gtest.h>

#include <string>

namespace CheckTest {

namespace {

ProcessResult check(const std::string& network)
{
    const TestFolder folder;
    folder.write("net.toml", networkHead + network);
    return runTarn({"check", "net.toml"}, {{}, "cd '" + folder.path() + "'"});
}

} // namespace

TEST(CheckCommand, countsObjectsAndConnections)
{
    const ProcessResult result = check(object("a", "Adder") + object("b", "Adder", "connect = { a = 'a.sum' }\n"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "net.toml: 2 objects, 1 connection, no faults\n");
}

TEST(CheckCommand, listsAllFaultsByPlace)
{
    const ProcessResult result = check("folder = 'x'\n" + object("a", "Adder", "set = { c = 1 }\nconect = {}\n"));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "net.toml:3:1: unknown key \"folder\"; available: format, libraries, chart, object, column\n"
                          "net.toml:7:9: object \"a\": Adder has no input \"c\"; available: a, b\n"
                          "net.toml:8:1: object \"a\": unknown key \"conect\"; did you mean \"connect\"?\n"
                          "net.toml: 3 faults\n");
}

TEST(CheckCommand, evaluatesNothing)
{
    // The talker would print more in its update.
    EXPECT_EQ(check(object("t", "Talker")).err, "talker: puts in the constructor\n"
                                                "net.toml: 1 object, 0 connections, no faults\n");
}

TEST(CheckCommand, notesSharedHotKeysWithoutCountingFaults)
{
    const std::string onW = "set = { hotkey = 'w' }\n";
    const ProcessResult result = check(object("a", "KeyAction", onW) + object("b", "KeyAction", onW));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "net.toml: note: key \"w\" is the hot key of \"a\", \"b\"\n"
                          "net.toml: 2 objects, 0 connections, no faults\n");
}

} // namespace CheckTest
