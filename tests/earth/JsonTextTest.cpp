#include <earth/JsonText.hpp>

#include <nlohmann/json.hpp>

#include "earth/TemporaryFile.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

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

namespace {

std::string parsed(Earth::JsonFile& file)
{
    std::istream stream{&file};
    return json::parse(stream).dump();
}

} // namespace

TEST(JsonFile, reportsItsProgressForEachBlock)
{
    const std::string content = '"' + std::string(200'000, 'a') + '"';
    const TemporaryFile file{content};
    std::vector<double> fractions;
    Earth::JsonFile source{file.name(), "a file", content.size(), [&](double fraction) {
                               fractions.push_back(fraction);
                               return true;
                           }};
    EXPECT_EQ(parsed(source), content);
    ASSERT_GE(fractions.size(), 4u);
    EXPECT_GT(fractions.front(), 0);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.back(), 1);
}

TEST(JsonFile, isReadUntilItIsStopped)
{
    const TemporaryFile file{std::string(200'000, ' ')};
    int asked = 0;
    Earth::JsonFile source{file.name(), "a file", 1'000'000, [&](double) { return ++asked < 2; }};
    EXPECT_THROW(parsed(source), Earth::ReadingStopped);
    EXPECT_EQ(asked, 2);
}

TEST(JsonFile, isRefusedIfItIsTooLarge)
{
    const TemporaryFile file{std::string(std::size_t{2} << 20, ' ') + "1"};
    Earth::JsonFile source{file.name(), "a file", 2 << 20};
    EXPECT_EQ(message([&] { parsed(source); }), file.name() + ": larger than 2 MiB, expected a smaller file");
    Earth::JsonFile allowed{file.name(), "a file", (2 << 20) + 1};
    EXPECT_EQ(parsed(allowed), "1");
}

TEST(JsonFile, namesTheFileThatCannotBeOpened)
{
    EXPECT_EQ(message([] { Earth::JsonFile("none.json", "a text file", 1); }),
              "none.json: file not found, expected a text file");
    EXPECT_EQ(message([] { Earth::JsonFile("/", "a text file", 1); }), "/: found a folder, expected a text file");
}

} // namespace JsonTextTest
