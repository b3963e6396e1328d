#include <tarn/run/Advice.hpp>

#include "tarn/DescribedObjects.hpp"

#include <gmock/gmock.h>

#include <string>

namespace AdviceTest {

using testing::HasSubstr;
using testing::Not;

namespace {

const std::string heatColumn = column("heat", "h.heat");

// Returns the advice on a network of the library describedobjects.
std::string adviceOf(const std::string& network)
{
    const ProcessResult result = runDescribed("check", network, {"--advice"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    return result.err;
}

} // namespace

TEST(Advice, isGivenOnlyIfWanted)
{
    const std::string network = object("h", "Heater");
    EXPECT_THAT(runDescribed("check", network).err, Not(HasSubstr("advice")));
    EXPECT_THAT(adviceOf(network), HasSubstr("advice"));
}

TEST(Advice, namesInputsWithoutADescriptionOncePerType)
{
    EXPECT_EQ(adviceOf(object("h", "Heater") + object("i", "Heater") + heatColumn + column("i", "i.heat")),
              "net.toml:5:8: advice: the type \"Heater\" does not describe its input \"plain\"\n"
              "net.toml: 2 objects, 0 connections, no faults\n");
}

TEST(Advice, namesInputsThatAreSetWhileTheirConditionIsNotMet)
{
    const std::string curve = "set = { mode = 'off', curve = 'a.csv' }\n";
    EXPECT_THAT(
        adviceOf(object("h", "Heater", curve) + heatColumn),
        HasSubstr("net.toml:6:23: advice: object \"h\": the input \"curve\" is set, but matters only if mode is "
                  "\"curve\"\n"));
    EXPECT_THAT(adviceOf(object("h", "Heater", "set = { mode = 'curve', curve = 'a.csv' }\n") + heatColumn),
                Not(HasSubstr("matters")));
}

TEST(Advice, namesOutputsThatNeitherObjectsNorColumnsRead)
{
    const std::string reader = object("r", "Heater", "connect = { power = 'h.heat' }\n");
    EXPECT_THAT(adviceOf(object("h", "Heater")),
                HasSubstr("net.toml:3:1: advice: object \"h\": the output \"heat\" is never read\n"));
    EXPECT_THAT(adviceOf(object("h", "Heater") + heatColumn), Not(HasSubstr("is never read")));
    const std::string both = adviceOf(object("h", "Heater") + reader);
    EXPECT_THAT(both, Not(HasSubstr("\"h\": the output")));
    EXPECT_THAT(both, HasSubstr("\"r\": the output \"heat\" is never read\n"));
    // Other objects cannot read private state.
    EXPECT_THAT(both, Not(HasSubstr("\"sum\"")));
}

TEST(Advice, namesObjectsFromWhichNoResultIsReached)
{
    const std::string chain = object("h", "Heater") + object("r", "Heater", "connect = { power = 'h.heat' }\n");
    const std::string unused = adviceOf(chain);
    EXPECT_THAT(unused, HasSubstr("net.toml:3:1: advice: object \"h\" reaches no file, column or status\n"));
    EXPECT_THAT(unused, HasSubstr("net.toml:6:1: advice: object \"r\" reaches no file, column or status\n"));
    EXPECT_THAT(adviceOf(chain + column("heat", "r.heat")), Not(HasSubstr("reaches")));
    const std::string first = adviceOf(chain + heatColumn);
    EXPECT_THAT(first, Not(HasSubstr("\"h\" reaches")));
    EXPECT_THAT(first, HasSubstr("\"r\" reaches"));
}

TEST(Advice, countsFilesAndStatusesAsResults)
{
    const TestFolder folder;
    folder.write("net.toml", "format = 1\nlibraries = ['quakes']\n" + object("reader", "QuakeReader")
                                 + object("picture", "PictureWriter", "connect = { catalog = 'reader.catalog' }\n"));
    const ProcessResult result = runTarn({"check", "net.toml", "--advice"}, {{}, "cd '" + folder.path() + "'"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, Not(HasSubstr("reaches")));
    EXPECT_THAT(result.err, Not(HasSubstr("\"status\" is never read")));
}

TEST(Advice, endsInLoops)
{
    EXPECT_THAT(adviceOf(object("a", "Heater", "connect = { power = 'b.heat' }\n")
                         + object("b", "Heater", "connect = { power = 'a.heat' }\n")),
                HasSubstr("object \"a\" reaches no file, column or status\n"));
}

} // namespace AdviceTest
