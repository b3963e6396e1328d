#include <earth/JsonText.hpp>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

using Earth::described;
using nlohmann::json;

TEST(JsonText, describesValues)
{
    EXPECT_EQ(described(nullptr), "nothing");
    const struct {
        json found;
        const char* text;
    } cases[] = {
        {json::object(), "an object"},
        {json::array({1, 2}), "an array of 2"},
        {5, "the number 5"},
        {"a\nb", "the text \"a\\nb\""},
        {true, "true"},
        {nullptr, "null"},
        {"\xff", "the text \"\\ufffd\""},
    };
    for (const auto& [found, text] : cases)
        EXPECT_EQ(described(&found), text);
}

TEST(JsonText, shortensLongTexts)
{
    EXPECT_EQ(Earth::shortened(std::string(60, 'a')), std::string(60, 'a'));
    EXPECT_EQ(Earth::shortened(std::string(61, 'a')), std::string(60, 'a') + "...");
}
