#include <tarn/run/HotKeys.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace {

ProcessResult check(const std::string& network)
{
    const TestFolder folder;
    folder.write("net.toml", networkHead + network);
    return runTarn({"check", "net.toml"}, {.environment = {}, .shell = "cd '" + folder.path() + "'"});
}

std::string keyed(const std::string& name, const std::string& key)
{
    return object(name, "KeyAction", "set = { hotkey = '" + key + "' }\n");
}

} // namespace

TEST(HotKeys, areListedIfSeveralObjectsShareOne)
{
    const ProcessResult result =
        check(keyed("a", "w") + keyed("b", "x") + keyed("c", "w") + keyed("d", " ") + keyed("e", " "));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "net.toml: note: key space is the hot key of \"d\", \"e\"\n"
                          "net.toml: note: key \"w\" is the hot key of \"a\", \"c\"\n"
                          "net.toml: 5 objects, 0 connections, no faults\n");
}

TEST(HotKeys, areNotSharedByObjectsWithoutOne)
{
    EXPECT_THAT(check(object("a", "KeyAction") + object("b", "KeyAction")).err, Not(HasSubstr("note")));
    EXPECT_TRUE(Tarn::sharedHotKeys().empty());
}

TEST(HotKeys, areShownWithoutControlCharacters)
{
    EXPECT_EQ(Tarn::nameOfKey('r'), "\"r\"");
    EXPECT_EQ(Tarn::nameOfKey(' '), "space");
    EXPECT_EQ(Tarn::nameOfKey('\x1b'), "\"\\x1b\"");
}
