#include <earth/TopoJson.hpp>

#include "earth/TemporaryFile.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace TopoJsonTest {

using Earth::Line;
using Earth::LonLat;
using Earth::Polygon;
using Earth::readTopoJson;
using Earth::Shapes;
using Earth::shapesOfTopoJson;

namespace {

// A topology without a transform: two arcs form the halves of a square, a third one a
// hole.
std::string topology(const std::string& geometry)
{
    return R"({"type": "Topology", "arcs": [[[0, 0], [10, 0], [10, 10]], [[0, 0], [0, 10], [10, 10]],
               [[4, 4], [6, 4], [5, 6], [4, 4]]], "objects": {"shape": )"
           + geometry + "}}";
}

Shapes shapes(const std::string& text, const std::string& object = "")
{
    return shapesOfTopoJson(text, "land.json", object);
}

std::string message(const std::string& text, const std::string& object = "")
{
    try {
        shapes(text, object);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no error";
}

const Line firstHalf{{0, 0}, {10, 0}, {10, 10}};
const Line secondHalfBackwards{{10, 10}, {0, 10}, {0, 0}};

} // namespace

TEST(TopoJson, joinsArcsInBothDirectionsToRings)
{
    const Shapes read = shapes(topology(R"({"type": "Polygon", "arcs": [[0, -2], [2]]})"));
    const Polygon expected{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {{4, 4}, {6, 4}, {5, 6}}};
    ASSERT_EQ(read.polygons.size(), 1u);
    EXPECT_EQ(read.polygons[0], expected);
    EXPECT_TRUE(read.lines.empty());
    EXPECT_TRUE(read.points.empty());
}

TEST(TopoJson, readsEveryKindOfGeometry)
{
    const Shapes read = shapes(topology(R"({"type": "GeometryCollection", "geometries": [
        {"type": "LineString", "arcs": [0]},
        {"type": "MultiLineString", "arcs": [[-2], [0, -2]]},
        {"type": "MultiPolygon", "arcs": [[[2]], [[-3]]]},
        {"type": null},
        {"type": "GeometryCollection", "geometries": [{"type": "Point", "coordinates": [1, 2, 300]}]},
        {"type": "MultiPoint", "coordinates": [[3, 4], [5, 6]]}]})"));
    Line round = firstHalf;
    round.insert(round.end(), {{0, 10}, {0, 0}});
    EXPECT_EQ(read.lines, (std::vector<Line>{firstHalf, secondHalfBackwards, round}));
    EXPECT_EQ(read.polygons, (std::vector<Polygon>{{{{4, 4}, {6, 4}, {5, 6}}}, {{{4, 4}, {5, 6}, {6, 4}}}}));
    EXPECT_EQ(read.points, (std::vector<LonLat>{{1, 2}, {3, 4}, {5, 6}}));
}

// Places are sums of differences, times the scale, plus the translation.
TEST(TopoJson, appliesTheTransformToArcsAndPoints)
{
    const Shapes read = shapes(
        R"({"type": "Topology", "transform": {"scale": [0.5, 0.25], "translate": [-180, -90]},
            "arcs": [[[0, 0], [20, 4], [-4, 8]]],
            "objects": {"a": {"type": "LineString", "arcs": [0]},
                        "b": {"type": "Point", "coordinates": [720, 720]}}})");
    EXPECT_EQ(read.lines, (std::vector<Line>{{{-180, -90}, {-170, -89}, {-172, -87}}}));
    EXPECT_EQ(read.points, (std::vector<LonLat>{{180, 90}}));
}

TEST(TopoJson, readsOneNamedObjectOrAll)
{
    const std::string text = R"({"type": "Topology", "arcs": [], "objects": {
        "b": {"type": "Point", "coordinates": [2, 2]}, "a": {"type": "Point", "coordinates": [1, 1]}}})";
    EXPECT_EQ(shapes(text, "b").points, (std::vector<LonLat>{{2, 2}}));
    EXPECT_EQ(shapes(text).points, (std::vector<LonLat>{{1, 1}, {2, 2}}));
    EXPECT_EQ(message(text, "c"), "land.json: objects: found the objects a, b, expected one named c");
}

TEST(TopoJson, removesRoundingAtThePolesAndTheDateLine)
{
    const Shapes read = shapes(R"({"type": "Topology", "arcs": [], "objects": {
        "a": {"type": "MultiPoint", "coordinates": [[180.0000000001, 90.0000000001],
                                                    [-180.0000000001, -90.0000000001], [181, 0]]}}})");
    EXPECT_EQ(read.points, (std::vector<LonLat>{{180, 90}, {-180, -90}, {181, 0}}));
}

TEST(TopoJson, reportsFaultsOfGeometries)
{
    const std::string numberExpected = "expected a whole number from -3 to less than 3, the number of arcs";
    const struct {
        const char* geometry;
        std::string message;
    } cases[] = {
        {"[]", "objects.shape: found an array of 0, expected a geometry"},
        {R"({})", "objects.shape.type: found nothing, expected \"GeometryCollection\", \"Polygon\", \"MultiPolygon\", "
                  "\"LineString\", \"MultiLineString\", \"Point\", \"MultiPoint\" or null"},
        {R"({"type": "Circle"})", "objects.shape.type: found the text \"Circle\", expected \"GeometryCollection\", "
                                  "\"Polygon\", \"MultiPolygon\", \"LineString\", \"MultiLineString\", \"Point\", "
                                  "\"MultiPoint\" or null"},
        {R"({"type": "Polygon"})", "objects.shape.arcs: found nothing, expected an array of rings"},
        {R"({"type": "Polygon", "arcs": [0]})",
         "objects.shape.arcs[0]: found the number 0, expected an array of arc indices"},
        {R"({"type": "Polygon", "arcs": [[]]})",
         "objects.shape.arcs[0]: found an array of 0, expected at least one arc index"},
        {R"({"type": "Polygon", "arcs": [[0]]})", "objects.shape.arcs[0]: found a ring that begins at [0, 0] "
                                                  "and ends at [10, 10], expected one that ends where "
                                                  "it begins"},
        {R"({"type": "Polygon", "arcs": [[0, -1]]})", "no error"}, // there and back: five positions
        {R"({"type": "MultiPolygon", "arcs": [[[2]], [[0, 1]]]})",
         "objects.shape.arcs[1][0][1]: found an arc that begins at [0, 0], expected one that begins where "
         "the previous arc ends, at [10, 10]"},
        {R"({"type": "LineString", "arcs": [3]})", "objects.shape.arcs[0]: found the number 3, " + numberExpected},
        {R"({"type": "LineString", "arcs": [-4]})", "objects.shape.arcs[0]: found the number -4, " + numberExpected},
        {R"({"type": "LineString", "arcs": [-9223372036854775808]})",
         "objects.shape.arcs[0]: found the number -9223372036854775808, " + numberExpected},
        {R"({"type": "LineString", "arcs": [18446744073709551615]})",
         "objects.shape.arcs[0]: found the number 18446744073709551615, " + numberExpected},
        {R"({"type": "LineString", "arcs": [0.5]})", "objects.shape.arcs[0]: found the number 0.5, " + numberExpected},
        {R"({"type": "MultiLineString", "arcs": [[0], ["1"]]})",
         "objects.shape.arcs[1][0]: found the text \"1\", " + numberExpected},
        {R"({"type": "Point", "coordinates": [1]})",
         "objects.shape.coordinates: found an array of 1, expected [longitude, latitude]"},
        {R"({"type": "Point", "coordinates": [1, null]})",
         "objects.shape.coordinates[1]: found null, expected a number"},
        {R"({"type": "MultiPoint", "coordinates": [[1, 2], [1, 91]]})",
         "objects.shape.coordinates[1]: found the position [1, 91], expected a longitude from -360 to 360 "
         "and a latitude from -90 to 90 degrees"},
        {R"({"type": "GeometryCollection", "geometries": [{"type": "GeometryCollection"}]})",
         "objects.shape.geometries[0].geometries: found nothing, expected an array of geometries"},
    };
    for (const auto& [geometry, expected] : cases) {
        SCOPED_TRACE(geometry);
        EXPECT_EQ(message(topology(geometry)), expected == "no error" ? expected : "land.json: " + expected);
    }
}

TEST(TopoJson, reportsFaultsOfTheTopology)
{
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"[]", "land.json: found an array of 0, expected an object of type \"Topology\""},
        {"{}", "land.json: type: found nothing, expected \"Topology\""},
        {R"({"type": "FeatureCollection"})",
         "land.json: type: found the text \"FeatureCollection\", expected \"Topology\""},
        {R"({"type": "Topology"})", "land.json: arcs: found nothing, expected an array of arcs"},
        {R"({"type": "Topology", "arcs": []})", "land.json: objects: found nothing, expected an object of geometries"},
        {R"({"type": "Topology", "arcs": [[[0, 0]]]})",
         "land.json: arcs[0]: found an array of 1, expected an array of at least 2 positions"},
        {R"({"type": "Topology", "arcs": [[[0, 0], [1, 1]], [[0, 0], [1, "1"]]]})",
         "land.json: arcs[1][1][1]: found the text \"1\", expected a number"},
        {R"({"type": "Topology", "arcs": [[[0, 0], [400, 1]]]})",
         "land.json: arcs[0][1]: found the position [400, 1], expected a longitude from -360 to 360 and a "
         "latitude "
         "from -90 to 90 degrees"},
        {R"({"type": "Topology", "transform": {"scale": [1e308, 1], "translate": [0, 0]},
            "arcs": [[[9, 0], [0, 0]]]})",
         "land.json: arcs[0][0]: found the position [inf, 0], expected a longitude from -360 to 360 and a "
         "latitude "
         "from -90 to 90 degrees"},
        {R"({"type": "Topology", "transform": 3, "arcs": []})",
         "land.json: transform: found the number 3, expected an object with \"scale\" and \"translate\""},
        {R"({"type": "Topology", "transform": {"scale": [1, 1]}, "arcs": []})",
         "land.json: transform.translate: found nothing, expected two numbers"},
        {R"({"type": "Topology", "transform": {"scale": [1, 1, 1]}, "arcs": []})",
         "land.json: transform.scale: found an array of 3, expected two numbers"},
        {R"({"type": "Topology", "transform": {"scale": [1, true]}, "arcs": []})",
         "land.json: transform.scale[1]: found true, expected a number"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(message(text), expected);
    }
    EXPECT_EQ(message("{\"type\": \"Topology\", ").find("land.json: invalid JSON: "), 0u);
    EXPECT_EQ(message(R"({"type": "Topology", "arcs": [[[0, 0], [1e999, 1]]]})").find("land.json: invalid JSON: "), 0u);
}

TEST(TopoJson, refusesRingsOfFewerThanFourPositions)
{
    EXPECT_EQ(message(R"({"type": "Topology", "arcs": [[[0, 0], [1, 1], [0, 0]]],
                          "objects": {"a": {"type": "Polygon", "arcs": [[0]]}}})"),
              "land.json: objects.a.arcs[0]: found a ring of 3 positions, expected at least 4, the last equal to the "
              "first");
}

TEST(TopoJson, refusesDeeplyNestedCollections)
{
    std::string geometry = R"({"type": "Point", "coordinates": [0, 0]})";
    constexpr int depth = 100000;
    std::string open;
    std::string close;
    for (int i = 0; i < depth; ++i) {
        open += R"({"type": "GeometryCollection", "geometries": [)";
        close += "]}";
    }
    EXPECT_NE(message(topology(open + geometry + close)).find("found a collection within 64 others"),
              std::string::npos);
}

TEST(TopoJson, reportsAFileThatCannotBeRead)
{
    EXPECT_THROW(readTopoJson("no-such.json"), std::runtime_error);
    try {
        readTopoJson(".");
        FAIL() << "a folder was read";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), ".: found a folder, expected a TopoJSON file");
    }
    const TemporaryFile file{topology(R"({"type": "LineString", "arcs": [0]})")};
    EXPECT_EQ(readTopoJson(file.name()).lines, (std::vector<Line>{firstHalf}));
}

// The file has 125 polygons; one has a hole, the Caspian Sea.
TEST(TopoJson, readsTheLandOfTheWorld)
{
    const Shapes land = readTopoJson(LAND_JSON, "land");
    EXPECT_EQ(land.polygons.size(), 125u);
    EXPECT_TRUE(land.lines.empty());
    std::size_t rings = 0;
    double south = 90;
    double north = -90;
    for (const Polygon& polygon : land.polygons) {
        rings += polygon.size();
        for (const auto& ring : polygon) {
            for (const LonLat& place : ring) {
                EXPECT_LE(std::abs(place.longitude), 180);
                south = std::min(south, place.latitude);
                north = std::max(north, place.latitude);
            }
        }
    }
    EXPECT_EQ(rings, 126u);
    EXPECT_NEAR(south, -85.609038, 1e-6); // the file's "bbox"
    EXPECT_NEAR(north, 83.645130, 1e-6);
}

TEST(TopoJson, refusesShapesThatRepeatLongArcsTooOften)
{
    std::string arc = "[0,0]";
    for (int i = 0; i < 2000; ++i)
        arc += ",[1,1],[0,0]";
    const auto lines = [&arc](int count) {
        std::string indices = "[0]";
        for (int i = 1; i < count; ++i)
            indices += ",[0]";
        return R"({"type":"Topology","objects":{"lines":{"type":"MultiLineString","arcs":[)" + indices
               + R"(]}},"arcs":[[)" + arc + "]]}";
    };
    EXPECT_EQ(shapes(lines(249)).lines.size(), 249u); // fewer than a million positions
    EXPECT_EQ(message(lines(250)),
              "land.json: objects.lines.arcs[249][0]: found more positions than memory should be spent on, expected "
              "shapes that use each arc a few times");
}

TEST(TopoJson, hasThePlaceOfTheFaultInATextTruncatedAtAnyByte)
{
    const std::string whole = topology(R"({"type": "Polygon", "arcs": [[0, -2], [2]]})");
    ASSERT_EQ(message(whole), "no error");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_TRUE(message(whole.substr(0, length)).starts_with("land.json: invalid JSON: parse error at line "))
            << message(whole.substr(0, length));
}

TEST(TopoJson, refusesTruncatedFiles)
{
    std::ifstream file{LAND_JSON, std::ios::binary};
    std::string whole{std::istreambuf_iterator<char>(file), {}};
    whole.resize(whole.rfind('}') + 1);
    ASSERT_GT(whole.size(), 50000u);
    const std::size_t step = std::getenv("FAULTS_EVERY") ? 1 : 499;
    for (std::size_t length = whole.size() - 1; length < whole.size(); length -= step)
        ASSERT_TRUE(message(whole.substr(0, length)).starts_with("land.json: invalid JSON: parse error at line "))
            << length;
}

} // namespace TopoJsonTest
