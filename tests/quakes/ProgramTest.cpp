// Runs the example as a user would: the host program with the saved network.

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace ProgramTest {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

ProcessResult run(std::vector<std::string> options, const std::vector<std::string>& environment = {})
{
    options.insert(options.begin(), {"run", QUAKES_NETWORK});
    return runTarn(options, {.environment = environment, .shell = {}});
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

const std::string strongestPage = "https://earthquake.usgs.gov/earthquakes/eventpage/us1000chhc";

// Returns the last column of the last row of a table.
std::string strongest(const std::string& table)
{
    const std::string last = linesOf(table).back();
    return last.substr(last.find("\"{") + 1, last.rfind('}') - last.find("\"{"));
}

} // namespace

TEST(Program, writesTheIndependentlyComputedTable)
{
    const ProcessResult result = run({"--table=-"});
    EXPECT_EQ(result.status, 0) << result.err;
    std::vector<std::string> expected;
    std::ifstream file(EXPECTED_TABLE);
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("#"))
            expected.push_back(line);
    }
    const std::vector<std::string> lines = linesOf(result.out);
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_THAT(lines[i], StartsWith(expected[i] + ","));
}

TEST(Program, followsTheSelectedChart)
{
    // Magnitude 6.4 at Hualien, 10.64 km deep. The metres were computed in Python, with
    // the formulas for the ellipsoid.
    const ProcessResult flat = run({"--table=-", "--chart=geographic"});
    EXPECT_EQ(flat.status, 0) << flat.err;
    EXPECT_EQ(strongest(flat.out), "{121.653,24.1737,-10640}");
    EXPECT_THAT(strongest(run({"--table=-", "--chart=plate carree"}).out),
                StartsWith("{13542350.013474112,2691003.974589"));
    EXPECT_THAT(strongest(run({"--table=-", "--chart=geocentric"}).out), StartsWith("{-3050187.746425"));
}

TEST(Program, reportsAnUnknownChartOnce)
{
    const ProcessResult result = run({"--chart=mercator"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err,
                MatchesRegex("--chart: no object offers the chart \"mercator\": [A-Za-z]+ \"[a-z]+\" failed: found the "
                             "chart \"mercator\", expected geographic, geocentric, plate carree or a text for PROJ\n"
                             "[^\n]*: 1 fault; nothing was evaluated beyond the first step\n"));
}

TEST(Program, reportsOtherFailuresBesidesAnUnknownChart)
{
    const ProcessResult result = run({"--chart=mercator", "--set=reader.file=missing.json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("tarn: error: QuakeReader \"reader\" failed: "));
    EXPECT_THAT(result.err, HasSubstr("--chart: no object offers the chart \"mercator\": "));
}

TEST(Program, followsAnyChartThatProjKnows)
{
    const TestFolder folder;
    const ProcessResult map =
        run({"--table=-", "--chart=+proj=utm +zone=51", "--set=picture.file=" + folder.file("map.png")});
    EXPECT_EQ(map.status, 0) << map.err;
    // echo 121.653 24.1737 | proj -f %.4f +proj=utm +zone=51 +ellps=WGS84
    EXPECT_THAT(strongest(map.out), StartsWith("{363171.26"));
    EXPECT_THAT(contentOf(folder.file("map.png")), StartsWith("\x89PNG"));
}

TEST(Program, reportsWhyProjRefusesAChart)
{
    const ProcessResult result = run({"--chart=+proj=nonsense"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err,
                MatchesRegex("--chart: no object offers the chart \"\\+proj=nonsense\": [A-Za-z]+ \"[a-z]+\" failed: "
                             "found the chart \"\\+proj=nonsense\", which PROJ refuses: Unknown projection\n"
                             "[^\n]*: 1 fault; nothing was evaluated beyond the first step\n"));
}

TEST(Program, drawsAGlobeAndAMap)
{
    const TestFolder folder;
    const ProcessResult globe = run({"--set=picture.file=" + folder.file("globe.png")});
    EXPECT_EQ(globe.status, 0);
    EXPECT_THAT(globe.err, HasSubstr("  picture: wrote " + folder.file("globe.png") + "\n"));
    EXPECT_EQ(run({"--set=picture.file=" + folder.file("map.svg"), "--chart=plate carree"}).status, 0);
    EXPECT_THAT(folder.names(), ElementsAre("globe.png", "map.svg"));
    EXPECT_THAT(contentOf(folder.file("globe.png")), StartsWith("\x89PNG"));
    EXPECT_THAT(contentOf(folder.file("map.svg")), HasSubstr("<svg"));

    EXPECT_EQ(run({"--set=picture.file=" + folder.file("again.png")}, {"LC_ALL=de_DE.UTF-8"}).status, 0);
    EXPECT_EQ(contentOf(folder.file("again.png")), contentOf(folder.file("globe.png"))) << "under another locale";
}

TEST(Program, drawsAPicturePerStep)
{
    const TestFolder folder;
    const ProcessResult result = run({"--set=picture.frames=" + folder.file("frame-##.svg"), "--steps=3"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(folder.names(), ElementsAre("frame-00.svg", "frame-01.svg", "frame-02.svg"));
    EXPECT_THAT(result.err, HasSubstr("frame-02.svg, the last of 3 pictures\n"));
}

TEST(Program, turnsAndResetsTheGlobe)
{
    const TestFolder folder;
    EXPECT_EQ(run({"--set=picture.file=" + folder.file("plain.svg")}).status, 0);
    const std::string plain = contentOf(folder.file("plain.svg"));

    // The end of the run draws the globe.
    const std::string drag =
        "{ step = 64, kind = 'press', x = 500, y = 300 }, { step = 64, kind = 'move', x = 320, y = 300 },"
        "{ step = 64, kind = 'release', x = 140, y = 300 },";
    const auto drawn = [&](const std::string& events) {
        folder.write("events.toml", "event = [" + events + "]\n");
        const ProcessResult result =
            run({"--set=picture.file=" + folder.file("turned.svg"), "--events=" + folder.file("events.toml")});
        EXPECT_EQ(result.status, 0) << result.err;
        return contentOf(folder.file("turned.svg"));
    };
    const std::string turned = drawn(drag);
    EXPECT_NE(turned, plain);
    EXPECT_EQ(drawn(drag + "{ step = 64, kind = 'key', key = 'r' }"), plain);
    EXPECT_EQ(drawn(drag + "{ step = 64, kind = 'move', x = 900, y = 900 }"), turned) << "the pointer was released";
}

TEST(Program, zoomsWithEachTurnOfTheWheelInOneStep)
{
    const TestFolder folder;
    const auto drawn = [&](const std::string& events) {
        folder.write("events.toml", "event = [" + events + "]\n");
        EXPECT_EQ(run({"--set=picture.file=" + folder.file("a.svg"), "--events=" + folder.file("events.toml")}).status,
                  0);
        return contentOf(folder.file("a.svg"));
    };
    const std::string turn = "{ step = 64, kind = 'wheel', x = 450, y = 450, wheel = 1 },";
    EXPECT_NE(drawn(turn), drawn(turn + turn));
}

TEST(Program, writesThePictureWhenItsKeyIsPressed)
{
    const TestFolder folder;
    folder.write("events.toml", "event = [{ step = 1, kind = 'key', key = 'w' }]\n");
    const ProcessResult result =
        run({"--set=picture.file=" + folder.file("a.svg"), "--steps=3", "--events=" + folder.file("events.toml")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("the last of 2 pictures\n")) << "one for the key, one at the end";
}

TEST(Program, playsTheEventsOfTheExample)
{
    const TestFolder folder;
    const ProcessResult result = run({"--set=picture.file=" + folder.file("a.svg"), "--events=" QUAKES_EVENTS});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("the last of 2 pictures\n"));
}

TEST(Program, opensThePageOfTheStrongestEvent)
{
    const TestFolder folder;
    const std::string browser = folder.write("browser", "#!/bin/sh\necho \"$1\" > '" + folder.file("shown") + "'\n");
    std::filesystem::permissions(browser, std::filesystem::perms::owner_all);
    folder.write("events.toml", "event = [{ step = 64, kind = 'key', key = 'o' }]\n");
    const ProcessResult result = run({"--events=" + folder.file("events.toml")}, {"BROWSER=" + browser});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(contentOf(folder.file("shown")), strongestPage + "\n");
    EXPECT_THAT(result.err, HasSubstr("  page: opened " + strongestPage + "\n"));
}

TEST(Program, attributesObjectTypesToTheirLibraryAlsoIfItIsLoadedWithAnother)
{
    const std::string quakes = runTarn({"libraries", "quakes"}).out;
    EXPECT_THAT(quakes, HasSubstr("QuakeReader"));
    EXPECT_THAT(quakes, Not(HasSubstr("CoastLines")));
    EXPECT_THAT(runTarn({"libraries", "earth"}).out, AllOf(HasSubstr("CoastLines"), HasSubstr("Land")));
    EXPECT_THAT(runTarn({"objects", "quakes"}).out, HasSubstr("Object type CoastLines, "));
    EXPECT_THAT(runTarn({"describe", "CoastLines", "--library=quakes"}).out, HasSubstr("/earth.so"));
}

TEST(Program, findsItsDataInTheDataFolders)
{
    const TestFolder folder;
    folder.write("net.toml", "format = 1\nlibraries = ['quakes']\n[[object]]\nname = 'r'\ntype = 'QuakeReader'\n"
                             "set = { file = 'data/earthquakes.json' }\n[[object]]\nname = 'c'\ntype = 'CoastLines'\n"
                             "set = { file = 'data/land-110m.json' }\n");
    EXPECT_EQ(runTarn({"run", folder.file("net.toml")}).status, 1);
    const ProcessResult found =
        runTarn({"run", folder.file("net.toml")},
                {.environment = {"TARN_DATA=" EXAMPLES_FOLDER "/quakes;" EXAMPLES_FOLDER "/earth"}, .shell = {}});
    EXPECT_EQ(found.status, 0) << found.err;
    EXPECT_THAT(found.err, Not(HasSubstr("Checking file")));
}

TEST(Program, refusesChoicesThatTheDataDoesNotHave)
{
    const ProcessResult network = run({"--set=shown.networks={xx}", "--steps=1"});
    EXPECT_EQ(network.status, 1);
    EXPECT_THAT(network.err, HasSubstr("--set=shown.networks={xx}: \"xx\" is not among the "));
    const ProcessResult kind = run({"--set=shown.kinds=+quake", "--steps=1"});
    EXPECT_EQ(kind.status, 1);
    EXPECT_THAT(kind.err, HasSubstr("  shown: error: no event has the kind quake; the data has "));
}

TEST(Program, reportsAPictureThatCannotBeWritten)
{
    const TestFolder folder;
    const ProcessResult result = run({"--set=picture.file=" + folder.file("none/a.png"), "--steps=1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("  picture: error: cannot write " + folder.file("none/a.png")));
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(Program, leavesOnlyCompletePicturesWhenInterrupted)
{
    const TestFolder folder;
    TarnProcess process{
        {"run", QUAKES_NETWORK, "--set=picture.frames=" + folder.file("frame-####.png"), "--set=clock.step=7 s"}};
    // Waits for the first pictures.
    for (int i = 0; i < 600 && folder.names().size() < 5; ++i)
        ::usleep(100'000);
    process.send(SIGINT);
    const ProcessResult result = process.wait();
    EXPECT_EQ(result.status, 130);
    EXPECT_THAT(result.err, HasSubstr("tarn: interrupted in step "));
    EXPECT_THAT(result.err,
                testing::ContainsRegex("  picture: wrote .*/frame-[0-9]+.png, the last of [0-9]+ pictures"));
    const std::vector<std::string> names = folder.names();
    EXPECT_GE(names.size(), 4u);
    for (const std::string& name : names) {
        EXPECT_THAT(name, StartsWith("frame-")) << "no unfinished files";
        EXPECT_THAT(contentOf(folder.file(name)), testing::EndsWith(std::string("IEND\xae\x42\x60\x82"))) << name;
    }
}

} // namespace ProgramTest
