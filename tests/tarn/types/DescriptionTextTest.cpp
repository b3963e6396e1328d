#include <tarn/types/DescriptionText.hpp>

#include "tarn/DescribedObjects.hpp"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>

namespace DescriptionTextTest {

using namespace Tarn;
using Orla::describe;
using Orla::VSlotDescription;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

template<Orla::VDescribes What>
Orla::StrongPtr<VSlotDescription> stored(const Orla::VDescription<What>& description)
{
    return VSlotDescription::of(description.parts());
}

} // namespace

TEST(DescriptionText, listsFactsInAFixedOrder)
{
    EXPECT_THAT(factsOf(*stored(describe("A number.")
                                    .in("km")
                                    .from(0)
                                    .to(10)
                                    .softLimits(1, 5)
                                    .step(0.5)
                                    .logarithmic()
                                    .advanced()
                                    .onlyIf("mode", "a", "b"))),
                ElementsAre("from 0 to 10 km", "usually 1 to 5", "in steps of 0.5", "logarithmic scale",
                            "only if mode is \"a\" or \"b\"", "advanced"));
    EXPECT_THAT(factsOf(*stored(describe("A number.").in("km").finite())), ElementsAre("finite", "in km"));
    EXPECT_THAT(factsOf(*stored(describe("A file.").asInputFile("json", "csv"))),
                ElementsAre("input file (.json, .csv)"));
    EXPECT_THAT(factsOf(*stored(describe("A folder.").asFolder())), ElementsAre("folder"));
    EXPECT_THAT(factsOf(*stored(describe("A number."))), IsEmpty());
}

TEST(DescriptionText, joinsTheSentenceAndTheFacts)
{
    EXPECT_EQ(summaryOf(stored(describe("Half the side.").in("m").from(0)).get()), "Half the side; at least 0 m.");
    EXPECT_EQ(summaryOf(stored(describe("Half the side.")).get()), "Half the side.");
    EXPECT_EQ(summaryOf(nullptr), "");
}

TEST(DescriptionText, describesATypeWithWhatItsInputsAccept)
{
    const std::string text =
        runTarn({"describe", "Heater", "--library=describedobjects"}, {.environment = describedLibrary, .shell = {}})
            .out;
    EXPECT_THAT(text, HasSubstr("  Heats a room.\n\n  It has a power.\n\n  At night it saves energy.\n\n"
                                "  category  Houses\n"
                                "  keywords  warmth, radiator\n"
                                "  page      https://example.org/heater\n"));
    EXPECT_THAT(text,
                HasSubstr("      The power of the heater; at least 0 and below 10 kW; usually 1 to 5; in steps of\n"
                          "      0.5.\n"));
    EXPECT_THAT(text, HasSubstr("      How it heats. Choices: constant, curve, off.\n"));
    EXPECT_THAT(text, HasSubstr("  1 hidden input not shown\n"));
    EXPECT_THAT(text, Not(HasSubstr("serial")));
    EXPECT_THAT(text, Not(HasSubstr("The heat so far"))) << "private state";
    EXPECT_THAT(text, HasSubstr("    [[object]]\n    name = \"heater\"\n    type = \"Heater\"\n"
                                "    set.power = \"5\"\n    set.night = \"22:30\"\n"
                                "    set.mode = \"constant\"\n    set.room = \"hall\"\n"));
}

TEST(DescriptionText, showsControlCharactersByTheirCodes)
{
    const std::string text =
        runTarn({"describe", "Marked", "--library=describedobjects"}, {.environment = describedLibrary, .shell = {}})
            .out;
    EXPECT_THAT(text, HasSubstr("A <script>alert(1)</script> & \\x1b[31m \"quoted\".\\n\\x7f\n"));
    EXPECT_THAT(text, HasSubstr("  Has markup: <b>\\x1b[1m</b>.\n"));
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
}

TEST(DescriptionText, isAnExampleThatRuns)
{
    const std::string text =
        runTarn({"describe", "Heater", "--library=describedobjects"}, {.environment = describedLibrary, .shell = {}})
            .out;
    const ProcessResult result = runDescribed("run", text.substr(text.find("[[object]]")));
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST(DescriptionText, existsForEachSlotOfTheStandardObjectsAndTheExamples)
{
    const auto listed = nlohmann::json::parse(runTarn({"objects", "earth", "quakes", "rain", "--json"}).out);
    EXPECT_GT(listed["objectTypes"].size(), 15u);
    for (const auto& type : listed["objectTypes"]) {
        EXPECT_FALSE(type["description"].is_null()) << type["name"];
        for (const char* slots : {"inputs", "outputs"}) {
            for (const auto& slot : type[slots])
                EXPECT_FALSE(slot["description"].is_null()) << type["name"] << ", " << slot["name"];
        }
    }
}

TEST(DescriptionText, makesExampleNetworksThatLoadTheLibraryAndShowAnOutput)
{
    ObjectTypeDescription type;
    type.name = "Clock";
    type.library = "/lib/fathom/standard.so";
    EXPECT_EQ(exampleNetwork(type), "format = 1\n\n[[object]]\nname = \"clock\"\ntype = \"Clock\"\n");
    const auto hidden = stored(describe("A number.").hidden());
    type.library = "/lib/fathom/houses.so";
    type.outputs = {{"secret", "int", "integer", hidden.get()}, {"hour", "int", "integer", nullptr}};
    EXPECT_EQ(exampleNetwork(type), "format = 1\nlibraries = [\"houses\"]\n\n"
                                    "[[object]]\nname = \"clock\"\ntype = \"Clock\"\n\n"
                                    "[[column]]\ntitle = \"hour\"\nvalue = \"clock.hour\"\n");
}

TEST(DescriptionText, findsInputsThatNeedTheNameOfAFile)
{
    const auto file = stored(describe("The file.").asInputFile());
    const auto conditional = stored(describe("The file.").asInputFile().onlyIf("mode", "a"));
    const auto result = stored(describe("The file.").asOutputFile());
    ObjectTypeDescription::Input input;
    EXPECT_FALSE(needsFile(input));
    for (const auto& [description, expected] : {std::pair{file, true}, {conditional, false}, {result, false}}) {
        input.description = description.get();
        EXPECT_EQ(needsFile(input), expected);
    }
    input.description = file.get();
    input.initialText = "a.json";
    EXPECT_FALSE(needsFile(input));
}

} // namespace DescriptionTextTest
