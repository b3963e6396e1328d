// Runs the example as a user would: the host program with the saved networks.

#include "tarn/TarnProcess.hpp"

#include <loam/Numbers.hpp>

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

namespace ProgramTest {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

namespace {

ProcessResult run(std::vector<std::string> options, const std::vector<std::string>& environment = {})
{
    options.insert(options.begin(), {"run", RAIN_NETWORK});
    return runTarn(options, {.environment = environment, .shell = {}});
}

// Returns the cells of a table without quoted cells, row by row.
std::vector<std::vector<std::string>> cellsOf(const std::string& table)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream stream(table);
    for (std::string line; std::getline(stream, line);) {
        std::istringstream cells(line);
        rows.emplace_back();
        for (std::string cell; std::getline(cells, cell, ',');)
            rows.back().push_back(cell);
    }
    return rows;
}

double numberOf(const std::string& text)
{
    double number = 0;
    EXPECT_TRUE(Loam::readNumber(number, text)) << text;
    return number;
}

} // namespace

TEST(Program, diffusesForThirtyTwoDays)
{
    const ProcessResult result = run({"--table=-"});
    EXPECT_EQ(result.status, 0) << result.err;
    const auto rows = cellsOf(result.out);
    ASSERT_THAT(rows, SizeIs(34));
    EXPECT_THAT(rows[0], ElementsAre("step", "day", "world", "tropics", "pacific", "wettest", "isolines", "length"));
    for (std::size_t i = 1; i < rows.size(); ++i) {
        ASSERT_THAT(rows[i], SizeIs(8));
        EXPECT_EQ(rows[i][1], std::to_string(i - 1));
        // numpy.average of the file, with weights of numpy.cos(numpy.radians(latitudes))
        EXPECT_NEAR(numberOf(rows[i][2]), 1198.2818589108897, 1e-8);
    }
    EXPECT_NEAR(numberOf(rows[1][3]), 1521.3059403625127, 1e-9) << "the tropics before the diffusion";
    EXPECT_NEAR(numberOf(rows[1][4]), 2006.1086538632692, 1e-9) << "the Pacific";
    EXPECT_EQ(rows[1][5], "20195");
    // Of dense matrices in NumPy; see DiffusionTest.
    EXPECT_NEAR(numberOf(rows[4][5]), 12982.462636858392, 1e-8);
    EXPECT_LT(numberOf(rows[33][6]), numberOf(rows[1][6]) / 10) << "the isolines become fewer";
}

TEST(Program, changesColoursAndIsolinesWithOneInput)
{
    const TestFolder folder;
    const auto isolines = [&](const std::string& levels, const std::string& picture) {
        const ProcessResult result = run({"--set=scale.levels=" + levels, "--steps=1", "--print=isolines.count",
                                          "--print=layer.layer", "--set=picture.file=" + folder.file(picture)});
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    };
    // Without diffusion, contourpy finds 472 and 269 isolines; see isolines.csv.
    EXPECT_EQ(isolines("[1000.3]", "one.svg"), "isolines.count: 472\nlayer.layer: 2 areas, 1 group of lines\n");
    EXPECT_EQ(isolines("[1000.3;2500.3]", "two.svg"), "isolines.count: 741\nlayer.layer: 3 areas, 1 group of lines\n");
    EXPECT_NE(contentOf(folder.file("one.svg")), contentOf(folder.file("two.svg")));
}

TEST(Program, reportsLevelsOutOfOrder)
{
    const ProcessResult result = run({"--set=scale.levels=[5;1]", "--steps=1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err,
                HasSubstr("  scale: error: found the level 1 after 5, expected finite numbers in increasing order"));
}

TEST(Program, drawsAGlobeAndAMapAlikeUnderAnyLocale)
{
    const TestFolder folder;
    EXPECT_EQ(run({"--set=picture.file=" + folder.file("map.png"), "--steps=1"}).status, 0);
    const ProcessResult globe =
        run({"--set=picture.file=" + folder.file("globe.svg"), "--steps=1", "--chart=geocentric"});
    EXPECT_EQ(globe.status, 0) << globe.err;
    EXPECT_THAT(contentOf(folder.file("map.png")), StartsWith("\x89PNG"));
    EXPECT_THAT(contentOf(folder.file("globe.svg")), HasSubstr("<svg"));
    EXPECT_EQ(run({"--set=picture.file=" + folder.file("again.png"), "--steps=1"}, {"LC_ALL=de_DE.UTF-8"}).status, 0);
    EXPECT_EQ(contentOf(folder.file("again.png")), contentOf(folder.file("map.png")));
}

TEST(Program, drawsEarthquakesOverPrecipitation)
{
    const TestFolder folder;
    const auto written = [&](const std::string& name, const std::string& levels) {
        const std::string file = folder.file(name);
        const ProcessResult result =
            runTarn({"run", OVER_NETWORK, "--table=-", "--set=picture.file=" + file, "--set=scale.levels=" + levels});
        EXPECT_EQ(result.status, 0) << result.err;
        const auto rows = cellsOf(result.out);
        EXPECT_THAT(rows, SizeIs(10));
        // The file has 85 events of magnitude 4.5 or more.
        EXPECT_THAT(rows.back(), ElementsAre("8", "85", testing::_, testing::_));
        return contentOf(file);
    };
    const std::string map = written("map.png", "[500;1000]");
    EXPECT_THAT(map, StartsWith("\x89PNG"));
    EXPECT_NE(written("other.png", "[500;2000]"), map) << "the layer is below the events";
}

TEST(Program, makesTheLayerBelowTheEarthquakesOnce)
{
    const TestFolder folder;
    const ProcessResult result = runTarn({"run", OVER_NETWORK, "--trace=" + folder.file("trace.json")});
    EXPECT_EQ(result.status, 0) << result.err;
    const std::string trace = contentOf(folder.file("trace.json"));
    std::size_t updates = 0;
    for (std::size_t place = trace.find("\"name\":\"layer\""); place != std::string::npos;
         place = trace.find("\"name\":\"layer\"", place + 1))
        ++updates;
    EXPECT_EQ(updates, 1u);
}

} // namespace ProgramTest
