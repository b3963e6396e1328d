#include <rain/GridJson.hpp>

#include "Grids.hpp"
#include "earth/TemporaryFile.hpp"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace GridJsonTest {

using Rain::Grid;
using Rain::readGridJson;
using testing::AllOf;
using testing::HasSubstr;

namespace {

const std::string frame = R"("width":2,"height":2,"scale":[1,-1],"translate":[10,20])";

// Returns the message for a document, after the name of its file.
std::string fault(const std::string& document)
{
    const TemporaryFile file{document};
    try {
        readGridJson(file.name());
    } catch (const std::runtime_error& error) {
        const std::string message = error.what();
        EXPECT_TRUE(message.starts_with(file.name() + ": ")) << message;
        return message.substr(file.name().size() + 2);
    }
    return "no fault";
}

} // namespace

TEST(GridJson, readsPlacesAndValues)
{
    const TemporaryFile file{"{" + frame + R"(,"values":[1,2.5,null,-4]})"};
    EXPECT_EQ(readGridJson(file.name()), gridOf("2x2 10,20 1,-1: 1,2.5,,-4"));
}

TEST(GridJson, readsMembersInAnyOrderAndSkipsUnknownOnes)
{
    const TemporaryFile file{R"({"note":{"values":[[5]]},"values":[1,2,3,4],"more":[[1,[2]],null],)" + frame + "}"};
    EXPECT_EQ(readGridJson(file.name()), gridOf("2x2 10,20 1,-1: 1,2,3,4"));
}

TEST(GridJson, usesTheLastOfSeveralMembersOfOneName)
{
    const TemporaryFile file{R"({"values":[9,9,9],"values":[1,2,3,4],)" + frame + "}"};
    EXPECT_EQ(readGridJson(file.name()), gridOf("2x2 10,20 1,-1: 1,2,3,4"));
}

TEST(GridJson, readsThePrecipitationOfAYear)
{
    const Grid& grid = precipitation();
    EXPECT_EQ(grid.frame(), (Rain::GridFrame{360, 168, -180, 87, 1, -1}));
    // The first and the last number of the file.
    EXPECT_EQ(grid.at(0, 0), 392);
    EXPECT_EQ(grid.at(359, 167), 169);
}

TEST(GridJson, reportsPlaceFoundAndExpected)
{
    const struct {
        std::string document;
        const char* message;
    } cases[] = {
        {"", "invalid JSON: "},
        {"{\"values\":[1,", "invalid JSON: "},
        {"[1,2]", "found an array of 2, expected an object with \"width\""},
        {"{}", "width: found nothing, expected a whole number from 1 to 16777216"},
        {R"({"width":0})", "width: found the number 0, expected a whole number"},
        {R"({"width":2.5})", "width: found the number 2.5, expected a whole number"},
        {R"({"width":"2"})", "width: found the text \"2\", expected a whole number"},
        {R"({"width":2,"height":1e300})", "height: found the number 1e+300, expected a whole number"},
        {R"({"width":2,"height":2})", "scale: found nothing, expected [degrees east, degrees north]"},
        {R"({"width":2,"height":2,"scale":[1]})", "scale: found an array of 1, expected [degrees east"},
        {R"({"width":2,"height":2,"scale":[1,null]})", "scale[1]: found null, expected a number"},
        {R"({"width":2,"height":2,"scale":[1,1]})", "translate: found nothing, expected [longitude, latitude]"},
        {R"({"width":2,"height":2,"scale":[-1,1],"translate":[0,0]})",
         "scale: found [-1, 1], expected a first number above 0"},
        {R"({"width":2,"height":2,"scale":[1,0],"translate":[0,0]})",
         "scale: found [1, 0], expected a first number above 0"},
        {R"({"width":2,"height":2,"scale":[1,1],"translate":[0,91]})",
         "translate: found [0, 91], expected a longitude"},
        {R"({"width":2,"height":3,"scale":[1,10],"translate":[0,71]})",
         "height: found 3 rows, the last at latitude 91, expected latitudes from -90 to 90 degrees"},
        {R"({"width":361,"height":3,"scale":[1,1],"translate":[0,0]})",
         "width: found 361 columns of 1 degrees, expected at most 360 degrees in all"},
        {R"({"width":16777216,"height":2,"scale":[1e-9,1],"translate":[0,0]})",
         "height: found 16777216 x 2 cells, expected at most 16777216 cells"},
        {"{" + frame + "}", "values: found nothing, expected an array of 4, one value per cell"},
        {"{" + frame + R"(,"values":5})", "values: found the number 5, expected an array of 4"},
        {"{" + frame + R"(,"values":[1,2,3]})", "values: found an array of 3, expected an array of 4"},
        {"{" + frame + R"(,"values":[1,2,3,4,5]})", "values: found an array of 5, expected an array of 4"},
        {"{" + frame + R"(,"values":[1,"2",3,4]})", "values[1]: found the text \"2\", expected a number or null"},
        {"{" + frame + R"(,"values":[1,2,[3],4]})", "values[2]: found an array, expected a number or null"},
        {"{" + frame + R"(,"values":[1,2,3,{}]})", "values[3]: found an object, expected a number or null"},
        {"{" + frame + R"(,"values":[1,2,3,1e999]})", "invalid JSON: "},
    };
    for (const auto& [document, message] : cases)
        EXPECT_THAT(fault(document), testing::StartsWith(message)) << document;
}

TEST(GridJson, refusesNestedValuesBeforeTheyAreRead)
{
    // Reading it to the end would find that it is not closed.
    EXPECT_THAT(fault("{" + frame + ",\"values\":" + std::string(100'000, '[')),
                HasSubstr("values[0]: found an array"));
}

TEST(GridJson, refusesMoreValuesThanAGridMayHave)
{
    std::string document = "{\"values\":[0";
    for (std::size_t i = 0; i < Rain::GridFrame::mostCells; ++i)
        document += ",0";
    EXPECT_THAT(fault(document), HasSubstr("values: found more than 16777216 values, expected fewer"));
}

TEST(GridJson, namesAFileThatDoesNotExist)
{
    try {
        readGridJson("none.json");
        FAIL() << "no fault";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "none.json: file not found, expected a JSON file with a grid");
    }
}

TEST(GridJson, stopsWhenItsProgressReturnsFalse)
{
    int reports = 0;
    EXPECT_EQ(readGridJson(PRECIPITATION_JSON, [&](double) { return ++reports < 2; }), std::nullopt);
    EXPECT_EQ(reports, 2);
}

} // namespace GridJsonTest
