#include <earth/JsonText.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

namespace JsonTextTest {

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

namespace {

template<class Read>
std::string message(Read&& read)
{
    try {
        try {
            read();
        } catch (...) {
            Earth::rethrowJsonFault("file.json");
        }
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(JsonText, reportsFaultsWithTheirPlaces)
{
    const json found = 5;
    EXPECT_EQ(message([&] { Earth::refuseJson("arcs[2]", &found, "a text"); }),
              "file.json: arcs[2]: found the number 5, expected a text");
    EXPECT_EQ(message([&] { Earth::refuseJson("", nullptr, "an object"); }),
              "file.json: found nothing, expected an object");
    const std::string broken = message([&] { const json read = json::parse("{\"a\": [1,}"); });
    EXPECT_THAT(broken, testing::StartsWith("file.json: invalid JSON: parse error at line 1, column 10"));
    EXPECT_THAT(broken, testing::Not(testing::HasSubstr("last read")));
    EXPECT_EQ(message([] { throw std::runtime_error{"another"}; }), "another");
}

} // namespace JsonTextTest
