#include <quakes/GeoJson.hpp>

#include "Printing.hpp"
#include "earth/TemporaryFile.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace GeoJsonTest {

using namespace Quakes;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

namespace {

// Returns the message of the error for a file.
std::string messageOf(const std::string& file)
{
    try {
        readGeoJson(file);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}

// Returns the message for a file with the given content, without the name of the file.
std::string refusalOf(const std::string& content)
{
    const TemporaryFile file{content};
    const std::string message = messageOf(file.name());
    EXPECT_THAT(message, StartsWith(file.name() + ": "));
    return message.substr(std::min(file.name().size() + 2, message.size()));
}

std::string collection(const std::string& features)
{
    return R"({"type":"FeatureCollection","features":[)" + features + "]}";
}

const std::string properties = R"("properties":{"time":1000,"mag":4.5})";
const std::string geometry = R"("geometry":{"type":"Point","coordinates":[1,2,3]})";
const std::string good = R"({"type":"Feature","id":"g",)" + properties + "," + geometry + "}";

// A faulty event after a valid one.
std::string withProperties(const std::string& text)
{
    return collection(good + R"(,{"type":"Feature","id":"x","properties":)" + text + "," + geometry + "}");
}

std::string withGeometry(const std::string& text)
{
    return collection(good + R"(,{"type":"Feature","id":"x",)" + properties + R"(,"geometry":)" + text + "}");
}

std::string earthquakes()
{
    std::ifstream stream{EARTHQUAKES_JSON, std::ios::binary};
    return {std::istreambuf_iterator<char>{stream}, {}};
}

} // namespace

// The numbers below were extracted from the file with jq.

TEST(GeoJson, readsEveryEventOfTheWeek)
{
    const std::optional<Catalogue> week = readGeoJson(EARTHQUAKES_JSON);
    ASSERT_TRUE(week);
    ASSERT_EQ(week->size(), 1707u);

    const Quake first{1517363399.65,
                      -122.197,
                      46.2035,
                      3.28,
                      0.31,
                      "ml",
                      "uw",
                      "uw61345682",
                      "37km NNE of Amboy, Washington",
                      "earthquake",
                      "https://earthquake.usgs.gov/earthquakes/eventpage/uw61345682"};
    const Quake last{1517966773.84,
                     -118.6671667,
                     34.4945,
                     26.49,
                     2,
                     "ml",
                     "ci",
                     "ci37868143",
                     "4km W of Castaic, CA",
                     "earthquake",
                     "https://earthquake.usgs.gov/earthquakes/eventpage/ci37868143"};
    EXPECT_EQ((*week)[0], first);
    EXPECT_EQ((*week)[1706], last);

    std::map<double, int> perDay;
    std::map<std::string, int> perType;
    int negative = 0;
    int unknown = 0;
    int strong = 0;
    int aboveTheZero = 0;
    int eastern = 0;
    double depths = 0;
    double before = 0;
    for (std::size_t i = 0; i < week->size(); ++i) {
        const Quake& event = (*week)[i];
        EXPECT_LE(before, event.time);
        before = event.time;
        ++perDay[event.time - std::fmod(event.time, 86400)];
        ++perType[event.type];
        negative += event.magnitude < 0;
        unknown += !event.magnitude;
        strong += event.magnitude >= 4.5;
        aboveTheZero += event.depth < 0;
        eastern += event.longitude > 0;
        depths += event.depth.value();
    }
    EXPECT_THAT(perDay,
                ElementsAre(Pair(1517356800, 198), Pair(1517443200, 231), Pair(1517529600, 242), Pair(1517616000, 259),
                            Pair(1517702400, 301), Pair(1517788800, 249), Pair(1517875200, 213), Pair(1517961600, 14)));
    EXPECT_THAT(perType, ElementsAre(Pair("earthquake", 1679), Pair("explosion", 15), Pair("quarry blast", 13)));
    EXPECT_EQ(negative, 44);
    EXPECT_EQ(unknown, 0);
    EXPECT_EQ(strong, 85);
    EXPECT_EQ(aboveTheZero, 43);
    EXPECT_EQ(eastern, 70);
    EXPECT_NEAR(depths, 29098.266, 1e-6);
}

TEST(GeoJson, readsTheWeekBackFromItsTextForm)
{
    const Catalogue week = readGeoJson(EARTHQUAKES_JSON).value();
    using Trait = Orla::VValueTrait<Catalogue>;
    Catalogue copy;
    ASSERT_TRUE(Trait::setValueFromText(copy, Trait::Text(week)));
    EXPECT_EQ(copy, week);
}

TEST(GeoJson, leavesNullOrMissingPropertiesEmpty)
{
    const TemporaryFile file{
        collection(R"({"type":"Feature","id":"null","properties":{"time":2000,"mag":null,"magType":null,"net":null,)"
                   R"("place":null,"type":null},"geometry":{"type":"Point","coordinates":[1,2,null]}},)"
                   R"({"type":"Feature","id":"missing","properties":{"time":-1},)"
                   R"("geometry":{"type":"Point","coordinates":[-1.5,2e1]}})")};
    const Catalogue catalogue = readGeoJson(file.name()).value();
    EXPECT_EQ(catalogue, (Catalogue{{Quake{-0.001, -1.5, 20, {}, {}, "", "", "missing", "", "", ""},
                                     Quake{2, 1, 2, {}, {}, "", "", "null", "", "", ""}}}));
}

TEST(GeoJson, ignoresUnknownMembers)
{
    const TemporaryFile file{
        R"({"features":[{"extra":[{"id":1}],"type":"Feature","id":"g\"ü\n",)" + properties + "," + geometry
        + R"(}],"metadata":{"features":[1]},"bbox":[1,[2,{}]],"type":"FeatureCollection","crs":null})"};
    const Catalogue catalogue = readGeoJson(file.name()).value();
    EXPECT_EQ(catalogue, (Catalogue{{Quake{1, 1, 2, 3, 4.5, "", "", "g\"ü\n", "", "", ""}}}));
}

TEST(GeoJson, readsACollectionWithoutEvents)
{
    const TemporaryFile file{collection("")};
    EXPECT_EQ(readGeoJson(file.name()), Catalogue{});
}

TEST(GeoJson, convertsMillisecondsToTheNearestNumberOfSeconds)
{
    const struct {
        const char* milliseconds;
        double seconds;
    } cases[] = {
        {"0", 0},
        {"-1", -0.001},
        {"1517363399651", 1517363399.651},
        {"1517363399656", 1517363399.656},
        {"1.5e3", 1.5},
        {"8639999999999999", 8639999999999.999},
        {"-8640000000000000", -8640000000000},
    };
    for (const auto& [milliseconds, seconds] : cases) {
        SCOPED_TRACE(milliseconds);
        const TemporaryFile file{collection(R"({"type":"Feature","id":"x","properties":{"time":)"
                                            + std::string(milliseconds) + "}," + geometry + "}")};
        EXPECT_EQ(readGeoJson(file.name()).value()[0].time, seconds);
    }
}

TEST(GeoJson, reportsFaultsOfTheDocument)
{
    const struct {
        std::string content;
        const char* message;
    } cases[] = {
        {"7", R"(found the number 7, expected an object of type "FeatureCollection")"},
        {"null", R"(found null, expected an object of type "FeatureCollection")"},
        {R"("FeatureCollection")",
         R"(found the text "FeatureCollection", expected an object of type "FeatureCollection")"},
        {"[" + good + "]", R"(found an array of 1, expected an object of type "FeatureCollection")"},
        {"{}", R"(type: found nothing, expected "FeatureCollection")"},
        {R"({"type":"FeatureCollection"})", "features: found nothing, expected an array of events"},
        {R"({"type":"FeatureCollection","features":null})", "features: found null, expected an array of events"},
        {R"({"type":"FeatureCollection","features":{"0":)" + good + "}}",
         "features: found an object, expected an array of events"},
        {R"({"type":"FeatureCollection","features":"none"})",
         R"(features: found the text "none", expected an array of events)"},
        {R"({"features":[)" + good + "]}", R"(type: found nothing, expected "FeatureCollection")"},
        {good, R"(type: found the text "Feature", expected "FeatureCollection")"},
        {R"({"type":"Topology","features":[]})", R"(type: found the text "Topology", expected "FeatureCollection")"},
        {R"({"type":1,"features":[]})", R"(type: found the number 1, expected "FeatureCollection")"},
    };
    for (const auto& [content, message] : cases) {
        SCOPED_TRACE(content);
        EXPECT_EQ(refusalOf(content), message);
    }
}

TEST(GeoJson, reportsFaultsOfEventsWithTheirPlace)
{
    const std::string time = ", expected milliseconds since 1970 UTC, at most 8.64e15 before or after";
    const std::string coordinates = ", expected [longitude, latitude, depth]";
    const struct {
        std::string content;
        std::string message;
    } cases[] = {
        {collection("5"), R"(features[0]: found the number 5, expected an object of type "Feature")"},
        {collection(good + ",null"), R"(features[1]: found null, expected an object of type "Feature")"},
        {collection(good + ",[]"), R"(features[1]: found an array of 0, expected an object of type "Feature")"},
        {collection("{}"), "features[0], id: found nothing, expected a text"},
        {collection(R"({"id":17})"), "features[0], id: found the number 17, expected a text"},
        {collection(R"({"id":null})"), "features[0], id: found null, expected a text"},
        {collection(R"({"id":"x"})"), R"(features[0] (id "x"), type: found nothing, expected "Feature")"},
        {collection(R"({"id":"x","type":"Point"})"),
         R"(features[0] (id "x"), type: found the text "Point", expected "Feature")"},
        {collection(R"({"id":"x","type":"Feature"})"),
         R"(features[0] (id "x"), properties: found nothing, expected an object)"},
        {withProperties("[]"), R"(features[1] (id "x"), properties: found an array of 0, expected an object)"},
        {withProperties("{}"), R"(features[1] (id "x"), properties.time: found nothing)" + time},
        {withProperties(R"({"time":null})"), R"(features[1] (id "x"), properties.time: found null)" + time},
        {withProperties(R"({"time":"1517966773840"})"),
         R"(features[1] (id "x"), properties.time: found the text "1517966773840")" + time},
        {withProperties(R"({"time":8640000000000001})"),
         R"(features[1] (id "x"), properties.time: found the number 8640000000000001)" + time},
        {withProperties(R"({"time":-1e300})"),
         R"(features[1] (id "x"), properties.time: found the number -1e+300)" + time},
        {withProperties(R"({"time":0,"mag":"4.5"})"),
         R"(features[1] (id "x"), properties.mag: found the text "4.5", expected a number or null)"},
        {withProperties(R"({"time":0,"mag":true})"),
         R"(features[1] (id "x"), properties.mag: found true, expected a number or null)"},
        {withProperties(R"({"time":0,"magType":5})"),
         R"(features[1] (id "x"), properties.magType: found the number 5, expected a text or null)"},
        {withProperties(R"({"time":0,"net":{}})"),
         R"(features[1] (id "x"), properties.net: found an object, expected a text or null)"},
        {withProperties(R"({"time":0,"place":["here"]})"),
         R"(features[1] (id "x"), properties.place: found an array of 1, expected a text or null)"},
        {withProperties(R"({"time":0,"type":false})"),
         R"(features[1] (id "x"), properties.type: found false, expected a text or null)"},
        {withGeometry("null"), R"(features[1] (id "x"), geometry: found null, expected an object)"},
        {withGeometry("{}"), R"(features[1] (id "x"), geometry.type: found nothing, expected "Point")"},
        {withGeometry(R"({"type":"LineString","coordinates":[[1,2],[3,4]]})"),
         R"(features[1] (id "x"), geometry.type: found the text "LineString", expected "Point")"},
        {withGeometry(R"({"type":"Point"})"),
         R"(features[1] (id "x"), geometry.coordinates: found nothing)" + coordinates},
        {withGeometry(R"({"type":"Point","coordinates":"1,2,3"})"),
         R"(features[1] (id "x"), geometry.coordinates: found the text "1,2,3")" + coordinates},
        {withGeometry(R"({"type":"Point","coordinates":[]})"),
         R"(features[1] (id "x"), geometry.coordinates: found an array of 0)" + coordinates},
        {withGeometry(R"({"type":"Point","coordinates":[1]})"),
         R"(features[1] (id "x"), geometry.coordinates: found an array of 1)" + coordinates},
        {withGeometry(R"({"type":"Point","coordinates":["1",2,3]})"),
         R"(features[1] (id "x"), geometry.coordinates[0]: found the text "1", expected a number)"},
        {withGeometry(R"({"type":"Point","coordinates":[1,null,3]})"),
         R"(features[1] (id "x"), geometry.coordinates[1]: found null, expected a number)"},
        {withGeometry(R"({"type":"Point","coordinates":[1,2,"3 km"]})"),
         R"(features[1] (id "x"), geometry.coordinates[2]: found the text "3 km", expected a number)"},
    };
    for (const auto& [content, message] : cases) {
        SCOPED_TRACE(content);
        EXPECT_EQ(refusalOf(content), message);
    }
}

TEST(GeoJson, reportsTheLineOfInvalidJson)
{
    const struct {
        std::string content;
        const char* message;
    } cases[] = {
        {"", "invalid JSON: parse error at line 1, column 1"},
        {"\n\n earthquakes", "invalid JSON: parse error at line 3, column 2"},
        {"time,mag\n1,2\n", "invalid JSON: parse error at line 1, column 2"},
        {std::string(100, '\0'), "invalid JSON: parse error at line 1, column 1"},
        {collection(good) + "}", "invalid JSON: parse error at line 1"},
        {collection(good + ","), "invalid JSON: parse error at line 1"},
        {withProperties(R"({"time":1e999})"), "invalid JSON: number overflow"},
        {withProperties("{\"time\":0,\"place\":\"\xff\"}"), "invalid JSON: parse error at line 1"},
        {withProperties(R"({"time":NaN})"), "invalid JSON: parse error at line 1"},
    };
    for (const auto& [content, message] : cases) {
        SCOPED_TRACE(content);
        EXPECT_THAT(refusalOf(content), StartsWith(message));
    }
}

TEST(GeoJson, refusesTruncatedFiles)
{
    const std::string whole = earthquakes();
    ASSERT_THAT(whole, SizeIs(1219853));
    std::vector<std::size_t> lengths{0, 1, 2, whole.size() - 2, whole.size() - 1};
    // Prime numbers cut the lines at different places.
    const std::size_t step = std::getenv("FAULTS_EVERY") ? 401 : 60013;
    for (std::size_t length = 17; length < whole.size(); length += step)
        lengths.push_back(length);
    for (std::size_t length = whole.find("{\"type\":\"Feature\""); length < whole.find("\n"); length += 11)
        lengths.push_back(length);
    for (const std::size_t length : lengths)
        EXPECT_THAT(refusalOf(whole.substr(0, length)), StartsWith("invalid JSON: parse error at line")) << length;
}

TEST(GeoJson, hasThePlaceOfTheFaultInAFileTruncatedAtAnyByte)
{
    const std::string whole = collection(good + "," + good);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THAT(refusalOf(whole.substr(0, length)), StartsWith("invalid JSON: parse error at line 1, column "))
            << length;
}

TEST(GeoJson, reportsWhyAFileCannotBeOpened)
{
    EXPECT_EQ(messageOf("no such file.json"), "no such file.json: file not found, expected a GeoJSON file");
    EXPECT_EQ(messageOf("."), ".: found a folder, expected a GeoJSON file");
    // The system's reason after the colon is in the user's language.
    const std::string tooLong(1000, 'x');
    EXPECT_THAT(messageOf(tooLong), MatchesRegex(tooLong + ": cannot be opened: .+"));
}

TEST(GeoJson, keepsItsMessagesShort)
{
    const std::string endless(100000, 'x');
    EXPECT_THAT(refusalOf("\"" + endless), SizeIs(testing::Lt(300u)));
    const std::string message =
        refusalOf(collection(R"({"type":"Feature","id":")" + endless + R"(","properties":")" + endless + "\"}"));
    EXPECT_THAT(message, SizeIs(testing::Lt(300u)));
    EXPECT_THAT(message, HasSubstr("properties: found the text \"xxx"));
}

TEST(GeoJson, handlesDeeplyNestedDocuments)
{
    const std::string opened(1000000, '[');
    const std::string closed(1000000, ']');
    EXPECT_THAT(refusalOf(opened), StartsWith("invalid JSON: "));
    EXPECT_THAT(refusalOf(opened + closed), StartsWith("found an array of 1, "));
    EXPECT_EQ(refusalOf(collection(R"({"id":)" + opened + closed + "}")),
              "features[0], id: found an array of 1, expected a text");
    EXPECT_EQ(refusalOf(withProperties(R"({"time":0,"place":)" + opened + closed + "}")),
              "features[1] (id \"x\"), properties.place: found an array of 1, expected a text or null");
}

TEST(GeoJson, reportsItsProgress)
{
    std::vector<double> fractions;
    const auto goOn = [&fractions](double fraction) {
        fractions.push_back(fraction);
        return true;
    };
    EXPECT_EQ(readGeoJson(EARTHQUAKES_JSON, goOn).value().size(), 1707u);
    EXPECT_THAT(fractions, testing::Not(IsEmpty()));
    EXPECT_THAT(fractions, Each(testing::AllOf(testing::Gt(0), testing::Le(1))));
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
}

TEST(GeoJson, returnsNothingWhenStopped)
{
    int asked = 0;
    const auto stop = [&asked](double) {
        ++asked;
        return false;
    };
    EXPECT_EQ(readGeoJson(EARTHQUAKES_JSON, stop), std::nullopt);
    EXPECT_EQ(asked, 1);
}

} // namespace GeoJsonTest
