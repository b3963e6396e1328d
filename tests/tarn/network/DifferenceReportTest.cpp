#include <tarn/network/DifferenceReport.hpp>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace DifferenceReportTest {

using namespace Tarn;
using Json = nlohmann::json;
using Kind = NetworkDifference::Kind;
using Side = NetworkDifference::Side;

namespace {

const ComparedFiles files{"a.toml", "b.toml"};

std::optional<Side> text(const std::string& content, Place place = {})
{
    return Side{.place = place, .texts = {content}, .reads = {}};
}

std::optional<Side> reads(const std::string& output, bool isAutomatic = false)
{
    return Side{.place = {3, 4}, .texts = {}, .reads = output, .isAutomatic = isAutomatic};
}

std::string lineOf(const NetworkDifference& difference)
{
    return differencesText(files, {difference});
}

} // namespace

TEST(DifferenceReport, hasOneLinePerKindOfDifference)
{
    EXPECT_EQ(lineOf({Kind::Library, "", "", text("l", {1, 2}), {}, {}}), "a.toml:1:2: library \"l\" is removed\n");
    EXPECT_EQ(lineOf({Kind::Chart, "", "", {}, text("c", {1, 2}), {}}), "b.toml:1:2: chart \"c\" instead of none\n");
    EXPECT_EQ(lineOf({Kind::Time, "", "", text("x"), text("y"), {}}),
              "b.toml: the time is provided by \"y\" instead of \"x\"\n");
    EXPECT_EQ(lineOf({Kind::Object, "o", "", text("T", {1, 2}), {}, {}}),
              "a.toml:1:2: object \"o\" of type \"T\" is removed\n");
    EXPECT_EQ(lineOf({Kind::Object, "o", "", {}, text("T", {1, 2}), {}}),
              "b.toml:1:2: object \"o\" of type \"T\" is added\n");
    EXPECT_EQ(lineOf({Kind::Object, "o", "", text("T"), text("U", {1, 2}), {}}),
              "b.toml:1:2: object \"o\": type \"U\" instead of \"T\"\n");
    EXPECT_EQ(lineOf({Kind::Object, "o", "", text("T"), text("T", {1, 2}), {}}),
              "b.toml:1:2: object \"o\": its type \"T\" is known to only one of the networks\n");
    EXPECT_EQ(lineOf({Kind::Name, "o", "", text("o"), text("p", {1, 2}), {}}),
              "b.toml:1:2: object \"o\" is renamed to \"p\"\n");
    EXPECT_EQ(lineOf({Kind::Entry, "o", "set.a", text("\"x\""), {}, {5, 6}}),
              "b.toml:5:6: object \"o\", set.a = nothing instead of \"x\"\n");
    EXPECT_EQ(lineOf({Kind::Column, "", "t", reads("x.y"), {}, {}}), "a.toml:3:4: column \"t\" is removed: \"x.y\"\n");
    EXPECT_EQ(lineOf({Kind::Column, "", "t", reads("x.y"), reads("x.z"), {}}),
              "b.toml:3:4: column \"t\": \"x.z\" instead of \"x.y\"\n");
    EXPECT_EQ(lineOf({Kind::ColumnOrder,
                      "",
                      "",
                      Side{.place = {}, .texts = {"a", "b"}, .reads = {}},
                      Side{.place = {1, 2}, .texts = {"b", "a"}, .reads = {}},
                      {}}),
              "b.toml:1:2: columns in another order: \"b\", \"a\" instead of \"a\", \"b\"\n");
}

TEST(DifferenceReport, distinguishesTheFormsOfAnInput)
{
    EXPECT_EQ(lineOf({Kind::Input, "o", "i", reads("x.y"), text("5", {1, 2}), {}}),
              "b.toml:1:2: object \"o\", input \"i\": \"5\" instead of reading \"x.y\"\n");
    EXPECT_EQ(lineOf({Kind::Input, "o", "i", {}, reads("x.y", true), {}}),
              "b.toml:3:4: object \"o\", input \"i\": reads \"x.y\" (connected automatically) instead of the declared "
              "value\n");
    EXPECT_EQ(lineOf({Kind::Input, "o", "i", Side{.place = {}, .texts = {"1", "2"}, .reads = {}}, {}, {5, 6}}),
              "b.toml:5:6: object \"o\", input \"i\": the declared value instead of \"1\" then \"2\"\n");
}

TEST(DifferenceReport, escapesControlCharacters)
{
    EXPECT_EQ(differencesText({"a", "b\x1B.toml"},
                              {{Kind::Input, "o\n", "i\x07", text("\xFF"), text("\u202E\"", {1, 2}), {}}}),
              "b\\x1b.toml:1:2: object \"o\\n\", input \"i\\x07\": \"\\u202e\\\"\" instead of \"\\xff\"\n");
}

TEST(DifferenceReport, hasAllOfADifferenceInItsJson)
{
    const Json report = Json::parse(
        differencesJson(files, {{Kind::Input, "o", "i", reads("x.y", true), text("\x1B\xFF", {1, 2}), {}}}, {"odd"}));
    EXPECT_EQ(report, Json::parse(R"({
        "before": "a.toml", "after": "b.toml", "unknown": ["odd"],
        "differences": [{
            "kind": "input", "object": "o", "part": "i",
            "before": {"place": {"line": 3, "column": 4}, "texts": null, "reads": "x.y", "isAutomatic": true},
            "after": {"place": {"line": 1, "column": 2}, "texts": ["\u001B\uFFFD"], "reads": null, "isAutomatic": false}
        }]})"));
}

TEST(DifferenceReport, hasNullForWhatOnlyOneNetworkHas)
{
    const Json report = Json::parse(differencesJson(files, {{Kind::Library, "", "", text("l"), {}, {}}}, {}));
    EXPECT_EQ(report["differences"][0], Json::parse(R"({
        "kind": "library", "object": null, "part": null, "after": null,
        "before": {"place": null, "texts": ["l"], "reads": null, "isAutomatic": false}})"));
    EXPECT_EQ(Json::parse(differencesJson(files, {}, {}))["differences"], Json::array());
}

TEST(DifferenceReport, namesEachKindInItsJson)
{
    std::vector<NetworkDifference> differences;
    for (const Kind kind : {Kind::Library, Kind::Chart, Kind::Time, Kind::Object, Kind::Name, Kind::Input, Kind::Entry,
                            Kind::Column, Kind::ColumnOrder})
        differences.push_back({kind, "", "", {}, {}, {}});
    std::string names;
    const Json report = Json::parse(differencesJson(files, differences, {}));
    for (const Json& each : report["differences"])
        names += each["kind"].get<std::string>() + ' ';
    EXPECT_EQ(names, "library chart time object name input entry column columnOrder ");
}

} // namespace DifferenceReportTest
