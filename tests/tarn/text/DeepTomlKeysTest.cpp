#include <tarn/text/DeepTomlKeys.hpp>

#include <gtest/gtest.h>

#include <string>

namespace DeepTomlKeysTest {

using namespace Tarn;

namespace {

// Returns a key with this many parts.
std::string key(std::size_t parts, const std::string& part = "a", const std::string& dot = ".")
{
    std::string text = part;
    for (std::size_t i = 1; i < parts; ++i)
        text += dot + part;
    return text;
}

} // namespace

TEST(DeepTomlKeys, allowsKeysWithTheMaximalNumberOfParts)
{
    EXPECT_FALSE(findDeepKey(""));
    EXPECT_FALSE(findDeepKey(key(MaximalKeyParts) + " = 1\n[" + key(MaximalKeyParts) + "]\n"));
    EXPECT_FALSE(findDeepKey("x = [" + key(20, "1.5", ", ") + "]"));
    EXPECT_FALSE(findDeepKey("x = { " + key(20, "a.b = 1", ", ") + " }"));
}

TEST(DeepTomlKeys, findsTheKeyWithTooManyParts)
{
    const std::string deep = key(MaximalKeyParts + 1);
    const struct {
        std::string text;
        Place place;
    } cases[] = {
        {deep + " = 1", {1, 1}},
        {"x = 1\n\n  " + deep + " = 1", {3, 3}},
        {"[" + deep + "]", {1, 2}},
        {"[[" + deep + "]]", {1, 3}},
        {"x = { " + deep + " = 1 }", {1, 7}},
        {"x = { y = 1, " + deep + " = 1 }", {1, 14}},
        {key(MaximalKeyParts + 1, "'a'", " . ") + " = 1", {1, 1}},
        {key(MaximalKeyParts + 1, "\"a=b\"") + " = 1", {1, 1}},
        {"\"öl\" = { " + deep + " = 1 }", {1, 10}},
    };
    for (const auto& [text, place] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(findDeepKey(text), place);
    }
}

TEST(DeepTomlKeys, ignoresStringsAndComments)
{
    const std::string dots(100, '.');
    for (const std::string& text : {
             "x = \"" + dots + "\"",
             "x = '" + dots + "'",
             "x = \"\\\"" + dots + "\"",
             "x = \"\"\"\n" + dots + "\n\"" + dots + "\"\"\"",
             "x = '''\n" + dots + "'" + dots + "'''",
             "x = \"\"\"" + dots + "\"\"\"\"\"",
             "# " + dots + "\nx = 1 # " + dots,
             "x = \"\" # " + dots,
         }) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(findDeepKey(text));
    }
}

TEST(DeepTomlKeys, findsDeepKeysAfterStringsAndComments)
{
    const std::string deep = "\n" + key(MaximalKeyParts + 1) + " = 1";
    for (const std::string start : {"x = \"\"", "x = 'a'", "x = \"a\\\\\"", "x = \"\"\"a\"\"\"", "x = '''a'''''",
                                    "x = \"\"\"\"\"\"", "# \"", "x = \"not closed", "x = 'not closed"}) {
        SCOPED_TRACE(start);
        EXPECT_TRUE(findDeepKey(start + deep));
    }
}

} // namespace DeepTomlKeysTest
