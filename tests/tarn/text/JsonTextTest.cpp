#include <tarn/text/JsonText.hpp>

#include <gtest/gtest.h>

namespace JsonTextTest {

using namespace Tarn;

TEST(JsonText, keepsTheOrderOfKeysAndEndsWithANewline)
{
    EXPECT_EQ(indented({{"b", 1}, {"a", nullptr}}), "{\n  \"b\": 1,\n  \"a\": null\n}\n");
}

TEST(JsonText, isValidAndHarmlessWhateverItsTextsContain)
{
    EXPECT_EQ(indented("\xFF\x1B\u202E"), "\"\uFFFD\\u001b\\u202e\"\n");
}

TEST(JsonText, hasNullForAnEmptyText)
{
    EXPECT_EQ(orNull("").dump(), "null");
    EXPECT_EQ(orNull("a").dump(), "\"a\"");
}

} // namespace JsonTextTest
